#include <mime/mime_object.hpp>
#include <mime/mime_options.h>
#include <pb/pb_rule.hpp>

struct MIME_OPTIONS {
    PB_OBJ_HEADER header;
    int32_t flagsDefault;
    MIME_FLAGS flags;
    int32_t wrapLineLengthDefault;
    PB_INT wrapLineLength;
    int32_t rfc2231CharsetDefault;
    PB_CHARSET rfc2231Charset;
    int32_t rfc2231MaxSegmentLengthDefault;
    PB_INT rfc2231MaxSegmentLength;
    int32_t rfcBaseOptionsDefault;
    RFC_BASE_OPTIONS *rfcBaseOptions;
    int32_t rfcQuopOptionsDefault;
    RFC_QUOP_OPTIONS *rfcQuopOptions;
};

namespace {

extern "C" {
static void mime___OptionsFreeFunc(PB_OBJ *obj) noexcept;
static PB_INT mime___OptionsCompareFunc(PB_OBJ *thisObj, PB_OBJ *thatObj) noexcept;
}

} // namespace

MIME___SORT_DEFINE(Options, MIME_OPTIONS, mime___OptionsFreeFunc, mime___OptionsCompareFunc, nullptr)

namespace {

// Each setting written once: its key in a store, its default, and for the
// numbers the rule a value must pass (the setter's abort condition, and what
// restore checks before it sets a stored value).
struct NumberSetting {
    const char *key;
    PB_INT defaultValue;
    pb::Rule rule;
};

constexpr const char *kFlagsKey = "flags";
constexpr MIME_FLAGS kFlagsDefault = MIME_FLAG_PARSE_RFC2231_HEADERS | MIME_FLAG_GENERATE_RFC2231_HEADERS;
constexpr NumberSetting kWrapLineLength{"wrapLineLength", 76, PB_RULE(wrapLineLength, wrapLineLength >= -1)};
constexpr NumberSetting kRfc2231Charset{"rfc2231Charset", PB_CHARSET_UTF_8, PB_RULE(charset, PB_CHARSET_OK( charset ))};
constexpr NumberSetting kRfc2231MaxSegmentLength{
    "rfc2231MaxSegmentLength", 60, PB_RULE(maxSegmentLength, maxSegmentLength == -1 || maxSegmentLength > 0)};
constexpr const char *kRfcBaseOptionsKey = "rfcBaseOptions";
constexpr const char *kRfcQuopOptionsKey = "rfcQuopOptions";
constexpr PB_INT kBase64LineLength = 76;

void mime___OptionsFreeFunc(PB_OBJ *obj) noexcept
{
    MIME_OPTIONS *mo = mimeOptionsFrom(obj);
    pb::releaseField(mo->rfcBaseOptions);
    pb::releaseField(mo->rfcQuopOptions);
}

template <class T> PB_INT order(T a, T b)
{
    return a < b ? -1 : a > b ? 1 : 0;
}

// Absent before present; two present ones through the runtime's compare.
PB_INT orderObjects(void *a, void *b)
{
    if (!a || !b)
        return order(a != nullptr, b != nullptr);
    return pbObjCompare(static_cast<PB_OBJ *>(a), static_cast<PB_OBJ *>(b));
}

PB_INT mime___OptionsCompareFunc(PB_OBJ *thisObj, PB_OBJ *thatObj) noexcept
{
    PB_ASSERT( thisObj );
    PB_ASSERT( thatObj );
    const MIME_OPTIONS *a = mimeOptionsFrom(thisObj), *b = mimeOptionsFrom(thatObj);
    const PB_INT steps[] = {
        order(a->flagsDefault, b->flagsDefault),
        order(a->flags, b->flags),
        order(a->wrapLineLengthDefault, b->wrapLineLengthDefault),
        order(a->wrapLineLength, b->wrapLineLength),
        order(a->rfc2231CharsetDefault, b->rfc2231CharsetDefault),
        order(a->rfc2231Charset, b->rfc2231Charset),
        order(a->rfc2231MaxSegmentLengthDefault, b->rfc2231MaxSegmentLengthDefault),
        order(a->rfc2231MaxSegmentLength, b->rfc2231MaxSegmentLength),
        order(a->rfcBaseOptionsDefault, b->rfcBaseOptionsDefault),
    };
    for (PB_INT step : steps)
        if (step)
            return step;
    if (PB_INT base = orderObjects(a->rfcBaseOptions, b->rfcBaseOptions))
        return base;
    if (PB_INT mark = order(a->rfcQuopOptionsDefault, b->rfcQuopOptionsDefault))
        return mark;
    return orderObjects(a->rfcQuopOptions, b->rfcQuopOptions);
}

// The object behind the caller's reference, unshared: what every setter and
// reset writes to.
MIME_OPTIONS *writable(MIME_OPTIONS **mo) noexcept
{
    PB_OBJ_UNSHARE((*mo), mimeOptionsCreateFrom);
    return *mo;
}

} // namespace

