// Dictionaries: key order (the order of parameters on the wire), lookups and
// removal against std::map, scale, and text.
#include "pb_text.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

using namespace test;

namespace {

std::string keyAt(PB_DICT *d, PB_INT i)
{
    return text(adopt(pbDictKeyAt(d, i)).get());
}
std::string valueAt(PB_DICT *d, PB_INT i)
{
    return text(adopt(pbDictValueAt(d, i)).get());
}

void expectMatches(PB_DICT *d, const std::map<std::u32string, std::string> &model)
{
    ASSERT_EQ(pbDictLength(d), static_cast<PB_INT>(model.size()));
    PB_INT i = 0;
    for (const auto &[key, value] : model) {
        Ref<PB_OBJ> k = adopt(pbDictKeyAt(d, i));
        ASSERT_EQ(codePoints(pbStringFrom(k.get())), key) << "index " << i;
        ASSERT_EQ(valueAt(d, i), value);
        ++i;
    }
}

TEST(Dict, IndexOrderIsCodePointOrderOfKeys)
{
    Ref<PB_DICT> d = adopt(pbDictCreate());
    for (const char *key : {"title*0*", "title", "title*", "Title", "a", "\xc3\xa9", "title*1"})
        pbDictSetStringKeyCstr(d.addr(), key, -1, pbStringObj(str(key).get()));
    const char *expected[] = {"Title", "a", "title", "title*", "title*0*", "title*1", "\xc3\xa9"};
    for (PB_INT i = 0; i < 7; ++i)
        EXPECT_EQ(keyAt(d.get(), i), expected[i]);
    EXPECT_EQ(text(pbDictObj(d.get())),
              "{Title=Title, a=a, title=title, title*=title*, title*0*=title*0*, title*1=title*1, \xc3\xa9=\xc3\xa9}");
}

// Plain dictionaries and dictionaries made with room for a few entries (which
// move to storage of their own as they grow); halfway, a second holder keeps the
// dictionary as it was while the first goes on changing.
TEST(Dict, RandomOperationsMatchStdMap)
{
    for (PB_INT room : {-1, 0, 1, 3}) {
        SCOPED_TRACE(room);
        std::mt19937 rng(3);
        Ref<PB_DICT> d = adopt(room < 0 ? pbDictCreate() : pb___DictCreateWithRoom(room));
        Ref<PB_DICT> kept;
        std::map<std::u32string, std::string> model, keptModel;
        for (int step = 0; step < 3000; ++step) {
            std::u32string key(1 + rng() % 5, U'a');
            for (char32_t &c : key)
                c = U'a' + static_cast<char32_t>(rng() % 8);
            Ref<PB_STRING> k = chars(key);
            if (rng() % 3) {
                std::string value = std::to_string(step);
                pbDictSetStringKey(d.addr(), k.get(), pbStringObj(str(value).get()));
                model[key] = value;
            } else {
                pbDictDelStringKey(d.addr(), k.get());
                model.erase(key);
            }
            ASSERT_EQ(pbDictHasStringKey(d.get(), k.get()), model.count(key) == 1);
            if (step % 97 == 0)
                expectMatches(d.get(), model);
            if (step == 1500) {
                kept = pb::retained(d.get());
                keptModel = model;
            }
        }
        expectMatches(d.get(), model);
        expectMatches(kept.get(), keptModel);
    }
}

TEST(Dict, SettingADictIntoItselfMakesNoCycle)
{
    Ref<PB_DICT> d = adopt(pbDictCreate());
    pbDictSetStringKeyCstr(d.addr(), "self", -1, pbDictObj(d.get()));
    Ref<PB_OBJ> inner = adopt(pbDictStringKeyCstr(d.get(), "self", -1));
    EXPECT_EQ(pbDictLength(pbDictFrom(inner.get())), 0); // the value is the dictionary as it was
}

} // namespace
