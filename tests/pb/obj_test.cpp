// Objects: reference counts, the sharing contract of every value type, the
// generic order and text, and the standard-function aborts.
#include "abort.hpp"
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <pb/pb_mem.h>
#include <pb/pb_mem.hpp>
#include <pb/pb_obj.hpp>

#include <algorithm>
#include <vector>

using namespace test;

namespace {

PB_INT refs(const void *obj)
{
    return pb::refCount(obj).load();
}

// Each value type: how to make one and how to change it through its address.
// Its text form (pbObjToString) shows what it holds.
struct ValueType {
    const char *name;
    PB_OBJ *(*create)();
    void (*change)(PB_OBJ **);
};
const ValueType kValueTypes[] = {
    {"string", [] { return pbStringObj(pbStringCreateFromCstr("abc", -1)); },
     [](PB_OBJ **p) { pbStringAppendChar(reinterpret_cast<PB_STRING **>(p), 'd'); }},
    {"buffer", [] { return pbBufferObj(pbBufferCreateFromBytesCopy("abc", 3)); },
     [](PB_OBJ **p) { pbBufferAppendByte(reinterpret_cast<PB_BUFFER **>(p), 'd'); }},
    {"dict", [] { return pbDictObj(pbDictCreate()); },
     [](PB_OBJ **p) { pbDictSetStringKeyCstr(reinterpret_cast<PB_DICT **>(p), "k", -1, pbStringObj(str("v").get())); }},
    {"vector", [] { return pbVectorObj(pbVectorCreate()); },
     [](PB_OBJ **p) { pbVectorAppendString(reinterpret_cast<PB_VECTOR **>(p), str("a").get()); }},
    {"store", [] { return pbStoreObj(pbStoreCreate()); },
     [](PB_OBJ **p) { pbStoreSetValueIntCstr(reinterpret_cast<PB_STORE **>(p), "n", -1, 2); }},
    {"flagset", [] { return pbFlagsetObj(pbFlagsetCreate()); },
     [](PB_OBJ **p) { pbFlagsetSetFlagCstr(reinterpret_cast<PB_FLAGSET **>(p), "B", -1, 2); }},
};

TEST(SharingContract, ChangeOfSharedValueGoesToPrivateCopy)
{
    for (const ValueType &type : kValueTypes) {
        SCOPED_TRACE(type.name);
        PB_OBJ *mine = type.create();
        PB_OBJ *theirs = pbObjRetain(mine);
        std::string before = text(theirs);

        type.change(&mine);

        EXPECT_NE(mine, theirs) << "a shared value must be copied before the change";
        EXPECT_EQ(text(theirs), before);
        EXPECT_NE(text(mine), before);
        EXPECT_EQ(refs(theirs), 1) << "the caller's reference to the shared value is dropped";
        EXPECT_EQ(refs(mine), 1);
        pbObjRelease(mine);
        pbObjRelease(theirs);
    }
}

TEST(SharingContract, ChangeOfSoleReferenceIsInPlace)
{
    for (const ValueType &type : kValueTypes) {
        SCOPED_TRACE(type.name);
        PB_OBJ *mine = type.create();
        PB_OBJ *before = mine;
        type.change(&mine);
        EXPECT_EQ(mine, before);
        pbObjRelease(mine);
    }
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

using ObjDeathTest = testing::Test;

// Blocks on either side of the 256-byte and 2 MiB lines and resized across them
// both ways keep their bytes; a released large block comes back for the next of
// about its size.
TEST(Mem, BlocksKeepTheirBytesWhenResized)
{
    constexpr PB_INT kMiB = PB_INT{1} << 20;
    const PB_INT sizes[][2] = {{100, 200},
                               {20, 24},
                               {20, 250},
                               {250, 300},
                               {300, 17},
                               {256, 257},
                               {kMiB, 3 * kMiB},
                               {3 * kMiB, 9 * kMiB},
                               {9 * kMiB, kMiB},
                               {5 * kMiB, 100},
                               {2 * kMiB, 2 * kMiB + 1}};
    for (const auto &[from, to] : sizes) {
        SCOPED_TRACE(testing::Message() << from << " -> " << to);
        auto *block = static_cast<unsigned char *>(pb___MemAlloc(from));
        if (pb::mem::isLarge(from)) {
            pb___MemRelease(block, from);
            auto *again = static_cast<unsigned char *>(pb___MemAlloc(from));
            EXPECT_EQ(again, block);
            block = again;
        }
        for (PB_INT i = 0; i < from; i += 4093)
            block[i] = static_cast<unsigned char>(i * 7);
        block = static_cast<unsigned char *>(pb___MemResize(block, from, to));
        for (PB_INT i = 0; i < std::min(from, to); i += 4093)
            ASSERT_EQ(block[i], static_cast<unsigned char>(i * 7)) << i;
        block[to - 1] = 1; // the whole new size is writable
        pb___MemRelease(block, to);
    }
}

// Freed large blocks beyond what is kept push out the ones kept longest, so
// that the sizes of the moment are there for the next blocks.
TEST(Mem, LatestFreedBlocksAreKept)
{
    if (!pb::mem::isLarge(pb::mem::kLargeBlock))
        GTEST_SKIP() << "every block comes from malloc in this build";
    constexpr PB_INT kMiB = PB_INT{1} << 20;
    std::vector<void *> blocks;
    for (PB_INT n = 0; n < 12; ++n)
        blocks.push_back(pb___MemAlloc((3 + 2 * n) * kMiB));
    for (PB_INT n = 0; n < 12; ++n)
        pb___MemRelease(blocks[static_cast<size_t>(n)], (3 + 2 * n) * kMiB);
    void *again = pb___MemAlloc(25 * kMiB);
    EXPECT_EQ(again, blocks.back());
    pb___MemRelease(again, 25 * kMiB);
}

// A small block released comes back for the next block of its list (sizes of
// 16 bytes, 8 to 264), all of which it holds.
TEST(Mem, SmallBlocksComeBackForTheirSize)
{
    if (!pb::mem::kMapsLargeBlocks)
        GTEST_SKIP() << "every block comes from malloc in this build";
    for (PB_INT bytes : {1, 16, 17, 200, 256}) {
        void *block = pb___MemAlloc(bytes);
        pb___MemRelease(block, bytes);
        const PB_INT whole = std::min<PB_INT>((bytes + 7) / 16 * 16 + 8, 256);
        auto *again = static_cast<unsigned char *>(pb___MemAlloc(whole));
        EXPECT_EQ(again, block) << bytes;
        std::fill(again, again + whole, 1);
        pb___MemRelease(again, whole);
    }
}

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
