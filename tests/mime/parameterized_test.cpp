// Content-Type and Content-Disposition values: the rules of names and types,
// normalisation and the registered spellings, parameters with case-insensitive
// keys, copy before change, comparison and text. The shared behaviour runs over
// both types.
#include "abort.hpp"
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime.h>

#include <cctype>
#include <optional>

using namespace test;

namespace {

#define TRAITS(Name, NAME, Label) \
    struct Name##Traits { \
        using T = NAME; \
        static T *create(const char *label) { return mime##Name##CreateCstr(label, -1); } \
        static T *createFrom(T *t) { return mime##Name##CreateFrom(t); } \
        static std::string label(T *t) { return take(mime##Name##Label(t)); } \
        static void setLabel(T **t, const char *label) { mime##Name##Set##Label##Cstr(t, label, -1); } \
        static PB_BOOL labelOk(const char *label) { return mime##Name##Label##Ok(str(label).get()); } \
        static std::string wire(const char *label) { return take(mime##Name##Label##ToWireFormat(str(label).get())); } \
        static void set(T **t, const char *key, const char *value) \
        { \
            mime##Name##SetParameterCstrCstrValue(t, key, -1, value, -1); \
        } \
        static std::optional<std::string> get(T *t, const char *key) \
        { \
            PB_STRING *v = mime##Name##ParameterCstr(t, key, -1); \
            return v ? std::optional<std::string>(take(v)) : std::nullopt; \
        } \
        static PB_BOOL has(T *t, const wchar_t *key) { return mime##Name##HasParameterWcstr(t, key, -1); } \
        static void del(T **t, const char *key) { mime##Name##DelParameterCstr(t, key, -1); } \
        static void clear(T **t) { mime##Name##ClearParameters(t); } \
        static PB_INT length(T *t) { return mime##Name##ParametersLength(t); } \
        static std::string keyAt(T *t, PB_INT i) { return take(mime##Name##ParameterKeyAt(t, i)); } \
        static std::string valueAt(T *t, PB_INT i) { return take(mime##Name##ParameterValueAt(t, i)); } \
        static PB_INT compare(T *a, T *b) { return mime##Name##Compare(a, b); } \
        static std::string text(T *t) { return take(mime##Name##ToString(t)); } \
        static PB_BOOL keyOk(const char *key) { return mime##Name##ParameterKeyOk(str(key).get()); } \
    };

TRAITS(ContentType, MIME_CONTENT_TYPE, Name)
TRAITS(ContentDisposition, MIME_CONTENT_DISPOSITION, Type)

// A label that both rules accept: Content-Type needs a "/", Content-Disposition refuses one.
template <class Traits> const char *sample();
template <> const char *sample<ContentTypeTraits>()
{
    return "Text/Plain";
}
template <> const char *sample<ContentDispositionTraits>()
{
    return "Attachment";
}

template <class Traits> class Parameterized : public testing::Test {
};
using Kinds = testing::Types<ContentTypeTraits, ContentDispositionTraits>;
TYPED_TEST_SUITE(Parameterized, Kinds);

} // namespace

TEST(ContentType, NameRule)
{
    for (const char *ok : {"a/b", "text/plain", "application/vnd.example+xml", "x_a/b.c-d", "TEXT/PLAIN"})
        EXPECT_TRUE(ContentTypeTraits::labelOk(ok)) << ok;
    for (const char *bad : {"", "text", "/plain", "text/", "text//plain", "a/b/c", "text/*", "text/pl ain",
                            "text/pl!ain", "t\u00e9xt/plain", "text/plain;"})
        EXPECT_FALSE(ContentTypeTraits::labelOk(bad)) << bad;
    EXPECT_FALSE(mimeContentTypeNameOk(nullptr));
    EXPECT_EQ(ContentTypeTraits::wire("APPLICATION/EMERGENCYCALLDATA.ECALL.MSD"),
              "application/EmergencyCallData.eCall.MSD");
    EXPECT_EQ(ContentTypeTraits::wire("application/emergencycalldata.control+xml"),
              "application/EmergencyCallData.Control+xml");
    EXPECT_EQ(ContentTypeTraits::wire("Text/Plain"), "text/plain");
}

TEST(ContentDisposition, TypeRule)
{
    for (const char *ok : {"inline", "attachment", "form-data", "Info-Package", "x.y_z+1"})
        EXPECT_TRUE(ContentDispositionTraits::labelOk(ok)) << ok;
    for (const char *bad : {"", "attach ment", "a/b", "x!", "\u00e9t\u00e9"})
        EXPECT_FALSE(ContentDispositionTraits::labelOk(bad)) << bad;
    EXPECT_FALSE(mimeContentDispositionTypeOk(nullptr));
    EXPECT_EQ(ContentDispositionTraits::wire("INFO-PACKAGE"), "Info-Package");
    EXPECT_EQ(ContentDispositionTraits::wire("Attachment"), "attachment");
}

TYPED_TEST(Parameterized, KeysParametersAndNormalisation)
{
    using T = TypeParam;
    for (const char *ok : {"a", "filename*0*", "title*", "x'%", "Charset"})
        EXPECT_TRUE(T::keyOk(ok)) << ok;
    for (const char *bad : {"", "a b", "a=b", "a;b", "\"q\"", "a\x7f", "\u00e9"})
        EXPECT_FALSE(T::keyOk(bad)) << bad;

    Ref<typename T::T> v = adopt(T::create(sample<T>()));
    std::string lower = sample<T>();
    for (auto &c : lower)
        c = static_cast<char>(std::tolower(c));
    EXPECT_EQ(T::label(v.get()), lower);
    T::set(v.addr(), "Charset", "UTF-8");
    T::set(v.addr(), "CHARSET", "iso-8859-1");
    T::set(v.addr(), "Name", "Mixed Case Value");
    T::set(v.addr(), "empty", "");
    EXPECT_EQ(T::length(v.get()), 3);
    EXPECT_EQ(T::get(v.get(), "charset"), "iso-8859-1");
    EXPECT_EQ(T::get(v.get(), "CharSet"), "iso-8859-1");
    EXPECT_EQ(T::get(v.get(), "name"), "Mixed Case Value");
    EXPECT_EQ(T::get(v.get(), "empty"), "");
    EXPECT_EQ(T::get(v.get(), "absent"), std::nullopt);
    EXPECT_TRUE(T::has(v.get(), L"NAME"));
    // Key order, keys and values at one index together.
    EXPECT_EQ(T::keyAt(v.get(), 0), "charset");
    EXPECT_EQ(T::valueAt(v.get(), 0), "iso-8859-1");
    EXPECT_EQ(T::keyAt(v.get(), 2), "name");
    T::del(v.addr(), "absent");
    EXPECT_EQ(T::length(v.get()), 3);
    T::del(v.addr(), "NAME");
    EXPECT_FALSE(T::has(v.get(), L"name"));
    T::clear(v.addr());
    EXPECT_EQ(T::length(v.get()), 0);
    T::setLabel(v.addr(), sample<T>());
    EXPECT_EQ(T::label(v.get()), lower);
}

TYPED_TEST(Parameterized, CopyBeforeChange)
{
    using T = TypeParam;
    Ref<typename T::T> a = adopt(T::create(sample<T>()));
    T::set(a.addr(), "k", "1");
    Ref<typename T::T> b = pb::retained(a.get());
    T::set(b.addr(), "k", "2");
    ASSERT_NE(a.get(), b.get());
    EXPECT_EQ(T::get(a.get(), "k"), "1");
    EXPECT_EQ(T::get(b.get(), "k"), "2");
    Ref<typename T::T> c = adopt(T::createFrom(a.get()));
    T::clear(c.addr());
    EXPECT_EQ(T::length(a.get()), 1) << "a copy shares the dictionary until it changes";
}

TYPED_TEST(Parameterized, CompareAndText)
{
    using T = TypeParam;
    std::string upper = sample<T>();
    for (auto &c : upper)
        c = static_cast<char>(std::toupper(c));
    Ref<typename T::T> a = adopt(T::create(sample<T>())), b = adopt(T::create(upper.c_str()));
    EXPECT_EQ(T::compare(a.get(), b.get()), 0);
    std::string lower = T::label(a.get());
    EXPECT_EQ(T::text(a.get()), lower);
    T::set(a.addr(), "k", "A");
    T::set(b.addr(), "K", "a");
    EXPECT_NE(T::compare(a.get(), b.get()), 0) << "values keep their case";
    EXPECT_EQ(T::compare(a.get(), b.get()), -T::compare(b.get(), a.get()));
    EXPECT_EQ(T::text(a.get()), lower + " {k=A}");
}

using ParameterizedDeathTest = testing::Test;

// Each function checks its own preconditions, so that its abort names its own
// line; a representative of each family of aborts in the library.
TEST(ParameterizedDeathTest, Preconditions)
{
    const char *ct = "source/mime/mime_content_type.cpp", *cd = "source/mime/mime_content_disposition.cpp";
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("text/plain", -1));
    Ref<MIME_CONTENT_DISPOSITION> disp = adopt(mimeContentDispositionCreateCstr("inline", -1));
    EXPECT_DEATH(mimeContentTypeCreateCstr("text", -1),
                 assertionIn(ct, "mimeContentTypeNameNormalize", "mimeContentTypeNameOk( name )"));
    EXPECT_DEATH(mimeContentTypeSetName(type.addr(), nullptr), assertionIn(ct, "mimeContentTypeSetName", "name"));
    EXPECT_DEATH(mimeContentDispositionSetType(disp.addr(), nullptr),
                 assertionIn(cd, "mimeContentDispositionSetType", "mimeContentDispositionTypeOk( dispositionType )"));
    EXPECT_DEATH(mimeContentTypeSetParameterCstr(type.addr(), "a b", -1, str("x").get()),
                 assertionIn(ct, "mimeContentTypeParameterKeyNormalize", "mimeContentTypeParameterKeyOk( key )"));
    EXPECT_DEATH(mimeContentDispositionSetParameterCstr(disp.addr(), "k", -1, nullptr),
                 assertionIn(cd, "mimeContentDispositionSetParameter", "value"));
    EXPECT_DEATH(mimeContentDispositionParametersLength(nullptr),
                 assertionIn(cd, "mimeContentDispositionParametersLength", "disp"));
    MIME_CONTENT_TYPE *none = nullptr;
    EXPECT_DEATH(mimeContentTypeClearParameters(&none), assertion(ct, "*type"));
    EXPECT_DEATH(mimeContentTypeFrom(pbStringObj(str("x").get())),
                 abortLine("stdfunc from", ct, "!obj || pbObjSort(obj)==&mime___sort_MIME_CONTENT_TYPE"));
    // Wire text that no token rule accepts is a caller's error without a condition text.
    EXPECT_DEATH(mimeShfTokenCreateRawValue(str("(a").get()), assertion("source/mime/mime_shf_token.cpp", ""));
}
