#include <mime/mime_char.hpp>
#include <mime/mime_content_disposition.h>
#include <mime/mime_parameter_grammar.hpp>
#include <mime/mime_parameterized.hpp>
#include <mime/mime_shf_token_vector.h>

struct MIME_CONTENT_DISPOSITION {
    PB_OBJ_HEADER header;
    PB_STRING *type;
    PB_DICT *parameters;
};

MIME___PARAMETERIZED_DEFINE(ContentDisposition, MIME_CONTENT_DISPOSITION, disp, Type, dispositionType, type,
                            mime___ContentDispositionTypeWireFormatDict, )

// Rule D: letters, digits, + - . _; nothing else.
PB_BOOL mimeContentDispositionTypeOk(PB_STRING *dispositionType) noexcept
{
    if (!dispositionType)
        return PB_FALSE;
    const PB_CHAR *c = pbStringBacking(dispositionType);
    PB_INT n = pbStringLength(dispositionType);
    for (PB_INT i = 0; i < n; ++i)
        if (!mime::chars::is(c[i], mime::chars::kAlpha | mime::chars::kDigit) && c[i] != '+' && c[i] != '-' &&
            c[i] != '.' && c[i] != '_')
            return PB_FALSE;
    return n > 0;
}

void mime___ContentDispositionStartup(void) noexcept
{
    static const char *const registered[] = {"Info-Package"};
    mime___ContentDispositionTypeWireFormatDict = mime::parameterized::wireFormatTable(registered, 1);
}

namespace {

constexpr mime::parameters::Target<MIME_CONTENT_DISPOSITION> kTarget{
    mimeContentDispositionParameterKeyOk, mimeContentDispositionSetParameter, mimeContentDispositionParametersDict,
    mimeContentDispositionClearParameters};

} // namespace

MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecode(PB_STRING *value, MIME_OPTIONS *mo) noexcept
{
    using namespace mime::parameters;
    PB_ASSERT( value );
    PB_ASSERT( mo );
    pb::Ref<PB_VECTOR> tokens = pb::adopt(mimeShfTokenVectorTryDecode(value));
    if (!tokens)
        return nullptr;
    mimeShfTokenVectorDelComments(tokens.addr());
    if (pbVectorLength(tokens.get()) == 0)
        return nullptr;
    pb::Ref<MIME_SHF_TOKEN> first = pb::adopt(tokenAt(tokens.get(), 0));
    if (!isWord(first.get()))
        return nullptr;
    pb::Ref<PB_STRING> type = pb::adopt(mimeShfTokenValue(first.get()));
    if (!mimeContentDispositionTypeOk(type.get()))
        return nullptr;
    pb::Ref<MIME_CONTENT_DISPOSITION> result = pb::adopt(mimeContentDispositionCreate(type.get()));
    decodeInto(result.addr(), tokens.get(), 1, mo, kTarget);
    return result.release();
}

PB_STRING *mimeContentDispositionEncode(MIME_CONTENT_DISPOSITION *contentDisposition, MIME_OPTIONS *mo,
                                        PB_INT firstLineOffset) noexcept
{
    PB_ASSERT( contentDisposition );
    PB_ASSERT( mo );
    pb::Ref<PB_STRING> wire = pb::adopt(mimeContentDispositionTypeToWireFormat(contentDisposition->type));
    pb::Ref<MIME_SHF_TOKEN> tok = pb::adopt(mimeShfTokenCreateRawValue(wire.get()));
    pb::Ref<PB_VECTOR> tokens = pb::adopt(pbVectorCreate());
    pbVectorAppendObj(tokens.addr(), mimeShfTokenObj(tok.get()));
    mime::parameters::write(tokens.addr(), contentDisposition->parameters, mo);
    return mimeShfTokenVectorEncode(tokens.get(), mo, firstLineOffset);
}
