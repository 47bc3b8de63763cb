// RFC 2231 parameter coding: decoding over a table of forms (RFC 2231's own
// example, mixed segments, gaps, unknown charsets, bytes split across segments),
// the encoder's segment cutting, the round trip over generated Unicode values at
// many segment lengths, and the work bound for huge segment sets.
#include "oracle.hpp"
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime.h>

#include <map>
#include <random>
#include <sstream>

using namespace test;

namespace {

using Params = std::map<std::string, std::string>;

Ref<PB_DICT> dictOf(const Params &params)
{
    Ref<PB_DICT> dict = adopt(pbDictCreate());
    for (const auto &[k, v] : params)
        pbDictSetStringKey(dict.addr(), str(k).get(), pbStringObj(str(v).get()));
    return dict;
}

Params paramsOf(PB_DICT *dict)
{
    Params params;
    for (PB_INT i = 0; i < pbDictLength(dict); ++i)
        params[text(adopt(pbDictKeyAt(dict, i)).get())] = text(adopt(pbDictValueAt(dict, i)).get());
    return params;
}

Ref<MIME_OPTIONS> segmentLength(PB_INT length)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    mimeOptionsSetRfc2231MaxSegmentLength(mo.addr(), length);
    return mo;
}

Params decode(const Params &params)
{
    return paramsOf(adopt(mime___Rfc2231Decode(dictOf(params).get(), adopt(mimeOptionsCreate()).get())).get());
}

Params encode(const Params &params, PB_INT length = 60)
{
    return paramsOf(adopt(mime___Rfc2231Encode(dictOf(params).get(), segmentLength(length).get())).get());
}

} // namespace

TEST(Rfc2231, DecodingForms)
{
    const std::pair<Params, Params> rows[] = {
        {{{"title*0*", "us-ascii'en'This%20is%20"}, {"title*1*", "%2A%2A%2Afun%2A%2A%2A%20"}, {"title*2", "isn't it!"}},
         {{"title", "This is ***fun*** isn't it!"}}},
        {{{"title*", "utf-8''%E2%82%AC"}}, {{"title", "\u20ac"}}},
        {{{"title*", "UTF-8'de'%e2%82%ac"}}, {{"title", "\u20ac"}}},
        {{{"title*", "utf-8'%E2%82%AC"}}, {}},
        {{{"title*", "x-unknown''abc"}}, {}},
        {{{"charset", "us-ascii"}, {"na%me", "x"}, {"na'me", "y"}, {"a*b", "z"}}, {{"charset", "us-ascii"}}},
        {{{"name*0", "a"}, {"name*1*", "b"}, {"name*2", "c"}}, {{"name", "a"}}},
        {{{"name*0*", "utf-8''x"}, {"name*2*", "y"}}, {{"name", "x"}}},
        {{{"name*0*", "utf-8''%41"}, {"name*1", "%42"}}, {{"name", "A%42"}}},
        {{{"name*0", "a"}, {"name*01", "b"}}, {{"name", "a"}}},
        {{{"name*0", "a"}, {"NAME*1", "b"}}, {{"name", "a"}}},
        {{{"v*", "utf-8''%4"}, {"w*", "utf-8''%G1"}, {"x*", "utf-8''100%"}},
         {{"v", "%4"}, {"w", "%G1"}, {"x", "100%"}}},
        {{{"name*", "utf-8''\u0100"}}, {}},
        {{{"name*0*", "utf-8''%E2%82"}, {"name*1*", "%AC"}, {"name*2", "!"}}, {{"name", "\u20ac!"}}},
        {{{"name*0*", "utf-8''a"}, {"name*1*", "b"}, {"name*1", "X"}}, {{"name", "ab"}}},
        {{{"title", "plain"}, {"title*", "utf-8''coded"}}, {{"title", "coded"}}},
        {{}, {}},
    };
    for (const auto &[given, expected] : rows)
        EXPECT_EQ(decode(given), expected) << (given.empty() ? "" : given.begin()->first);
}

TEST(Rfc2231, EncodingSegments)
{
    EXPECT_EQ(encode({{"filename", "\u20acuro-\u20ac"}}, 10),
              (Params{{"filename*0*", "UTF-8''%E2"}, {"filename*1*", "%82%ACuro-"}, {"filename*2*", "%E2%82%AC"}}));
    EXPECT_EQ(encode({{"filename", "\u20acuro-\u20ac"}}), (Params{{"filename*", "UTF-8''%E2%82%ACuro-%E2%82%AC"}}));
    std::string ascii130(130, 'x');
    ascii130[129] = 'y';
    EXPECT_EQ(
        encode({{"f", ascii130}}),
        (Params{{"f*0", std::string(60, 'x')}, {"f*1", std::string(60, 'x')}, {"f*2", std::string(9, 'x') + "y"}}));
    EXPECT_EQ(encode({{"f", ascii130}}, -1), (Params{{"f", ascii130}}));
    EXPECT_EQ(encode({{"charset", "us-ascii"}, {"x*", "v"}, {"a%b", "v"}, {"sp", "a (b)"}}),
              (Params{{"charset", "us-ascii"}, {"sp", "a (b)"}}));
    EXPECT_EQ(encode({{"e", ""}}), (Params{{"e", ""}})) << "an empty value stays, as one plain segment";
    EXPECT_EQ(encode({{"n", "\u00e9"}}, 5), (Params{{"n*0*", "UTF-8''"}, {"n*1*", "%C3"}, {"n*2*", "%A9"}}));
    EXPECT_EQ(encode({{"n", "\u00e9*'% (\n!#$&+-.^_`{|}~aZ9"}}, -1),
              (Params{{"n*", "UTF-8''%C3%A9%2A%27%25%20%28%0A!#$&+-.^_`{|}~aZ9"}}));
}

