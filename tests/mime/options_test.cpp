// The options object: defaults and marks, normalisation, copy before change with
// shared codec option objects, the order of comparison, and the preconditions.
#include "abort.hpp"
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime.h>

#include <algorithm>
#include <functional>

using namespace test;

namespace {

Ref<MIME_OPTIONS> fresh()
{
    return adopt(mimeOptionsCreate());
}

// Each setting's is-default query with a setter that stores its default value.
struct Setting {
    const char *name;
    int (*isDefault)(MIME_OPTIONS *);
    std::function<void(MIME_OPTIONS **)> setToDefaultValue;
    void (*reset)(MIME_OPTIONS **);
};

std::vector<Setting> settings()
{
    return {
        {"flags", mimeOptionsFlagsDefault, [](MIME_OPTIONS **mo) { mimeOptionsSetFlags(mo, 3); },
         mimeOptionsSetFlagsDefault},
        {"wrapLineLength", mimeOptionsWrapLineLengthDefault,
         [](MIME_OPTIONS **mo) { mimeOptionsSetWrapLineLength(mo, 76); }, mimeOptionsSetWrapLineLengthDefault},
        {"rfc2231Charset", mimeOptionsRfc2231CharsetDefault,
         [](MIME_OPTIONS **mo) { mimeOptionsSetRfc2231Charset(mo, PB_CHARSET_UTF_8); },
         mimeOptionsSetRfc2231CharsetDefault},
        {"rfc2231MaxSegmentLength", mimeOptionsRfc2231MaxSegmentLengthDefault,
         [](MIME_OPTIONS **mo) { mimeOptionsSetRfc2231MaxSegmentLength(mo, 60); },
         mimeOptionsSetRfc2231MaxSegmentLengthDefault},
        {"rfcBaseOptions", mimeOptionsRfcBaseOptionsDefault,
         [](MIME_OPTIONS **mo) {
             Ref<RFC_BASE_OPTIONS> bo = adopt(mimeOptionsRfcBaseOptions(*mo));
             mimeOptionsSetRfcBaseOptions(mo, bo.get());
         },
         mimeOptionsSetRfcBaseOptionsDefault},
        {"rfcQuopOptions", mimeOptionsRfcQuopOptionsDefault,
         [](MIME_OPTIONS **mo) {
             Ref<RFC_QUOP_OPTIONS> qo = adopt(mimeOptionsRfcQuopOptions(*mo));
             mimeOptionsSetRfcQuopOptions(mo, qo.get());
         },
         mimeOptionsSetRfcQuopOptionsDefault},
    };
}

} // namespace

TEST(Options, Defaults)
{
    Ref<MIME_OPTIONS> mo = fresh();
    EXPECT_EQ(mimeOptionsFlags(mo.get()), MIME_FLAG_PARSE_RFC2231_HEADERS | MIME_FLAG_GENERATE_RFC2231_HEADERS);
    EXPECT_EQ(mimeOptionsWrapLineLength(mo.get()), 76);
    EXPECT_EQ(mimeOptionsRfc2231Charset(mo.get()), 44);
    EXPECT_EQ(mimeOptionsRfc2231MaxSegmentLength(mo.get()), 60);
    Ref<RFC_BASE_OPTIONS> bo = adopt(mimeOptionsRfcBaseOptions(mo.get()));
    EXPECT_EQ(rfcBaseOptionsOutputLineLength(bo.get()), 76);
    Ref<RFC_QUOP_OPTIONS> qo = adopt(mimeOptionsRfcQuopOptions(mo.get()));
    EXPECT_EQ(rfcQuopOptionsCompare(qo.get(), adopt(rfcQuopOptionsCreate()).get()), 0);
    for (const Setting &s : settings())
        EXPECT_NE(s.isDefault(mo.get()), 0) << s.name;
    EXPECT_EQ(mimeOptionsCompare(mo.get(), fresh().get()), 0);
}

// Setting a value equal to the default still marks it set: the object then
// differs from a new one until the reset.
TEST(Options, MarksDecideComparison)
{
    for (const Setting &s : settings()) {
        Ref<MIME_OPTIONS> mo = fresh();
        s.setToDefaultValue(mo.addr());
        EXPECT_EQ(s.isDefault(mo.get()), 0) << s.name;
        EXPECT_EQ(mimeOptionsCompare(mo.get(), fresh().get()), -1) << s.name << ": mark 0 orders first";
        EXPECT_EQ(mimeOptionsCompare(fresh().get(), mo.get()), 1) << s.name;
        s.reset(mo.addr());
        EXPECT_NE(s.isDefault(mo.get()), 0) << s.name;
        EXPECT_EQ(mimeOptionsCompare(mo.get(), fresh().get()), 0) << s.name;
    }
}

