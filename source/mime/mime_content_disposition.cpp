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
    PB_INT n = pbStringLength(dispositionType);
    return n > 0 && mime::chars::all(pbStringBacking(dispositionType), n, mime::chars::kTypeChar);
}

void mime___ContentDispositionStartup(void) noexcept
{
    static const char *const registered[] = {"Info-Package"};
    mime___ContentDispositionTypeWireFormatDict = mime::parameterized::wireFormatTable(registered, 1);
}

MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecode(PB_STRING *value, MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( value );
    PB_ASSERT( mo );
    mime::parameters::Pieces pieces;
    if (!pieces.scan(value) || pieces.length() == 0 || !pieces.isWord(0))
        return nullptr;
    pb::Ref<PB_STRING> type = pb::adopt(pieces.word(0, true));
    if (!mimeContentDispositionTypeOk(type.get()))
        return nullptr;
    pb::Ref<PB_DICT> parameters = pb::adopt(mime::parameters::read(pieces, 1, mo));
    return mime___ContentDispositionCreateNormalized(type.get(), parameters.get());
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

PB___TEXT_VARIANTS(MIME_CONTENT_DISPOSITION *, mimeContentDispositionTryDecode, (), (), (, MIME_OPTIONS *mo), (, mo))
