#include <mime/mime_char.hpp>
#include <mime/mime_shf_scanner.hpp>

namespace mime {

using namespace chars;

ShfScanner::Step ShfScanner::next(ShfPiece &piece) noexcept
{
    while (at_ < length_ && (chars_[at_] == ' ' || is(chars_[at_], kCtl)))
        ++at_;
    if (at_ == length_)
        return Step::End;
    PB_CHAR c = chars_[at_];
    PB_INT end = at_ + 1;
    MIME_SHF_TOKEN_TYPE type = MIME_SHF_TOKEN_TYPE_TSPECIAL;
    if (c == '"') {
        end = delimitedEnd(at_, '"', false);
        type = MIME_SHF_TOKEN_TYPE_QUOTED_STRING;
    } else if (c == '[') {
        end = delimitedEnd(at_, ']', false);
        type = MIME_SHF_TOKEN_TYPE_DOMAIN_LITERAL;
    } else if (c == '(') {
        end = delimitedEnd(at_, ')', true);
        type = MIME_SHF_TOKEN_TYPE_COMMENT;
    } else if (!is(c, kTspecial)) {
        while (end < length_ && !is(chars_[end], kTokenEnd))
            ++end;
        type = MIME_SHF_TOKEN_TYPE_TOKEN;
    }
    if (end < 0)
        return Step::Invalid;
    piece = {at_, end - at_, type};
    at_ = end;
    return Step::Piece;
}

PB_INT ShfScanner::delimitedEnd(PB_INT from, PB_CHAR close, bool comment) const noexcept
{
    PB_INT depth = 1;
    for (PB_INT k = from + 1; k < length_; ++k) {
        PB_CHAR c = chars_[k];
        if (c == '\\') {
            if (k == length_ - 1)
                return -1;
            ++k; // the escaped character, whatever it is
        } else if (c == '\r') {
            if (k + 2 >= length_ || chars_[k + 1] != '\n' || !is(chars_[k + 2], kLwsp))
                return -1;
            k += 2; // a fold stays in the piece
        } else if (c == close) {
            if (--depth == 0)
                return k + 1;
        } else if (c == '(' && comment) {
            ++depth;
        } else if (c == '[' && close == ']') {
            return -1;
        }
    }
    return -1;
}

} // namespace mime
