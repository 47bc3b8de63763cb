// Content-Type and Content-Disposition header values: the worked examples, the
// lenient parameter grammar, the flag table of the encoders, and round trips
// over generated values with and without RFC 2231.
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime.h>

#include <map>
#include <optional>
#include <random>

using namespace test;

namespace {

// "label {k=v, ...}" as the value's text, or nullopt.
using Decoded = std::optional<std::string>;

Ref<MIME_OPTIONS> withFlags(MIME_FLAGS flags)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    mimeOptionsSetFlags(mo.addr(), flags);
    return mo;
}

Decoded decodeType(const std::string &value, MIME_FLAGS flags = 0)
{
    MIME_CONTENT_TYPE *t = mimeContentTypeTryDecode(str(value).get(), withFlags(flags).get());
    return t ? Decoded(take(mimeContentTypeToString(adopt(t).get()))) : std::nullopt;
}

Decoded decodeDisposition(const std::string &value, MIME_FLAGS flags = 0)
{
    MIME_CONTENT_DISPOSITION *d = mimeContentDispositionTryDecode(str(value).get(), withFlags(flags).get());
    return d ? Decoded(take(mimeContentDispositionToString(adopt(d).get()))) : std::nullopt;
}

const MIME_FLAGS kParse = MIME_FLAG_PARSE_RFC2231_HEADERS, kRfc2231 = MIME_FLAG_GENERATE_RFC2231_HEADERS,
                 kUnicode = MIME_FLAG_GENERATE_UNICODE_HEADERS;

} // namespace

TEST(ContentTypeCodec, Decoding)
{
    const std::pair<std::string, Decoded> rows[] = {
        {"Text/HTML; Charset=\"utf-8\" (generated) ;Level=1; bad key=2", "text/html {bad=, charset=utf-8, level=1}"},
        {"", std::nullopt},
        {"text", std::nullopt},
        {"text/plain; \"open", std::nullopt},
        {"TEXT/PLAIN", "text/plain"},
        {"(c)text(c)/(c)plain(c)", "text/plain"},
        {"\"text\"/\"plain\"", "text/plain"},
        {"text/plain/x", "text/plain"},
        {"text/plain; a=1; A=2", "text/plain {a=2}"},
        {"text/plain; ;a=b", "text/plain"},
        {"text/plain; a=;b=c", "text/plain {a=, b=c}"},
        {"text/plain; \"a b\"=1; c=2", "text/plain {c=2}"},
        {"text/plain; a", "text/plain {a=}"},
        {"text/plain; a=", "text/plain {a=}"},
        {"text/plain; a b", "text/plain {a=}"},
        {"text/plain; a=\"Mixed Case\\\"\"", "text/plain {a=Mixed Case\"}"},
        {"multipart/mixed;\r\n boundary=\"----=_Part_1\"", "multipart/mixed {boundary=----=_Part_1}"},
    };
    for (const auto &[value, expected] : rows)
        EXPECT_EQ(decodeType(value), expected) << value;
    // With RFC 2231 decoding the parameters are taken as a dictionary would
    // hold them: key order, a repeated key's last value.
    const std::pair<std::string, Decoded> rfc2231Rows[] = {
        {"text/plain; title*0=ab; title*1=cd", "text/plain {title=abcd}"},
        {"text/plain; title*=utf-8''%41; title=x", "text/plain {title=A}"},
        {"text/plain; a*0*=utf-8''%C3; a*1*=%A9; a*1=no", "text/plain {a=\u00e9}"},
        {"text/plain; a%b=1; c'd=2; e=3", "text/plain {e=3}"},
    };
    for (const auto &[value, expected] : rfc2231Rows)
        EXPECT_EQ(decodeType(value, kParse), expected) << value;
    EXPECT_EQ(decodeType("text/plain; title*0=ab; title*1=cd"), "text/plain {title*0=ab, title*1=cd}");
    EXPECT_EQ(decodeType("text/plain; a%b=1; c'd=2; e=3"), "text/plain {a%b=1, c'd=2, e=3}");
}

TEST(ContentDispositionCodec, Decoding)
{
    const std::pair<std::string, Decoded> rows[] = {
        {"ATTACHMENT; FileName=\"a b.txt\" (x); size=10;;ignored", "attachment {filename=a b.txt, size=10}"},
        {"inline", "inline"},
        {"Inline ;", "inline"},
        {"form-data; name=field1", "form-data {name=field1}"},
        {"(only a comment)", std::nullopt},
        {"", std::nullopt},
        {"a/b; x=y", "a"},
        {"inline/x", "inline"},
        {"\"attachment\"", "attachment"},
        {"x!", std::nullopt},
        {"; a=b", std::nullopt},
    };
    for (const auto &[value, expected] : rows)
        EXPECT_EQ(decodeDisposition(value), expected) << value;
    EXPECT_EQ(decodeDisposition("attachment; filename*=UTF-8''%E2%82%AC.txt", kParse),
              "attachment {filename=\u20ac.txt}");
}

