// Internal: the parameters of Content-Type and Content-Disposition on the wire,
// shared by both codecs.
//
// Reading works on the lexer's pieces of the value (comments dropped), straight
// from the text: a value is copied once, into the string the result keeps.
// After the type, "; key = value" pairs are read while they fit; a key without
// "=" or without a value gets the empty value, a key that is not an RFC 2045
// token is skipped, and the first element that fits nothing ends the list
// without failing. RFC 2231 decoding follows when the options ask for it and a
// key has a form that it changes.
//
// Writing appends "; key = value" tokens, after RFC 2231 encoding when the
// options ask for it, leaving out values beyond ASCII when neither RFC 2231 nor
// Unicode output is on.
#pragma once

#include <mime/mime_header_writer.hpp>
#include <mime/mime_options.h>
#include <mime/mime_rfc2231.hpp>
#include <mime/mime_shf_scanner.hpp>
#include <mime/mime_small_vector.hpp>
#include <pb/pb_dict.h>
#include <pb/pb_vector.h>

namespace mime::parameters {

// The pieces of a header value, comments dropped.
class Pieces {
public:
    using Chars = mime::SmallVector<PB_CHAR, 256>;

    // False when the lexer refuses the value; failedAt() then tells where.
    bool scan(PB_STRING *value) noexcept;
    PB_INT failedAt() const { return failedAt_; }
    PB_INT length() const { return static_cast<PB_INT>(pieces_.size()); }
    // Where piece i starts in the value; the value's length past the last piece.
    PB_INT offsetOf(PB_INT i) const noexcept { return i < length() ? pieces_.data()[i].start : valueLength_; }
    // The value's characters.
    const PB_CHAR *chars() const noexcept { return chars_; }
    PB_INT valueLength() const noexcept { return valueLength_; }
    bool isWord(PB_INT i) const noexcept;
    bool isTspecial(PB_INT i, PB_CHAR c) const noexcept;
    // The plain value of word i (a quoted string without quotes and escapes),
    // lower-cased on request.
    PB_STRING *word(PB_INT i, bool lower) const noexcept;
    // The same, appended to chars.
    void appendWord(PB_INT i, bool lower, Chars &chars) const noexcept;
    // Whether the plain value of word i stands in the value as it is (a token, or
    // a quoted string without escapes), and where: chars()[start, start + length).
    bool plainAt(PB_INT i, PB_INT &start, PB_INT &length) const noexcept;

private:
    const PB_CHAR *chars_ = nullptr;
    PB_INT valueLength_ = 0;
    PB_INT failedAt_ = -1;
    mime::SmallVector<ShfPiece, 32> pieces_;
};

// A new dictionary of the parameters read from pieces[start...], keys in lower
// case and accepted as RFC 2045 tokens, RFC 2231 forms decoded when the options
// ask for it, their charsets found as lookup says. Read tolerantly, a list that
// the grammar stops in is read again from pieces[start] as mail readers split
// it: at each ";" outside quotes, then at the first "=", key and value trimmed
// and a quoted value unquoted.
PB_DICT *read(const Pieces &pieces, PB_INT start, MIME_OPTIONS *mo, const rfc2231::Tolerance &lookup = {}) noexcept;

// Writes ";key=value" for each parameter to be written (in RFC 2231 form when
// the options ask for it; values beyond ASCII only when they allow them).
void write(HeaderWriter &writer, PB_DICT *parameters, MIME_OPTIONS *mo) noexcept;

} // namespace mime::parameters
