// Vectors and stores.
#include "pb_text.hpp"

#include <gtest/gtest.h>

using namespace test;

namespace {

TEST(Vector, EditsKeepOrder)
{
    Ref<PB_VECTOR> v = adopt(pbVectorCreate());
    for (const char *s : {"a", "b", "c", "d"})
        pbVectorAppendString(v.addr(), str(s).get());
    pbVectorDelAt(v.addr(), 1);
    pbVectorSetObjAt(v.addr(), 2, pbStringObj(str("D").get()));
    EXPECT_EQ(text(pbVectorObj(v.get())), "[a, c, D]");
    EXPECT_TRUE(pbVectorContainsOnly(v.get(), pbStringSort()));
    pbVectorAppendObj(v.addr(), pbBufferObj(bytes("x").get()));
    EXPECT_FALSE(pbVectorContainsOnly(v.get(), pbStringSort()));
    pbVectorAppendObj(v.addr(), pbVectorObj(v.get()));
    EXPECT_EQ(text(pbVectorObj(v.get())), "[a, c, D, 78, [a, c, D, 78]]");
}

TEST(Store, EntriesOfEachKind)
{
    Ref<PB_STORE> sub = adopt(pbStoreCreate());
    pbStoreSetValueIntCstr(sub.addr(), "lineLength", -1, 76);
    Ref<PB_STORE> s = adopt(pbStoreCreate());
    pbStoreSetValueCstr(s.addr(), "flags", -1, str("A, B").get());
    pbStoreSetValueIntCstr(s.addr(), "wrapLineLength", -1, -1);
    pbStoreSetStoreCstr(s.addr(), "rfcBaseOptions", -1, sub.get());

    EXPECT_EQ(take(pbStoreValueCstr(s.get(), "flags", -1)), "A, B");
    PB_INT n = 0;
    EXPECT_TRUE(pbStoreValueIntCstr(s.get(), &n, "wrapLineLength", -1));
    EXPECT_EQ(n, -1);
    Ref<PB_STORE> back = adopt(pbStoreStoreCstr(s.get(), "rfcBaseOptions", -1));
    EXPECT_TRUE(pbStoreEquals(back.get(), sub.get()));

    // Asking for the wrong kind finds nothing and leaves the output alone.
    n = 5;
    EXPECT_FALSE(pbStoreValueIntCstr(s.get(), &n, "flags", -1));
    EXPECT_EQ(n, 5);
    EXPECT_EQ(pbStoreValueCstr(s.get(), "wrapLineLength", -1), nullptr);
    EXPECT_EQ(pbStoreStoreCstr(s.get(), "flags", -1), nullptr);
    EXPECT_EQ(pbStoreValueCstr(s.get(), "missing", -1), nullptr);

    EXPECT_EQ(pbStoreLength(s.get()), 3);
    EXPECT_EQ(take(pbStoreKeyAt(s.get(), 0)), "flags");
    EXPECT_EQ(text(pbStoreObj(s.get())), "{flags=\"A, B\", rfcBaseOptions={lineLength=76}, wrapLineLength=-1}");

    // Setting a key replaces its entry whatever kind it held.
    pbStoreSetValueIntCstr(s.addr(), "flags", -1, 3);
    EXPECT_TRUE(pbStoreValueIntCstr(s.get(), &n, "flags", -1));
    EXPECT_EQ(n, 3);
}

TEST(Store, CompareSeesKindAndValue)
{
    Ref<PB_STORE> a = adopt(pbStoreCreate());
    Ref<PB_STORE> b = adopt(pbStoreCreate());
    pbStoreSetValueIntCstr(a.addr(), "k", -1, 1);
    pbStoreSetValueCstr(b.addr(), "k", -1, str("1").get());
    EXPECT_NE(pbStoreCompare(a.get(), b.get()), 0);
    pbStoreSetValueIntCstr(b.addr(), "k", -1, 1);
    EXPECT_EQ(pbStoreCompare(a.get(), b.get()), 0);
    pbStoreSetStoreCstr(a.addr(), "s", -1, a.get()); // a store into itself: its value as it was
    Ref<PB_STORE> inner = adopt(pbStoreStoreCstr(a.get(), "s", -1));
    EXPECT_TRUE(pbStoreEquals(inner.get(), b.get()));
}

} // namespace
