// Character classes against sets written out here, and header-field tokens: the
// creators' quoting and escaping, the classification of wire text, plain values,
// and the property that a created token reads back the value it was made from.
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime.h>

#include <random>

using namespace test;

namespace {

struct Expected {
    MIME_SHF_TOKEN_TYPE type;
    std::string raw;
};

Expected describe(MIME_SHF_TOKEN *tok)
{
    return {mimeShfTokenType(tok), take(mimeShfTokenRawValue(tok))};
}

bool operator==(const Expected &a, const Expected &b)
{
    return a.type == b.type && a.raw == b.raw;
}

std::ostream &operator<<(std::ostream &os, const Expected &e)
{
    return os << e.type << " '" << e.raw << "'";
}

std::string valueOf(MIME_SHF_TOKEN *tok)
{
    return take(mimeShfTokenValue(tok));
}

Ref<MIME_SHF_TOKEN> fromRaw(const std::string &raw)
{
    return adopt(mimeShfTokenCreateRawValue(str(raw).get()));
}

const std::string kTspecials = "()<>@,;:\\\"/[]?=";

} // namespace

TEST(ShfToken, CreatorsQuoteAndEscape)
{
    const std::pair<std::string, Expected> tokenOrQuoted[] = {
        {"", {MIME_SHF_TOKEN_TYPE_QUOTED_STRING, "\"\""}},
        {"text", {MIME_SHF_TOKEN_TYPE_TOKEN, "text"}},
        {"gr\u00fc\u00dfe-\u4e2d", {MIME_SHF_TOKEN_TYPE_TOKEN, "gr\u00fc\u00dfe-\u4e2d"}},
        {"a/b", {MIME_SHF_TOKEN_TYPE_QUOTED_STRING, "\"a/b\""}},
        {"two words", {MIME_SHF_TOKEN_TYPE_QUOTED_STRING, "\"two words\""}},
        {"lf\nstays", {MIME_SHF_TOKEN_TYPE_QUOTED_STRING, "\"lf\nstays\""}},
        {"cr\r\"q\"\\", {MIME_SHF_TOKEN_TYPE_QUOTED_STRING, "\"cr\\\r\\\"q\\\"\\\\\""}},
    };
    for (const auto &[value, expected] : tokenOrQuoted) {
        Ref<MIME_SHF_TOKEN> tok = adopt(mimeShfTokenCreateTokenOrQuotedString(str(value).get()));
        EXPECT_EQ(describe(tok.get()), expected) << value;
        EXPECT_EQ(valueOf(tok.get()), value);
    }
    const std::pair<std::string, std::string> comments[] = {
        {"", "()"},
        {"a,b", "(a\\,b)"},
        {"(nested)\\\"", "(\\(nested\\)\\\\\\\")"},
        {"cr\rlf\ntab\t", "(cr\\\rlf\\\ntab\t)"},
    };
    for (const auto &[value, raw] : comments) {
        Ref<MIME_SHF_TOKEN> tok = adopt(mimeShfTokenCreateComment(str(value).get()));
        EXPECT_EQ(describe(tok.get()), (Expected{MIME_SHF_TOKEN_TYPE_COMMENT, raw})) << value;
        EXPECT_EQ(valueOf(tok.get()), value);
    }
    for (char c : kTspecials) {
        Ref<MIME_SHF_TOKEN> tok = adopt(mimeShfTokenCreateTspecial(static_cast<PB_CHAR>(c)));
        EXPECT_EQ(describe(tok.get()), (Expected{MIME_SHF_TOKEN_TYPE_TSPECIAL, std::string(1, c)}));
    }
}

// The first of the five forms that fits decides; spoiled delimited forms fall through.
TEST(ShfToken, RawValueClassification)
{
    const std::tuple<std::string, MIME_SHF_TOKEN_TYPE, std::string> rows[] = {
        {";", MIME_SHF_TOKEN_TYPE_TSPECIAL, ";"},
        {"\"\"", MIME_SHF_TOKEN_TYPE_QUOTED_STRING, ""},
        {"\"us-ascii\"", MIME_SHF_TOKEN_TYPE_QUOTED_STRING, "us-ascii"},
        {"\"a\\\"b\"", MIME_SHF_TOKEN_TYPE_QUOTED_STRING, "a\"b"},
        {"\"a\\\\b\"", MIME_SHF_TOKEN_TYPE_QUOTED_STRING, "a\\b"},
        {"\"fold\r\n here\"", MIME_SHF_TOKEN_TYPE_QUOTED_STRING, "fold\r\n here"},
        {"[192.0.2.1]", MIME_SHF_TOKEN_TYPE_DOMAIN_LITERAL, "192.0.2.1"},
        {"[a\\[b]", MIME_SHF_TOKEN_TYPE_DOMAIN_LITERAL, "a[b"},
        {"(a (nested) comment)", MIME_SHF_TOKEN_TYPE_COMMENT, "a (nested) comment"},
        {"(\"quoted\" [x])", MIME_SHF_TOKEN_TYPE_COMMENT, "\"quoted\" [x]"},
        {"(a\\)b)", MIME_SHF_TOKEN_TYPE_COMMENT, "a)b"},
        {"word", MIME_SHF_TOKEN_TYPE_TOKEN, "word"},
        {"\u00e9t\u00e9", MIME_SHF_TOKEN_TYPE_TOKEN, "\u00e9t\u00e9"},
    };
    for (const auto &[raw, type, value] : rows) {
        Ref<MIME_SHF_TOKEN> tok = fromRaw(raw);
        EXPECT_EQ(mimeShfTokenType(tok.get()), type) << raw;
        EXPECT_EQ(valueOf(tok.get()), value) << raw;
    }
    Ref<PB_STRING> raw = str("kept");
    Ref<MIME_SHF_TOKEN> tok = adopt(mimeShfTokenCreateRawValue(raw.get()));
    EXPECT_EQ(adopt(mimeShfTokenRawValue(tok.get())).get(), raw.get()) << "the given string itself is kept";
}

// For generated values: the plain value of a created token or comment is the
// value, and classifying its raw text gives the same type.
TEST(ShfToken, CreatedTokensReadBackTheirValue)
{
    std::mt19937_64 rng(11);
    const std::u32string alphabet = U"abcXYZ09-_.~ \t\r\n\"\\()<>@,;:/[]?=\x01\x7f\u00e9\u4e2d\U0001F600";
    for (int round = 0; round < 3000; ++round) {
        std::u32string value;
        for (size_t n = rng() % 12; n > 0; --n)
            value += alphabet[rng() % alphabet.size()];
        Ref<PB_STRING> s = chars(value);
        for (auto create : {mimeShfTokenCreateTokenOrQuotedString, mimeShfTokenCreateComment}) {
            Ref<MIME_SHF_TOKEN> tok = adopt(create(s.get()));
            ASSERT_EQ(codePoints(adopt(mimeShfTokenValue(tok.get())).get()), value);
            Ref<MIME_SHF_TOKEN> again = adopt(mimeShfTokenCreateRawValue(adopt(mimeShfTokenRawValue(tok.get())).get()));
            ASSERT_EQ(mimeShfTokenType(again.get()), mimeShfTokenType(tok.get()));
        }
    }
}
