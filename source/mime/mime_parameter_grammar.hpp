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

#include <mime/mime_options.h>
#include <mime/mime_shf_scanner.hpp>
#include <mime/mime_small_vector.hpp>
#include <pb/pb_dict.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_vector.h>

namespace mime::parameters {

// The pieces of a header value, comments dropped.
class Pieces {
public:
    // False when the lexer refuses the value.
    bool scan(PB_STRING *value) noexcept;
    PB_INT length() const { return static_cast<PB_INT>(pieces_.size()); }
    bool isWord(PB_INT i) const noexcept;
    bool isTspecial(PB_INT i, PB_CHAR c) const noexcept;
    // The plain value of word i (a quoted string without quotes and escapes),
    // lower-cased on request.
    PB_STRING *word(PB_INT i, bool lower) const noexcept;
    // The same, appended to chars.
    void appendWord(PB_INT i, bool lower, mime::SmallVector<PB_CHAR, 128> &chars) const noexcept;

private:
    const PB_CHAR *chars_ = nullptr;
    mime::SmallVector<ShfPiece, 32> pieces_;
};

// The operations of the value type that reading needs.
template <class T> struct Target {
    // Keys already lower case and accepted.
    void (*setNormalized)(T **value, PB_STRING *key, PB_STRING *parameter);
    void (*replaceNormalized)(T **value, PB_DICT *parameters);
    PB_DICT *(*dict)(T *value);
};

// Calls store(context, key, value) for each parameter read from pieces[start...],
// keys lower-cased and accepted as RFC 2045 tokens; true when a key has a form
// that RFC 2231 decoding would change.
bool read(const Pieces &pieces, PB_INT start, void (*store)(void *context, PB_STRING *key, PB_STRING *value),
          void *context) noexcept;

// mime___Rfc2231Decode, for the template below.
PB_DICT *decodeRfc2231(PB_DICT *parameters, MIME_OPTIONS *mo) noexcept;

// The steps after the type: the parameters into *value, then RFC 2231 decoding.
template <class T> void decodeInto(T **value, const Pieces &pieces, PB_INT start, MIME_OPTIONS *mo,
                                   const Target<T> &target)
{
    struct Context {
        T **value;
        const Target<T> *target;
    } context{value, &target};
    bool rfc2231 = read(pieces, start,
                        [](void *c, PB_STRING *key, PB_STRING *parameter) {
                            auto *ctx = static_cast<Context *>(c);
                            ctx->target->setNormalized(ctx->value, key, parameter);
                        },
                        &context);
    // Without a key of an RFC 2231 form the decoding would give the same parameters.
    if (!rfc2231 || !(mimeOptionsFlags(mo) & MIME_FLAG_PARSE_RFC2231_HEADERS))
        return;
    // The decoded keys are name parts of lower-case keys, all attribute names:
    // the dictionary takes the place of the parameters as it is.
    pb::Ref<PB_DICT> given = pb::adopt(target.dict(*value));
    pb::Ref<PB_DICT> decoded = pb::adopt(decodeRfc2231(given.get(), mo));
    target.replaceNormalized(value, decoded.get());
}

// Appends "; key = value" for each parameter to be written.
void write(PB_VECTOR **tokens, PB_DICT *parameters, MIME_OPTIONS *mo) noexcept;

} // namespace mime::parameters
