#include <mime/mime_char.h>
#include <mime/mime_char.hpp>
#include <mime/mime_object.hpp>
#include <mime/mime_shf_scanner.hpp>
#include <mime/mime_shf_token.h>
#include <mime/mime_shf_token.hpp>
#include <pb/pb_string.h>

#include <vector>

struct MIME_SHF_TOKEN {
    PB_OBJ_HEADER header;
    MIME_SHF_TOKEN_TYPE type;
    PB_STRING *rawValue;
};

namespace {

extern "C" {
static void mime___ShfTokenFreeFunc(PB_OBJ *obj) noexcept;
}

} // namespace

MIME___SORT_DEFINE(ShfToken, MIME_SHF_TOKEN, mime___ShfTokenFreeFunc, nullptr, nullptr)

namespace {

using namespace mime::chars;

void mime___ShfTokenFreeFunc(PB_OBJ *obj) noexcept
{
    MIME_SHF_TOKEN *tok = mimeShfTokenFrom(obj);
    PB_ASSERT( tok );
    pb::releaseField(tok->rawValue);
}

// Adopts rawValue.
MIME_SHF_TOKEN *createAdopting(MIME_SHF_TOKEN_TYPE type, PB_STRING *rawValue)
{
    auto *tok = pb::create<MIME_SHF_TOKEN>(mimeShfTokenSort());
    tok->type = type;
    tok->rawValue = rawValue;
    return tok;
}

PB_STRING *stringOf(const std::vector<PB_CHAR> &chars)
{
    return pbStringCreateFromCharsCopy(chars.data(), static_cast<PB_INT>(chars.size()));
}

// A new string: open, the characters with a backslash before those that escape
// asks for, close.
template <class Escape> PB_STRING *delimited(const PB_CHAR *c, PB_INT n, PB_CHAR open, PB_CHAR close, Escape escape)
{
    std::vector<PB_CHAR> raw;
    raw.reserve(static_cast<size_t>(n) + 2);
    raw.push_back(open);
    for (PB_INT i = 0; i < n; ++i) {
        if (escape(c[i]))
            raw.push_back('\\');
        raw.push_back(c[i]);
    }
    raw.push_back(close);
    return stringOf(raw);
}

// Well formed between delimiters open and close at both ends: a backslash takes
// the next inner character and is not last; an unescaped open (when nesting) or
// close changes the depth, which must not go below 0 and ends at 0; an unescaped
// open that does not nest, or close, spoils the form.
//
// This is the classifier's rule for a whole raw value, and deliberately not the
// lexer's (ShfScanner::delimitedEnd): a caller's value must be exactly one
// delimited form, and any character inside it is accepted, a CR that starts no
// fold included. The lexer instead finds where a piece ends in running wire
// text, and refuses a CR that does not start a fold.
bool isDelimited(const PB_CHAR *c, PB_INT n, PB_CHAR open, PB_CHAR close, bool nests, bool openSpoils)
{
    if (n < 2 || c[0] != open || c[n - 1] != close)
        return false;
    PB_INT depth = 0;
    for (PB_INT i = 1; i < n - 1; ++i) {
        if (c[i] == '\\') {
            if (++i == n - 1)
                return false;
        } else if (c[i] == open && nests) {
            ++depth;
        } else if (c[i] == close) {
            if (!nests || depth == 0)
                return false;
            --depth;
        } else if (c[i] == open && openSpoils) {
            return false;
        }
    }
    return depth == 0;
}

} // namespace

bool mime::shfIsPlainToken(const PB_CHAR *c, PB_INT n) noexcept
{
    if (n == 0)
        return false;
    for (PB_INT i = 0; i < n; ++i)
        if (is(c[i], kTokenEnd))
            return false;
    return true;
}

PB_STRING *mime::shfQuotedString(const PB_CHAR *c, PB_INT n) noexcept
{
    return delimited(c, n, '"', '"', [](PB_CHAR x) { return x == '\r' || x == '"' || x == '\\'; });
}

MIME_SHF_TOKEN_TYPE mime::shfRawValueType(const PB_CHAR *c, PB_INT n) noexcept
{
    if (n == 1 && is(c[0], kTspecial))
        return MIME_SHF_TOKEN_TYPE_TSPECIAL;
    if (isDelimited(c, n, '"', '"', false, false))
        return MIME_SHF_TOKEN_TYPE_QUOTED_STRING;
    if (isDelimited(c, n, '[', ']', false, true))
        return MIME_SHF_TOKEN_TYPE_DOMAIN_LITERAL;
    if (isDelimited(c, n, '(', ')', true, false))
        return MIME_SHF_TOKEN_TYPE_COMMENT;
    if (shfIsPlainToken(c, n))
        return MIME_SHF_TOKEN_TYPE_TOKEN;
    pb___Abort(nullptr, __FILE__, __LINE__, nullptr);
}

