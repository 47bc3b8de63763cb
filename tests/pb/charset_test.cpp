// Character sets: names, native conversions, and every set against Python's
// codecs as an independent oracle.
#include "oracle.hpp"
#include "pb_text.hpp"

#include <gtest/gtest.h>

#include <set>
#include <vector>

using namespace test;

namespace {

std::vector<std::vector<std::string>> oracle()
{
    static OracleLines lines = runOracle("pb/charset_oracle.py");
    return lines;
}

std::string decode(PB_CHARSET cs, const std::string &b, PB_INT flags = 0)
{
    PB_STRING *s = pbCharsetTryConvertBufferToStringWithFlags(cs, bytes(b).get(), flags);
    return s ? take(s) : "<null>";
}

std::string encode(PB_CHARSET cs, PB_STRING *s)
{
    Ref<PB_BUFFER> b = adopt(pbCharsetConvertStringToBuffer(cs, s));
    return b ? bytesOf(b.get()) : "<null>";
}

TEST(Charset, NamesAndAliasesInAnyCase)
{
    struct Row {
        const char *name;
        PB_CHARSET code;
    } rows[] = {
        {"utf-8", 44},  {"csUTF8", 44}, {"ANSI_X3.4-1968", 0}, {"L1", 1},         {"Latin-9", 13},
        {"cp1252", -1}, {"sjis", -1},   {"ms_kanji", 32},      {"", -1},          {"utf8", -1},
        {"UTF-8 ", -1}, {"437", 26},    {"mac", 30},           {"x-unknown", -1},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(pbCharsetFromIanaNameCstr(row.name, -1), row.code);
        EXPECT_EQ(pbCharsetFromStringCstr(row.name, -1), row.code);
    }
    // Every code's name and text form read back as that code.
    for (PB_CHARSET cs = 0; cs <= 50; ++cs) {
        EXPECT_EQ(pbCharsetFromIanaName(adopt(pbCharsetToIanaName(cs)).get()), cs);
        EXPECT_EQ(pbCharsetFromString(adopt(pbCharsetToString(cs)).get()), cs);
    }
    EXPECT_EQ(take(pbCharsetToIanaName(PB_CHARSET_UTF_8)), "UTF-8");
    EXPECT_EQ(take(pbCharsetToIanaName(PB_CHARSET_US_ASCII)), "US-ASCII");
}

// Failures at the edges of what a set holds ("<null>"), which the oracle's
// samples of encodable characters do not reach, and lenient replacement.
TEST(Charset, ConversionFailures)
{
    using namespace std::string_literals;
    const PB_INT strict = PB_CHARSET_FLAG_STRICT;
    EXPECT_EQ(encode(PB_CHARSET_US_ASCII, chars(U"a\u00e9").get()), "<null>");
    EXPECT_EQ(encode(PB_CHARSET_ISO_8859_1, chars(U"a\u20ac").get()), "<null>");
    EXPECT_EQ(encode(PB_CHARSET_SHIFT_JIS, chars(U"a\u20ac").get()), "<null>");
    EXPECT_EQ(encode(PB_CHARSET_UTF_16LE, chars(std::u32string(1, char32_t{0xDFFF})).get()), "<null>");
    const std::tuple<PB_CHARSET, std::string, PB_INT, std::string> decodes[] = {
        {PB_CHARSET_US_ASCII, "a\x80", 0, "a\xef\xbf\xbd"},
        {PB_CHARSET_US_ASCII, "a\x80", strict, "<null>"},
        {PB_CHARSET_SHIFT_JIS, "a\x82", strict, "<null>"}, // lead byte without trail byte
        {PB_CHARSET_SHIFT_JIS, "a\x82", 0, "a\xef\xbf\xbd"},
        {PB_CHARSET_UTF_16LE, "a\0b"s, strict, "<null>"}, // odd length
        {PB_CHARSET_UTF_16LE,
         "\0\xd8"
         "a\0"s,
         strict, "<null>"}, // lone surrogate
    };
    for (const auto &[cs, in, flags, out] : decodes)
        EXPECT_EQ(decode(cs, in, flags), out) << cs << " " << testing::PrintToString(in);
}

TEST(Charset, IncompleteLastByteIsInvalid)
{
    Ref<PB_BUFFER> b = bytes("ab");
    const PB_BYTE half = 0x40;
    pbBufferAppendBits(b.addr(), &half, 4);
    EXPECT_EQ(pbCharsetTryConvertBufferToStringWithFlags(PB_CHARSET_UTF_8, b.get(), PB_CHARSET_FLAG_STRICT), nullptr);
    EXPECT_EQ(take(pbCharsetConvertBufferToString(PB_CHARSET_UTF_8, b.get())), "ab\xef\xbf\xbd");
}

// Character by character against Python's codecs (vendor extensions that only
// some tables carry are left out by the oracle). Sets with one byte sequence per
// character must give the very same bytes; the stateful ones and those with a
// byte-order mark may choose other bytes, which must still read back.
TEST(Charset, EverySetAgreesWithPython)
{
    auto lines = oracle();
    if (lines.empty())
        GTEST_SKIP() << "python3 is not available";
    const std::set<std::string> freeChoice = {"UTF-7", "UTF-16", "UTF-32", "ISO-2022-JP", "ISO-2022-KR"};
    int sets = 0;
    for (const auto &f : lines) {
        if (f[0] != "SAMPLE")
            continue;
        ++sets;
        PB_CHARSET cs = std::stoi(f[1]);
        const std::string &name = f[2];
        SCOPED_TRACE(name);
        ASSERT_EQ(pbCharsetFromIanaNameCstr(name.c_str(), -1), cs);
        std::u32string agreed;
        std::string differences;
        int total = 0;
        std::istringstream pairs(f[3]);
        for (std::string pair; pairs >> pair; ++total) {
            size_t colon = pair.find(':');
            auto c = static_cast<char32_t>(std::stoul(pair.substr(0, colon), nullptr, 16));
            std::string theirs = unhex(pair.substr(colon + 1));
            Ref<PB_STRING> one = chars(std::u32string(1, c));
            std::string ours = encode(cs, one.get());
            bool same = decode(cs, theirs, PB_CHARSET_FLAG_STRICT) == utf8(one.get()) &&
                        decode(cs, ours, PB_CHARSET_FLAG_STRICT) == utf8(one.get()) &&
                        (freeChoice.count(name) || ours == theirs);
            if (same)
                agreed += c;
            else if (differences.size() < 200)
                differences += pair.substr(0, colon) + " ";
        }
        EXPECT_EQ(static_cast<int>(agreed.size()), total) << "differ: " << differences;
        // The agreed characters together, through our encoder and decoder (state changes included).
        Ref<PB_STRING> all = chars(agreed);
        EXPECT_EQ(decode(cs, encode(cs, all.get()), PB_CHARSET_FLAG_STRICT), utf8(all.get()));
    }
    EXPECT_EQ(sets, 51);
}

TEST(Charset, Utf8ReplacementMatchesPython)
{
    auto lines = oracle();
    if (lines.empty())
        GTEST_SKIP() << "python3 is not available";
    int cases = 0;
    for (const auto &f : lines) {
        if (f[0] != "UTF8")
            continue;
        ++cases;
        std::string input = unhex(f[1]);
        SCOPED_TRACE(f[1]);
        EXPECT_EQ(decode(PB_CHARSET_UTF_8, input), unhex(f[2]));
        EXPECT_EQ(take(pbStringCreateFromCstr(input.data(), static_cast<PB_INT>(input.size()))), unhex(f[2]));
        EXPECT_EQ(decode(PB_CHARSET_UTF_8, input, PB_CHARSET_FLAG_STRICT) != "<null>", f[3] == "1");
    }
    EXPECT_EQ(cases, 4000);
}

// Every scalar value through UTF-8 and back (the native codec's whole space).
TEST(Charset, Utf8RoundTripOfEveryScalar)
{
    std::u32string all;
    for (char32_t c = 0; c <= 0x10FFFF; ++c)
        if (c < 0xD800 || c > 0xDFFF)
            all += c;
    Ref<PB_STRING> s = chars(all);
    Ref<PB_BUFFER> b = adopt(pbCharsetConvertStringToBuffer(PB_CHARSET_UTF_8, s.get()));
    Ref<PB_STRING> back = adopt(pbCharsetTryConvertBufferToStringWithFlags(PB_CHARSET_UTF_8, b.get(), 1));
    ASSERT_TRUE(back);
    EXPECT_EQ(codePoints(back.get()), all);
}

} // namespace
