#include <mime/mime_parameter_grammar.hpp>
#include <mime/mime_rfc2231.h>

namespace mime::parameters {

using pb::adopt;
using pb::Ref;

bool isWord(MIME_SHF_TOKEN *tok) noexcept
{
    MIME_SHF_TOKEN_TYPE type = mimeShfTokenType(tok);
    return type == MIME_SHF_TOKEN_TYPE_TOKEN || type == MIME_SHF_TOKEN_TYPE_QUOTED_STRING;
}

bool isTspecial(MIME_SHF_TOKEN *tok, PB_CHAR c) noexcept
{
    if (mimeShfTokenType(tok) != MIME_SHF_TOKEN_TYPE_TSPECIAL)
        return false;
    Ref<PB_STRING> raw = adopt(mimeShfTokenRawValue(tok));
    return pbStringCharAt(raw.get(), 0) == c;
}

MIME_SHF_TOKEN *tokenAt(PB_VECTOR *tokens, PB_INT index) noexcept
{
    return mimeShfTokenFrom(pbVectorObjAt(tokens, index));
}

void read(PB_VECTOR *tokens, PB_INT start, void (*store)(void *context, PB_STRING *key, PB_STRING *value),
          void *context) noexcept
{
    PB_INT n = pbVectorLength(tokens);
    Ref<PB_STRING> empty = adopt(pbStringCreate());
    auto at = [&](PB_INT index) { return adopt(tokenAt(tokens, index)); };
    auto valueOf = [&](PB_INT index) { return adopt(mimeShfTokenValue(at(index).get())); };
    for (PB_INT i = start; i < n;) {
        if (!isTspecial(at(i).get(), ';') || i == n - 1 || !isWord(at(i + 1).get()))
            return;
        Ref<PB_STRING> key = valueOf(i + 1);
        if (i + 1 == n - 1 || !isTspecial(at(i + 2).get(), '=')) {
            store(context, key.get(), empty.get()); // a key alone
            if (i + 1 == n - 1)
                return;
            i += 2;
        } else if (i + 2 == n - 1) {
            store(context, key.get(), empty.get()); // "=" at the end
            return;
        } else if (isWord(at(i + 3).get())) {
            store(context, key.get(), valueOf(i + 3).get());
            i += 4;
        } else {
            store(context, key.get(), empty.get()); // "=" without a value
            i += 3;
        }
    }
}

PB_DICT *decodeRfc2231(PB_DICT *parameters, MIME_OPTIONS *mo) noexcept
{
    return mime___Rfc2231Decode(parameters, mo);
}

namespace {

bool isAscii(PB_STRING *s)
{
    const PB_CHAR *c = pbStringBacking(s);
    for (PB_INT i = 0, n = pbStringLength(s); i < n; ++i)
        if (c[i] > 127)
            return false;
    return true;
}

void appendToken(PB_VECTOR **tokens, MIME_SHF_TOKEN *tok)
{
    Ref<MIME_SHF_TOKEN> held = adopt(tok);
    pbVectorAppendObj(tokens, mimeShfTokenObj(held.get()));
}

} // namespace

void write(PB_VECTOR **tokens, PB_DICT *parameters, MIME_OPTIONS *mo) noexcept
{
    MIME_FLAGS flags = mimeOptionsFlags(mo);
    Ref<PB_DICT> written = pb::retained(parameters);
    if (flags & MIME_FLAG_GENERATE_RFC2231_HEADERS)
        written = adopt(mime___Rfc2231Encode(parameters, mo));
    for (PB_INT i = 0; i < pbDictLength(written.get()); ++i) {
        Ref<PB_STRING> key = adopt(pbStringFrom(pbDictKeyAt(written.get(), i)));
        Ref<PB_STRING> value = adopt(pbStringFrom(pbDictValueAt(written.get(), i)));
        if (!(flags & MIME_FLAG_GENERATE_UNICODE_HEADERS) && !isAscii(value.get()))
            continue;
        appendToken(tokens, mimeShfTokenCreateTspecial(';'));
        appendToken(tokens, mimeShfTokenCreateRawValue(key.get()));
        appendToken(tokens, mimeShfTokenCreateTspecial('='));
        appendToken(tokens, mimeShfTokenCreateTokenOrQuotedString(value.get()));
    }
}

} // namespace mime::parameters