MIME_OPTIONS *mimeOptionsCreate(void) noexcept
{
    auto *mo = pb::create<MIME_OPTIONS>(mimeOptionsSort());
    mo->rfcBaseOptions = nullptr;
    mo->rfcQuopOptions = nullptr;
    mimeOptionsSetFlagsDefault(&mo);
    mimeOptionsSetWrapLineLengthDefault(&mo);
    mimeOptionsSetRfc2231CharsetDefault(&mo);
    mimeOptionsSetRfc2231MaxSegmentLengthDefault(&mo);
    mimeOptionsSetRfcBaseOptionsDefault(&mo);
    mimeOptionsSetRfcQuopOptionsDefault(&mo);
    return mo;
}

MIME_OPTIONS *mimeOptionsCreateFrom(MIME_OPTIONS *source) noexcept
{
    PB_ASSERT( source );
    auto *mo = pb::create<MIME_OPTIONS>(mimeOptionsSort());
    PB_OBJ_HEADER header = mo->header;
    *mo = *source;
    mo->header = header;
    pb::retain(mo->rfcBaseOptions);
    pb::retain(mo->rfcQuopOptions);
    return mo;
}

MIME_FLAGS mimeOptionsFlags(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->flags;
}

void mimeOptionsSetFlags(MIME_OPTIONS **mo, MIME_FLAGS flags) noexcept
{
    PB_ASSERT_REF(mo);
    MIME_OPTIONS *o = writable(mo);
    o->flagsDefault = 0;
    o->flags = mimeFlagsNormalize(flags);
}

int mimeOptionsFlagsDefault(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->flagsDefault;
}

void mimeOptionsSetFlagsDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    MIME_OPTIONS *o = writable(mo);
    o->flagsDefault = 1;
    o->flags = kFlagsDefault;
}

PB_INT mimeOptionsWrapLineLength(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->wrapLineLength;
}

void mimeOptionsSetWrapLineLength(MIME_OPTIONS **mo, PB_INT wrapLineLength) noexcept
{
    PB_ASSERT_REF(mo);
    PB_ASSERT_RULE(kWrapLineLength.rule, wrapLineLength);
    MIME_OPTIONS *o = writable(mo);
    o->wrapLineLengthDefault = 0;
    o->wrapLineLength = wrapLineLength;
}

int mimeOptionsWrapLineLengthDefault(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->wrapLineLengthDefault;
}

void mimeOptionsSetWrapLineLengthDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    MIME_OPTIONS *o = writable(mo);
    o->wrapLineLengthDefault = 1;
    o->wrapLineLength = kWrapLineLength.defaultValue;
}

PB_CHARSET mimeOptionsRfc2231Charset(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->rfc2231Charset;
}

void mimeOptionsSetRfc2231Charset(MIME_OPTIONS **mo, PB_CHARSET charset) noexcept
{
    PB_ASSERT_REF(mo);
    PB_ASSERT_RULE(kRfc2231Charset.rule, charset);
    MIME_OPTIONS *o = writable(mo);
    o->rfc2231CharsetDefault = 0;
    o->rfc2231Charset = charset;
}

int mimeOptionsRfc2231CharsetDefault(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->rfc2231CharsetDefault;
}

void mimeOptionsSetRfc2231CharsetDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    MIME_OPTIONS *o = writable(mo);
    o->rfc2231CharsetDefault = 1;
    o->rfc2231Charset = kRfc2231Charset.defaultValue;
}

PB_INT mimeOptionsRfc2231MaxSegmentLength(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->rfc2231MaxSegmentLength;
}

void mimeOptionsSetRfc2231MaxSegmentLength(MIME_OPTIONS **mo, PB_INT maxSegmentLength) noexcept
{
    PB_ASSERT_REF(mo);
    PB_ASSERT_RULE(kRfc2231MaxSegmentLength.rule, maxSegmentLength);
    MIME_OPTIONS *o = writable(mo);
    o->rfc2231MaxSegmentLengthDefault = 0;
    o->rfc2231MaxSegmentLength = maxSegmentLength;
}

int mimeOptionsRfc2231MaxSegmentLengthDefault(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->rfc2231MaxSegmentLengthDefault;
}

void mimeOptionsSetRfc2231MaxSegmentLengthDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    MIME_OPTIONS *o = writable(mo);
    o->rfc2231MaxSegmentLengthDefault = 1;
    o->rfc2231MaxSegmentLength = kRfc2231MaxSegmentLength.defaultValue;
}

RFC_BASE_OPTIONS *mimeOptionsRfcBaseOptions(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    pb::retain(mo->rfcBaseOptions);
    return mo->rfcBaseOptions;
}

void mimeOptionsSetRfcBaseOptions(MIME_OPTIONS **mo, RFC_BASE_OPTIONS *bo) noexcept
{
    PB_ASSERT_REF(mo);
    PB_ASSERT( bo );
    MIME_OPTIONS *o = writable(mo);
    o->rfcBaseOptionsDefault = 0;
    pb::setField(o->rfcBaseOptions, bo);
}

int mimeOptionsRfcBaseOptionsDefault(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->rfcBaseOptionsDefault;
}

void mimeOptionsSetRfcBaseOptionsDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    MIME_OPTIONS *o = writable(mo);
    o->rfcBaseOptionsDefault = 1;
    pb::releaseField(o->rfcBaseOptions);
    o->rfcBaseOptions = rfcBaseOptionsCreate();
    // The codec library's own setter, on the object the field now holds alone.
    rfcBaseOptionsSetOutputLineLength(&o->rfcBaseOptions, kBase64LineLength);
}

RFC_QUOP_OPTIONS *mimeOptionsRfcQuopOptions(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    pb::retain(mo->rfcQuopOptions);
    return mo->rfcQuopOptions;
}

void mimeOptionsSetRfcQuopOptions(MIME_OPTIONS **mo, RFC_QUOP_OPTIONS *qo) noexcept
{
    PB_ASSERT_REF(mo);
    PB_ASSERT( qo );
    MIME_OPTIONS *o = writable(mo);
    o->rfcQuopOptionsDefault = 0;
    pb::setField(o->rfcQuopOptions, qo);
}

int mimeOptionsRfcQuopOptionsDefault(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->rfcQuopOptionsDefault;
}

void mimeOptionsSetRfcQuopOptionsDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    MIME_OPTIONS *o = writable(mo);
    o->rfcQuopOptionsDefault = 1;
    pb::releaseField(o->rfcQuopOptions);
    o->rfcQuopOptions = rfcQuopOptionsCreate();
}

PB_STORE *mimeOptionsStore(MIME_OPTIONS *mo, int full) noexcept
{
    PB_ASSERT( mo );
    pb::Ref<PB_STORE> store = pb::adopt(pbStoreCreate());
    auto setValue = [&](const char *key, PB_STRING *text) {
        pb::Ref<PB_STRING> held = pb::adopt(text);
        pbStoreSetValueCstr(store.addr(), key, -1, held.get());
    };
    auto setStore = [&](const char *key, PB_STORE *sub) {
        pb::Ref<PB_STORE> held = pb::adopt(sub);
        pbStoreSetStoreCstr(store.addr(), key, -1, held.get());
    };
    if (!mo->flagsDefault || full)
        setValue(kFlagsKey, mimeFlagsToString(mo->flags));
    if (!mo->wrapLineLengthDefault || full)
        pbStoreSetValueIntCstr(store.addr(), kWrapLineLength.key, -1, mo->wrapLineLength);
    if (!mo->rfc2231CharsetDefault || full)
        setValue(kRfc2231Charset.key, pbCharsetToString(mo->rfc2231Charset));
    if (!mo->rfc2231MaxSegmentLengthDefault || full)
        pbStoreSetValueIntCstr(store.addr(), kRfc2231MaxSegmentLength.key, -1, mo->rfc2231MaxSegmentLength);
    if (!mo->rfcBaseOptionsDefault || full)
        setStore(kRfcBaseOptionsKey, rfcBaseOptionsStore(mo->rfcBaseOptions, full));
    if (!mo->rfcQuopOptionsDefault || full)
        setStore(kRfcQuopOptionsKey, rfcQuopOptionsStore(mo->rfcQuopOptions, full));
    return store.release();
}

MIME_OPTIONS *mimeOptionsRestore(PB_STORE *store) noexcept
{
    PB_ASSERT( store );
    pb::Ref<MIME_OPTIONS> mo = pb::adopt(mimeOptionsCreate());
    if (pb::Ref<PB_STRING> flags = pb::adopt(pbStoreValueCstr(store, kFlagsKey, -1)))
        mimeOptionsSetFlags(mo.addr(), mimeFlagsFromString(flags.get()));
    PB_INT number = 0;
    if (pbStoreValueIntCstr(store, &number, kWrapLineLength.key, -1) && kWrapLineLength.rule(number))
        mimeOptionsSetWrapLineLength(mo.addr(), number);
    if (pb::Ref<PB_STRING> charset = pb::adopt(pbStoreValueCstr(store, kRfc2231Charset.key, -1))) {
        PB_CHARSET code = pbCharsetFromString(charset.get());
        if (kRfc2231Charset.rule(code))
            mimeOptionsSetRfc2231Charset(mo.addr(), code);
    }
    if (pbStoreValueIntCstr(store, &number, kRfc2231MaxSegmentLength.key, -1) && kRfc2231MaxSegmentLength.rule(number))
        mimeOptionsSetRfc2231MaxSegmentLength(mo.addr(), number);
    if (pb::Ref<PB_STORE> sub = pb::adopt(pbStoreStoreCstr(store, kRfcBaseOptionsKey, -1))) {
        pb::Ref<RFC_BASE_OPTIONS> options = pb::adopt(rfcBaseOptionsRestore(sub.get()));
        mimeOptionsSetRfcBaseOptions(mo.addr(), options.get());
    }
    if (pb::Ref<PB_STORE> sub = pb::adopt(pbStoreStoreCstr(store, kRfcQuopOptionsKey, -1))) {
        pb::Ref<RFC_QUOP_OPTIONS> options = pb::adopt(rfcQuopOptionsRestore(sub.get()));
        mimeOptionsSetRfcQuopOptions(mo.addr(), options.get());
    }
    return mo.release();
}