// Settings are compared in field order: an earlier difference decides.
TEST(Options, ComparisonOrder)
{
    Ref<MIME_OPTIONS> a = fresh(), b = fresh();
    mimeOptionsSetFlags(a.addr(), MIME_FLAG_PARSE_RFC2231_HEADERS);
    mimeOptionsSetFlags(b.addr(), MIME_FLAG_GENERATE_RFC2231_HEADERS);
    EXPECT_EQ(mimeOptionsCompare(a.get(), b.get()), -1);
    mimeOptionsSetFlags(b.addr(), MIME_FLAG_PARSE_RFC2231_HEADERS);
    mimeOptionsSetWrapLineLength(a.addr(), 10);
    mimeOptionsSetWrapLineLength(b.addr(), 20);
    mimeOptionsSetRfc2231MaxSegmentLength(a.addr(), 90);
    mimeOptionsSetRfc2231MaxSegmentLength(b.addr(), 5);
    EXPECT_EQ(mimeOptionsCompare(a.get(), b.get()), -1);
    mimeOptionsSetWrapLineLength(b.addr(), 10);
    EXPECT_EQ(mimeOptionsCompare(a.get(), b.get()), 1);
    Ref<RFC_BASE_OPTIONS> wide = adopt(rfcBaseOptionsCreate());
    rfcBaseOptionsSetOutputLineLength(wide.addr(), 100);
    mimeOptionsSetRfc2231MaxSegmentLength(b.addr(), 90);
    mimeOptionsSetRfcBaseOptions(a.addr(), wide.get());
    mimeOptionsSetRfcBaseOptions(b.addr(), adopt(rfcBaseOptionsCreate()).get());
    EXPECT_EQ(mimeOptionsCompare(a.get(), b.get()), 1) << "through the codec options' own order";
}

TEST(Options, CopyBeforeChangeSharesCodecOptions)
{
    Ref<MIME_OPTIONS> a = fresh();
    Ref<MIME_OPTIONS> b = pb::retained(a.get());
    mimeOptionsSetWrapLineLength(b.addr(), -1);
    ASSERT_NE(a.get(), b.get());
    EXPECT_EQ(mimeOptionsWrapLineLength(a.get()), 76);
    EXPECT_EQ(mimeOptionsWrapLineLength(b.get()), -1);
    Ref<RFC_BASE_OPTIONS> boA = adopt(mimeOptionsRfcBaseOptions(a.get())),
                          boB = adopt(mimeOptionsRfcBaseOptions(b.get()));
    EXPECT_EQ(boA.get(), boB.get()) << "the copy shares the codec options";

    Ref<RFC_BASE_OPTIONS> mine = adopt(rfcBaseOptionsCreate());
    mimeOptionsSetRfcBaseOptions(b.addr(), mine.get());
    EXPECT_EQ(adopt(mimeOptionsRfcBaseOptions(b.get())).get(), mine.get()) << "the caller's object itself";
    mimeOptionsSetRfcBaseOptionsDefault(b.addr());
    Ref<RFC_BASE_OPTIONS> reset = adopt(mimeOptionsRfcBaseOptions(b.get()));
    EXPECT_NE(reset.get(), mine.get());
    EXPECT_EQ(rfcBaseOptionsOutputLineLength(reset.get()), 76);
    EXPECT_EQ(rfcBaseOptionsOutputLineLength(mine.get()), -1) << "the caller's object is left alone";
    EXPECT_EQ(adopt(mimeOptionsRfcBaseOptions(a.get())).get(), boA.get());
}

namespace {

std::vector<std::string> keysOf(PB_STORE *store)
{
    std::vector<std::string> keys;
    for (PB_INT i = 0; i < pbStoreLength(store); ++i)
        keys.push_back(take(pbStoreKeyAt(store, i)));
    std::sort(keys.begin(), keys.end());
    return keys;
}

Ref<MIME_OPTIONS> restored(PB_STORE *store)
{
    return adopt(mimeOptionsRestore(store));
}

} // namespace

