// The two codec option sorts share one shape; each test runs over both.
#include "abort.hpp"
#include "codec_support.hpp"

#include <gtest/gtest.h>

using namespace test;

namespace {

struct BaseTraits {
    using T = RFC_BASE_OPTIONS;
    static constexpr const char *key = "outputLineLength";
    static constexpr PB_INT defaultValue = -1;
    static constexpr PB_INT other = 76;
    static constexpr PB_INT invalid[] = {-2, PB_INT_MIN};
    static T *create() { return rfcBaseOptionsCreate(); }
    static PB_INT get(T *o) { return rfcBaseOptionsOutputLineLength(o); }
    static void set(T **o, PB_INT v) { rfcBaseOptionsSetOutputLineLength(o, v); }
    static PB_STORE *store(T *o, PB_BOOL full) { return rfcBaseOptionsStore(o, full); }
    static T *restore(PB_STORE *s) { return rfcBaseOptionsRestore(s); }
    static PB_INT compare(T *a, T *b) { return rfcBaseOptionsCompare(a, b); }
    static PB_OBJ *obj(T *o) { return rfcBaseOptionsObj(o); }
};

struct QuopTraits {
    using T = RFC_QUOP_OPTIONS;
    static constexpr const char *key = "maxLineLength";
    static constexpr PB_INT defaultValue = 76;
    static constexpr PB_INT other = 40;
    static constexpr PB_INT invalid[] = {3, 77, -1};
    static T *create() { return rfcQuopOptionsCreate(); }
    static PB_INT get(T *o) { return rfcQuopOptionsMaxLineLength(o); }
    static void set(T **o, PB_INT v) { rfcQuopOptionsSetMaxLineLength(o, v); }
    static PB_STORE *store(T *o, PB_BOOL full) { return rfcQuopOptionsStore(o, full); }
    static T *restore(PB_STORE *s) { return rfcQuopOptionsRestore(s); }
    static PB_INT compare(T *a, T *b) { return rfcQuopOptionsCompare(a, b); }
    static PB_OBJ *obj(T *o) { return rfcQuopOptionsObj(o); }
};

template <class Traits> class CodecOptions : public testing::Test {
};
using OptionKinds = testing::Types<BaseTraits, QuopTraits>;
TYPED_TEST_SUITE(CodecOptions, OptionKinds);

} // namespace

TYPED_TEST(CodecOptions, DefaultsCompareTextAndCopy)
{
    using T = TypeParam;
    Ref<typename T::T> a = adopt(T::create());
    Ref<typename T::T> b = adopt(T::create());
    EXPECT_EQ(T::get(a.get()), T::defaultValue);
    EXPECT_EQ(T::compare(a.get(), b.get()), 0);
    T::set(b.addr(), T::other);
    EXPECT_EQ(T::compare(a.get(), b.get()), T::defaultValue < T::other ? -1 : 1);
    EXPECT_EQ(T::compare(b.get(), a.get()), -T::compare(a.get(), b.get()));
    EXPECT_EQ(text(T::obj(b.get())), std::string(T::key) + "=" + std::to_string(T::other));
    // A shared object is copied before the change.
    Ref<typename T::T> c = pb::retained(b.get());
    T::set(c.addr(), T::defaultValue);
    EXPECT_NE(b.get(), c.get());
    EXPECT_EQ(T::get(b.get()), T::other);
}

TYPED_TEST(CodecOptions, StoreAndRestore)
{
    using T = TypeParam;
    Ref<typename T::T> fresh = adopt(T::create());
    Ref<PB_STORE> sparse = adopt(T::store(fresh.get(), 0));
    EXPECT_EQ(pbStoreLength(sparse.get()), 0);
    Ref<PB_STORE> full = adopt(T::store(fresh.get(), 1));
    PB_INT stored = 0;
    EXPECT_TRUE(pbStoreValueIntCstr(full.get(), &stored, T::key, -1));
    EXPECT_EQ(stored, T::defaultValue);

    Ref<typename T::T> changed = adopt(T::create());
    T::set(changed.addr(), T::other);
    for (PB_BOOL isFull : {0, 1}) {
        Ref<PB_STORE> store = adopt(T::store(changed.get(), isFull));
        EXPECT_EQ(pbStoreLength(store.get()), 1);
        Ref<typename T::T> back = adopt(T::restore(store.get()));
        EXPECT_EQ(T::compare(back.get(), changed.get()), 0);
    }
}

// Restore never fails: wrong kinds, values out of range and other keys leave
// the defaults.
TYPED_TEST(CodecOptions, RestoreIgnoresBadEntries)
{
    using T = TypeParam;
    std::vector<Ref<PB_STORE>> stores;
    for (PB_INT bad : T::invalid) {
        stores.push_back(adopt(pbStoreCreate()));
        pbStoreSetValueIntCstr(stores.back().addr(), T::key, -1, bad);
    }
    stores.push_back(adopt(pbStoreCreate()));
    pbStoreSetValueCstr(stores.back().addr(), T::key, -1, str("40").get());
    stores.push_back(adopt(pbStoreCreate()));
    pbStoreSetStoreCstr(stores.back().addr(), T::key, -1, adopt(pbStoreCreate()).get());
    pbStoreSetValueIntCstr(stores.back().addr(), "unknown", -1, 40);
    for (auto &store : stores) {
        Ref<typename T::T> back = adopt(T::restore(store.get()));
        ASSERT_TRUE(back);
        EXPECT_EQ(T::get(back.get()), T::defaultValue);
    }
}

using CodecOptionsDeathTest = testing::Test;

TEST(CodecOptionsDeathTest, SettersCheckTheRange)
{
    Ref<RFC_BASE_OPTIONS> base = adopt(rfcBaseOptionsCreate());
    Ref<RFC_QUOP_OPTIONS> quop = adopt(rfcQuopOptionsCreate());
    EXPECT_DEATH(rfcBaseOptionsSetOutputLineLength(base.addr(), -2),
                 assertion("source/rfc/rfc_base_options.cpp", "setting.valid( value )"));
    EXPECT_DEATH(rfcQuopOptionsSetMaxLineLength(quop.addr(), 77),
                 assertion("source/rfc/rfc_quop_options.cpp", "setting.valid( value )"));
    EXPECT_DEATH(rfcQuopOptionsSetMaxLineLength(nullptr, 40), assertion("source/rfc/rfc_quop_options.cpp", "options"));
}
