#include <mime/mime_char.hpp>
#include <mime/mime_content_type.h>
#include <mime/mime_parameter_grammar.hpp>
#include <mime/mime_parameterized.hpp>
#include <mime/mime_shf_token_vector.h>

struct MIME_CONTENT_TYPE {
    PB_OBJ_HEADER header;
    PB_STRING *name;
    PB_DICT *parameters;
};

MIME___PARAMETERIZED_DEFINE(ContentType, MIME_CONTENT_TYPE, type, Name, name, name,
                            mime___ContentTypeNameWireFormatDict, PB_ASSERT( name ))

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

void mime___ContentTypeStartup(void) noexcept
{
    static const char *const registered[] = {
        "application/EmergencyCallData.Comment+xml",        "application/EmergencyCallData.DeviceInfo+xml",
        "application/EmergencyCallData.ProviderInfo+xml",   "application/EmergencyCallData.ServiceInfo+xml",
        "application/EmergencyCallData.SubscriberInfo+xml", "application/EmergencyCallData.Control+xml",
        "application/EmergencyCallData.eCall.MSD",
    };
    mime___ContentTypeNameWireFormatDict = mime::parameterized::wireFormatTable(registered, std::size(registered));
}

MIME_CONTENT_TYPE *mimeContentTypeTryDecode(PB_STRING *contentType, MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( contentType );
    PB_ASSERT( mo );
    mime::parameters::Pieces pieces;
    if (!pieces.scan(contentType) || pieces.length() < 3 || !pieces.isWord(0) || !pieces.isTspecial(1, '/') ||
        !pieces.isWord(2))
        return nullptr;
    mime::parameters::Pieces::Chars chars;
    pieces.appendWord(0, true, chars);
    chars.push_back('/');
    pieces.appendWord(2, true, chars);
    pb::Ref<PB_STRING> name = pb::adopt(pbStringCreateFromCharsCopy(chars.data(), static_cast<PB_INT>(chars.size())));
    if (!mimeContentTypeNameOk(name.get()))
        return nullptr;
    pb::Ref<PB_DICT> parameters = pb::adopt(mime::parameters::read(pieces, 3, mo));
    return mime___ContentTypeCreateNormalized(name.get(), parameters.get());
}

PB_STRING *mimeContentTypeEncode(MIME_CONTENT_TYPE *contentType, MIME_OPTIONS *mo, PB_INT firstLineOffset) noexcept
{
    PB_ASSERT( contentType );
    PB_ASSERT( mo );
    pb::Ref<PB_STRING> wire = pb::adopt(mimeContentTypeNameToWireFormat(contentType->name));
    pb::Ref<PB_VECTOR> parts = pb::adopt(pbStringSplitChar(wire.get(), '/', -1));
    PB_VECTOR *typeVector = parts.get();
    PB_ASSERT( pbVectorLength( typeVector ) == 2 );
    pb::Ref<PB_VECTOR> tokens = pb::adopt(pbVectorCreate());
    for (PB_INT part = 0; part < 2; ++part) {
        if (part == 1) {
            pb::Ref<MIME_SHF_TOKEN> slash = pb::adopt(mimeShfTokenCreateTspecial('/'));
            pbVectorAppendObj(tokens.addr(), mimeShfTokenObj(slash.get()));
        }
        pb::Ref<PB_STRING> text = pb::adopt(pbStringFrom(pbVectorObjAt(typeVector, part)));
        pb::Ref<MIME_SHF_TOKEN> tok = pb::adopt(mimeShfTokenCreateRawValue(text.get()));
        pbVectorAppendObj(tokens.addr(), mimeShfTokenObj(tok.get()));
    }
    mime::parameters::write(tokens.addr(), contentType->parameters, mo);
    return mimeShfTokenVectorEncode(tokens.get(), mo, firstLineOffset);
}

PB___TEXT_VARIANTS(MIME_CONTENT_TYPE *, mimeContentTypeTryDecode, (), (), (, MIME_OPTIONS *mo), (, mo))