TEST(OptionsStore, RecordsWhatWasSet)
{
    const std::vector<std::string> all = {"flags",          "rfc2231Charset", "rfc2231MaxSegmentLength",
                                          "rfcBaseOptions", "rfcQuopOptions", "wrapLineLength"};
    Ref<MIME_OPTIONS> mo = fresh();
    EXPECT_EQ(keysOf(adopt(mimeOptionsStore(mo.get(), 0)).get()), std::vector<std::string>{});
    EXPECT_EQ(mimeOptionsCompare(restored(adopt(pbStoreCreate()).get()).get(), mo.get()), 0);

    // A full store restores the same values, every one marked as set.
    Ref<PB_STORE> full = adopt(mimeOptionsStore(mo.get(), 1));
    EXPECT_EQ(keysOf(full.get()), all);
    Ref<MIME_OPTIONS> back = restored(full.get());
    EXPECT_NE(mimeOptionsCompare(back.get(), mo.get()), 0);
    for (const Setting &s : settings())
        EXPECT_EQ(s.isDefault(back.get()), 0) << s.name;
    EXPECT_EQ(keysOf(adopt(mimeOptionsStore(back.get(), 0)).get()), all);

    // Each setting alone: stored under its own key, restored equal to the original.
    for (const Setting &s : settings()) {
        Ref<MIME_OPTIONS> one = fresh();
        s.setToDefaultValue(one.addr());
        Ref<PB_STORE> store = adopt(mimeOptionsStore(one.get(), 0));
        EXPECT_EQ(keysOf(store.get()), std::vector<std::string>{s.name});
        EXPECT_EQ(mimeOptionsCompare(restored(store.get()).get(), one.get()), 0) << s.name;
    }

    // Values away from the defaults survive the trip.
    Ref<MIME_OPTIONS> changed = fresh();
    mimeOptionsSetFlags(changed.addr(), MIME_FLAG_GENERATE_EIGHT_BIT_BODY | MIME_FLAG_GENERATE_UNICODE_HEADERS);
    mimeOptionsSetWrapLineLength(changed.addr(), 100);
    mimeOptionsSetRfc2231Charset(changed.addr(), PB_CHARSET_ISO_8859_1);
    mimeOptionsSetRfc2231MaxSegmentLength(changed.addr(), -1);
    Ref<RFC_QUOP_OPTIONS> qo = adopt(rfcQuopOptionsCreate());
    rfcQuopOptionsSetMaxLineLength(qo.addr(), 40);
    mimeOptionsSetRfcQuopOptions(changed.addr(), qo.get());
    EXPECT_EQ(mimeOptionsCompare(restored(adopt(mimeOptionsStore(changed.get(), 0)).get()).get(), changed.get()), 0);
}

TEST(OptionsStore, RestoreSkipsWhatIsInvalid)
{
    Ref<PB_STORE> store = adopt(pbStoreCreate());
    pbStoreSetValueIntCstr(store.addr(), "wrapLineLength", -1, -2);
    pbStoreSetValueIntCstr(store.addr(), "rfc2231MaxSegmentLength", -1, 0);
    pbStoreSetValueCstr(store.addr(), "rfc2231Charset", -1, str("x-unknown").get());
    pbStoreSetValueCstr(store.addr(), "unrelated", -1, str("1").get());
    pbStoreSetStoreCstr(store.addr(), "flags", -1, adopt(pbStoreCreate()).get()); // the wrong kind
    EXPECT_EQ(mimeOptionsCompare(restored(store.get()).get(), fresh().get()), 0);

    pbStoreSetValueCstr(store.addr(), "flags", -1, str("").get());
    pbStoreSetValueIntCstr(store.addr(), "wrapLineLength", -1, -1);
    Ref<MIME_OPTIONS> mo = restored(store.get());
    EXPECT_EQ(mimeOptionsFlags(mo.get()), mimeFlagsFromStringCstr("", -1));
    EXPECT_EQ(mimeOptionsFlagsDefault(mo.get()), 0);
    EXPECT_EQ(mimeOptionsWrapLineLength(mo.get()), -1);
    EXPECT_NE(mimeOptionsRfc2231MaxSegmentLengthDefault(mo.get()), 0);
}

using OptionsDeathTest = testing::Test;

// The rule of each setting is its setter's condition text.
TEST(OptionsDeathTest, Preconditions)
{
    const char *file = "source/mime/mime_options.cpp";
    Ref<MIME_OPTIONS> mo = fresh();
    EXPECT_DEATH(mimeOptionsSetWrapLineLength(mo.addr(), -2), assertion(file, "wrapLineLength >= -1"));
    EXPECT_DEATH(mimeOptionsSetRfc2231MaxSegmentLength(mo.addr(), 0),
                 assertion(file, "maxSegmentLength == -1 || maxSegmentLength > 0"));
    EXPECT_DEATH(mimeOptionsSetRfc2231Charset(mo.addr(), -1), assertion(file, "PB_CHARSET_OK( charset )"));
    EXPECT_DEATH(mimeOptionsSetFlags(nullptr, 0), assertion(file, "mo"));
}
