// Content-ID values and Content-Transfer-Encoding: decoding tables, round trips,
// and the body check against the rules written out step by step.
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime.h>

#include <optional>
#include <random>
#include <set>

using namespace test;

namespace {

std::optional<std::string> decodeCid(const std::string &raw)
{
    PB_STRING *cid = mimeContentIdTryDecode(str(raw).get());
    return cid ? std::optional<std::string>(take(cid)) : std::nullopt;
}

MIME_CONTENT_TRANSFER_ENCODING decodeCte(const std::string &raw)
{
    return mimeContentTransferEncodingTryDecode(str(raw).get(), adopt(mimeOptionsCreate()).get());
}

// The body check as its rules read, byte by byte.
bool referenceCheck(MIME_CONTENT_TRANSFER_ENCODING cte, const std::string &body)
{
    if (cte != MIME_CONTENT_TRANSFER_ENCODING_7BIT && cte != MIME_CONTENT_TRANSFER_ENCODING_8BIT)
        return true;
    if (body.empty())
        return true;
    size_t line = 0;
    bool atBreak = false;
    for (size_t i = 0; i < body.size(); ++i) {
        unsigned char c = static_cast<unsigned char>(body[i]);
        if (c == '\r') {
            if (i + 1 == body.size() || body[i + 1] != '\n')
                return false;
            ++i;
            line = 0;
            atBreak = true;
        } else if (c == '\n' || c == 0 || (c >= 128 && cte == MIME_CONTENT_TRANSFER_ENCODING_7BIT) || line == 998) {
            return false;
        } else {
            ++line;
            atBreak = false;
        }
    }
    return atBreak;
}

bool check(MIME_CONTENT_TRANSFER_ENCODING cte, const std::string &body)
{
    return mimeContentTransferEncodingCheck(cte, bytes(body).get());
}

} // namespace

TEST(ContentId, DecodeEncodeAndGenerate)
{
    const std::pair<std::string, std::optional<std::string>> rows[] = {
        {"<part1@example.com>", "part1@example.com"},
        {" \t<a b<c>> \t", "a b<c>"},
        {"<>", std::nullopt},
        {"part1@example.com", std::nullopt},
        {"<unclosed", std::nullopt},
        {"", std::nullopt},
        {" \t ", std::nullopt},
        {"<fold\r\n here>", std::nullopt},
        {"<x\x7f>", std::nullopt},
        {"(c) <x>", std::nullopt},
    };
    for (const auto &[raw, cid] : rows)
        EXPECT_EQ(decodeCid(raw), cid) << raw;
    std::set<std::string> seen;
    for (int i = 0; i < 50; ++i) {
        Ref<PB_STRING> cid = adopt(mimeContentIdGenerate());
        ASSERT_TRUE(mimeContentIdOk(cid.get()));
        std::string text = utf8(cid.get());
        EXPECT_EQ(std::count(text.begin(), text.end(), '@'), 1) << text;
        EXPECT_TRUE(seen.insert(text).second) << "generated twice: " << text;
        EXPECT_EQ(decodeCid(take(mimeContentIdEncode(cid.get()))), text);
    }
}

TEST(ContentTransferEncoding, NamesAndDecoding)
{
    const std::pair<std::string, MIME_CONTENT_TRANSFER_ENCODING> rows[] = {
        {"7bit", 0},
        {"Binary", 2},
        {"quoted-printable", 3},
        {"BASE64", 4},
        {"\"base64\"", 4},
        {" base64 (the body) ", 4},
        {"(c)Base64\r\n ", 4},
        {"base64 7bit", -1},
        {"base64;", -1},
        {"", -1},
        {"(base64)", -1},
        {"\"base64", -1},
        {"x-base64", -1},
    };
    for (const auto &[raw, cte] : rows)
        EXPECT_EQ(decodeCte(raw), cte) << raw;
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    for (MIME_CONTENT_TRANSFER_ENCODING cte = 0; cte < 5; ++cte) {
        std::string text = take(mimeContentTransferEncodingEncode(cte, mo.get(), 27));
        EXPECT_EQ(text, take(mimeContentTransferEncodingToString(cte)));
        EXPECT_EQ(decodeCte(text), cte);
    }
    EXPECT_EQ(take(mimeContentTransferEncodingEncode(4, mo.get(), 77)), "\r\n base64");
}

// Only the transfer encodings that leave the body as it is check it; a body that
// ends in an incomplete byte passes none.
TEST(ContentTransferEncoding, CheckIsForUnencodedBodiesOfWholeBytes)
{
    for (MIME_CONTENT_TRANSFER_ENCODING cte : {2, 3, 4})
        EXPECT_TRUE(check(cte, std::string("a\0\n\xff", 4)));
    Ref<PB_BUFFER> partial = bytes("ab\r\n");
    const uint8_t bits = 0x80;
    pbBufferAppendBits(partial.addr(), &bits, 1);
    for (MIME_CONTENT_TRANSFER_ENCODING cte = 0; cte < 5; ++cte)
        EXPECT_FALSE(mimeContentTransferEncodingCheck(cte, partial.get()));
}

// Generated bodies: mostly valid lines, with lengths around 998 and defects at
// every place of a 16-byte block, against the rules written out.
TEST(ContentTransferEncoding, CheckAgreesWithTheRules)
{
    std::mt19937_64 rng(21);
    for (int round = 0; round < 20000; ++round) {
        std::string body;
        for (size_t lines = rng() % 6; lines > 0; --lines) {
            size_t length = rng() % 4 == 0 ? 990 + rng() % 12 : rng() % 40;
            for (size_t i = 0; i < length; ++i)
                body += static_cast<char>('a' + rng() % 26);
            body += "\r\n";
        }
        for (int defects = static_cast<int>(rng() % 3); defects > 0 && !body.empty(); --defects)
            body[rng() % body.size()] = "\r\n\x00\x80 "[rng() % 5];
        if (rng() % 5 == 0 && !body.empty())
            body.pop_back();
        for (MIME_CONTENT_TRANSFER_ENCODING cte : {0, 1})
            ASSERT_EQ(check(cte, body), referenceCheck(cte, body)) << cte << " size " << body.size();
    }
}
