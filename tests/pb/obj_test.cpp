// Objects: reference counts, the sharing contract of every value type, the
// generic order and text, and the standard-function aborts.
#include "abort.hpp"
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <pb/pb_obj.hpp>

using namespace test;

namespace {

PB_INT refs(const void *obj) { return pb::refCount(obj).load(); }

// Each value type: how to make one, change it through its address, and read it.
struct StringTraits {
    using T = PB_STRING;
    static T *create() { return pbStringCreateFromCstr("abc", -1); }
    static void change(T **p) { pbStringAppendChar(p, 'd'); }
    static std::string read(T *p) { return utf8(p); }
};
struct BufferTraits {
    using T = PB_BUFFER;
    static T *create() { return pbBufferCreateFromBytesCopy("abc", 3); }
    static void change(T **p) { pbBufferAppendByte(p, 'd'); }
    static std::string read(T *p) { return bytesOf(p); }
};
struct DictTraits {
    using T = PB_DICT;
    static T *create()
    {
        PB_DICT *d = pbDictCreate();
        pbDictSetStringKeyCstr(&d, "k", -1, pbStringObj(str("v").get()));
        return d;
    }
    static void change(T **p) { pbDictSetStringKeyCstr(p, "k2", -1, pbStringObj(str("w").get())); }
    static std::string read(T *p) { return text(pbDictObj(p)); }
};
struct VectorTraits {
    using T = PB_VECTOR;
    static T *create()
    {
        PB_VECTOR *v = pbVectorCreate();
        pbVectorAppendString(&v, str("a").get());
        return v;
    }
    static void change(T **p) { pbVectorSetObjAt(p, 0, pbStringObj(str("b").get())); }
    static std::string read(T *p) { return text(pbVectorObj(p)); }
};
struct StoreTraits {
    using T = PB_STORE;
    static T *create()
    {
        PB_STORE *s = pbStoreCreate();
        pbStoreSetValueIntCstr(&s, "n", -1, 1);
        return s;
    }
    static void change(T **p) { pbStoreSetValueIntCstr(p, "n", -1, 2); }
    static std::string read(T *p) { return text(pbStoreObj(p)); }
};
struct FlagsetTraits {
    using T = PB_FLAGSET;
    static T *create()
    {
        PB_FLAGSET *f = pbFlagsetCreate();
        pbFlagsetSetFlagCstr(&f, "A", -1, 1);
        return f;
    }
    static void change(T **p) { pbFlagsetSetFlagCstr(p, "B", -1, 2); }
    static std::string read(T *p) { return text(reinterpret_cast<PB_OBJ *>(p)); }
};

template <class Traits> class SharingContract : public testing::Test {};
using ValueTypes = testing::Types<StringTraits, BufferTraits, DictTraits, VectorTraits, StoreTraits, FlagsetTraits>;
TYPED_TEST_SUITE(SharingContract, ValueTypes);

TYPED_TEST(SharingContract, ChangeOfSharedValueGoesToPrivateCopy)
{
    using T = typename TypeParam::T;
    T *mine = TypeParam::create();
    T *theirs = mine;
    pb::retain(theirs);
    std::string before = TypeParam::read(theirs);

    TypeParam::change(&mine);

    EXPECT_NE(mine, theirs) << "a shared value must be copied before the change";
    EXPECT_EQ(TypeParam::read(theirs), before);
    EXPECT_NE(TypeParam::read(mine), before);
    EXPECT_EQ(refs(theirs), 1) << "the caller's reference to the shared value is dropped";
    EXPECT_EQ(refs(mine), 1);
    pb::release(mine);
    pb::release(theirs);
}

TYPED_TEST(SharingContract, ChangeOfSoleReferenceIsInPlace)
{
    using T = typename TypeParam::T;
    T *mine = TypeParam::create();
    T *before = mine;
    TypeParam::change(&mine);
    EXPECT_EQ(mine, before);
    pb::release(mine);
}

TEST(Obj, SetFieldToHeldObjectKeepsItAlive)
{
    PB_STRING *s = pbStringCreateFromCstr("x", -1);
    PB_STRING *field = nullptr;
    pb::setField(field, s);
    pb::setField(field, field); // self-assignment with the field's only other holder
    pbStringRelease(s);
    EXPECT_EQ(utf8(field), "x");
    EXPECT_EQ(refs(field), 1);
    pb::releaseField(field);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(field), ~uintptr_t{0}) << "released fields are poisoned";
}