MIME_SHF_TOKEN *mime::shfTokenCreateScanned(MIME_SHF_TOKEN_TYPE type, const PB_CHAR *chars, PB_INT length) noexcept
{
    return createAdopting(type, pbStringCreateFromCharsCopy(chars, length));
}

MIME_SHF_TOKEN *mimeShfTokenCreateTspecial(PB_CHAR tspecial) noexcept
{
    PB_ASSERT( mime___CharIsTspecial( tspecial ) );
    return createAdopting(MIME_SHF_TOKEN_TYPE_TSPECIAL, pbStringCreateFromCharsCopy(&tspecial, 1));
}

MIME_SHF_TOKEN *mimeShfTokenCreateTokenOrQuotedString(PB_STRING *tokenOrQuotedString) noexcept
{
    PB_ASSERT( tokenOrQuotedString );
    const PB_CHAR *c = pbStringBacking(tokenOrQuotedString);
    PB_INT n = pbStringLength(tokenOrQuotedString);
    if (mime::shfIsPlainToken(c, n))
        return createAdopting(MIME_SHF_TOKEN_TYPE_TOKEN, pbStringCreateFromCharsCopy(c, n));
    return createAdopting(MIME_SHF_TOKEN_TYPE_QUOTED_STRING, mime::shfQuotedString(c, n));
}

MIME_SHF_TOKEN *mimeShfTokenCreateComment(PB_STRING *comment) noexcept
{
    PB_ASSERT( comment );
    const PB_CHAR *c = pbStringBacking(comment);
    PB_INT n = pbStringLength(comment);
    return createAdopting(MIME_SHF_TOKEN_TYPE_COMMENT, delimited(c, n, '(', ')', [](PB_CHAR x) {
                              return x == '\r' || x == '\n' || is(x, kTspecial);
                          }));
}

MIME_SHF_TOKEN *mimeShfTokenCreateRawValue(PB_STRING *rawValue) noexcept
{
    PB_ASSERT( rawValue );
    MIME_SHF_TOKEN_TYPE type = mime::shfRawValueType(pbStringBacking(rawValue), pbStringLength(rawValue));
    pb::retain(rawValue);
    return createAdopting(type, rawValue);
}

MIME_SHF_TOKEN_TYPE mimeShfTokenType(MIME_SHF_TOKEN *tok) noexcept
{
    PB_ASSERT( tok );
    return tok->type;
}

PB_STRING *mimeShfTokenRawValue(MIME_SHF_TOKEN *tok) noexcept
{
    PB_ASSERT( tok );
    pb::retain(tok->rawValue);
    return tok->rawValue;
}

PB_STRING *mimeShfTokenValue(MIME_SHF_TOKEN *tok) noexcept
{
    PB_ASSERT( tok );
    if (tok->type == MIME_SHF_TOKEN_TYPE_TSPECIAL || tok->type == MIME_SHF_TOKEN_TYPE_TOKEN)
        return mimeShfTokenRawValue(tok);
    const PB_INT n = pbStringLength(tok->rawValue);
    PB_CHAR *to = nullptr;
    PB_STRING *value = pb___StringCreateUnfilled(n - 2, &to);
    pbStringDelTrailing(&value, to + n - 2 - mime::shfUnescaped(pbStringBacking(tok->rawValue), n, to));
    return value;
}

MIME_SHF_TOKEN *mimeShfTokenCreateTokenOrQuotedStringCstr(const char *text, PB_INT length) noexcept
{
    return mimeShfTokenCreateTokenOrQuotedString(pb::Text(text, length));
}

MIME_SHF_TOKEN *mimeShfTokenCreateTokenOrQuotedStringWcstr(const wchar_t *text, PB_INT length) noexcept
{
    return mimeShfTokenCreateTokenOrQuotedString(pb::Text(text, length));
}

MIME_SHF_TOKEN *mimeShfTokenCreateCommentCstr(const char *text, PB_INT length) noexcept
{
    return mimeShfTokenCreateComment(pb::Text(text, length));
}

MIME_SHF_TOKEN *mimeShfTokenCreateCommentWcstr(const wchar_t *text, PB_INT length) noexcept
{
    return mimeShfTokenCreateComment(pb::Text(text, length));
}

MIME_SHF_TOKEN *mimeShfTokenCreateRawValueCstr(const char *text, PB_INT length) noexcept
{
    return mimeShfTokenCreateRawValue(pb::Text(text, length));
}

MIME_SHF_TOKEN *mimeShfTokenCreateRawValueWcstr(const wchar_t *text, PB_INT length) noexcept
{
    return mimeShfTokenCreateRawValue(pb::Text(text, length));
}
