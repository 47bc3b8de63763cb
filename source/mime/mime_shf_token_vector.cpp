#include <mime/mime_char.hpp>
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

bool isWord(MIME_SHF_TOKEN *tok)
{
    MIME_SHF_TOKEN_TYPE type = mimeShfTokenType(tok);
    return type == MIME_SHF_TOKEN_TYPE_TOKEN || type == MIME_SHF_TOKEN_TYPE_QUOTED_STRING;
}

bool isJoiningSeparator(MIME_SHF_TOKEN *tok)
{
    if (mimeShfTokenType(tok) != MIME_SHF_TOKEN_TYPE_TSPECIAL)
        return false;
    Ref<PB_STRING> raw = adopt(mimeShfTokenRawValue(tok));
    switch (pbStringCharAt(raw.get(), 0)) {
    case '@':
    case ',':
    case ';':
    case ':':
    case '\\':
    case '"':
    case '/':
    case '?':
    case '=':
        return true;
    default:
        return false;
    }
}

// Writes one piece: a fold first when the line is already past the wrap line
// length (instead of the space asked for), then the space and the piece.
void mime___ShfTokenVectorAppend(PB_STRING **out, PB_STRING *append, PB_INT *curLineLength, PB_INT wrapLineLength,
                                 PB_BOOL space)
{
    PB_ASSERT( *out );
    PB_ASSERT( append );
    PB_ASSERT( *curLineLength >= 0 );
    PB_ASSERT( wrapLineLength >= -1 );
    if (wrapLineLength != -1 && *curLineLength > wrapLineLength) {
        static const PB_CHAR fold[] = {'\r', '\n', ' '};
        pbStringAppendChars(out, fold, 3);
        *curLineLength = 1;
        space = PB_FALSE;
    }
    PB_INT appendLength = pbStringLength(append);
    PB_ASSERT( PB_INT_ADD_OK( appendLength, !!space ) );
    PB_ASSERT( PB_INT_ADD_OK( *curLineLength, appendLength + !!space ) );
    *curLineLength += appendLength + !!space;
    if (space)
        pbStringAppendChar(out, ' ');
    pbStringAppend(out, append);
}

void appendToken(PB_STRING **out, MIME_SHF_TOKEN *tok, PB_INT *curLineLength, MIME_OPTIONS *options, bool space)
{
    Ref<PB_STRING> raw = adopt(mimeShfTokenRawValue(tok));
    mime___ShfTokenVectorAppend(out, raw.get(), curLineLength, mimeOptionsWrapLineLength(options), space);
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
    Ref<PB_STRING> out = adopt(pbStringCreate());
    PB_INT curLineLength = firstLineOffset;
    PB_INT n = pbVectorLength(vec);
    for (PB_INT i = 0; i < n; ++i) {
        Ref<MIME_SHF_TOKEN> tok = tokenAt(vec, i);
        appendToken(out.addr(), tok.get(), &curLineLength, mo, i > 0);
        // word separator word ...: written without spaces.
        while (isWord(tok.get()) && i + 2 < n) {
            Ref<MIME_SHF_TOKEN> separator = tokenAt(vec, i + 1), word = tokenAt(vec, i + 2);
            if (!isJoiningSeparator(separator.get()) || !isWord(word.get()))
                break;
            appendToken(out.addr(), separator.get(), &curLineLength, mo, false);
            appendToken(out.addr(), word.get(), &curLineLength, mo, false);
            i += 2;
            tok = std::move(word);
        }
    }
    return out.release();
}

PB_VECTOR *mimeShfTokenVectorTryDecodeCstr(const char *text, PB_INT length) noexcept
{
    return mimeShfTokenVectorTryDecode(pb::Text(text, length));
}

PB_VECTOR *mimeShfTokenVectorTryDecodeWcstr(const wchar_t *text, PB_INT length) noexcept
{
    return mimeShfTokenVectorTryDecode(pb::Text(text, length));
}