TEST(Obj, StaticRecordsAreNeverCountedOrFreed)
{
    const PB_SORT *sort = pbStringSort();
    auto *asObj = reinterpret_cast<PB_OBJ *>(const_cast<PB_SORT *>(sort));
    PB_INT live = pb___ObjLiveCount();
    pbObjRetain(asObj);
    pbObjRelease(asObj);
    pbObjRelease(asObj);
    EXPECT_EQ(sort->header.refCount, 1);
    EXPECT_EQ(pb___ObjLiveCount(), live);
    EXPECT_EQ(text(asObj), "PB_STRING") << "a sort record's text is its name";
    EXPECT_STREQ(pbSortName(pbObjSort(asObj)), "PB_SORT");
}

TEST(Obj, OrderAcrossSortsIsByNameThenTotal)
{
    Ref<PB_STRING> s = str("z");
    Ref<PB_BUFFER> b = bytes("a");
    Ref<PB_DICT> d = adopt(pbDictCreate());
    // PB_BUFFER < PB_DICT < PB_STRING by sort name, whatever the contents.
    EXPECT_LT(pbObjCompare(pbBufferObj(b.get()), pbDictObj(d.get())), 0);
    EXPECT_LT(pbObjCompare(pbDictObj(d.get()), pbStringObj(s.get())), 0);
    EXPECT_GT(pbObjCompare(pbStringObj(s.get()), pbBufferObj(b.get())), 0);
    EXPECT_TRUE(pbStringEquals(s.get(), str("z").get()));
}

using ObjDeathTest = testing::Test;

TEST(ObjDeathTest, StandardFunctionsAbortWithTheirFamilyText)
{
    Ref<PB_BUFFER> b = bytes("x");
    EXPECT_DEATH(pbStringRetain(nullptr), abortLine("stdfunc retain", "source/pb/pb_string.cpp", "obj"));
    EXPECT_DEATH(pbStringRelease(nullptr), abortLine("stdfunc release", "source/pb/pb_string.cpp", "obj"));
    EXPECT_DEATH(pbStringFrom(pbBufferObj(b.get())),
                 abortLine("stdfunc from", "source/pb/pb_string.cpp", "!obj || pbObjSort(obj)==&pb___sort_PB_STRING"));
    EXPECT_DEATH(pbStringToString(nullptr), abortLine("stdfunc tostring", "source/pb/pb_string.cpp", "obj"));
    EXPECT_DEATH(pbBufferCompare(nullptr, b.get()), abortLine("stdfunc compare a", "source/pb/pb_buffer.cpp", "objA"));
    EXPECT_DEATH(pbBufferCompare(b.get(), nullptr), abortLine("stdfunc compare b", "source/pb/pb_buffer.cpp", "objB"));
}

TEST(ObjDeathTest, AssertionsNameTheirSourceExpression)
{
    Ref<PB_STRING> s = str("ab");
    EXPECT_DEATH(pbStringCharAt(s.get(), 2), assertion("source/pb/pb_string.cpp", "index >= 0 && index < s->length"));
    EXPECT_DEATH(pbCharsetToIanaName(51), assertion("source/pb/pb_charset.cpp", "PB_CHARSET_OK( charset )"));
    EXPECT_DEATH(pbStringCreateFromFormatCstr("%q", -1),
                 abortLine("invalid format directive", "source/pb/pb_format.cpp", "known"));
}

} // namespace
