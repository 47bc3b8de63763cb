#include <mime/mime_object.hpp>
#include <mime/mime_options.h>

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

constexpr MIME_FLAGS kFlagsDefault = MIME_FLAG_PARSE_RFC2231_HEADERS | MIME_FLAG_GENERATE_RFC2231_HEADERS;
constexpr PB_INT kWrapLineLengthDefault = 76;
constexpr PB_CHARSET kRfc2231CharsetDefault = PB_CHARSET_UTF_8;
constexpr PB_INT kRfc2231MaxSegmentLengthDefault = 60;
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

// The last step of every setter and reset: unshare, then write mark and value.
template <class T>
void store(MIME_OPTIONS **mo, int32_t MIME_OPTIONS::*mark, T MIME_OPTIONS::*field, int32_t isDefault, T value)
{
    PB_OBJ_UNSHARE((*mo), mimeOptionsCreateFrom);
    (*mo)->*mark = isDefault;
    (*mo)->*field = value;
}

// The same for a codec options field: takes a reference to value first.
template <class T>
void storeObject(MIME_OPTIONS **mo, int32_t MIME_OPTIONS::*mark, T *MIME_OPTIONS::*field, int32_t isDefault, T *value)
{
    PB_OBJ_UNSHARE((*mo), mimeOptionsCreateFrom);
    (*mo)->*mark = isDefault;
    pb::setField((*mo)->*field, value);
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

// Getter and is-default query of each setting.
#define MIME___OPTIONS_READERS(Name, Type, field) \
    Type mimeOptions##Name(MIME_OPTIONS *mo) noexcept \
    { \
        PB_ASSERT( mo ); \
        return mo->field; \
    } \
    int mimeOptions##Name##Default(MIME_OPTIONS *mo) noexcept \
    { \
        PB_ASSERT( mo ); \
        return mo->field##Default; \
    }

MIME___OPTIONS_READERS(Flags, MIME_FLAGS, flags)
MIME___OPTIONS_READERS(WrapLineLength, PB_INT, wrapLineLength)
MIME___OPTIONS_READERS(Rfc2231Charset, PB_CHARSET, rfc2231Charset)
MIME___OPTIONS_READERS(Rfc2231MaxSegmentLength, PB_INT, rfc2231MaxSegmentLength)

RFC_BASE_OPTIONS *mimeOptionsRfcBaseOptions(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    pb::retain(mo->rfcBaseOptions);
    return mo->rfcBaseOptions;
}

int mimeOptionsRfcBaseOptionsDefault(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->rfcBaseOptionsDefault;
}

RFC_QUOP_OPTIONS *mimeOptionsRfcQuopOptions(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    pb::retain(mo->rfcQuopOptions);
    return mo->rfcQuopOptions;
}

int mimeOptionsRfcQuopOptionsDefault(MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( mo );
    return mo->rfcQuopOptionsDefault;
}

void mimeOptionsSetFlags(MIME_OPTIONS **mo, MIME_FLAGS flags) noexcept
{
    PB_ASSERT_REF(mo);
    store(mo, &MIME_OPTIONS::flagsDefault, &MIME_OPTIONS::flags, 0, mimeFlagsNormalize(flags));
}

void mimeOptionsSetFlagsDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    store(mo, &MIME_OPTIONS::flagsDefault, &MIME_OPTIONS::flags, 1, kFlagsDefault);
}

void mimeOptionsSetWrapLineLength(MIME_OPTIONS **mo, PB_INT wrapLineLength) noexcept
{
    PB_ASSERT_REF(mo);
    PB_ASSERT( wrapLineLength >= -1 );
    store(mo, &MIME_OPTIONS::wrapLineLengthDefault, &MIME_OPTIONS::wrapLineLength, 0, wrapLineLength);
}

void mimeOptionsSetWrapLineLengthDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    store(mo, &MIME_OPTIONS::wrapLineLengthDefault, &MIME_OPTIONS::wrapLineLength, 1, kWrapLineLengthDefault);
}

void mimeOptionsSetRfc2231Charset(MIME_OPTIONS **mo, PB_CHARSET charset) noexcept
{
    PB_ASSERT_REF(mo);
    PB_ASSERT( PB_CHARSET_OK( charset ) );
    store(mo, &MIME_OPTIONS::rfc2231CharsetDefault, &MIME_OPTIONS::rfc2231Charset, 0, charset);
}

void mimeOptionsSetRfc2231CharsetDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    store(mo, &MIME_OPTIONS::rfc2231CharsetDefault, &MIME_OPTIONS::rfc2231Charset, 1, kRfc2231CharsetDefault);
}

void mimeOptionsSetRfc2231MaxSegmentLength(MIME_OPTIONS **mo, PB_INT maxSegmentLength) noexcept
{
    PB_ASSERT_REF(mo);
    PB_ASSERT( maxSegmentLength == -1 || maxSegmentLength > 0 );
    store(mo, &MIME_OPTIONS::rfc2231MaxSegmentLengthDefault, &MIME_OPTIONS::rfc2231MaxSegmentLength, 0,
          maxSegmentLength);
}

