// Internal: the lexer of structured header-field values, as a scanner over
// spans of the text. mimeShfTokenVectorTryDecode wraps its pieces into token
// objects; header decoders that need only positions can walk the text with it
// directly, under the same rules.
//
// Between pieces, spaces, tabs, line breaks and other control characters are
// skipped. A piece is a quoted string ("..."), a domain literal ([...]), a
// comment ((...), nested), a single other tspecial, or a token (up to the next
// tspecial, space or control character). Inside delimited pieces a backslash
// takes the next character, and a CR must start a fold (CR LF and a space or
// tab). The text is invalid when a delimited piece is not closed, ends in a
// backslash, holds a CR that starts no fold, or (a domain literal) holds an
// unescaped "[".
#pragma once

#include <mime/mime_char.hpp>
#include <mime/mime_shf_token.h>

namespace mime {

struct ShfPiece {
    PB_INT start;
    PB_INT length;
    MIME_SHF_TOKEN_TYPE type;
    bool escaped; // a delimited piece that holds a backslash
};

// The text of the delimited piece c[0, n) (its delimiters included) without
// them and without its escapes, written from to on (room for n - 2); returns
// the end. Every character is stored, and a backslash that escapes is written
// over by the next.
inline PB_CHAR *shfUnescaped(const PB_CHAR *c, PB_INT n, PB_CHAR *to)
{
    bool escaping = false;
    for (PB_INT k = 1; k < n - 1; ++k) {
        *to = c[k];
        escaping = c[k] == '\\' && !escaping;
        to += !escaping;
    }
    return to;
}

class ShfScanner {
public:
    enum class Step { Piece, End, Invalid };

    ShfScanner(const PB_CHAR *chars, PB_INT length) noexcept : chars_(chars), length_(length) {}

    // The next piece, or the end of the text, or Invalid (after which the
    // scanner stays where it failed). Inline: it is the inner loop of every
    // header decoder.
    Step next(ShfPiece &piece) noexcept;
    // Where the scanner stands: after the last piece, or at the opening
    // character of the piece that made the text invalid.
    PB_INT at() const noexcept { return at_; }

private:
    // Scans the delimited piece opening at from; its end (one past the closing
    // character), or -1 when the piece is invalid. Sets escaped when the piece
    // holds a backslash. This is the lexer's rule for wire text, and
    // deliberately not the token classifier's (isDelimited in
    // mime_shf_token.cpp): the piece ends at its first closing character, and a
    // CR inside it must start a fold.
    PB_INT delimitedEnd(PB_INT from, PB_CHAR close, bool comment, bool &escaped) const noexcept;

    const PB_CHAR *chars_;
    PB_INT length_;
    PB_INT at_ = 0;
};

inline ShfScanner::Step ShfScanner::next(ShfPiece &piece) noexcept
{
    while (at_ < length_ && (chars_[at_] == ' ' || chars::is(chars_[at_], chars::kCtl)))
        ++at_;
    if (at_ == length_)
        return Step::End;
    PB_CHAR c = chars_[at_];
    PB_INT end = at_ + 1;
    MIME_SHF_TOKEN_TYPE type = MIME_SHF_TOKEN_TYPE_TSPECIAL;
    bool escaped = false;
    if (c == '"') {
        end = delimitedEnd(at_, '"', false, escaped);
        type = MIME_SHF_TOKEN_TYPE_QUOTED_STRING;
    } else if (c == '[') {
        end = delimitedEnd(at_, ']', false, escaped);
        type = MIME_SHF_TOKEN_TYPE_DOMAIN_LITERAL;
    } else if (c == '(') {
        end = delimitedEnd(at_, ')', true, escaped);
        type = MIME_SHF_TOKEN_TYPE_COMMENT;
    } else if (!chars::is(c, chars::kTspecial)) {
        // Letters and most other token characters lie above "]", the
        // largest character that can end a token but DEL.
        for (PB_CHAR x; end < length_ && ((x = chars_[end]) > ']' ? x != 127 : !chars::is(x, chars::kTokenEnd));)
            ++end;
        type = MIME_SHF_TOKEN_TYPE_TOKEN;
    }
    if (end < 0)
        return Step::Invalid;
    piece = {at_, end - at_, type, escaped};
    at_ = end;
    return Step::Piece;
}

} // namespace mime