TEST(HeaderCodecs, EncodingExamplesAndFlags)
{
    Ref<MIME_CONTENT_TYPE> ct = adopt(mimeContentTypeCreateCstr("application/emergencycalldata.control+xml", -1));
    mimeContentTypeSetParameterCstrCstrValue(ct.addr(), "purpose", -1, "a b", -1);
    EXPECT_EQ(take(mimeContentTypeEncode(ct.get(), withFlags(0).get(), 14)),
              "application/EmergencyCallData.Control+xml;purpose=\"a b\"");
    Ref<MIME_CONTENT_TYPE> euro = adopt(mimeContentTypeCreateCstr("text/plain", -1));
    mimeContentTypeSetParameterCstrCstrValue(euro.addr(), "name", -1, "\u20acuro", -1);
    EXPECT_EQ(take(mimeContentTypeEncode(euro.get(), adopt(mimeOptionsCreate()).get(), 14)),
              "text/plain;name*=UTF-8''%E2%82%ACuro");
    Ref<MIME_CONTENT_DISPOSITION> cd = adopt(mimeContentDispositionCreateCstr("info-package", -1));
    mimeContentDispositionSetParameterCstrCstrValue(cd.addr(), "handling", -1, "optional", -1);
    EXPECT_EQ(take(mimeContentDispositionEncode(cd.get(), withFlags(0).get(), 21)), "Info-Package;handling=optional");

    // The flag table: an ASCII and a non-ASCII parameter under each combination.
    Ref<MIME_CONTENT_TYPE> mixed = adopt(mimeContentTypeCreateCstr("text/plain", -1));
    mimeContentTypeSetParameterCstrCstrValue(mixed.addr(), "a", -1, "x y", -1);
    mimeContentTypeSetParameterCstrCstrValue(mixed.addr(), "b", -1, "\u00fc", -1);
    mimeContentTypeSetParameterCstrCstrValue(mixed.addr(), "c", -1, "", -1);
    const std::pair<MIME_FLAGS, std::string> table[] = {
        {0, "text/plain;a=\"x y\";c=\"\""},
        {kRfc2231, "text/plain;a=\"x y\";b*=UTF-8''%C3%BC;c=\"\""},
        {kUnicode, "text/plain;a=\"x y\";b=\u00fc;c=\"\""},
    };
    for (const auto &[flags, text] : table)
        EXPECT_EQ(take(mimeContentTypeEncode(mixed.get(), withFlags(flags).get(), 14)), text) << flags;
    EXPECT_EQ(
        take(mimeContentTypeEncode(adopt(mimeContentTypeCreateCstr("Text/Plain", -1)).get(), withFlags(0).get(), 14)),
        "text/plain");
}

// decode(encode(x)) == x: ASCII values without RFC 2231, and any Unicode value
// with RFC 2231 generation and parsing, at several segment lengths and wraps.
TEST(HeaderCodecs, RoundTripOverGeneratedValues)
{
    std::mt19937_64 rng(41);
    const std::u32string ascii = U"abcXYZ09 -_.*'%()<>@,;:\\\"/[]?={}\t!~";
    const std::u32string unicode = ascii + U"\u00e9\u20ac\u4e2d\U0001F600";
    const std::string keys[] = {"name", "filename", "title", "x-key", "boundary", "k"};
    for (int round = 0; round < 1000; ++round) {
        bool rfc2231 = round % 2;
        const std::u32string &alphabet = rfc2231 ? unicode : ascii;
        Ref<MIME_OPTIONS> mo = withFlags(rfc2231 ? kParse | kRfc2231 : 0);
        mimeOptionsSetRfc2231MaxSegmentLength(mo.addr(), std::vector<PB_INT>{-1, 3, 10, 60}[rng() % 4]);
        mimeOptionsSetWrapLineLength(mo.addr(), std::vector<PB_INT>{-1, 0, 40, 76}[rng() % 4]);
        Ref<MIME_CONTENT_TYPE> ct = adopt(mimeContentTypeCreateCstr("multipart/mixed", -1));
        Ref<MIME_CONTENT_DISPOSITION> cd = adopt(mimeContentDispositionCreateCstr("attachment", -1));
        for (int p = static_cast<int>(rng() % 4); p > 0; --p) {
            std::u32string value;
            for (size_t n = rng() % 30; n > 0; --n)
                value += alphabet[rng() % alphabet.size()];
            Ref<PB_STRING> v = chars(value);
            const std::string &key = keys[rng() % std::size(keys)];
            mimeContentTypeSetParameterCstr(ct.addr(), key.c_str(), -1, v.get());
            mimeContentDispositionSetParameterCstr(cd.addr(), key.c_str(), -1, v.get());
        }
        Ref<MIME_CONTENT_TYPE> ct2 =
            adopt(mimeContentTypeTryDecode(adopt(mimeContentTypeEncode(ct.get(), mo.get(), 14)).get(), mo.get()));
        ASSERT_TRUE(ct2);
        ASSERT_TRUE(mimeContentTypeEquals(ct.get(), ct2.get())) << take(mimeContentTypeToString(ct.get()));
        Ref<MIME_CONTENT_DISPOSITION> cd2 = adopt(mimeContentDispositionTryDecode(
            adopt(mimeContentDispositionEncode(cd.get(), mo.get(), 21)).get(), mo.get()));
        ASSERT_TRUE(cd2);
        ASSERT_TRUE(mimeContentDispositionEquals(cd.get(), cd2.get()))
            << take(mimeContentDispositionToString(cd.get()));
    }
}