void mimeOptionsSetRfc2231MaxSegmentLengthDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    store(mo, &MIME_OPTIONS::rfc2231MaxSegmentLengthDefault, &MIME_OPTIONS::rfc2231MaxSegmentLength, 1,
          kRfc2231MaxSegmentLengthDefault);
}

void mimeOptionsSetRfcBaseOptions(MIME_OPTIONS **mo, RFC_BASE_OPTIONS *bo) noexcept
{
    PB_ASSERT_REF(mo);
    PB_ASSERT( bo );
    storeObject(mo, &MIME_OPTIONS::rfcBaseOptionsDefault, &MIME_OPTIONS::rfcBaseOptions, 0, bo);
}

void mimeOptionsSetRfcBaseOptionsDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    pb::Ref<RFC_BASE_OPTIONS> fresh = pb::adopt(rfcBaseOptionsCreate());
    storeObject(mo, &MIME_OPTIONS::rfcBaseOptionsDefault, &MIME_OPTIONS::rfcBaseOptions, 1, fresh.get());
    fresh.reset();
    // The codec library's own setter, on the object the field now holds alone.
    rfcBaseOptionsSetOutputLineLength(&(*mo)->rfcBaseOptions, kBase64LineLength);
}

void mimeOptionsSetRfcQuopOptions(MIME_OPTIONS **mo, RFC_QUOP_OPTIONS *qo) noexcept
{
    PB_ASSERT_REF(mo);
    PB_ASSERT( qo );
    storeObject(mo, &MIME_OPTIONS::rfcQuopOptionsDefault, &MIME_OPTIONS::rfcQuopOptions, 0, qo);
}

void mimeOptionsSetRfcQuopOptionsDefault(MIME_OPTIONS **mo) noexcept
{
    PB_ASSERT_REF(mo);
    pb::Ref<RFC_QUOP_OPTIONS> fresh = pb::adopt(rfcQuopOptionsCreate());
    storeObject(mo, &MIME_OPTIONS::rfcQuopOptionsDefault, &MIME_OPTIONS::rfcQuopOptions, 1, fresh.get());
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
        setValue("flags", mimeFlagsToString(mo->flags));
    if (!mo->wrapLineLengthDefault || full)
        pbStoreSetValueIntCstr(store.addr(), "wrapLineLength", -1, mo->wrapLineLength);
    if (!mo->rfc2231CharsetDefault || full)
        setValue("rfc2231Charset", pbCharsetToString(mo->rfc2231Charset));
    if (!mo->rfc2231MaxSegmentLengthDefault || full)
        pbStoreSetValueIntCstr(store.addr(), "rfc2231MaxSegmentLength", -1, mo->rfc2231MaxSegmentLength);
    if (!mo->rfcBaseOptionsDefault || full)
        setStore("rfcBaseOptions", rfcBaseOptionsStore(mo->rfcBaseOptions, full));
    if (!mo->rfcQuopOptionsDefault || full)
        setStore("rfcQuopOptions", rfcQuopOptionsStore(mo->rfcQuopOptions, full));
    return store.release();
}

MIME_OPTIONS *mimeOptionsRestore(PB_STORE *store) noexcept
{
    PB_ASSERT( store );
    pb::Ref<MIME_OPTIONS> mo = pb::adopt(mimeOptionsCreate());
    if (pb::Ref<PB_STRING> flags = pb::adopt(pbStoreValueCstr(store, "flags", -1)))
        mimeOptionsSetFlags(mo.addr(), mimeFlagsFromString(flags.get()));
    PB_INT number = 0;
    if (pbStoreValueIntCstr(store, &number, "wrapLineLength", -1) && number >= -1)
        mimeOptionsSetWrapLineLength(mo.addr(), number);
    if (pb::Ref<PB_STRING> charset = pb::adopt(pbStoreValueCstr(store, "rfc2231Charset", -1))) {
        PB_CHARSET code = pbCharsetFromString(charset.get());
        if (PB_CHARSET_OK(code))
            mimeOptionsSetRfc2231Charset(mo.addr(), code);
    }
    if (pbStoreValueIntCstr(store, &number, "rfc2231MaxSegmentLength", -1) && (number == -1 || number > 0))
        mimeOptionsSetRfc2231MaxSegmentLength(mo.addr(), number);
    if (pb::Ref<PB_STORE> sub = pb::adopt(pbStoreStoreCstr(store, "rfcBaseOptions", -1))) {
        pb::Ref<RFC_BASE_OPTIONS> options = pb::adopt(rfcBaseOptionsRestore(sub.get()));
        mimeOptionsSetRfcBaseOptions(mo.addr(), options.get());
    }
    if (pb::Ref<PB_STORE> sub = pb::adopt(pbStoreStoreCstr(store, "rfcQuopOptions", -1))) {
        pb::Ref<RFC_QUOP_OPTIONS> options = pb::adopt(rfcQuopOptionsRestore(sub.get()));
        mimeOptionsSetRfcQuopOptions(mo.addr(), options.get());
    }
    return mo.release();
}
