// The lexer (token vector decoding) over a table of header values and every
// failure it has, comment removal (shared vectors, 100,000 comments), folding at
// the documented positions, and the round trip decode(encode(decode(x))).
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime.h>

#include <optional>
#include <random>
#include <vector>

using namespace test;

namespace {

// A token vector as "type:raw" items, or nullopt for null.
using Tokens = std::optional<std::vector<std::string>>;

Tokens describe(PB_VECTOR *vec)
{
    if (!vec)
        return std::nullopt;
    std::vector<std::string> items;
    for (PB_INT i = 0; i < pbVectorLength(vec); ++i) {
        Ref<MIME_SHF_TOKEN> tok = adopt(mimeShfTokenFrom(pbVectorObjAt(vec, i)));
        items.push_back(std::to_string(mimeShfTokenType(tok.get())) + ":" + take(mimeShfTokenRawValue(tok.get())));
    }
    return items;
}

Ref<PB_VECTOR> decode(const std::string &value)
{
    return adopt(mimeShfTokenVectorTryDecode(str(value).get()));
}

Ref<MIME_OPTIONS> wrapping(PB_INT wrapLineLength)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    mimeOptionsSetWrapLineLength(mo.addr(), wrapLineLength);
    return mo;
}

std::string encode(PB_VECTOR *vec, PB_INT wrapLineLength, PB_INT firstLineOffset = 0)
{
    return take(mimeShfTokenVectorEncode(vec, wrapping(wrapLineLength).get(), firstLineOffset));
}

} // namespace

TEST(ShfLexer, DecodesHeaderValues)
{
    const std::pair<std::string, Tokens> rows[] = {
        {"", std::vector<std::string>{}},
        {" \t\r\n \x01\x7f", std::vector<std::string>{}},
        {"text/plain; charset=\"us-ascii\" (Plain text)",
         std::vector<std::string>{"4:text", "0:/", "4:plain", "0:;", "4:charset", "0:=", "1:\"us-ascii\"",
                                  "3:(Plain text)"}},
        {"a\r\n b", std::vector<std::string>{"4:a", "4:b"}},
        {"a\nb\rc", std::vector<std::string>{"4:a", "4:b", "4:c"}},
        {"\"fold\r\n\tkept\"", std::vector<std::string>{"1:\"fold\r\n\tkept\""}},
        {"\"lf\nand\x01\"", std::vector<std::string>{"1:\"lf\nand\x01\""}},
        {"\"esc\\\"aped\\\\\"x", std::vector<std::string>{"1:\"esc\\\"aped\\\\\"", "4:x"}},
        {"(a (b) \"c\" [d])z", std::vector<std::string>{"3:(a (b) \"c\" [d])", "4:z"}},
        {"[1.2\\[3]", std::vector<std::string>{"2:[1.2\\[3]"}},
        {"[a(b]", std::vector<std::string>{"2:[a(b]"}},
        {"joe@example.com", std::vector<std::string>{"4:joe", "0:@", "4:example.com"}},
        {"gr\u00fc\u00dfe\u4e2d", std::vector<std::string>{"4:gr\u00fc\u00dfe\u4e2d"}},
        {") ] \\ <x>", std::vector<std::string>{"0:)", "0:]", "0:\\", "0:<", "4:x", "0:>"}},
        {"\"open", std::nullopt},
        {"(a(b)", std::nullopt},
        {"\"ends in \\", std::nullopt},
        {"\"cr\r alone\"", std::nullopt},
        {"\"cr\r\nno space\"", std::nullopt},
        {"\"cr at end\r\n", std::nullopt},
        {"[a[b]", std::nullopt},
        {"ok \"bad", std::nullopt},
    };
    for (const auto &[value, expected] : rows)
        EXPECT_EQ(describe(decode(value).get()), expected) << value;
}

TEST(ShfLexer, DelCommentsKeepsOrderAndOtherHolders)
{
    Ref<PB_VECTOR> vec = decode("(x) a (y) ; (z(w)) b (end)");
    Ref<PB_VECTOR> other = pb::retained(vec.get());
    mimeShfTokenVectorDelComments(vec.addr());
    EXPECT_EQ(describe(vec.get()), (std::vector<std::string>{"4:a", "0:;", "4:b"}));
    EXPECT_EQ(pbVectorLength(other.get()), 7) << "the other holder keeps its vector";

    PB_VECTOR *before = vec.get();
    mimeShfTokenVectorDelComments(vec.addr());
    EXPECT_EQ(vec.get(), before) << "a vector without comments stays as it is";

    Ref<PB_VECTOR> onlyComments = decode("(a) (b)(c)");
    mimeShfTokenVectorDelComments(onlyComments.addr());
    EXPECT_EQ(pbVectorLength(onlyComments.get()), 0);
}

