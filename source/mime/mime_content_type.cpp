#include <mime/mime_char.hpp>
#include <mime/mime_common_words.hpp>
#include <mime/mime_content_type.h>
#include <mime/mime_defect.hpp>
#include <mime/mime_parameter_grammar.hpp>
#include <mime/mime_parameterized.hpp>
#include <mime/mime_shf_token.hpp>
#include <mime/mime_value_readers.hpp>

#include <algorithm>

using pb::adopt;
using pb::Ref;
namespace parameterized = mime::parameterized;

struct MIME_CONTENT_TYPE {
    PB_OBJ_HEADER header;
    parameterized::Fields fields; // label: the media type name
};

// Registered spellings of media type names, keyed by their lower-case forms.
static PB_DICT *mime___ContentTypeNameWireFormatDict = nullptr;

namespace {

extern "C" {
static void mime___ContentTypeFreeFunc(PB_OBJ *obj) noexcept;
static PB_INT mime___ContentTypeCompareFunc(PB_OBJ *thisContentType, PB_OBJ *thatContentType) noexcept;
static PB_STRING *mime___ContentTypeToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

MIME___SORT_DEFINE(ContentType, MIME_CONTENT_TYPE, mime___ContentTypeFreeFunc, mime___ContentTypeCompareFunc,
                   mime___ContentTypeToStringFunc)

namespace {

void mime___ContentTypeFreeFunc(PB_OBJ *obj) noexcept
{
    parameterized::release(mimeContentTypeFrom(obj)->fields);
}

PB_INT mime___ContentTypeCompareFunc(PB_OBJ *thisContentType, PB_OBJ *thatContentType) noexcept
{
    PB_ASSERT( thisContentType );
    PB_ASSERT( thatContentType );
    return parameterized::compare(mimeContentTypeFrom(thisContentType)->fields,
                                  mimeContentTypeFrom(thatContentType)->fields);
}

PB_STRING *mime___ContentTypeToStringFunc(PB_OBJ *obj) noexcept
{
    return parameterized::text(mimeContentTypeFrom(obj)->fields);
}

// A new value from a normalised name and parameters under normalised keys.
MIME_CONTENT_TYPE *createNormalized(PB_STRING *name, PB_DICT *parameters) noexcept
{
    return parameterized::create<MIME_CONTENT_TYPE>(mimeContentTypeSort(), name, parameters);
}

Ref<PB_STRING> normalizedKey(PB_STRING *key) noexcept
{
    return adopt(mimeContentTypeParameterKeyNormalize(key));
}

} // namespace

// Rule N: letters, digits, + - . _ and exactly one "/", neither first nor last.
PB_BOOL mimeContentTypeNameOk(PB_STRING *name) noexcept
{
    if (!name)
        return PB_FALSE;
    const PB_CHAR *c = pbStringBacking(name);
    PB_INT n = pbStringLength(name), slash = -1;
    for (PB_INT i = 0; i < n; ++i) {
        if (c[i] == '/') {
            if (slash != -1)
                return PB_FALSE;
            slash = i;
        } else if (!mime::chars::is(c[i], mime::chars::kTypeChar)) {
            return PB_FALSE;
        }
    }
    return slash > 0 && slash < n - 1;
}

PB_STRING *mimeContentTypeNameNormalize(PB_STRING *name) noexcept
{
    PB_ASSERT( mimeContentTypeNameOk( name ) );
    return parameterized::lowered(name);
}

PB_STRING *mimeContentTypeNameToWireFormat(PB_STRING *name) noexcept
{
    PB_ASSERT( name );
    Ref<PB_STRING> normalized = adopt(mimeContentTypeNameNormalize(name));
    return parameterized::wireFormat(mime___ContentTypeNameWireFormatDict, normalized.get());
}

PB_BOOL mimeContentTypeParameterKeyOk(PB_STRING *key) noexcept
{
    return parameterized::keyOk(key);
}

PB_STRING *mimeContentTypeParameterKeyNormalize(PB_STRING *key) noexcept
{
    PB_ASSERT( mimeContentTypeParameterKeyOk( key ) );
    return parameterized::lowered(key);
}

MIME_CONTENT_TYPE *mimeContentTypeCreate(PB_STRING *name) noexcept
{
    Ref<PB_STRING> normalized = adopt(mimeContentTypeNameNormalize(name));
    Ref<PB_DICT> parameters = adopt(pbDictCreate());
    return createNormalized(normalized.get(), parameters.get());
}

MIME_CONTENT_TYPE *mimeContentTypeCreateCstr(const char *name, PB_INT length) noexcept
{
    return mimeContentTypeCreate(pb::Text(name, length));
}

MIME_CONTENT_TYPE *mimeContentTypeCreateWcstr(const wchar_t *name, PB_INT length) noexcept
{
    return mimeContentTypeCreate(pb::Text(name, length));
}

MIME_CONTENT_TYPE *mimeContentTypeCreateFrom(MIME_CONTENT_TYPE *source) noexcept
{
    PB_ASSERT( source );
    return createNormalized(source->fields.label, source->fields.parameters);
}

PB_STRING *mimeContentTypeName(MIME_CONTENT_TYPE *type) noexcept
{
    PB_ASSERT( type );
    pb::retain(type->fields.label);
    return type->fields.label;
}

void mimeContentTypeSetName(MIME_CONTENT_TYPE **type, PB_STRING *name) noexcept
{
    PB_ASSERT_REF(type);
    PB_ASSERT( name );
    PB_ASSERT( mimeContentTypeNameOk( name ) );
    PB_OBJ_UNSHARE((*type), mimeContentTypeCreateFrom);
    Ref<PB_STRING> normalized = adopt(mimeContentTypeNameNormalize(name));
    pb::setField((*type)->fields.label, normalized.get());
}

void mimeContentTypeSetNameCstr(MIME_CONTENT_TYPE **type, const char *name, PB_INT length) noexcept
{
    mimeContentTypeSetName(type, pb::Text(name, length));
}

void mimeContentTypeSetNameWcstr(MIME_CONTENT_TYPE **type, const wchar_t *name, PB_INT length) noexcept
{
    mimeContentTypeSetName(type, pb::Text(name, length));
}

PB_STRING *mimeContentTypeParameter(MIME_CONTENT_TYPE *type, PB_STRING *key) noexcept
{
    PB_ASSERT( type );
    return parameterized::parameter(type->fields, normalizedKey(key).get());
}

PB_STRING *mimeContentTypeParameterCstr(MIME_CONTENT_TYPE *type, const char *key, PB_INT length) noexcept
{
    return mimeContentTypeParameter(type, pb::Text(key, length));
}

PB_STRING *mimeContentTypeParameterWcstr(MIME_CONTENT_TYPE *type, const wchar_t *key, PB_INT length) noexcept
{
    return mimeContentTypeParameter(type, pb::Text(key, length));
}

PB_BOOL mimeContentTypeHasParameter(MIME_CONTENT_TYPE *type, PB_STRING *key) noexcept
{
    PB_ASSERT( type );
    return pbDictHasStringKey(type->fields.parameters, normalizedKey(key).get());
}

PB_BOOL mimeContentTypeHasParameterCstr(MIME_CONTENT_TYPE *type, const char *key, PB_INT length) noexcept
{
    return mimeContentTypeHasParameter(type, pb::Text(key, length));
}

PB_BOOL mimeContentTypeHasParameterWcstr(MIME_CONTENT_TYPE *type, const wchar_t *key, PB_INT length) noexcept
{
    return mimeContentTypeHasParameter(type, pb::Text(key, length));
}

void mimeContentTypeSetParameter(MIME_CONTENT_TYPE **type, PB_STRING *key, PB_STRING *value) noexcept
{
    PB_ASSERT_REF(type);
    PB_ASSERT( value );
    Ref<PB_STRING> normalized = normalizedKey(key);
    PB_OBJ_UNSHARE((*type), mimeContentTypeCreateFrom);
    pbDictSetStringKey(&(*type)->fields.parameters, normalized.get(), pbStringObj(value));
}

void mimeContentTypeSetParameterCstr(MIME_CONTENT_TYPE **type, const char *key, PB_INT length,
                                     PB_STRING *value) noexcept
{
    mimeContentTypeSetParameter(type, pb::Text(key, length), value);
}

void mimeContentTypeSetParameterWcstr(MIME_CONTENT_TYPE **type, const wchar_t *key, PB_INT length,
                                      PB_STRING *value) noexcept
{
    mimeContentTypeSetParameter(type, pb::Text(key, length), value);
}

void mimeContentTypeSetParameterCstrCstrValue(MIME_CONTENT_TYPE **type, const char *key, PB_INT keyLength,
                                              const char *value, PB_INT valueLength) noexcept
{
    mimeContentTypeSetParameter(type, pb::Text(key, keyLength), pb::Text(value, valueLength));
}

void mimeContentTypeSetParameterCstrWcstrValue(MIME_CONTENT_TYPE **type, const char *key, PB_INT keyLength,
                                               const wchar_t *value, PB_INT valueLength) noexcept
{
    mimeContentTypeSetParameter(type, pb::Text(key, keyLength), pb::Text(value, valueLength));
}

void mimeContentTypeSetParameterWcstrCstrValue(MIME_CONTENT_TYPE **type, const wchar_t *key, PB_INT keyLength,
                                               const char *value, PB_INT valueLength) noexcept
{
    mimeContentTypeSetParameter(type, pb::Text(key, keyLength), pb::Text(value, valueLength));
}

void mimeContentTypeSetParameterWcstrWcstrValue(MIME_CONTENT_TYPE **type, const wchar_t *key, PB_INT keyLength,
                                                const wchar_t *value, PB_INT valueLength) noexcept
{
    mimeContentTypeSetParameter(type, pb::Text(key, keyLength), pb::Text(value, valueLength));
}

void mimeContentTypeDelParameter(MIME_CONTENT_TYPE **type, PB_STRING *key) noexcept
{
    PB_ASSERT_REF(type);
    Ref<PB_STRING> normalized = normalizedKey(key);
    PB_OBJ_UNSHARE((*type), mimeContentTypeCreateFrom);
    pbDictDelStringKey(&(*type)->fields.parameters, normalized.get());
}

void mimeContentTypeDelParameterCstr(MIME_CONTENT_TYPE **type, const char *key, PB_INT length) noexcept
{
    mimeContentTypeDelParameter(type, pb::Text(key, length));
}

void mimeContentTypeDelParameterWcstr(MIME_CONTENT_TYPE **type, const wchar_t *key, PB_INT length) noexcept
{
    mimeContentTypeDelParameter(type, pb::Text(key, length));
}

void mimeContentTypeClearParameters(MIME_CONTENT_TYPE **type) noexcept
{
    PB_ASSERT_REF(type);
    PB_OBJ_UNSHARE((*type), mimeContentTypeCreateFrom);
    pbDictClear(&(*type)->fields.parameters);
}

PB_DICT *mimeContentTypeParametersDict(MIME_CONTENT_TYPE *type) noexcept
{
    PB_ASSERT( type );
    pb::retain(type->fields.parameters);
    return type->fields.parameters;
}

PB_INT mimeContentTypeParametersLength(MIME_CONTENT_TYPE *type) noexcept
{
    PB_ASSERT( type );
    return pbDictLength(type->fields.parameters);
}

PB_STRING *mimeContentTypeParameterKeyAt(MIME_CONTENT_TYPE *type, PB_INT index) noexcept
{
    PB_ASSERT( type );
    return parameterized::keyAt(type->fields, index);
}

PB_STRING *mimeContentTypeParameterValueAt(MIME_CONTENT_TYPE *type, PB_INT index) noexcept
{
    PB_ASSERT( type );
    return parameterized::valueAt(type->fields, index);
}

void mime___ContentTypeStartup(void) noexcept
{
    static const char *const registered[] = {
        "application/EmergencyCallData.Comment+xml",        "application/EmergencyCallData.DeviceInfo+xml",
        "application/EmergencyCallData.ProviderInfo+xml",   "application/EmergencyCallData.ServiceInfo+xml",
        "application/EmergencyCallData.SubscriberInfo+xml", "application/EmergencyCallData.Control+xml",
        "application/EmergencyCallData.eCall.MSD",
    };
    mime___ContentTypeNameWireFormatDict = parameterized::wireFormatTable(registered, std::size(registered));
}

void mime___ContentTypeShutdown(void) noexcept
{
    pb::releaseField(mime___ContentTypeNameWireFormatDict);
}

MIME_CONTENT_TYPE *mimeContentTypeTryDecode(PB_STRING *contentType, MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( contentType );
    PB_ASSERT( mo );
    return mimeContentTypeTryDecodeWithDefect(contentType, mo, nullptr);
}

MIME_CONTENT_TYPE *mimeContentTypeTryDecodeWithDefect(PB_STRING *contentType, MIME_OPTIONS *mo,
                                                      MIME_DEFECT **defect) noexcept
{
    PB_ASSERT( contentType );
    PB_ASSERT( mo );
    return mime::readContentType(contentType, mo, defect, {});
}

PB_DICT *mime::readParametersOnly(PB_STRING *value, MIME_OPTIONS *mo, const rfc2231::Tolerance &lookup) noexcept
{
    // A value that the lexer refuses is read from its start (a rare path: lexed twice).
    const bool lexed = mime::parameters::Pieces(value).finish();
    mime::parameters::Pieces pieces(value);
    PB_INT start = 0;
    while (lexed && pieces.has(start) && !pieces.isTspecial(start, ';'))
        ++start;
    return mime::parameters::read(pieces, start, mo, lookup, true);
}

MIME_CONTENT_TYPE *mime::readContentType(PB_STRING *contentType, MIME_OPTIONS *mo, MIME_DEFECT **defect,
                                         const rfc2231::Tolerance &lookup) noexcept
{
    mime::clearDefect(defect);
    mime::parameters::Pieces pieces(contentType);
    // type "/" subtype: the first piece that is not where it belongs.
    PB_INT bad = !pieces.has(0) || !pieces.isWord(0)            ? 0
                 : !pieces.has(1) || !pieces.isTspecial(1, '/') ? 1
                 : !pieces.has(2) || !pieces.isWord(2)          ? 2
                                                                : -1;
    Ref<PB_STRING> name;
    if (bad < 0) {
        mime::parameters::Pieces::Chars chars;
        pieces.appendWord(0, true, chars);
        chars.push_back('/');
        pieces.appendWord(2, true, chars);
        name = adopt(mime::commonWords::string(chars.data(), chars.size()));
        bad = mimeContentTypeNameOk(name.get()) ? -1 : 0;
    }
    const PB_INT badAt = bad >= 0 ? pieces.offsetOf(bad) : -1;
    Ref<PB_DICT> parameters;
    if (bad < 0)
        parameters = adopt(mime::parameters::read(pieces, 3, mo, lookup));
    if (!pieces.finish()) {
        mime::report(defect, MIME_DEFECT_CONTENT_TYPE_INVALID, pieces.failedAt());
        return nullptr;
    }
    if (bad >= 0) {
        mime::report(defect, MIME_DEFECT_CONTENT_TYPE_INVALID, badAt);
        return nullptr;
    }
    return createNormalized(name.get(), parameters.get());
}

PB_STRING *mimeContentTypeEncode(MIME_CONTENT_TYPE *contentType, MIME_OPTIONS *mo, PB_INT firstLineOffset) noexcept
{
    PB_ASSERT( contentType );
    PB_ASSERT( mo );
    Ref<PB_STRING> wire = adopt(mimeContentTypeNameToWireFormat(contentType->fields.label));
    const PB_CHAR *name = pbStringBacking(wire.get());
    const PB_INT length = pbStringLength(wire.get());
    const PB_INT slash = static_cast<PB_INT>(std::find(name, name + length, '/') - name);
    PB_ASSERT( slash < length );
    mime::HeaderWriter writer(mimeOptionsWrapLineLength(mo), firstLineOffset);
    writer.wireText(name, slash);
    writer.piece(MIME_SHF_TOKEN_TYPE_TSPECIAL, name + slash, 1);
    writer.wireText(name + slash + 1, length - slash - 1);
    mime::parameters::write(writer, contentType->fields.parameters, mo);
    return writer.text();
}

MIME_CONTENT_TYPE *mimeContentTypeTryDecodeCstr(const char *text, PB_INT length, MIME_OPTIONS *mo) noexcept
{
    return mimeContentTypeTryDecode(pb::Text(text, length), mo);
}

MIME_CONTENT_TYPE *mimeContentTypeTryDecodeWcstr(const wchar_t *text, PB_INT length, MIME_OPTIONS *mo) noexcept
{
    return mimeContentTypeTryDecode(pb::Text(text, length), mo);
}
