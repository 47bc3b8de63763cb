// Quoted-printable: the encoder's choices at the documented places, the line
// rules checked on generated text at every line length, the decoder's soft
// breaks, white-space removal and failures, and the kernels agreeing.
#include "codec_support.hpp"

#include <gtest/gtest.h>

using namespace test;

namespace {

bool isHexUpper(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

// Every line within the limit, printable ASCII, "=" only as "=XX" or as the last
// byte of a line followed by another, no line ending in a space or tab. Returns
// what is wrong, or "".
std::string lineRuleViolation(const std::string &text, size_t limit)
{
    size_t start = 0;
    for (;;) {
        size_t end = text.find("\r\n", start);
        bool lastLine = end == std::string::npos;
        std::string line = text.substr(start, lastLine ? std::string::npos : end - start);
        if (line.size() > limit)
            return "line longer than " + std::to_string(limit) + ": " + line;
        if (!line.empty() && (line.back() == ' ' || line.back() == '\t'))
            return "line ends in white space: " + line;
        for (size_t i = 0; i < line.size(); ++i) {
            unsigned char c = static_cast<unsigned char>(line[i]);
            if ((c < 32 && c != '\t') || c > 126)
                return "byte " + std::to_string(c) + " in line: " + line;
            if (c != '=')
                continue;
            if (i + 1 == line.size() && !lastLine)
                continue; // soft line break
            if (i + 2 >= line.size() || !isHexUpper(line[i + 1]) || !isHexUpper(line[i + 2]))
                return "bad escape in line: " + line;
            i += 2;
        }
        if (lastLine)
            return "";
        start = end + 2;
    }
}

Ref<RFC_QUOP_OPTIONS> quopOptions(int64_t maxLineLength)
{
    Ref<RFC_QUOP_OPTIONS> options = adopt(rfcQuopOptionsCreate());
    rfcQuopOptionsSetMaxLineLength(options.addr(), maxLineLength);
    return options;
}

std::string a(size_t n)
{
    return std::string(n, 'a');
}

} // namespace

TEST(Quop, EncoderChoices)
{
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"plain text, (really)!", "plain text, (really)!"},
        {"a=b", "a=3Db"},
        {"a \r\nb", "a=20\r\nb"},
        {"a\t", "a=09"},
        {"a \t \r\n\r\n", "a \t=20\r\n\r\n"},
        {"\r", "=0D"},
        {"\n", "=0A"},
        {"\r\r\n\n", "=0D\r\n=0A"},
        {std::string("\xff\x00\x7f\xc3\xa9", 5), "=FF=00=7F=C3=A9"},
        {a(76), a(76)}, // a line at the limit stays whole
        {a(76) + "\r\n" + a(76), a(76) + "\r\n" + a(76)},
        {a(77), a(75) + "=\r\n" + "aa"},
        {a(73) + "=", a(73) + "=3D"},        // the last escape may fill the line
        {a(74) + "=", a(74) + "=\r\n=3D"},   // an escape is never split
        {a(73) + "=b", a(73) + "=\r\n=3Db"}, // room for the soft break's "="
        {a(72) + "=b", a(72) + "=3Db"},      // the last byte may fill the line
        {a(72) + "=bc", a(72) + "=3D=\r\nbc"},
        {a(75) + " ", a(75) + "=\r\n=20"},
        {a(74) + " \r\n", a(74) + "=\r\n=20\r\n"},
        {a(75) + "b\r\n", a(75) + "b\r\n"},
        {a(75) + "bc", a(75) + "=\r\nbc"},
    };
    Ref<RFC_QUOP_OPTIONS> options = adopt(rfcQuopOptionsCreate());
    for (const auto &[raw, text] : cases) {
        for (const rfc::Kernels *k : allKernels())
            EXPECT_EQ(quopEncode(raw, 76, *k), text) << k->name << " '" << raw << "'";
        EXPECT_EQ(taken(rfcQuopEncodeWithOptions(bytes(raw).get(), options.get())), text);
    }
    EXPECT_EQ(taken(rfcQuopEncodeWithOptions(bytes("a=b c").get(), quopOptions(4).get())), "a=\r\n=3D=\r\nb c");
}

