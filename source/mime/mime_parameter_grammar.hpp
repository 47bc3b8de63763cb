// Internal: the parameters of Content-Type and Content-Disposition on the wire,
// shared by both codecs. Reading is lenient in one fixed way: after the type,
// "; key = value" pairs are read while they fit; a key without "=" or without a
// value gets the empty value, a key that is not an RFC 2045 token is skipped,
// and the first element that fits nothing ends the list without failing.
// Writing appends "; key = value" tokens, after RFC 2231 encoding when the
// options ask for it, leaving out values beyond ASCII when neither RFC 2231 nor
// Unicode output is on.
#pragma once

#include <mime/mime_options.h>
#include <mime/mime_shf_token.h>
#include <pb/pb_dict.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_vector.h>

namespace mime::parameters {

// The operations of the value type that reading needs.
template <class T> struct Target {
    PB_BOOL (*keyOk)(PB_STRING *key);
    void (*set)(T **value, PB_STRING *key, PB_STRING *parameter);
    PB_DICT *(*dict)(T *value);
    void (*clear)(T **value);
};

bool isWord(MIME_SHF_TOKEN *tok) noexcept;
bool isTspecial(MIME_SHF_TOKEN *tok, PB_CHAR c) noexcept;
MIME_SHF_TOKEN *tokenAt(PB_VECTOR *tokens, PB_INT index) noexcept; // new reference

// Calls store(key, value) for each parameter read from tokens[start...].
void read(PB_VECTOR *tokens, PB_INT start, void (*store)(void *context, PB_STRING *key, PB_STRING *value),
          void *context) noexcept;

// mime___Rfc2231Decode, for the template below.
PB_DICT *decodeRfc2231(PB_DICT *parameters, MIME_OPTIONS *mo) noexcept;

// Steps after the type: the parameters into *value, then RFC 2231 decoding when
// the options' flags ask for it.
template <class T> void decodeInto(T **value, PB_VECTOR *tokens, PB_INT start, MIME_OPTIONS *mo, const Target<T> &target)
{
    struct Context {
        T **value;
        const Target<T> *target;
    } context{value, &target};
    read(tokens, start,
         [](void *c, PB_STRING *key, PB_STRING *parameter) {
             auto *ctx = static_cast<Context *>(c);
             if (ctx->target->keyOk(key))
                 ctx->target->set(ctx->value, key, parameter);
         },
         &context);
    if (!(mimeOptionsFlags(mo) & MIME_FLAG_PARSE_RFC2231_HEADERS))
        return;
    pb::Ref<PB_DICT> given = pb::adopt(target.dict(*value));
    pb::Ref<PB_DICT> decoded = pb::adopt(decodeRfc2231(given.get(), mo));
    target.clear(value);
    for (PB_INT i = 0; i < pbDictLength(decoded.get()); ++i) {
        pb::Ref<PB_STRING> key = pb::adopt(pbStringFrom(pbDictKeyAt(decoded.get(), i)));
        pb::Ref<PB_STRING> parameter = pb::adopt(pbStringFrom(pbDictValueAt(decoded.get(), i)));
        target.set(value, key.get(), parameter.get());
    }
}

// Appends "; key = value" for each parameter to be written.
void write(PB_VECTOR **tokens, PB_DICT *parameters, MIME_OPTIONS *mo) noexcept;

} // namespace mime::parameters
