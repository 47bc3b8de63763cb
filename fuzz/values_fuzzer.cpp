// Any bytes as a sequence of operations on shared values: two holders of a
// Content-Type, of a Content-Disposition, of an entity or of options, copied to
// each other (a shared reference or a CreateFrom copy), changed through the
// PB_STRING, Cstr and Wcstr forms alike, and written and read back. After every
// step each holder agrees with a plain model (names, parameter maps, field
// strings, settings and their is-default marks): a change to one holder is
// never seen by the other, and the three forms of a function do the same. No
// object outlives the input.
#include "checks.hpp"
#include "fuzz_support.hpp"

#include <mime/mime.h>
#include <mime/mime_rfc2231.h>
#include <pb/pb_mem.h>
#include <pb/pb_ref.hpp>

#include <array>
#include <cstring>
#include <map>
#include <optional>
#include <string>

using pb::adopt;
using pb::Ref;

namespace {

// Reads the input a byte at a time; zeros past its end.
struct Reader {
    const uint8_t *d;
    size_t n, at = 0;
    uint8_t next() { return at < n ? d[at++] : 0; }
    bool more() const { return at < n; }
};

std::string utf8(PB_STRING *s)
{
    PB_INT length = 0;
    char *text = pbStringConvertToCstr(s, 0, &length);
    std::string out(text, static_cast<size_t>(length));
    pbMemFree(text);
    return out;
}

std::wstring wide(const std::string &ascii)
{
    return std::wstring(ascii.begin(), ascii.end());
}

std::string lower(std::string s)
{
    for (char &c : s)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return s;
}

// A key of a few letters in any case; a value of printable ASCII.
std::string key(Reader &in)
{
    const char *const keys[] = {"charset", "Boundary", "NAME", "x-a", "filename", "Size"};
    std::string k = keys[in.next() % 6];
    return in.next() % 2 ? lower(k) : k;
}
std::string value(Reader &in)
{
    std::string v;
    for (size_t length = in.next() % 10; length > 0; --length)
        v += static_cast<char>(' ' + in.next() % 95);
    return v;
}

// Holder b takes a's value, shared (retain) or copied (CreateFrom), and so
// does its model.
template <class T, class M> void takeOver(T *a, T *&b, const M &ma, M &mb, T *(*take)(T *), void (*release)(T *))
{
    release(b);
    b = take(a);
    mb = ma;
}

// The C functions of a parameterized value, each form.
template <class T> struct Api {
    T *(*createCstr)(const char *, PB_INT);
    T *(*createFrom)(T *);
    T *(*retain)(T *);
    void (*release)(T *);
    PB_STRING *(*name)(T *);
    void (*setNameCstr)(T **, const char *, PB_INT);
    void (*setNameWcstr)(T **, const wchar_t *, PB_INT);
    void (*setParameter)(T **, PB_STRING *, PB_STRING *);
    void (*setParameterCstrCstr)(T **, const char *, PB_INT, const char *, PB_INT);
    void (*setParameterWcstrWcstr)(T **, const wchar_t *, PB_INT, const wchar_t *, PB_INT);
    void (*delParameter)(T **, PB_STRING *);
    void (*delParameterCstr)(T **, const char *, PB_INT);
    void (*delParameterWcstr)(T **, const wchar_t *, PB_INT);
    PB_STRING *(*parameterCstr)(T *, const char *, PB_INT);
    PB_STRING *(*parameterWcstr)(T *, const wchar_t *, PB_INT);
    PB_BOOL (*hasParameter)(T *, PB_STRING *);
    PB_INT (*count)(T *);
    PB_STRING *(*keyAt)(T *, PB_INT);
    PB_STRING *(*valueAt)(T *, PB_INT);
    void (*clear)(T **);
    PB_STRING *(*encode)(T *, MIME_OPTIONS *, PB_INT);
    T *(*tryDecode)(PB_STRING *, MIME_OPTIONS *);
    const char *const *names; // names the rule accepts, in mixed case
    T *(*createWcstr)(const wchar_t *, PB_INT);
    PB_BOOL (*hasParameterCstr)(T *, const char *, PB_INT);
    PB_BOOL (*hasParameterWcstr)(T *, const wchar_t *, PB_INT);
    T *(*tryDecodeCstr)(const char *, PB_INT, MIME_OPTIONS *);
    T *(*tryDecodeWcstr)(const wchar_t *, PB_INT, MIME_OPTIONS *);
    PB_INT (*compare)(T *, T *);
    PB_BOOL (*equals)(T *, T *);
    PB_STRING *(*toString)(T *);
    PB_OBJ *(*obj)(T *);
    void (*setParameterWcstr)(T **, const wchar_t *, PB_INT, PB_STRING *);
    void (*setParameterCstrWcstr)(T **, const char *, PB_INT, const wchar_t *, PB_INT);
    void (*setParameterWcstrCstr)(T **, const wchar_t *, PB_INT, const char *, PB_INT);
};

const char *const kTypes[] = {"text/plain", "Application/SDP", "multipart/Mixed", "image/png"};
const char *const kDispositions[] = {"inline", "Attachment", "by-reference", "x-Custom"};

const Api<MIME_CONTENT_TYPE> kContentType = {mimeContentTypeCreateCstr,
                                             mimeContentTypeCreateFrom,
                                             mimeContentTypeRetain,
                                             mimeContentTypeRelease,
                                             mimeContentTypeName,
                                             mimeContentTypeSetNameCstr,
                                             mimeContentTypeSetNameWcstr,
                                             mimeContentTypeSetParameter,
                                             mimeContentTypeSetParameterCstrCstrValue,
                                             mimeContentTypeSetParameterWcstrWcstrValue,
                                             mimeContentTypeDelParameter,
                                             mimeContentTypeDelParameterCstr,
                                             mimeContentTypeDelParameterWcstr,
                                             mimeContentTypeParameterCstr,
                                             mimeContentTypeParameterWcstr,
                                             mimeContentTypeHasParameter,
                                             mimeContentTypeParametersLength,
                                             mimeContentTypeParameterKeyAt,
                                             mimeContentTypeParameterValueAt,
                                             mimeContentTypeClearParameters,
                                             mimeContentTypeEncode,
                                             mimeContentTypeTryDecode,
                                             kTypes,
                                             mimeContentTypeCreateWcstr,
                                             mimeContentTypeHasParameterCstr,
                                             mimeContentTypeHasParameterWcstr,
                                             mimeContentTypeTryDecodeCstr,
                                             mimeContentTypeTryDecodeWcstr,
                                             mimeContentTypeCompare,
                                             mimeContentTypeEquals,
                                             mimeContentTypeToString,
                                             mimeContentTypeObj,
                                             mimeContentTypeSetParameterWcstr,
                                             mimeContentTypeSetParameterCstrWcstrValue,
                                             mimeContentTypeSetParameterWcstrCstrValue};
const Api<MIME_CONTENT_DISPOSITION> kContentDisposition = {mimeContentDispositionCreateCstr,
                                                           mimeContentDispositionCreateFrom,
                                                           mimeContentDispositionRetain,
                                                           mimeContentDispositionRelease,
                                                           mimeContentDispositionType,
                                                           mimeContentDispositionSetTypeCstr,
                                                           mimeContentDispositionSetTypeWcstr,
                                                           mimeContentDispositionSetParameter,
                                                           mimeContentDispositionSetParameterCstrCstrValue,
                                                           mimeContentDispositionSetParameterWcstrWcstrValue,
                                                           mimeContentDispositionDelParameter,
                                                           mimeContentDispositionDelParameterCstr,
                                                           mimeContentDispositionDelParameterWcstr,
                                                           mimeContentDispositionParameterCstr,
                                                           mimeContentDispositionParameterWcstr,
                                                           mimeContentDispositionHasParameter,
                                                           mimeContentDispositionParametersLength,
                                                           mimeContentDispositionParameterKeyAt,
                                                           mimeContentDispositionParameterValueAt,
                                                           mimeContentDispositionClearParameters,
                                                           mimeContentDispositionEncode,
                                                           mimeContentDispositionTryDecode,
                                                           kDispositions,
                                                           mimeContentDispositionCreateWcstr,
                                                           mimeContentDispositionHasParameterCstr,
                                                           mimeContentDispositionHasParameterWcstr,
                                                           mimeContentDispositionTryDecodeCstr,
                                                           mimeContentDispositionTryDecodeWcstr,
                                                           mimeContentDispositionCompare,
                                                           mimeContentDispositionEquals,
                                                           mimeContentDispositionToString,
                                                           mimeContentDispositionObj,
                                                           mimeContentDispositionSetParameterWcstr,
                                                           mimeContentDispositionSetParameterCstrWcstrValue,
                                                           mimeContentDispositionSetParameterWcstrCstrValue};

struct Model {
    std::string name;
    std::map<std::string, std::string> parameters; // lower-case keys
    bool operator==(const Model &) const = default;
};

// Parameters split into RFC 2231 segments (as the options say) and joined again.
bool rfc2231RoundTrip(const std::map<std::string, std::string> &parameters, MIME_OPTIONS *mo)
{
    Ref<PB_DICT> dict = adopt(pbDictCreate());
    for (const auto &[k, v] : parameters)
        pbDictSetStringKeyCstr(
            dict.addr(), k.data(), -1,
            pbStringObj(adopt(pbStringCreateFromCstr(v.data(), static_cast<PB_INT>(v.size()))).get()));
    Ref<PB_DICT> joined = adopt(mime___Rfc2231Decode(adopt(mime___Rfc2231Encode(dict.get(), mo)).get(), mo));
    return pbDictEquals(joined.get(), dict.get());
}

template <class T> Model modelOf(const Api<T> &api, T *value)
{
    Model m{utf8(adopt(api.name(value)).get()), {}};
    for (PB_INT i = 0; i < api.count(value); ++i)
        m.parameters[utf8(adopt(api.keyAt(value, i)).get())] = utf8(adopt(api.valueAt(value, i)).get());
    return m;
}

// One step on holder a (b is the other holder); the models follow.
template <class T> void step(const Api<T> &api, Reader &in, T *&a, T *&b, Model &ma, Model &mb, MIME_OPTIONS *mo)
{
    const std::string k = key(in), v = value(in);
    Ref<PB_STRING> ks = adopt(pbStringCreateFromCstr(k.data(), static_cast<PB_INT>(k.size())));
    Ref<PB_STRING> vs = adopt(pbStringCreateFromCstr(v.data(), static_cast<PB_INT>(v.size())));
    const std::wstring kw = wide(k), vw = wide(v);
    switch (const uint8_t op = in.next() % 9) {
    case 0:
    case 1:
        takeOver(a, b, ma, mb, op == 0 ? api.retain : api.createFrom, api.release);
        break;
    case 2: {
        const std::string name = api.names[in.next() % 4];
        if (in.next() % 2)
            api.setNameCstr(&a, name.data(), static_cast<PB_INT>(name.size()));
        else
            api.setNameWcstr(&a, wide(name).data(), static_cast<PB_INT>(name.size()));
        ma.name = lower(name);
        break;
    }
    case 3:
        api.setParameter(&a, ks.get(), vs.get());
        ma.parameters[lower(k)] = v;
        break;
    case 4: {
        const PB_INT kn = static_cast<PB_INT>(k.size()), vn = static_cast<PB_INT>(v.size());
        const uint8_t form = in.next() % 5;
        if (form == 0)
            api.setParameterCstrCstr(&a, k.data(), -1, v.data(), vn);
        else if (form == 1)
            api.setParameterWcstrWcstr(&a, kw.data(), kn, vw.data(), -1);
        else if (form == 2)
            api.setParameterCstrWcstr(&a, k.data(), kn, vw.data(), vn);
        else if (form == 3)
            api.setParameterWcstrCstr(&a, kw.data(), -1, v.data(), -1);
        else
            api.setParameterWcstr(&a, kw.data(), kn, vs.get());
        ma.parameters[lower(k)] = v;
        break;
    }
    case 5: {
        const uint8_t form = in.next() % 3;
        if (form == 0)
            api.delParameter(&a, ks.get());
        else if (form == 1)
            api.delParameterCstr(&a, k.data(), static_cast<PB_INT>(k.size()));
        else
            api.delParameterWcstr(&a, kw.data(), -1);
        ma.parameters.erase(lower(k));
        break;
    }
    case 6:
        api.clear(&a);
        ma.parameters.clear();
        break;
    case 7: { // lookups agree in every form
        auto it = ma.parameters.find(lower(k));
        Ref<PB_STRING> byCstr = adopt(api.parameterCstr(a, k.data(), static_cast<PB_INT>(k.size())));
        Ref<PB_STRING> byWcstr = adopt(api.parameterWcstr(a, kw.data(), -1));
        const bool has = it != ma.parameters.end();
        PB_ASSERT( has == static_cast<bool>(api.hasParameter(a, ks.get())) );
        PB_ASSERT( has == static_cast<bool>(api.hasParameterCstr(a, k.data(), -1)) );
        PB_ASSERT( has == static_cast<bool>(api.hasParameterWcstr(a, kw.data(), static_cast<PB_INT>(kw.size()))) );
        PB_ASSERT( (it == ma.parameters.end()) == !byCstr && !byCstr == !byWcstr );
        PB_ASSERT( !byCstr || (utf8(byCstr.get()) == it->second && utf8(byWcstr.get()) == it->second) );
        break;
    }
    default: { // written and read back (RFC 2231 both ways when asked)
        Ref<PB_STRING> text = adopt(api.encode(a, mo, in.next() % 40));
        T *decoded = api.tryDecode(text.get(), mo);
        PB_ASSERT_MSG("what is written reads back", decoded);
        Model mBack = modelOf(api, decoded);
        const std::string written = utf8(text.get());
        T *fromCstr = api.tryDecodeCstr(written.data(), static_cast<PB_INT>(written.size()), mo);
        T *fromWcstr = api.tryDecodeWcstr(wide(written).data(), -1, mo);
        PB_ASSERT_MSG("every form reads the same", fromCstr && fromWcstr && api.equals(fromCstr, decoded) &&
                                                       api.compare(fromWcstr, decoded) == 0);
        api.release(fromCstr);
        api.release(fromWcstr);
        PB_ASSERT_MSG("a value shows as text", adopt(api.toString(decoded)));
        api.release(decoded);
        PB_ASSERT_MSG("the same value after writing and reading", mBack == ma);
        PB_ASSERT_MSG("RFC 2231 segments join again", rfc2231RoundTrip(ma.parameters, mo));
    }
    }
    PB_ASSERT_MSG("holder a as its model", modelOf(api, a) == ma);
    PB_ASSERT_MSG("holder b as its model", modelOf(api, b) == mb);
    PB_ASSERT_MSG("values equal as their models", static_cast<bool>(api.equals(a, b)) == (ma == mb) &&
                                                       (api.compare(a, b) == 0) == (ma == mb) &&
                                                       api.compare(a, b) == -api.compare(b, a) &&
                                                       pbObjCompare(api.obj(a), api.obj(b)) == api.compare(a, b));
}

// Up to 64 steps, each on one of the two holders (the other one second).
template <class T, class M, class Step> void alternate(Reader &in, T *&a, T *&b, M &ma, M &mb, Step step)
{
    for (int steps = 0; steps < 64 && in.more(); ++steps) {
        if (in.next() % 2)
            step(a, b, ma, mb);
        else
            step(b, a, mb, ma);
    }
}

template <class T> void run(const Api<T> &api, Reader &in, MIME_OPTIONS *mo)
{
    T *a = in.next() % 2 ? api.createCstr(api.names[0], -1) : api.createWcstr(wide(api.names[0]).data(), -1);
    T *b = api.retain(a);
    Model ma = modelOf(api, a), mb = ma;
    alternate(in, a, b, ma, mb, [&](T *&x, T *&y, Model &mx, Model &my) { step(api, in, x, y, mx, my, mo); });
    api.release(a);
    api.release(b);
}

// The entity: four fields and a body.
struct Field {
    const char *name;
    PB_STRING *(*get)(MIME_ENTITY *);
    PB_BOOL (*has)(MIME_ENTITY *);
    void (*set)(MIME_ENTITY **, PB_STRING *);
    void (*setCstr)(MIME_ENTITY **, const char *, PB_INT);
    void (*setWcstr)(MIME_ENTITY **, const wchar_t *, PB_INT);
    void (*del)(MIME_ENTITY **);
};
const Field kFields[] = {
    {"Content-Type", mimeEntityContentType, mimeEntityHasContentType, mimeEntitySetContentType,
     mimeEntitySetContentTypeCstr, mimeEntitySetContentTypeWcstr, mimeEntityDelContentType},
    {"Content-Disposition", mimeEntityContentDisposition, mimeEntityHasContentDisposition,
     mimeEntitySetContentDisposition, mimeEntitySetContentDispositionCstr, mimeEntitySetContentDispositionWcstr,
     mimeEntityDelContentDisposition},
    {"Content-Transfer-Encoding", mimeEntityContentTransferEncoding, mimeEntityHasContentTransferEncoding,
     mimeEntitySetContentTransferEncoding, mimeEntitySetContentTransferEncodingCstr,
     mimeEntitySetContentTransferEncodingWcstr, mimeEntityDelContentTransferEncoding},
    {"Content-Id", mimeEntityContentId, mimeEntityHasContentId, mimeEntitySetContentId, mimeEntitySetContentIdCstr,
     mimeEntitySetContentIdWcstr, mimeEntityDelContentId},
};

struct EntityModel {
    std::optional<std::string> fields[4], body;
    bool operator==(const EntityModel &) const = default;
};

EntityModel entityModel(MIME_ENTITY *e)
{
    EntityModel m;
    for (size_t f = 0; f < 4; ++f) {
        PB_ASSERT( std::strcmp(mimeEntityFieldName(static_cast<PB_INT>(f)), kFields[f].name) == 0 );
        Ref<PB_STRING> value = adopt(kFields[f].get(e));
        PB_ASSERT( static_cast<bool>(kFields[f].has(e)) == static_cast<bool>(value) );
        if (value)
            m.fields[f] = utf8(value.get());
    }
    Ref<PB_BUFFER> body = adopt(mimeEntityBody(e));
    PB_ASSERT( static_cast<bool>(mimeEntityHasBody(e)) == static_cast<bool>(body) );
    if (body)
        m.body = std::string(reinterpret_cast<const char *>(pbBufferBacking(body.get())),
                             static_cast<size_t>(pbBufferLength(body.get())));
    return m;
}

void entityStep(Reader &in, MIME_ENTITY *&a, MIME_ENTITY *&b, EntityModel &ma, EntityModel &mb)
{
    const Field &field = kFields[in.next() % 4];
    const size_t f = static_cast<size_t>(&field - kFields);
    const std::string v = value(in);
    switch (const uint8_t op = in.next() % 6) {
    case 0:
    case 1:
        takeOver(a, b, ma, mb, op == 0 ? mimeEntityRetain : mimeEntityCreateFrom, mimeEntityRelease);
        break;
    case 2: {
        const uint8_t form = in.next() % 3;
        if (form == 0)
            field.set(&a, adopt(pbStringCreateFromCstr(v.data(), static_cast<PB_INT>(v.size()))).get());
        else if (form == 1)
            field.setCstr(&a, v.data(), static_cast<PB_INT>(v.size()));
        else
            field.setWcstr(&a, wide(v).data(), -1);
        ma.fields[f] = v;
        break;
    }
    case 3:
        field.del(&a);
        ma.fields[f].reset();
        break;
    case 4:
        mimeEntitySetBody(&a, adopt(pbBufferCreateFromBytesCopy(v.data(), static_cast<PB_INT>(v.size()))).get());
        ma.body = v;
        break;
    default:
        mimeEntityDelBody(&a);
        ma.body.reset();
    }
    PB_ASSERT_MSG("entity a as its model", entityModel(a) == ma);
    PB_ASSERT_MSG("entity b as its model", entityModel(b) == mb);
    fuzz::ordered(a, b, mimeEntityCompare, mimeEntityEquals);
    PB_ASSERT( adopt(mimeEntityToString(a)) );
}

void runEntity(Reader &in)
{
    MIME_ENTITY *a = mimeEntityCreate(), *b = mimeEntityRetain(a);
    EntityModel ma, mb;
    alternate(in, a, b, ma, mb, [&](MIME_ENTITY *&x, MIME_ENTITY *&y, EntityModel &mx, EntityModel &my) {
        entityStep(in, x, y, mx, my);
    });
    mimeEntityRelease(a);
    mimeEntityRelease(b);
}

// The options: six settings, each a value and an is-default mark. The codec
// option objects are modelled by their line lengths.
struct Setting {
    PB_INT (*get)(MIME_OPTIONS *);
    void (*set)(MIME_OPTIONS **, PB_INT);
    int (*isDefault)(MIME_OPTIONS *);
    void (*reset)(MIME_OPTIONS **);
    PB_INT initial;
    PB_INT (*valid)(uint8_t); // a value the setter takes
};

const Setting kSettings[] = {
    {[](MIME_OPTIONS *o) -> PB_INT { return mimeOptionsFlags(o); },
     [](MIME_OPTIONS **o, PB_INT v) { mimeOptionsSetFlags(o, static_cast<MIME_FLAGS>(v)); }, mimeOptionsFlagsDefault,
     mimeOptionsSetFlagsDefault, MIME_FLAG_PARSE_RFC2231_HEADERS | MIME_FLAG_GENERATE_RFC2231_HEADERS,
     [](uint8_t b) -> PB_INT { return mimeFlagsNormalize(static_cast<MIME_FLAGS>(b) * 0x1010101); }},
    {mimeOptionsWrapLineLength, mimeOptionsSetWrapLineLength, mimeOptionsWrapLineLengthDefault,
     mimeOptionsSetWrapLineLengthDefault, 76, [](uint8_t b) -> PB_INT { return b % 100 - 1; }},
    {mimeOptionsRfc2231Charset, mimeOptionsSetRfc2231Charset, mimeOptionsRfc2231CharsetDefault,
     mimeOptionsSetRfc2231CharsetDefault, PB_CHARSET_UTF_8, [](uint8_t b) -> PB_INT { return b % 51; }},
    {mimeOptionsRfc2231MaxSegmentLength, mimeOptionsSetRfc2231MaxSegmentLength,
     mimeOptionsRfc2231MaxSegmentLengthDefault, mimeOptionsSetRfc2231MaxSegmentLengthDefault, 60,
     [](uint8_t b) -> PB_INT { return b % 70 == 0 ? -1 : b % 70; }},
    {[](MIME_OPTIONS *o) { return rfcBaseOptionsOutputLineLength(adopt(mimeOptionsRfcBaseOptions(o)).get()); },
     [](MIME_OPTIONS **o, PB_INT v) {
         Ref<RFC_BASE_OPTIONS> bo = adopt(rfcBaseOptionsCreate());
         rfcBaseOptionsSetOutputLineLength(bo.addr(), v);
         mimeOptionsSetRfcBaseOptions(o, bo.get());
     },
     mimeOptionsRfcBaseOptionsDefault, mimeOptionsSetRfcBaseOptionsDefault, 76,
     [](uint8_t b) -> PB_INT { return b % 2 ? 40 : 64; }},
    {[](MIME_OPTIONS *o) { return rfcQuopOptionsMaxLineLength(adopt(mimeOptionsRfcQuopOptions(o)).get()); },
     [](MIME_OPTIONS **o, PB_INT v) {
         Ref<RFC_QUOP_OPTIONS> qo = adopt(rfcQuopOptionsCreate());
         rfcQuopOptionsSetMaxLineLength(qo.addr(), v);
         mimeOptionsSetRfcQuopOptions(o, qo.get());
     },
     mimeOptionsRfcQuopOptionsDefault, mimeOptionsSetRfcQuopOptionsDefault, RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_DEFAULT,
     [](uint8_t b) -> PB_INT { return b % 2 ? 40 : 64; }},
};
constexpr size_t kSettingCount = sizeof kSettings / sizeof kSettings[0];

struct OptionsModel {
    std::array<PB_INT, kSettingCount> values;
    std::array<bool, kSettingCount> isDefault;
    bool operator==(const OptionsModel &) const = default;
};

OptionsModel optionsModel(MIME_OPTIONS *o)
{
    OptionsModel m;
    for (size_t i = 0; i < kSettingCount; ++i) {
        m.values[i] = kSettings[i].get(o);
        m.isDefault[i] = kSettings[i].isDefault(o) != 0;
    }
    return m;
}

void optionsStep(Reader &in, MIME_OPTIONS *&a, MIME_OPTIONS *&b, OptionsModel &ma, OptionsModel &mb)
{
    const size_t i = in.next() % kSettingCount;
    switch (const uint8_t op = in.next() % 4) {
    case 0:
    case 1:
        takeOver(a, b, ma, mb, op == 0 ? mimeOptionsRetain : mimeOptionsCreateFrom, mimeOptionsRelease);
        break;
    case 2:
        ma.values[i] = kSettings[i].valid(in.next());
        ma.isDefault[i] = false;
        kSettings[i].set(&a, ma.values[i]);
        break;
    default:
        kSettings[i].reset(&a);
        ma.values[i] = kSettings[i].initial;
        ma.isDefault[i] = true;
    }
    PB_ASSERT_MSG("options a as their model", optionsModel(a) == ma);
    PB_ASSERT_MSG("options b as their model", optionsModel(b) == mb);
    PB_ASSERT_MSG("options equal as their models", static_cast<bool>(mimeOptionsEquals(a, b)) == (ma == mb));
    fuzz::ordered(a, b, mimeOptionsCompare, mimeOptionsEquals);
    PB_ASSERT( pbObjCompare(mimeOptionsObj(a), mimeOptionsObj(b)) == mimeOptionsCompare(a, b) );
    PB_ASSERT( adopt(mimeOptionsToString(a)) );
}

void runOptions(Reader &in)
{
    MIME_OPTIONS *a = mimeOptionsCreate(), *b = mimeOptionsRetain(a);
    OptionsModel ma = optionsModel(a), mb = ma;
    for (size_t i = 0; i < kSettingCount; ++i)
        PB_ASSERT( ma.values[i] == kSettings[i].initial && ma.isDefault[i] );
    alternate(in, a, b, ma, mb, [&](MIME_OPTIONS *&x, MIME_OPTIONS *&y, OptionsModel &mx, OptionsModel &my) {
        optionsStep(in, x, y, mx, my);
    });
    mimeOptionsRelease(a);
    mimeOptionsRelease(b);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        Reader in{d, n};
        Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
        const MIME_FLAGS rfc2231 = MIME_FLAG_PARSE_RFC2231_HEADERS | MIME_FLAG_GENERATE_RFC2231_HEADERS;
        mimeOptionsSetFlags(mo.addr(), in.next() % 2 ? rfc2231 : MIME_FLAG_PARSE_RFC2231_HEADERS);
        const uint8_t kind = in.next() % 4;
        if (kind == 0)
            run(kContentType, in, mo.get());
        else if (kind == 1)
            run(kContentDisposition, in, mo.get());
        else if (kind == 2)
            runEntity(in);
        else
            runOptions(in);
    });
}
