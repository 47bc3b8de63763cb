// Any bytes as a header-field value: lexing never aborts or leaks, and reads the
// Cstr and Wcstr forms of the text alike; each token made again from its wire
// text (and, for quoted strings, tokens and comments, from its plain value; a
// tspecial from its character) in every form is the same token or has the same
// value; the character classes agree with their definitions on every
// character. When lexing succeeds, comments are removed, the tokens encoded (at
// a wrap line length and offset taken from the input) and the text lexed
// again, which must succeed with tokens of the same types and plain values.
#include "checks.hpp"
#include "fuzz_support.hpp"

#include <mime/mime.h>
#include <mime/mime_char.h>

#include <cstring>

using fuzz::Forms;
using pb::adopt;
using pb::Ref;

namespace {

Ref<MIME_SHF_TOKEN> tokenAt(PB_VECTOR *vec, PB_INT i)
{
    return adopt(mimeShfTokenFrom(pbVectorObjAt(vec, i)));
}

// The same type and wire text (tokens order by identity).
bool sameToken(MIME_SHF_TOKEN *a, MIME_SHF_TOKEN *b)
{
    fuzz::ordered(a, b, mimeShfTokenCompare, mimeShfTokenEquals);
    return mimeShfTokenType(a) == mimeShfTokenType(b) &&
           pbStringEquals(adopt(mimeShfTokenRawValue(a)).get(), adopt(mimeShfTokenRawValue(b)).get());
}

bool sameTokens(PB_VECTOR *a, PB_VECTOR *b)
{
    if (!a || !b)
        return !a && !b;
    bool same = pbVectorLength(a) == pbVectorLength(b);
    for (PB_INT i = 0; same && i < pbVectorLength(a); ++i)
        same = sameToken(tokenAt(a, i).get(), tokenAt(b, i).get());
    return same;
}

// Three tokens made by the forms of one function agree and keep the value.
void madeInEveryForm(PB_STRING *value, MIME_SHF_TOKEN *(*byString)(PB_STRING *),
                     MIME_SHF_TOKEN *(*byCstr)(const char *, PB_INT),
                     MIME_SHF_TOKEN *(*byWcstr)(const wchar_t *, PB_INT))
{
    const Forms text(value);
    Ref<MIME_SHF_TOKEN> a = adopt(byString(value));
    Ref<MIME_SHF_TOKEN> b = adopt(byCstr(text.utf8.data(), text.utf8Length()));
    Ref<MIME_SHF_TOKEN> c = adopt(byWcstr(text.wide.data(), text.wideLength()));
    PB_ASSERT( sameToken(a.get(), b.get()) && sameToken(a.get(), c.get()) );
    PB_ASSERT( pbStringEquals(adopt(mimeShfTokenValue(a.get())).get(), value) );
}

void remade(MIME_SHF_TOKEN *token)
{
    Ref<PB_STRING> raw = adopt(mimeShfTokenRawValue(token));
    const Forms text(raw.get());
    Ref<MIME_SHF_TOKEN> byString = adopt(mimeShfTokenCreateRawValue(raw.get()));
    Ref<MIME_SHF_TOKEN> byCstr = adopt(mimeShfTokenCreateRawValueCstr(text.utf8.data(), text.utf8Length()));
    Ref<MIME_SHF_TOKEN> byWcstr = adopt(mimeShfTokenCreateRawValueWcstr(text.wide.data(), text.wideLength()));
    PB_ASSERT( sameToken(byString.get(), token) && sameToken(byCstr.get(), token) && sameToken(byWcstr.get(), token) );
    MIME_SHF_TOKEN *held = mimeShfTokenRetain(token);
    PB_ASSERT( held == token && adopt(mimeShfTokenToString(held)) );
    mimeShfTokenRelease(held);
    Ref<PB_STRING> value = adopt(mimeShfTokenValue(token));
    switch (mimeShfTokenType(token)) {
    case MIME_SHF_TOKEN_TYPE_TOKEN:
    case MIME_SHF_TOKEN_TYPE_QUOTED_STRING:
        madeInEveryForm(value.get(), mimeShfTokenCreateTokenOrQuotedString, mimeShfTokenCreateTokenOrQuotedStringCstr,
                        mimeShfTokenCreateTokenOrQuotedStringWcstr);
        break;
    case MIME_SHF_TOKEN_TYPE_COMMENT:
        madeInEveryForm(value.get(), mimeShfTokenCreateComment, mimeShfTokenCreateCommentCstr,
                        mimeShfTokenCreateCommentWcstr);
        break;
    case MIME_SHF_TOKEN_TYPE_TSPECIAL:
        PB_ASSERT( sameToken(adopt(mimeShfTokenCreateTspecial(pbStringCharAt(raw.get(), 0))).get(), token) );
        break;
    default:
        break;
    }
}

// The exported character classes against their definitions in RFC 822, 2045 and 2046.
void characterClasses(PB_CHAR c)
{
    const bool ascii = c < 0x80, alpha = ascii && std::isalpha(static_cast<int>(c)) != 0;
    const bool digit = c >= '0' && c <= '9';
    const bool nospace = alpha || digit || (c != 0 && ascii && std::strchr("'()+_,-./:=?", static_cast<int>(c)));
    const bool classes[][2] = {
        {static_cast<bool>(mime___CharIsAlpha(c)), alpha},
        {static_cast<bool>(mime___CharIsDigit(c)), digit},
        {static_cast<bool>(mime___CharIsCr(c)), c == '\r'},
        {static_cast<bool>(mime___CharIsLf(c)), c == '\n'},
        {static_cast<bool>(mime___CharIsHtab(c)), c == '\t'},
        {static_cast<bool>(mime___CharIsSpace(c)), c == ' '},
        {static_cast<bool>(mime___CharIsLwsp(c)), c == ' ' || c == '\t'},
        {static_cast<bool>(mime___CharIsQuotationMark(c)), c == '"'},
        {static_cast<bool>(mime___CharIsCtl(c)), c < 0x20 || c == 0x7f},
        {static_cast<bool>(mime___CharIsTspecial(c)),
         c != 0 && ascii && std::strchr("()<>@,;:\\\"/[]?=", static_cast<int>(c))},
        {static_cast<bool>(mime___CharIsBcharsNospace(c)), nospace},
        {static_cast<bool>(mime___CharIsBchars(c)), nospace || c == ' '},
    };
    for (const auto &[is, defined] : classes)
        PB_ASSERT( is == defined );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        const Forms value(std::string(reinterpret_cast<const char *>(d), n));
        for (PB_INT i = 0; i < pbStringLength(value.string.get()); ++i)
            characterClasses(pbStringCharAt(value.string.get(), i));
        Ref<PB_VECTOR> tokens = adopt(mimeShfTokenVectorTryDecode(value.string.get()));
        PB_ASSERT( sameTokens(tokens.get(),
                              adopt(mimeShfTokenVectorTryDecodeCstr(value.utf8.data(), value.utf8Length())).get()) );
        PB_ASSERT( sameTokens(tokens.get(), adopt(mimeShfTokenVectorTryDecodeWcstr(value.wide.data(), value.wideUpToNul())).get()) );
        if (!tokens)
            return;
        for (PB_INT i = 0; i < pbVectorLength(tokens.get()); ++i)
            remade(tokenAt(tokens.get(), i).get());
        mimeShfTokenVectorDelComments(tokens.addr());
        Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
        mimeOptionsSetWrapLineLength(mo.addr(), n ? static_cast<PB_INT>(d[0] % 90) - 1 : 76);
        Ref<PB_STRING> text = adopt(mimeShfTokenVectorEncode(tokens.get(), mo.get(), n > 1 ? d[1] % 40 : 0));
        Ref<PB_VECTOR> again = adopt(mimeShfTokenVectorTryDecode(text.get()));
        PB_ASSERT( again && pbVectorLength(again.get()) == pbVectorLength(tokens.get()) );
        for (PB_INT i = 0; i < pbVectorLength(tokens.get()); ++i) {
            Ref<MIME_SHF_TOKEN> a = tokenAt(tokens.get(), i), b = tokenAt(again.get(), i);
            PB_ASSERT( mimeShfTokenType(a.get()) == mimeShfTokenType(b.get()) );
            Ref<PB_STRING> va = adopt(mimeShfTokenValue(a.get())), vb = adopt(mimeShfTokenValue(b.get()));
            PB_ASSERT( pbStringCompare(va.get(), vb.get()) == 0 );
        }
    });
}
