// Strings: reading C text, slicing, changing, splitting and comparing.
#include "pb_text.hpp"

#include <gtest/gtest.h>

#include <random>

using namespace test;

namespace {

TEST(String, CstrLengthIsBytesOrUpToNul)
{
    const char text[] = "ab\0cd";
    EXPECT_EQ(take(pbStringCreateFromCstr(text, -1)), "ab");
    EXPECT_EQ(codePoints(adopt(pbStringCreateFromCstr(text, 5)).get()), std::u32string(U"ab\0cd", 5));
    EXPECT_EQ(codePoints(str("\xe2\x82\xac\xf0\x9f\x98\x80").get()), U"\u20ac\U0001F600");
}

TEST(String, WcstrReadsCodePointsAndReplacesNonScalars)
{
    const wchar_t text[] = {L'a',
                            static_cast<wchar_t>(0x20AC),
                            static_cast<wchar_t>(0x1F600),
                            static_cast<wchar_t>(0xD800),
                            static_cast<wchar_t>(0xDFFF),
                            static_cast<wchar_t>(0x110000),
                            0};
    EXPECT_EQ(codePoints(adopt(pbStringCreateFromWcstr(text, -1)).get()), U"a\u20ac\U0001F600\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(pbStringLength(adopt(pbStringCreateFromWcstr(text, 2)).get()), 2);
}

TEST(String, ConvertToCstrWritesUtf8AndLength)
{
    Ref<PB_STRING> s = chars(U"a\u00e9\U0001F600");
    PB_INT n = -1;
    char *text = pbStringConvertToCstr(s.get(), 0, &n);
    EXPECT_EQ(std::string(text), "a\xc3\xa9\xf0\x9f\x98\x80");
    EXPECT_EQ(n, 7);
    pbMemFree(text);
}

TEST(String, TrimRemovesSpaceTabCrLfOnly)
{
    struct Row {
        const char *in, *out;
    } rows[] = {
        {"", ""}, {" \t\r\n", ""}, {"  a b  ", "a b"}, {"\r\nx\r\n", "x"}, {"\vx\f", "\vx\f"}, {"x", "x"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.in);
        Ref<PB_STRING> s = str(row.in);
        pbStringTrim(s.addr());
        EXPECT_EQ(utf8(s.get()), row.out);
    }
}

TEST(String, ToLowerMapsAsciiLettersOnly)
{
    Ref<PB_STRING> s = chars(U"AZaz@[\u00c9\u0130Q");
    pbStringToLower(s.addr());
    EXPECT_EQ(codePoints(s.get()), U"azaz@[\u00c9\u0130q");
}

TEST(String, SplitTable)
{
    struct Row {
        const char *in;
        const char *sep;
        PB_INT max;
        const char *parts; // joined by '|'
    } rows[] = {
        {"", ",", -1, ""},
        {"a,b,c", ",", -1, "a|b|c"},
        {",a,", ",", -1, "|a|"},
        {"a,b,c", ",", 2, "a|b,c"},
        {"a,b,c", ",", 1, "a,b,c"},
        {"k:v:w", ":", 2, "k|v:w"},
        {"a\r\nb\r\n", "\r\n", -1, "a|b|"},
        {"a\r\r\nb", "\r\n", -1, "a\r|b"},
        {"a\nb", "\r\n", -1, "a\nb"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.in);
        Ref<PB_STRING> sep = str(row.sep);
        Ref<PB_VECTOR> parts = adopt(
            pbStringSplitChars(str(row.in).get(), pbStringBacking(sep.get()), pbStringLength(sep.get()), row.max));
        std::string joined;
        for (PB_INT i = 0; i < pbVectorLength(parts.get()); ++i)
            joined += (i ? "|" : "") + text(adopt(pbVectorObjAt(parts.get(), i)).get());
        EXPECT_EQ(joined, row.parts);
    }
}

TEST(String, EqualityTests)
{
    Ref<PB_STRING> s = str("Content-Type");
    const PB_CHAR type[] = {'T', 'y', 'p', 'e'};
    EXPECT_TRUE(pbStringEndsWithChars(s.get(), type, 4));
    EXPECT_FALSE(pbStringEqualsChars(s.get(), type, 4));
    EXPECT_TRUE(pbStringEqualsCaseFoldCstr(s.get(), "content-TYPE", -1));
    EXPECT_FALSE(pbStringEqualsCaseFoldCstr(s.get(), "content-typ", -1));
    EXPECT_TRUE(pbStringEqualsCaseFoldWcstr(s.get(), L"CONTENT-type", -1));
}

// A constant is one object for every holder: not counted live, untouched by
// retain and release, equal to the same text made anew, and changed by copy.
TEST(String, ConstantIsSharedAndChangedByCopy)
{
    const PB_CHAR word[] = {'u', 't', 'f', '-', '8'};
    PB_INT live = pb___ObjLiveCount();
    static PB_STRING *const constant = pb___StringCreateConstant(word, 5); // kept for the process
    EXPECT_EQ(pb___ObjLiveCount(), live);
    for (int i = 0; i < 3; ++i)
        pbStringRelease(pbStringRetain(constant));
    pbStringRelease(constant); // a holder's release leaves it for the others
    Ref<PB_STRING> holder = adopt(pbStringRetain(constant));
    EXPECT_TRUE(pbStringEquals(holder.get(), str("utf-8").get()));
    pbStringAppendChar(holder.addr(), '!');
    EXPECT_NE(holder.get(), constant);
    EXPECT_EQ(utf8(holder.get()), "utf-8!");
    EXPECT_EQ(utf8(constant), "utf-8");
}

// Appends in random places and checks against std::u32string.
TEST(String, RandomEditsMatchStdString)
{
    std::mt19937 rng(7);
    Ref<PB_STRING> s = adopt(pbStringCreate());
    std::u32string model;
    for (int step = 0; step < 2000; ++step) {
        Ref<PB_STRING> snapshot = pb::retained(s.get()); // every change must copy
        std::u32string before = model;
        switch (rng() % 5) {
        case 0: {
            auto c = static_cast<char32_t>(rng() % 0x300);
            pbStringAppendChar(s.addr(), c);
            model += c;
            break;
        }
        case 1:
            pbStringPrependChar(s.addr(), 'p');
            model.insert(model.begin(), U'p');
            break;
        case 2:
            if (!model.empty()) {
                PB_INT n = static_cast<PB_INT>(rng() % model.size());
                pbStringDelLeading(s.addr(), n);
                model.erase(0, static_cast<size_t>(n));
            }
            break;
        case 3:
            pbStringAppend(s.addr(), s.get());
            model += model;
            if (model.size() > 500) {
                pbStringDelTrailing(s.addr(), static_cast<PB_INT>(model.size() - 100));
                model.resize(100);
            }
            break;
        default:
            pbStringToLower(s.addr());
            for (char32_t &c : model)
                if (c >= U'A' && c <= U'Z')
                    c += 32;
        }
        ASSERT_EQ(codePoints(s.get()), model);
        ASSERT_EQ(codePoints(snapshot.get()), before);
    }
}

} // namespace
