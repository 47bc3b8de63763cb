// Flag sets: text form, parsing, and the round trip over every combination.
#include "pb_text.hpp"

#include <gtest/gtest.h>

using namespace test;

namespace {

Ref<PB_FLAGSET> sample()
{
    Ref<PB_FLAGSET> set = adopt(pbFlagsetCreate());
    pbFlagsetSetFlagCstr(set.addr(), "HIGH", -1, 1u << 5);
    pbFlagsetSetFlagCstr(set.addr(), "LOW", -1, 1);
    pbFlagsetSetFlagCstr(set.addr(), "MID", -1, 4);
    pbFlagsetSetFlagCstr(set.addr(), "BOTH", -1, 1 | 4);
    return set;
}

TEST(Flagset, GenerateNamesSetFlagsInValueOrder)
{
    Ref<PB_FLAGSET> set = sample();
    EXPECT_EQ(take(pbFlagsetGenerate(set.get(), 0)), "");
    EXPECT_EQ(take(pbFlagsetGenerate(set.get(), 1)), "LOW");
    EXPECT_EQ(take(pbFlagsetGenerate(set.get(), 1 | 4 | 32 | 64)), "LOW, MID, BOTH, HIGH");
}

TEST(Flagset, ParseIsLenient)
{
    Ref<PB_FLAGSET> set = sample();
    struct Row {
        const char *text;
        uint64_t bits;
    } rows[] = {
        {"", 0},      {"LOW", 1},          {"low", 1},  {" Low ,, mid ", 5}, {"LOW|HIGH", 33}, {"LOW\r\n\tHIGH", 33},
        {"LOWER", 0}, {"unknown, MID", 4}, {"BOTH", 5}, {"LOW,LOW", 1},      {",", 0},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(pbFlagsetParseCstr(set.get(), row.text, -1), row.bits);
    }
}

TEST(Flagset, ParseOfGenerateGivesTheNamedBits)
{
    Ref<PB_FLAGSET> set = sample();
    for (uint64_t bits = 0; bits < 128; ++bits) {
        Ref<PB_STRING> s = adopt(pbFlagsetGenerate(set.get(), bits));
        EXPECT_EQ(pbFlagsetParse(set.get(), s.get()), bits & (1 | 4 | 32)) << utf8(s.get());
    }
}

} // namespace