TEST(Quop, DecoderRules)
{
    const std::pair<std::string, std::optional<std::string>> cases[] = {
        {"a=3Db=3db", "a=b=b"},
        {"a=\r\nb", "ab"},
        {"a=\nb", "ab"},
        {"a= \t\r\nb", "ab"},
        {"a =\r\nb", "a b"},       // white space before a soft break is text
        {"a  \r\nb \t", "a\r\nb"}, // trailing white space is transport padding
        {"a \t\nb", "a\nb"},
        {"a=20 \r\n", "a \r\n"}, // an escaped space stays
        {"a=09", "a\t"},
        {"a \rb\r", "a \rb\r"}, // a bare CR ends no line
        {"\xe9\x01", "\xe9\x01"},
        {"", ""},
        {"=", std::nullopt},
        {"a=", std::nullopt},
        {"=4", std::nullopt},
        {"=4G", std::nullopt},
        {"=G4", std::nullopt},
        {"= x\r\n", std::nullopt},
        {"=\r", std::nullopt},
        {"=\rx", std::nullopt},
        {"a=\r\r\n", std::nullopt},
        {"a= ", std::nullopt},
    };
    Ref<RFC_QUOP_OPTIONS> options = adopt(rfcQuopOptionsCreate());
    for (const auto &[text, raw] : cases) {
        for (const rfc::Kernels *k : allKernels())
            EXPECT_EQ(quopDecode(text, *k), raw) << k->name << " '" << text << "'";
        EXPECT_EQ(taken(rfcQuopTryDecodeWithOptions(bytes(text).get(), options.get())), raw) << text;
    }
}

// For generated text and bytes at line lengths from the shortest to the longest:
// the text keeps the line rules, decodes to the input, and both kernels write it;
// every kernel counts the bytes that are always escaped alike, and the text is
// at least two characters longer for each.
TEST(Quop, RoundTripAndLineRulesAtEveryLineLength)
{
    std::mt19937_64 rng(5);
    std::vector<const rfc::Kernels *> kernels = allKernels();
    for (int64_t limit = 4; limit <= 76; ++limit)
        for (int round = 0; round < 40; ++round) {
            size_t n = rng() % 400;
            std::string raw = round % 4 == 0 ? randomBytes(rng, n) : randomText(rng, n);
            std::string text = quopEncode(raw, limit, *kernels[0]);
            ASSERT_EQ(lineRuleViolation(text, static_cast<size_t>(limit)), "") << limit;
            size_t escaped = 0;
            for (unsigned char b : raw)
                escaped += b == '=' || b >= 127 || (b < 32 && b != '\t' && b != '\r' && b != '\n');
            ASSERT_GE(text.size(), raw.size() + 2 * escaped);
            for (const rfc::Kernels *k : kernels) {
                ASSERT_EQ(k->quopEscapeCount(reinterpret_cast<const uint8_t *>(raw.data()), n), escaped) << k->name;
                ASSERT_EQ(quopEncode(raw, limit, *k), text) << k->name;
                ASSERT_EQ(quopDecode(text, *k), raw) << k->name << " limit " << limit;
            }
        }
}

TEST(Quop, LargeInputsRoundTripThroughTheBufferInterface)
{
    std::mt19937_64 rng(6);
    Ref<RFC_QUOP_OPTIONS> options = adopt(rfcQuopOptionsCreate());
    for (std::string raw : {randomText(rng, 3u << 20), randomBytes(rng, 1u << 20)}) {
        std::optional<std::string> text = taken(rfcQuopEncodeWithOptions(bytes(raw).get(), options.get()));
        ASSERT_TRUE(text);
        EXPECT_EQ(lineRuleViolation(*text, 76), "");
        EXPECT_TRUE(taken(rfcQuopTryDecodeWithOptions(bytes(*text).get(), options.get())) == raw);
    }
}

// The decoders agree on damaged text too: failure or the same bytes.
TEST(Quop, KernelsAgreeOnDamagedText)
{
    std::vector<const rfc::Kernels *> kernels = allKernels();
    if (kernels.size() < 2)
        GTEST_SKIP() << "no vector kernels on this processor";
    std::mt19937_64 rng(7);
    for (int round = 0; round < 3000; ++round) {
        std::string text = quopEncode(randomText(rng, rng() % 300), 76, *kernels[0]);
        for (int defects = static_cast<int>(rng() % 4); defects > 0 && !text.empty(); --defects)
            text[rng() % text.size()] = " \t\r\n=aF9\xe9"[rng() % 9];
        ASSERT_EQ(quopDecode(text, *kernels[0]), quopDecode(text, *kernels[1])) << text;
    }
}

TEST(Quop, IncompleteLastByteIsRefused)
{
    Ref<PB_BUFFER> b = bytes("fo");
    const uint8_t bits = 0xA0;
    pbBufferAppendBits(b.addr(), &bits, 3);
    Ref<RFC_QUOP_OPTIONS> options = adopt(rfcQuopOptionsCreate());
    EXPECT_EQ(taken(rfcQuopEncodeWithOptions(b.get(), options.get())), std::nullopt);
}
