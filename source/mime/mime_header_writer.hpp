// Internal: header-field text written from pieces, laid out as
// mimeShfTokenVectorEncode lays out its tokens: one space between pieces, none
// inside a run "word separator word" (a word is a token or quoted string, a
// separator one of @ , ; : \ " / ? =), and a fold (CR LF and a space, in place
// of the space) before a piece once the line is longer than the wrap line
// length. Pieces are given as text, so writing many of them (parameters in
// RFC 2231 segments, say) makes no object per piece.
#pragma once

#include <mime/mime_shf_token.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_string.h>

namespace mime {

class HeaderWriter {
public:
    // wrapLineLength -1: never fold; firstLineOffset: the characters already on
    // the first line (the field's name).
    HeaderWriter(PB_INT wrapLineLength, PB_INT firstLineOffset) noexcept;

    // Appends a piece of wire text of the given type.
    void piece(MIME_SHF_TOKEN_TYPE type, const PB_CHAR *raw, PB_INT length) noexcept;
    void piece(MIME_SHF_TOKEN_TYPE type, PB_STRING *raw) noexcept;
    // Appends wire text whose type is read from it (shfRawValueType).
    void wireText(const PB_CHAR *raw, PB_INT length) noexcept;
    // Appends a token, or a quoted string with CR, quotation mark and backslash
    // escaped when the text is no token (as mimeShfTokenCreateTokenOrQuotedString).
    void tokenOrQuotedString(const PB_CHAR *text, PB_INT length) noexcept;

    // The text written (a new reference); the writer is done.
    PB_STRING *text() noexcept;

private:
    void append(const PB_CHAR *raw, PB_INT length, bool space) noexcept;

    pb::Ref<PB_STRING> out_;
    PB_INT line_;
    PB_INT wrap_;
    bool first_ = true;
    bool afterWord_ = false;
    PB_CHAR held_ = 0; // a separator after a word, until the next piece says whether they join
};

} // namespace mime
