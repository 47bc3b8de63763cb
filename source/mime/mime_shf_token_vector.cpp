#include <mime/mime_char.hpp>
#include <mime/mime_header_writer.hpp>
#include <mime/mime_shf_scanner.hpp>
#include <mime/mime_shf_token.hpp>
#include <mime/mime_shf_token_vector.h>
#include <pb/pb_int.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_text.hpp>

namespace {

using pb::adopt;
using pb::Ref;

Ref<MIME_SHF_TOKEN> tokenAt(PB_VECTOR *vec, PB_INT index)
{
    Ref<MIME_SHF_TOKEN> tok = adopt(mimeShfTokenFrom(pbVectorObjAt(vec, index)));
    PB_ASSERT( tok );
    return tok;
}

} // namespace

PB_VECTOR *mimeShfTokenVectorTryDecode(PB_STRING *value) noexcept
{
    PB_ASSERT( value );
    const PB_CHAR *chars = pbStringBacking(value);
    mime::ShfScanner scanner(chars, pbStringLength(value));
    Ref<PB_VECTOR> vec = adopt(pbVectorCreate());
    mime::ShfPiece piece{};
    for (;;) {
        switch (scanner.next(piece)) {
        case mime::ShfScanner::Step::Piece: {
            Ref<MIME_SHF_TOKEN> tok = adopt(mime::shfTokenCreateScanned(piece.type, chars + piece.start, piece.length));
            pbVectorAppendObj(vec.addr(), mimeShfTokenObj(tok.get()));
            break;
        }
        case mime::ShfScanner::Step::End:
            return vec.release();
        case mime::ShfScanner::Step::Invalid:
            return nullptr;
        }
    }
}

void mimeShfTokenVectorDelComments(PB_VECTOR **vec) noexcept
{
    PB_ASSERT_REF(vec);
    PB_INT length = pbVectorLength(*vec);
    PB_INT first = 0;
    while (first < length && mimeShfTokenType(tokenAt(*vec, first).get()) != MIME_SHF_TOKEN_TYPE_COMMENT)
        ++first;
    if (first == length)
        return;
    // One pass into a new vector: removing one by one would move the rest each time.
    Ref<PB_VECTOR> kept = adopt(pbVectorCreate());
    for (PB_INT i = 0; i < length; ++i) {
        Ref<MIME_SHF_TOKEN> tok = tokenAt(*vec, i);
        if (mimeShfTokenType(tok.get()) != MIME_SHF_TOKEN_TYPE_COMMENT)
            pbVectorAppendObj(kept.addr(), mimeShfTokenObj(tok.get()));
    }
    pbVectorRelease(*vec);
    *vec = kept.release();
}

PB_STRING *mimeShfTokenVectorEncode(PB_VECTOR *vec, MIME_OPTIONS *mo, PB_INT firstLineOffset) noexcept
{
    PB_ASSERT( vec );
    PB_ASSERT( pbVectorContainsOnly( vec, mimeShfTokenSort() ) );
    PB_ASSERT( mo );
    PB_ASSERT( firstLineOffset >= 0 );
    mime::HeaderWriter writer(mimeOptionsWrapLineLength(mo), firstLineOffset);
    for (PB_INT i = 0, n = pbVectorLength(vec); i < n; ++i) {
        Ref<MIME_SHF_TOKEN> tok = tokenAt(vec, i);
        writer.piece(mimeShfTokenType(tok.get()), adopt(mimeShfTokenRawValue(tok.get())).get());
    }
    return writer.text();
}

PB_VECTOR *mimeShfTokenVectorTryDecodeCstr(const char *text, PB_INT length) noexcept
{
    return mimeShfTokenVectorTryDecode(pb::Text(text, length));
}

PB_VECTOR *mimeShfTokenVectorTryDecodeWcstr(const wchar_t *text, PB_INT length) noexcept
{
    return mimeShfTokenVectorTryDecode(pb::Text(text, length));
}