TEST(ShfFolding, JoinsWordsAndSeparators)
{
    const std::pair<std::string, std::string> rows[] = {
        {"text / plain ; charset = utf-8", "text/plain;charset=utf-8"},
        {"text/plain;charset=utf-8 (a comment)", "text/plain;charset=utf-8 (a comment)"},
        {"a ;", "a ;"},
        {"; a", "; a"},
        {"a b", "a b"},
        {"\"q\" = \"r\" , s", "\"q\"=\"r\",s"},
        {"a < b > [c] = d", "a < b > [c] = d"},
        {"a = (c) b", "a = (c) b"},
        {"", ""},
    };
    for (const auto &[value, text] : rows)
        EXPECT_EQ(encode(decode(value).get(), -1), text) << value;
}

// A piece goes on a new line only when the line before it is already longer
// than the wrap line length.
TEST(ShfFolding, FoldsAtTheDocumentedPositions)
{
    struct Row {
        std::string value;
        PB_INT wrap, offset;
        std::string text;
    } rows[] = {
        {"abcdefghij klm", 20, 14, "abcdefghij\r\n klm"}, // 24 > 20 only after the first piece
        {"abcdef klm", 20, 14, "abcdef klm"},             // 20 is not past 20
        {"abcdefg klm", 20, 14, "abcdefg\r\n klm"},       // 21 is
        {"a b c", 0, 0, "a\r\n b\r\n c"},
        {"a b", 3, 10, "\r\n a b"},             // the offset alone is past the limit
        {"a/b;c=d", 2, 0, "a/b\r\n ;c\r\n =d"}, // joined pieces fold too, without a space
        {"a b c d e f g h i j k l m n o p", -1, 1000, "a b c d e f g h i j k l m n o p"},
        {"", 0, 100, ""},
    };
    for (const Row &row : rows)
        EXPECT_EQ(encode(decode(row.value).get(), row.wrap, row.offset), row.text)
            << row.value << " wrap " << row.wrap << " offset " << row.offset;
}

// Any text that decodes, encoded (folded or not) and decoded again, gives tokens
// of the same types and plain values.
TEST(ShfFolding, DecodeEncodeDecodeRoundTrip)
{
    std::mt19937_64 rng(12);
    const std::vector<std::string> pieces = {"a", "text", "\u00e9",  " ",    "\t",      "\r\n ", "/",        ";",
                                             "=", "@",    ",",       ":",    "?",       "<",     ">",        ")",
                                             "]", "\\",   "\"q s\"", "\"\"", "(c (n))", "[d.l]", "\"e\\\"\""};
    for (int round = 0; round < 3000; ++round) {
        std::string value;
        for (size_t n = rng() % 16; n > 0; --n)
            value += pieces[rng() % pieces.size()];
        Ref<PB_VECTOR> first = decode(value);
        ASSERT_TRUE(first) << value;
        for (PB_INT wrap : {PB_INT{-1}, PB_INT{0}, PB_INT{10}, PB_INT{76}}) {
            Ref<PB_VECTOR> second = decode(encode(first.get(), wrap, 14));
            ASSERT_TRUE(second) << value;
            ASSERT_EQ(pbVectorLength(second.get()), pbVectorLength(first.get())) << value;
            for (PB_INT i = 0; i < pbVectorLength(first.get()); ++i) {
                Ref<MIME_SHF_TOKEN> a = adopt(mimeShfTokenFrom(pbVectorObjAt(first.get(), i)));
                Ref<MIME_SHF_TOKEN> b = adopt(mimeShfTokenFrom(pbVectorObjAt(second.get(), i)));
                ASSERT_EQ(mimeShfTokenType(a.get()), mimeShfTokenType(b.get())) << value;
                ASSERT_EQ(take(mimeShfTokenValue(a.get())), take(mimeShfTokenValue(b.get()))) << value;
            }
        }
    }
}
