// The format language of pbStringCreateFromFormatCstr.
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <pb/pb_obj.hpp>

using namespace test;

namespace {

std::string format(const char *f, auto... args)
{
    return take(pbStringCreateFromFormatCstr(f, -1, args...));
}

TEST(Format, IntegerDirectives)
{
    struct Row {
        const char *format;
        PB_INT value;
        const char *out;
    } rows[] = {
        {"%i", 0, "0"},
        {"%i", -42, "-42"},
        {"%i", PB_INT_MAX, "9223372036854775807"},
        {"%i", PB_INT_MIN, "-9223372036854775808"},
        {"%^02!16i", 7, "07"},
        {"%^02!16i", 0x2A, "2A"},
        {"%^02!16i", 0xE2, "E2"},
        {"%^02!16i", 0x1FF, "1FF"},
        {"%02!16i", 0xab, "ab"},
        {"%!2i", 5, "101"},
        {"%!36i", 35, "z"},
        {"%5i", -3, "   -3"},
        {"%-5i|", 12, "12   |"},
        {"%05i", -3, "-0003"},
        {"%%%^02!16i", 10, "%0A"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.format);
        EXPECT_EQ(format(row.format, row.value), row.out);
    }
}

TEST(Format, TextDirectives)
{
    Ref<PB_STRING> name = str("title");
    Ref<PB_DICT> dict = adopt(pbDictCreate());
    pbDictSetStringKeyCstr(dict.addr(), "a", -1, pbStringObj(str("1").get()));
    EXPECT_EQ(format("%s*%i*", name.get(), PB_INT{3}), "title*3*");
    EXPECT_EQ(format("%s*%i%lc", name.get(), PB_INT{0}, "*"), "title*0*");
    EXPECT_EQ(format("%s%lc", name.get(), ""), "title");
    EXPECT_EQ(format("%s''", name.get()), "title''");
    EXPECT_EQ(format("<%s>", name.get()), "<title>");
    EXPECT_EQ(format("--%s", name.get()), "--title");
    EXPECT_EQ(format("%s %o", name.get(), pbDictObj(dict.get())), "title {a=1}");
    EXPECT_EQ(format("%c%lc", PB_CHAR{0x20AC}, "\xc3\xa9"), "\xe2\x82\xac\xc3\xa9");
    EXPECT_EQ(format("[%6s][%-6s]", name.get(), name.get()), "[ title][title ]");
    EXPECT_EQ(format("%s|%o", static_cast<PB_STRING *>(nullptr), static_cast<PB_OBJ *>(nullptr)), "(null)|(null)");
    EXPECT_EQ(format("caf\xc3\xa9 100%%"), "caf\xc3\xa9 100%");
}

} // namespace
