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

// The pieces of a header value, comments dropped, read from the lexer as they
// are asked for: only the last few are kept, so reading a value of any size
// keeps no more than its result. Pieces are numbered from 0; a reader asks for
// them in increasing order and looks back at most kKept - 1 pieces.
class Pieces {
public:
    using Chars = mime::SmallVector<PB_CHAR, 256>;
    static constexpr PB_INT kKept = 8;

    explicit Pieces(PB_STRING *value) noexcept
        : chars_(pbStringBacking(value)), valueLength_(pbStringLength(value)), scanner_(chars_, valueLength_)
    {
    }
    // Whether the value has a piece i. False too when the lexer refuses the
    // value before it.
    bool has(PB_INT i) noexcept { return i < read_ || readUpTo(i); }
    // Reads the rest of the value: false when the lexer refuses it (anywhere),
    // failedAt() then tells where.
    bool finish() noexcept;
    PB_INT failedAt() const { return failedAt_; }
    // Where piece i starts in the value; the value's length past the last piece.
    PB_INT offsetOf(PB_INT i) noexcept { return has(i) ? at(i).start : valueLength_; }
    // The value's characters.
    const PB_CHAR *chars() const noexcept { return chars_; }
    PB_INT valueLength() const noexcept { return valueLength_; }
    // For a piece that the value has (has(i)):
    bool isWord(PB_INT i) const noexcept
    {
        MIME_SHF_TOKEN_TYPE type = at(i).type;
        return type == MIME_SHF_TOKEN_TYPE_TOKEN || type == MIME_SHF_TOKEN_TYPE_QUOTED_STRING;
    }
    bool isTspecial(PB_INT i, PB_CHAR c) const noexcept
    {
        const ShfPiece &piece = at(i);
        return piece.type == MIME_SHF_TOKEN_TYPE_TSPECIAL && chars_[piece.start] == c;
    }
    // The plain value of word i (a quoted string without quotes and escapes),
    // lower-cased on request.
    PB_STRING *word(PB_INT i, bool lower) const noexcept;
    // The same, appended to chars.
    void appendWord(PB_INT i, bool lower, Chars &chars) const noexcept;
    // Whether the plain value of word i stands in the value as it is (a token, or
    // a quoted string without escapes), and where: chars()[start, start + length).
    bool plainAt(PB_INT i, PB_INT &start, PB_INT &length) const noexcept;

private:
    // The lexer's next piece (comments too), or false at the end of the value
    // or where the lexer refuses it.
    bool scanned(ShfPiece &piece) noexcept;
    // has(i) for a piece not yet read: reads up to it.
    bool readUpTo(PB_INT i) noexcept;
    const ShfPiece &at(PB_INT i) const noexcept
    {
        PB_ASSERT( i < read_ && i >= read_ - kKept );
        return kept_[i % kKept];
    }

    const PB_CHAR *chars_;
    PB_INT valueLength_;
    ShfScanner scanner_;
    PB_INT read_ = 0;       // pieces read so far
    PB_INT failedAt_ = -1;  // where the lexer refused the value
    bool finished_ = false; // the lexer has reached the end or refused the value
    ShfPiece kept_[kKept];  // piece i in kept_[i % kKept]
};

// A new dictionary of the parameters read from pieces[start...], keys in lower
// case and accepted as RFC 2045 tokens, RFC 2231 forms decoded when the options
// ask for it, their charsets found as lookup says. Read tolerantly, a list that
// the grammar stops in is read again from pieces[start] as mail readers split
// it: at each ";" outside quotes, then at the first "=", key and value trimmed
// and a quoted value unquoted. When the lexer refuses the value (read to its
// end first): null, or with toFault the parameters of the pieces before the
// fault, as if the value ended there (the raw text still read loosely).
PB_DICT *read(Pieces &pieces, PB_INT start, MIME_OPTIONS *mo, const rfc2231::Tolerance &lookup = {},
              bool toFault = false) noexcept;

// Writes ";key=value" for each parameter to be written (in RFC 2231 form when
// the options ask for it; values beyond ASCII only when they allow them).
void write(HeaderWriter &writer, PB_DICT *parameters, MIME_OPTIONS *mo) noexcept;

} // namespace mime::parameters
