#include <mime/mime_header_writer.hpp>
#include <mime/mime_shf_token.hpp>
#include <pb/pb_int.h>

namespace mime {

namespace {

bool isWord(MIME_SHF_TOKEN_TYPE type)
{
    return type == MIME_SHF_TOKEN_TYPE_TOKEN || type == MIME_SHF_TOKEN_TYPE_QUOTED_STRING;
}

bool isJoiningSeparator(PB_CHAR c)
{
    switch (c) {
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

} // namespace

HeaderWriter::HeaderWriter(PB_INT wrapLineLength, PB_INT firstLineOffset) noexcept
    : out_(pb::adopt(pbStringCreate())), line_(firstLineOffset), wrap_(wrapLineLength)
{
    PB_ASSERT( firstLineOffset >= 0 );
    PB_ASSERT( wrapLineLength >= -1 );
}

void HeaderWriter::piece(MIME_SHF_TOKEN_TYPE type, const PB_CHAR *raw, PB_INT length) noexcept
{
    if (held_) {
        const bool joined = isWord(type);
        append(&held_, 1, !joined);
        held_ = 0;
        append(raw, length, !joined);
    } else if (type == MIME_SHF_TOKEN_TYPE_TSPECIAL && afterWord_ && isJoiningSeparator(raw[0])) {
        held_ = raw[0];
        return;
    } else {
        append(raw, length, !first_);
    }
    afterWord_ = isWord(type);
}

void HeaderWriter::piece(MIME_SHF_TOKEN_TYPE type, PB_STRING *raw) noexcept
{
    piece(type, pbStringBacking(raw), pbStringLength(raw));
}

void HeaderWriter::wireText(const PB_CHAR *raw, PB_INT length) noexcept
{
    piece(shfRawValueType(raw, length), raw, length);
}

void HeaderWriter::tokenOrQuotedString(const PB_CHAR *c, PB_INT n) noexcept
{
    if (shfIsPlainToken(c, n))
        piece(MIME_SHF_TOKEN_TYPE_TOKEN, c, n);
    else
        piece(MIME_SHF_TOKEN_TYPE_QUOTED_STRING, pb::adopt(shfQuotedString(c, n)).get());
}

PB_STRING *HeaderWriter::text() noexcept
{
    if (held_)
        append(&held_, 1, true);
    held_ = 0;
    return out_.release();
}

// A fold first when the line is already past the wrap line length (instead of
// the space asked for), then the space and the piece.
void HeaderWriter::append(const PB_CHAR *raw, PB_INT length, bool space) noexcept
{
    if (wrap_ != -1 && line_ > wrap_) {
        static const PB_CHAR fold[] = {'\r', '\n', ' '};
        pbStringAppendChars(out_.addr(), fold, 3);
        line_ = 1;
        space = false;
    }
    PB_ASSERT( PB_INT_ADD_OK( line_, length + space ) );
    line_ += length + space;
    if (space)
        pbStringAppendChar(out_.addr(), ' ');
    pbStringAppendChars(out_.addr(), raw, length);
    first_ = false;
}

} // namespace mime
