// The format language of pbStringCreateFromFormatCstr.
#include "abort.hpp"
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

TEST(Format, TildeTakesOverTheReference)
{
    PB_STRING *a = pbStringCreateFromCstr("a", -1);
    PB_IDENTIFIER *id = pbIdentifierCreate();
    std::string idText = text(pbIdentifierObj(id));
    PB_INT live = pb___ObjLiveCount();
    // "%~s%s" with one object twice: taken over once, released after the text is complete.
    EXPECT_EQ(format("%~s%s", a, a), "aa");
    EXPECT_EQ(format("%~o@%~o", pbIdentifierObj(id), pbIdentifierObj(pbIdentifierRetain(id))), idText + "@" + idText);
    EXPECT_EQ(pb___ObjLiveCount(), live - 2) << "both objects were released by the format";
}

TEST(Format, AppendKeepsWhatIsThere)
{
    Ref<PB_STRING> s = str("x=");
    Ref<PB_STRING> shared = pb::retained(s.get());
    pbStringAppendFormatCstr(s.addr(), "%i;%s", -1, PB_INT{5}, shared.get());
    EXPECT_EQ(utf8(s.get()), "x=5;x=");
    EXPECT_EQ(utf8(shared.get()), "x=");
}

using FormatDeathTest = testing::Test;

TEST(FormatDeathTest, UnknownDirectivesAbort)
{
    for (const char *f : {"%d", "%", "%~i", "%!99i", "%ls"}) {
        SCOPED_TRACE(f);
        EXPECT_DEATH(pbStringCreateFromFormatCstr(f, -1, PB_INT{1}),
                     testing::HasSubstr("invalid format directive: source/pb/pb_format.cpp:"));
    }
}

} // namespace
