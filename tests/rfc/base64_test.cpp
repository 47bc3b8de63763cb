// Base64: the line layout against a bit-by-bit reference,
// round trips at many lengths and line lengths, the whitespace and padding rules
// of decoding, and the scalar and vector kernels agreeing on every input.
#include "codec_support.hpp"

#include <gtest/gtest.h>

using namespace test;

namespace {

// Reference: six bits at a time, then the line layout by hand.
std::string referenceBase64(const std::string &in, int64_t lineLength)
{
    static const char *alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string chars;
    size_t bits = in.size() * 8;
    for (size_t at = 0; at < bits; at += 6) {
        int v = 0;
        for (size_t b = at; b < at + 6; ++b)
            v = v << 1 | (b < bits ? (static_cast<uint8_t>(in[b / 8]) >> (7 - b % 8) & 1) : 0);
        chars += alphabet[v];
    }
    while (chars.size() % 4)
        chars += '=';
    if (lineLength <= 0)
        return chars;
    std::string out;
    for (size_t at = 0; at < chars.size(); at += static_cast<size_t>(lineLength))
        out += (at ? "\r\n" : "") + chars.substr(at, static_cast<size_t>(lineLength));
    return out;
}

std::optional<std::string> apiDecode(const std::string &text)
{
    Ref<RFC_BASE_OPTIONS> options = adopt(rfcBaseOptionsCreate());
    return taken(rfcBaseTryDecodeWithOptions(bytes(text).get(), RFC_BASE_VARIANT_BASE64, options.get()));
}

const int64_t kLineLengths[] = {-1, 0, 1, 4, 5, 7, 32, 64, 76, 77, 100};

} // namespace

TEST(Base64, EncodingMatchesTheReferenceAtEveryLengthAndLineLength)
{
    std::mt19937_64 rng(1);
    for (const rfc::Kernels *k : allKernels())
        for (int64_t line : kLineLengths)
            for (size_t n = 0; n <= 300; ++n) {
                std::string raw = randomBytes(rng, n);
                std::string text = base64Encode(raw, line, *k);
                ASSERT_EQ(text, referenceBase64(raw, line)) << k->name << " n=" << n << " line=" << line;
                ASSERT_EQ(base64Decode(text, *k), raw) << k->name << " n=" << n << " line=" << line;
            }
}

// Skipped characters anywhere, missing padding, and every class of invalid text.
TEST(Base64, DecodingRules)
{
    const std::pair<std::string, std::optional<std::string>> cases[] = {
        {"Zm9v\r\nYmFy", "foobar"},
        {" Z m\t9 v\rY\nm F y ", "foobar"},
        {"Zm9vYg", "foob"},
        {"Zm9vYmE", "fooba"},
        {"Zm9vYg==\r\n", "foob"},
        {"Zm9vYg=\r\n=", "foob"},
        {"Zm9vYh==", "foob"}, // unused low bits are ignored
        {"\r\n \t", ""},
        {"Zm9vY", std::nullopt}, // a lone sextet
        {"Z", std::nullopt},
        {"Zm9v!mFy", std::nullopt},
        {"Zm9v-_Fy", std::nullopt}, // the URL alphabet is not base64
        {"Zm9vYg=", std::nullopt},  // incomplete padding
        {"Zm9vY===", std::nullopt},
        {"Zm9v====", std::nullopt},
        {"=", std::nullopt},
        {"Zm9vYg==Zm9v", std::nullopt}, // data after the padding
        {"Zm9vYg==\r\nYg==", std::nullopt},
        {"Zm=9vYmFy", std::nullopt},
        {"Zm9vYmF\xc3\xa9", std::nullopt},
        {std::string("Zm9v\0YmFy", 9), std::nullopt},
    };
    for (const rfc::Kernels *k : allKernels())
        for (const auto &[text, expected] : cases)
            EXPECT_EQ(base64Decode(text, *k), expected) << k->name << " '" << text << "'";
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(apiDecode(text), expected) << text;
}

// The vector kernels and the scalar ones agree on output and on failure, also on
// text that is mostly valid with defects here and there.
TEST(Base64, VectorAndScalarKernelsAgree)
{
    std::vector<const rfc::Kernels *> kernels = allKernels();
    if (kernels.size() < 2)
        GTEST_SKIP() << "no vector kernels on this processor";
    std::mt19937_64 rng(4);
    for (int round = 0; round < 2000; ++round) {
        std::string raw = randomBytes(rng, rng() % 700);
        int64_t line = kLineLengths[rng() % std::size(kLineLengths)];
        std::string text = base64Encode(raw, line, *kernels[0]);
        ASSERT_EQ(base64Encode(raw, line, *kernels[1]), text);
        for (int defects = static_cast<int>(rng() % 3); defects > 0 && !text.empty(); --defects)
            text[rng() % text.size()] = " \r\n=A!+/"[rng() % 8];
        ASSERT_EQ(base64Decode(text, *kernels[0]), base64Decode(text, *kernels[1])) << text;
    }
}

// Base64 encodes the whole bytes of a buffer that ends in an incomplete byte.
TEST(Base64, IncompleteLastByteIsNotEncoded)
{
    Ref<PB_BUFFER> b = bytes("fo");
    const uint8_t bits = 0xA0;
    pbBufferAppendBits(b.addr(), &bits, 3);
    Ref<RFC_BASE_OPTIONS> options = adopt(rfcBaseOptionsCreate());
    EXPECT_EQ(taken(rfcBaseEncodeWithOptions(b.get(), RFC_BASE_VARIANT_BASE64, options.get())), "Zm8=");
}
