// The conventions every value type follows, exercised through a small sort
// declared here the way the library's own types declare themselves.
#include "abort.hpp"
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime_object.hpp>

using namespace test;

// A value with one string field: MIME_TEST_NOTE.
struct MIME_TEST_NOTE {
    PB_OBJ_HEADER header;
    PB_STRING *text;
};

namespace {

extern "C" {
static void mime___TestNoteFreeFunc(PB_OBJ *obj) noexcept;
}

} // namespace

MIME___SORT_DEFINE(TestNote, MIME_TEST_NOTE, mime___TestNoteFreeFunc, nullptr, nullptr)

namespace {

void mime___TestNoteFreeFunc(PB_OBJ *obj) noexcept
{
    MIME_TEST_NOTE *note = mimeTestNoteFrom(obj);
    PB_ASSERT( note );
    pb::releaseField(note->text);
}

MIME_TEST_NOTE *mimeTestNoteCreate(PB_STRING *text)
{
    auto *note = pb::create<MIME_TEST_NOTE>(mimeTestNoteSort());
    pb::setField(note->text, text);
    return note;
}

MIME_TEST_NOTE *mimeTestNoteCreateFrom(MIME_TEST_NOTE *source)
{
    PB_ASSERT( source );
    return mimeTestNoteCreate(source->text);
}

void mimeTestNoteSetText(MIME_TEST_NOTE **note, PB_STRING *text)
{
    PB_ASSERT_REF(note);
    PB_ASSERT( text );
    PB_OBJ_UNSHARE((*note), mimeTestNoteCreateFrom);
    pb::setField((*note)->text, text);
}

void mimeTestNoteSetTextCstr(MIME_TEST_NOTE **note, const char *text, PB_INT length)
{
    mimeTestNoteSetText(note, pb::Text(text, length));
}

void mimeTestNoteSetTextWcstr(MIME_TEST_NOTE **note, const wchar_t *text, PB_INT length)
{
    mimeTestNoteSetText(note, pb::Text(text, length));
}

TEST(ObjectConvention, SortRecordNamesTheTypeAndModule)
{
    const PB_SORT *sort = mimeTestNoteSort();
    EXPECT_STREQ(sort->name, "MIME_TEST_NOTE");
    EXPECT_EQ(sort->module, mimeModule());
    EXPECT_EQ(sort->header.kind, PB_OBJ_KIND_SORT);
    EXPECT_EQ(sort->header.refCount, 1);
    EXPECT_EQ(sort->compareFunc, nullptr);
}

TEST(ObjectConvention, SettersUnshareAndTextVariantsConvert)
{
    pb::Ref<MIME_TEST_NOTE> a = adopt(mimeTestNoteCreate(str("one").get()));
    pb::Ref<MIME_TEST_NOTE> b = pb::retained(a.get());
    mimeTestNoteSetTextCstr(b.addr(), "two", -1);
    EXPECT_NE(a.get(), b.get());
    EXPECT_EQ(utf8(a.get()->text), "one");
    EXPECT_EQ(utf8(b.get()->text), "two");
    MIME_TEST_NOTE *before = b.get();
    mimeTestNoteSetTextWcstr(b.addr(), L"three and more", 5);
    EXPECT_EQ(b.get(), before) << "a sole reference is changed in place";
    EXPECT_EQ(utf8(b.get()->text), "three");
    mimeTestNoteSetText(b.addr(), b.get()->text); // the field's own object
    EXPECT_EQ(utf8(b.get()->text), "three");
}

TEST(ObjectConvention, DefaultOrderAndTextAreByIdentity)
{
    pb::Ref<MIME_TEST_NOTE> a = adopt(mimeTestNoteCreate(str("same").get()));
    pb::Ref<MIME_TEST_NOTE> b = adopt(mimeTestNoteCreate(str("same").get()));
    EXPECT_TRUE(mimeTestNoteEquals(a.get(), a.get()));
    EXPECT_FALSE(mimeTestNoteEquals(a.get(), b.get()));
    EXPECT_EQ(mimeTestNoteCompare(a.get(), b.get()), -mimeTestNoteCompare(b.get(), a.get()));
    std::string t = take(mimeTestNoteToString(a.get()));
    EXPECT_EQ(t.rfind("MIME_TEST_NOTE@", 0), 0u) << t;
    EXPECT_NE(t, take(mimeTestNoteToString(b.get())));
}

using ObjectConventionDeathTest = testing::Test;

TEST(ObjectConventionDeathTest, AbortTexts)
{
    const char *file = "tests/mime/object_convention_test.cpp";
    pb::Ref<MIME_TEST_NOTE> note = adopt(mimeTestNoteCreate(str("x").get()));
    pb::Ref<PB_STRING> s = str("x");
    EXPECT_DEATH(mimeTestNoteRetain(nullptr), abortLine("stdfunc retain", file, "obj"));
    EXPECT_DEATH(mimeTestNoteRelease(nullptr), abortLine("stdfunc release", file, "obj"));
    EXPECT_DEATH(mimeTestNoteFrom(pbStringObj(s.get())),
                 abortLine("stdfunc from", file, "!obj || pbObjSort(obj)==&mime___sort_MIME_TEST_NOTE"));
    EXPECT_DEATH(mimeTestNoteToString(nullptr), abortLine("stdfunc tostring", file, "obj"));
    EXPECT_DEATH(mimeTestNoteCompare(nullptr, note.get()), abortLine("stdfunc compare a", file, "objA"));
    EXPECT_DEATH(mimeTestNoteCompare(note.get(), nullptr), abortLine("stdfunc compare b", file, "objB"));
    MIME_TEST_NOTE *empty = nullptr;
    EXPECT_DEATH(mimeTestNoteSetText(nullptr, s.get()), assertion(file, "note"));
    EXPECT_DEATH(mimeTestNoteSetText(&empty, s.get()), assertion(file, "*note"));
}

// The unshare step's own check reads "((*note))": the macro adds its parentheses.
TEST(ObjectConventionDeathTest, UnshareConditionText)
{
    MIME_TEST_NOTE *empty = nullptr;
    MIME_TEST_NOTE **p = &empty;
    EXPECT_DEATH(PB_OBJ_UNSHARE((*p), mimeTestNoteCreateFrom),
                                assertion("tests/mime/object_convention_test.cpp", "((*p))"));
}

} // namespace
