#include <mime/mime_char.hpp>
#include <mime/mime_content_disposition.h>
#include <mime/mime_defect.hpp>
#include <mime/mime_parameter_grammar.hpp>
#include <mime/mime_parameterized.hpp>
#include <mime/mime_shf_token.hpp>
#include <mime/mime_value_readers.hpp>

using pb::adopt;
using pb::Ref;
namespace parameterized = mime::parameterized;

struct MIME_CONTENT_DISPOSITION {
    PB_OBJ_HEADER header;
    parameterized::Fields fields; // label: the disposition type
};

// Registered spellings of disposition types, keyed by their lower-case forms.
static PB_DICT *mime___ContentDispositionTypeWireFormatDict = nullptr;

namespace {

extern "C" {
static void mime___ContentDispositionFreeFunc(PB_OBJ *obj) noexcept;
static PB_INT mime___ContentDispositionCompareFunc(PB_OBJ *thisContentDisposition,
                                                   PB_OBJ *thatContentDisposition) noexcept;
static PB_STRING *mime___ContentDispositionToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

MIME___SORT_DEFINE(ContentDisposition, MIME_CONTENT_DISPOSITION, mime___ContentDispositionFreeFunc,
                   mime___ContentDispositionCompareFunc, mime___ContentDispositionToStringFunc)

namespace {

void mime___ContentDispositionFreeFunc(PB_OBJ *obj) noexcept
{
    parameterized::release(mimeContentDispositionFrom(obj)->fields);
}

PB_INT mime___ContentDispositionCompareFunc(PB_OBJ *thisContentDisposition, PB_OBJ *thatContentDisposition) noexcept
{
    PB_ASSERT( thisContentDisposition );
    PB_ASSERT( thatContentDisposition );
    return parameterized::compare(mimeContentDispositionFrom(thisContentDisposition)->fields,
                                  mimeContentDispositionFrom(thatContentDisposition)->fields);
}

PB_STRING *mime___ContentDispositionToStringFunc(PB_OBJ *obj) noexcept
{
    return parameterized::text(mimeContentDispositionFrom(obj)->fields);
}

// A new value from a normalised type and parameters under normalised keys.
MIME_CONTENT_DISPOSITION *createNormalized(PB_STRING *dispositionType, PB_DICT *parameters) noexcept
{
    return parameterized::create<MIME_CONTENT_DISPOSITION>(mimeContentDispositionSort(), dispositionType, parameters);
}

Ref<PB_STRING> normalizedKey(PB_STRING *key) noexcept
{
    return adopt(mimeContentDispositionParameterKeyNormalize(key));
}

} // namespace

// Rule D: letters, digits, + - . _; nothing else.
PB_BOOL mimeContentDispositionTypeOk(PB_STRING *dispositionType) noexcept
{
    if (!dispositionType)
        return PB_FALSE;
    PB_INT n = pbStringLength(dispositionType);
    return n > 0 && mime::chars::all(pbStringBacking(dispositionType), n, mime::chars::kTypeChar);
}

PB_STRING *mimeContentDispositionTypeNormalize(PB_STRING *dispositionType) noexcept
{
    PB_ASSERT( mimeContentDispositionTypeOk( dispositionType ) );
    return parameterized::lowered(dispositionType);
}

PB_STRING *mimeContentDispositionTypeToWireFormat(PB_STRING *dispositionType) noexcept
{
    PB_ASSERT( dispositionType );
    Ref<PB_STRING> normalized = adopt(mimeContentDispositionTypeNormalize(dispositionType));
    return parameterized::wireFormat(mime___ContentDispositionTypeWireFormatDict, normalized.get());
}

PB_BOOL mimeContentDispositionParameterKeyOk(PB_STRING *key) noexcept
{
    return parameterized::keyOk(key);
}

PB_STRING *mimeContentDispositionParameterKeyNormalize(PB_STRING *key) noexcept
{
    PB_ASSERT( mimeContentDispositionParameterKeyOk( key ) );
    return parameterized::lowered(key);
}

MIME_CONTENT_DISPOSITION *mimeContentDispositionCreate(PB_STRING *dispositionType) noexcept
{
    Ref<PB_STRING> normalized = adopt(mimeContentDispositionTypeNormalize(dispositionType));
    Ref<PB_DICT> parameters = adopt(pbDictCreate());
    return createNormalized(normalized.get(), parameters.get());
}

MIME_CONTENT_DISPOSITION *mimeContentDispositionCreateCstr(const char *dispositionType, PB_INT length) noexcept
{
    return mimeContentDispositionCreate(pb::Text(dispositionType, length));
}

MIME_CONTENT_DISPOSITION *mimeContentDispositionCreateWcstr(const wchar_t *dispositionType, PB_INT length) noexcept
{
    return mimeContentDispositionCreate(pb::Text(dispositionType, length));
}

MIME_CONTENT_DISPOSITION *mimeContentDispositionCreateFrom(MIME_CONTENT_DISPOSITION *source) noexcept
{
    PB_ASSERT( source );
    return createNormalized(source->fields.label, source->fields.parameters);
}

PB_STRING *mimeContentDispositionType(MIME_CONTENT_DISPOSITION *disp) noexcept
{
    PB_ASSERT( disp );
    pb::retain(disp->fields.label);
    return disp->fields.label;
}

void mimeContentDispositionSetType(MIME_CONTENT_DISPOSITION **disp, PB_STRING *dispositionType) noexcept
{
    PB_ASSERT_REF(disp);
    PB_ASSERT( mimeContentDispositionTypeOk( dispositionType ) );
    PB_OBJ_UNSHARE((*disp), mimeContentDispositionCreateFrom);
    Ref<PB_STRING> normalized = adopt(mimeContentDispositionTypeNormalize(dispositionType));
    pb::setField((*disp)->fields.label, normalized.get());
}

void mimeContentDispositionSetTypeCstr(MIME_CONTENT_DISPOSITION **disp, const char *dispositionType,
                                       PB_INT length) noexcept
{
    mimeContentDispositionSetType(disp, pb::Text(dispositionType, length));
}

void mimeContentDispositionSetTypeWcstr(MIME_CONTENT_DISPOSITION **disp, const wchar_t *dispositionType,
                                        PB_INT length) noexcept
{
    mimeContentDispositionSetType(disp, pb::Text(dispositionType, length));
}

PB_STRING *mimeContentDispositionParameter(MIME_CONTENT_DISPOSITION *disp, PB_STRING *key) noexcept
{
    PB_ASSERT( disp );
    return parameterized::parameter(disp->fields, normalizedKey(key).get());
}

PB_STRING *mimeContentDispositionParameterCstr(MIME_CONTENT_DISPOSITION *disp, const char *key, PB_INT length) noexcept
{
    return mimeContentDispositionParameter(disp, pb::Text(key, length));
}

PB_STRING *mimeContentDispositionParameterWcstr(MIME_CONTENT_DISPOSITION *disp, const wchar_t *key,
                                                PB_INT length) noexcept
{
    return mimeContentDispositionParameter(disp, pb::Text(key, length));
}

PB_BOOL mimeContentDispositionHasParameter(MIME_CONTENT_DISPOSITION *disp, PB_STRING *key) noexcept
{
    PB_ASSERT( disp );
    return pbDictHasStringKey(disp->fields.parameters, normalizedKey(key).get());
}

PB_BOOL mimeContentDispositionHasParameterCstr(MIME_CONTENT_DISPOSITION *disp, const char *key, PB_INT length) noexcept
{
    return mimeContentDispositionHasParameter(disp, pb::Text(key, length));
}

PB_BOOL mimeContentDispositionHasParameterWcstr(MIME_CONTENT_DISPOSITION *disp, const wchar_t *key,
                                                PB_INT length) noexcept
{
    return mimeContentDispositionHasParameter(disp, pb::Text(key, length));
}

void mimeContentDispositionSetParameter(MIME_CONTENT_DISPOSITION **disp, PB_STRING *key, PB_STRING *value) noexcept
{
    PB_ASSERT_REF(disp);
    PB_ASSERT( value );
    Ref<PB_STRING> normalized = normalizedKey(key);
    PB_OBJ_UNSHARE((*disp), mimeContentDispositionCreateFrom);
    pbDictSetStringKey(&(*disp)->fields.parameters, normalized.get(), pbStringObj(value));
}

void mimeContentDispositionSetParameterCstr(MIME_CONTENT_DISPOSITION **disp, const char *key, PB_INT length,
                                            PB_STRING *value) noexcept
{
    mimeContentDispositionSetParameter(disp, pb::Text(key, length), value);
}

void mimeContentDispositionSetParameterWcstr(MIME_CONTENT_DISPOSITION **disp, const wchar_t *key, PB_INT length,
                                             PB_STRING *value) noexcept
{
    mimeContentDispositionSetParameter(disp, pb::Text(key, length), value);
}

void mimeContentDispositionSetParameterCstrCstrValue(MIME_CONTENT_DISPOSITION **disp, const char *key, PB_INT keyLength,
                                                     const char *value, PB_INT valueLength) noexcept
{
    mimeContentDispositionSetParameter(disp, pb::Text(key, keyLength), pb::Text(value, valueLength));
}

void mimeContentDispositionSetParameterCstrWcstrValue(MIME_CONTENT_DISPOSITION **disp, const char *key,
                                                      PB_INT keyLength, const wchar_t *value,
                                                      PB_INT valueLength) noexcept
{
    mimeContentDispositionSetParameter(disp, pb::Text(key, keyLength), pb::Text(value, valueLength));
}

void mimeContentDispositionSetParameterWcstrCstrValue(MIME_CONTENT_DISPOSITION **disp, const wchar_t *key,
                                                      PB_INT keyLength, const char *value, PB_INT valueLength) noexcept
{
    mimeContentDispositionSetParameter(disp, pb::Text(key, keyLength), pb::Text(value, valueLength));
}

void mimeContentDispositionSetParameterWcstrWcstrValue(MIME_CONTENT_DISPOSITION **disp, const wchar_t *key,
                                                       PB_INT keyLength, const wchar_t *value,
                                                       PB_INT valueLength) noexcept
{
    mimeContentDispositionSetParameter(disp, pb::Text(key, keyLength), pb::Text(value, valueLength));
}

void mimeContentDispositionDelParameter(MIME_CONTENT_DISPOSITION **disp, PB_STRING *key) noexcept
{
    PB_ASSERT_REF(disp);
    Ref<PB_STRING> normalized = normalizedKey(key);
    PB_OBJ_UNSHARE((*disp), mimeContentDispositionCreateFrom);
    pbDictDelStringKey(&(*disp)->fields.parameters, normalized.get());
}

void mimeContentDispositionDelParameterCstr(MIME_CONTENT_DISPOSITION **disp, const char *key, PB_INT length) noexcept
{
    mimeContentDispositionDelParameter(disp, pb::Text(key, length));
}

void mimeContentDispositionDelParameterWcstr(MIME_CONTENT_DISPOSITION **disp, const wchar_t *key,
                                             PB_INT length) noexcept
{
    mimeContentDispositionDelParameter(disp, pb::Text(key, length));
}

void mimeContentDispositionClearParameters(MIME_CONTENT_DISPOSITION **disp) noexcept
{
    PB_ASSERT_REF(disp);
    PB_OBJ_UNSHARE((*disp), mimeContentDispositionCreateFrom);
    pbDictClear(&(*disp)->fields.parameters);
}

PB_DICT *mimeContentDispositionParametersDict(MIME_CONTENT_DISPOSITION *disp) noexcept
{
    PB_ASSERT( disp );
    pb::retain(disp->fields.parameters);
    return disp->fields.parameters;
}

PB_INT mimeContentDispositionParametersLength(MIME_CONTENT_DISPOSITION *disp) noexcept
{
    PB_ASSERT( disp );
    return pbDictLength(disp->fields.parameters);
}

PB_STRING *mimeContentDispositionParameterKeyAt(MIME_CONTENT_DISPOSITION *disp, PB_INT index) noexcept
{
    PB_ASSERT( disp );
    return parameterized::keyAt(disp->fields, index);
}

PB_STRING *mimeContentDispositionParameterValueAt(MIME_CONTENT_DISPOSITION *disp, PB_INT index) noexcept
{
    PB_ASSERT( disp );
    return parameterized::valueAt(disp->fields, index);
}

void mime___ContentDispositionStartup(void) noexcept
{
    static const char *const registered[] = {"Info-Package"};
    mime___ContentDispositionTypeWireFormatDict = parameterized::wireFormatTable(registered, std::size(registered));
}

void mime___ContentDispositionShutdown(void) noexcept
{
    pb::releaseField(mime___ContentDispositionTypeWireFormatDict);
}

MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecode(PB_STRING *value, MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( value );
    PB_ASSERT( mo );
    return mimeContentDispositionTryDecodeWithDefect(value, mo, nullptr);
}

MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecodeWithDefect(PB_STRING *value, MIME_OPTIONS *mo,
                                                                    MIME_DEFECT **defect) noexcept
{
    PB_ASSERT( value );
    PB_ASSERT( mo );
    return mime::readContentDisposition(value, mo, defect, {});
}

MIME_CONTENT_DISPOSITION *mime::readContentDisposition(PB_STRING *value, MIME_OPTIONS *mo, MIME_DEFECT **defect,
                                                       const rfc2231::Tolerance &lookup) noexcept
{
    mime::clearDefect(defect);
    mime::parameters::Pieces pieces(value);
    Ref<PB_STRING> type;
    if (pieces.has(0) && pieces.isWord(0))
        type = adopt(pieces.word(0, true));
    const bool typeOk = type && mimeContentDispositionTypeOk(type.get());
    const PB_INT typeAt = pieces.offsetOf(0);
    Ref<PB_DICT> parameters;
    if (typeOk)
        parameters = adopt(mime::parameters::read(pieces, 1, mo, lookup));
    if (!pieces.finish()) {
        mime::report(defect, MIME_DEFECT_CONTENT_DISPOSITION_INVALID, pieces.failedAt());
        return nullptr;
    }
    if (!typeOk) {
        mime::report(defect, MIME_DEFECT_CONTENT_DISPOSITION_INVALID, typeAt);
        return nullptr;
    }
    return createNormalized(type.get(), parameters.get());
}

PB_STRING *mimeContentDispositionEncode(MIME_CONTENT_DISPOSITION *contentDisposition, MIME_OPTIONS *mo,
                                        PB_INT firstLineOffset) noexcept
{
    PB_ASSERT( contentDisposition );
    PB_ASSERT( mo );
    Ref<PB_STRING> wire = adopt(mimeContentDispositionTypeToWireFormat(contentDisposition->fields.label));
    mime::HeaderWriter writer(mimeOptionsWrapLineLength(mo), firstLineOffset);
    writer.wireText(pbStringBacking(wire.get()), pbStringLength(wire.get()));
    mime::parameters::write(writer, contentDisposition->fields.parameters, mo);
    return writer.text();
}

MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecodeCstr(const char *text, PB_INT length,
                                                              MIME_OPTIONS *mo) noexcept
{
    return mimeContentDispositionTryDecode(pb::Text(text, length), mo);
}

MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecodeWcstr(const wchar_t *text, PB_INT length,
                                                               MIME_OPTIONS *mo) noexcept
{
    return mimeContentDispositionTryDecode(pb::Text(text, length), mo);
}