// The keys of a Content-Type header value written with these parameters, in
// the order they stand in the text.
std::vector<std::string> writtenKeys(PB_DICT *params, MIME_OPTIONS *mo)
{
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("text/plain", -1));
    for (PB_INT i = 0; i < pbDictLength(params); ++i)
        mimeContentTypeSetParameter(type.addr(), adopt(pbStringFrom(pbDictKeyAt(params, i))).get(),
                                    adopt(pbStringFrom(pbDictValueAt(params, i))).get());
    Ref<MIME_OPTIONS> unfolded = adopt(mimeOptionsCreateFrom(mo));
    mimeOptionsSetFlags(unfolded.addr(), mimeOptionsFlags(mo) | MIME_FLAG_GENERATE_RFC2231_HEADERS);
    mimeOptionsSetWrapLineLength(unfolded.addr(), 100000);
    const std::string text = take(mimeContentTypeEncode(type.get(), unfolded.get(), 0));
    std::vector<std::string> keys;
    for (size_t at = text.find(';'); at != std::string::npos && at < text.size();) {
        const size_t eq = text.find('=', at);
        keys.push_back(text.substr(at + 1, eq - at - 1));
        at = eq + 1;
        if (text[at] == '"')
            for (++at; text[at] != '"'; ++at)
                at += text[at] == '\\';
        at = text.find(';', at);
    }
    return keys;
}

// Decoding what encoding wrote gives the values back, for any Unicode value and
// segment length; the writer's order of the segments is the dictionary's key
// order ("t*10" before "t*2", names whose text sorts around "*").
TEST(Rfc2231, RoundTripOverGeneratedValues)
{
    std::mt19937_64 rng(31);
    const std::u32string alphabet = U"abcXYZ09 -_.*'%()<>@,;:\\\"/[]?={}\t\u00e9\u20ac\u4e2d\U0001F600";
    const PB_INT lengths[] = {-1, 1, 2, 3, 4, 5, 7, 10, 13, 60, 200};
    for (int round = 0; round < 1500; ++round) {
        Params params;
        Ref<PB_DICT> dict = adopt(pbDictCreate());
        for (int p = static_cast<int>(rng() % 3); p >= 0; --p) {
            std::u32string value;
            for (size_t n = rng() % 40; n > 0; --n)
                value += alphabet[rng() % alphabet.size()];
            const char *const names[] = {"a", "a!", "a-b", "k0", "k1"};
            std::string key = names[rng() % std::size(names)];
            Ref<PB_STRING> v = chars(value);
            pbDictSetStringKey(dict.addr(), str(key).get(), pbStringObj(v.get()));
            params[key] = utf8(v.get());
        }
        Ref<MIME_OPTIONS> mo = segmentLength(lengths[rng() % std::size(lengths)]);
        Ref<PB_DICT> encoded = adopt(mime___Rfc2231Encode(dict.get(), mo.get()));
        ASSERT_EQ(paramsOf(adopt(mime___Rfc2231Decode(encoded.get(), mo.get())).get()), params);
        std::vector<std::string> keys; // in the dictionary's order
        for (PB_INT i = 0; i < pbDictLength(encoded.get()); ++i)
            keys.push_back(take(pbStringFrom(pbDictKeyAt(encoded.get(), i))));
        ASSERT_EQ(writtenKeys(dict.get(), mo.get()), keys);
    }
}

// 100,000 segments, and numbers up to the largest 64-bit value: linear work.
TEST(Rfc2231, WorkIsBounded)
{
    Ref<PB_DICT> dict = adopt(pbDictCreate());
    std::string expected;
    for (int n = 0; n < 100000; ++n) {
        std::string piece = n % 2 ? "%41" : "b";
        std::string key = "t*" + std::to_string(n) + "*";
        pbDictSetStringKey(dict.addr(), str(key).get(), pbStringObj(str(n == 0 ? "utf-8''" + piece : piece).get()));
        expected += n % 2 ? "A" : "b";
    }
    pbDictSetStringKey(dict.addr(), str("u*0").get(), pbStringObj(str("x").get()));
    pbDictSetStringKey(dict.addr(), str("u*9223372036854775807").get(), pbStringObj(str("y").get()));
    Params result = paramsOf(adopt(mime___Rfc2231Decode(dict.get(), adopt(mimeOptionsCreate()).get())).get());
    EXPECT_EQ(result.size(), 2u);
    EXPECT_TRUE(result["t"] == expected);
    EXPECT_EQ(result["u"], "x");
}

// Python's email package decodes the same generated parameter sets (plain,
// extended, and continuations that mix encoded and plain segments and split
// characters between segments; one parameter or dozens, their segments in
// order or shuffled together) to the same text.
TEST(Rfc2231, AgreesWithPythonsEmailPackage)
{
    OracleLines lines = runOracle("mime/rfc2231_oracle.py");
    if (lines.empty())
        GTEST_SKIP() << "no Python interpreter";
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    size_t compared = 0;
    for (const auto &f : lines) {
        if (f.size() != 3 || f[0] != "CASE")
            continue;
        Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeTryDecode(str(f[1]).get(), mo.get()));
        ASSERT_TRUE(type) << f[1];
        std::stringstream expected(f[2]);
        for (std::string item; std::getline(expected, item, ';');) {
            const size_t colon = item.find(':');
            const std::string name = item.substr(0, colon);
            PB_STRING *value = mimeContentTypeParameterCstr(type.get(), name.c_str(), -1);
            ASSERT_TRUE(value) << name << " in " << f[1];
            EXPECT_EQ(take(value), unhex(item.substr(colon + 1))) << name << " in " << f[1];
        }
        ++compared;
    }
    EXPECT_GT(compared, 1000u);
}
