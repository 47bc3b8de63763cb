// The C++ interface's own behaviour: reference counts through copies, moves
// and C calls, results that carry the defect, text in and out, the tree walk.
// The live-object check of the test main sees every reference released.
#include <mime/mime.hpp>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

// Whether type is held by one holder only: a change then keeps its object
// (a shared value is copied first). Changes and restores a parameter.
bool soleHolder(mime::ContentType &type)
{
    MIME_CONTENT_TYPE *before = type.get();
    type.setParameter("x-probe", "1");
    type.delParameter("x-probe");
    return type.get() == before;
}

TEST(CppInterface, HoldersCountReferences)
{
    mime::ContentType a("text/plain");
    EXPECT_TRUE(soleHolder(a));
    {
        mime::ContentType copy = a;
        EXPECT_FALSE(soleHolder(a)); // a copied itself away from copy
        EXPECT_EQ(copy, a);
    }
    EXPECT_TRUE(soleHolder(a));
    mime::ContentType moved = std::move(a);
    EXPECT_TRUE(soleHolder(moved));
    mime::ContentType &self = moved;
    moved = self; // self-assignment keeps the one reference
    EXPECT_TRUE(soleHolder(moved));
    moved = std::move(self);
    EXPECT_TRUE(soleHolder(moved));
    EXPECT_EQ(moved.name(), "text/plain");

    // With C: retain adds a reference the C side keeps, adopt takes one over.
    MIME_CONTENT_TYPE *c = mimeContentTypeCreateCstr("text/html", -1);
    {
        mime::ContentType held = mime::ContentType::retain(c);
        EXPECT_FALSE(soleHolder(held));
    }
    mime::ContentType owner = mime::ContentType::adopt(c);
    EXPECT_TRUE(soleHolder(owner));

    mime::Ref<PB_STRING> s = mime::makeString("x"), t = s, u;
    u = std::move(t);
    EXPECT_FALSE(t);
    PB_STRING *out = u.release(); // handed to C, released there
    pbStringRelease(out);
    EXPECT_FALSE(u);
}

TEST(CppInterface, ChangesCopyWhenShared)
{
    mime::ContentType original("multipart/mixed");
    original.setParameter("boundary", "b1");
    mime::ContentType changed = original;
    changed.setParameter("Boundary", "b2");
    changed.setName("multipart/related");
    EXPECT_EQ(original.parameter("boundary"), "b1");
    EXPECT_EQ(original.name(), "multipart/mixed");
    EXPECT_EQ(changed.parameter("BOUNDARY"), "b2");
    EXPECT_LT(original, changed); // by name: "mixed" before "related"
    EXPECT_NE(changed, original);

    mime::Entity entity;
    ASSERT_TRUE(entity.setContentType("text/plain"));
    mime::Entity copy = entity;
    copy.delContentType();
    EXPECT_EQ(entity.contentType(), "text/plain");
    EXPECT_EQ(copy.contentType(), std::nullopt);

    mime::Options options;
    mime::Options wide = options;
    wide.setWrapLineLength(200);
    EXPECT_NE(options.wrapLineLength(), 200);
    EXPECT_EQ(mime::Options::restore(wide.store().get()), wide);
}

TEST(CppInterface, FailuresCarryTheirDefect)
{
    struct Case {
        mime::Result<void> result;
        MIME_DEFECT_CODE code;
        PB_INT offset;
    };
    const mime::Buffer unclosed(std::string_view("--b\r\n\r\nx\r\n"));
    const mime::Entity broken =
        *mime::Entity::parse(mime::Buffer(std::string_view("Content-Transfer-Encoding: base64\r\n\r\n!!!!\r\n")));
    auto failure = [](const auto &result) { return result ? mime::Result<void>() : result.defect(); };
    const Case cases[] = {
        {failure(mime::ContentType::decode("text/")), MIME_DEFECT_CONTENT_TYPE_INVALID, 5},
        {failure(mime::ContentDisposition::decode(" @inline")), MIME_DEFECT_CONTENT_DISPOSITION_INVALID, 1},
        {failure(mime::Entity::parse(mime::Buffer(std::string_view("Content-Type text/plain\r\n\r\n")))),
         MIME_DEFECT_HEADER_LINE_MALFORMED, 0},
        {failure(mime::unpack(*mime::ContentType::decode("multipart/mixed; boundary=b"), unclosed)),
         MIME_DEFECT_CLOSE_DELIMITER_MISSING, 10},
        {failure(mime::decode(broken)), MIME_DEFECT_BODY_INVALID, 0},
        {mime::checkHeaderValue("a\r\nBcc: x"), MIME_DEFECT_HEADER_VALUE_UNSAFE, 1},
    };
    for (const Case &c : cases) {
        ASSERT_FALSE(c.result) << "case " << &c - cases;
        EXPECT_EQ(c.result.defect().code(), c.code) << c.result.defect().to_string();
        EXPECT_EQ(c.result.defect().offset(), c.offset) << c.result.defect().to_string();
    }
    EXPECT_EQ(mime::ContentType("text/plain").parameter("charset"), std::nullopt);
}

// Where a value leaves its header field (-1: it stays).
TEST(CppInterface, HeaderValueCheckFindsTheFirstCharacterThatLeavesTheField)
{
    const std::pair<std::string_view, PB_INT> cases[] = {
        {"", -1},
        {"text/plain;\r\n\tcharset=utf-8", -1},
        {"a\tb \u00e9\u2028", -1},
        {"a\r\n b\r\n c", -1},
        {"a\nb", 1},
        {"a\rb", 1},
        {"a\r\nb", 1},
        {"a\r\n \r\n b", 1}, // a continuation line of blanks alone
        {"a\r\n  ", 1},
        {"a\r\n", 1},
        {"ok\x01", 2},
        {"ok\x7f", 2},
        {std::string_view("x\0", 2), 1},
    };
    for (const auto &[value, offset] : cases) {
        const mime::Result<void> check = mime::checkHeaderValue(value);
        EXPECT_EQ(check ? -1 : check.defect().offset(), offset) << value;
    }
}

TEST(CppInterface, SettersAndEncodeRefuseValuesThatLeaveTheirField)
{
    mime::Entity entity;
    EXPECT_FALSE(entity.setContentId("<a@b>\r\nX-Injected: 1"));
    EXPECT_FALSE(entity.setContentDisposition(std::string_view("inline\0", 7)));
    EXPECT_EQ(entity.contentId(), std::nullopt);                         // unchanged
    EXPECT_TRUE(entity.setContentType("text/plain;\r\n charset=utf-8")); // a fold stays

    mime::ContentType type("text/plain");
    type.setParameter("name", "a\r\nBcc: x@example.com");
    mime::Result<mime::Entity> encoded = mime::encode(mime::Options(), mime::Buffer(std::string_view("x")), type);
    ASSERT_FALSE(encoded);
    EXPECT_EQ(encoded.defect().code(), MIME_DEFECT_HEADER_VALUE_UNSAFE);
}

// toUtf8 and makeString against the C conversions, over random code points
// (surrogates and values past U+10FFFF included).
TEST(CppInterface, TextRoundTripsAgreeWithTheCConversions)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<PB_CHAR> plane(0, 0x10FFFF), any(0, 0x7FFFFFFF), pick(0, 9);
    for (int round = 0; round < 500; ++round) {
        std::vector<PB_CHAR> chars(random() % 12);
        for (PB_CHAR &c : chars)
            c = pick(random) < 6 ? plane(random) % 0x800 : pick(random) < 9 ? plane(random) : any(random);
        mime::Ref<PB_STRING> s =
            mime::adopt(pbStringCreateFromCharsCopy(chars.data(), static_cast<PB_INT>(chars.size())));
        PB_INT length = 0;
        char *expected = pbStringConvertToCstr(s.get(), 0, &length);
        const std::string text = mime::toUtf8(s.get());
        EXPECT_EQ(text, std::string(expected, static_cast<size_t>(length)));
        pbMemFree(expected);
        EXPECT_EQ(mime::toUtf8(mime::makeString(text).get()), text);
    }
    mime::ContentDisposition disposition("attachment");
    disposition.setParameter("filename", "Grüße 𝄞 €.txt");
    std::vector<mime::Parameter> parameters(disposition.parameters().begin(), disposition.parameters().end());
    ASSERT_EQ(parameters.size(), 1u);
    EXPECT_EQ(parameters[0].value, "Grüße 𝄞 €.txt");
}

TEST(CppInterface, PartsWalkDepthFirst)
{
    const std::string message = "Content-Type: multipart/mixed; boundary=o\r\n\r\n--o\r\n"
                                "Content-Type: multipart/alternative; boundary=i\r\n\r\n"
                                "--i\r\n\r\nplain\r\n--i\r\nContent-Type: text/html\r\n\r\n<p>\r\n--i--\r\n"
                                "--o\r\nContent-Type: message/rfc822\r\n\r\nSubject: s\r\n\r\nbody\r\n--o--\r\n";
    const mime::Part root = mime::Part::read(mime::Buffer(message));
    std::vector<std::string> walked;
    for (const mime::Part &part : root.parts())
        walked.push_back(part.number() + " " + part.contentType().name());
    const std::vector<std::string> expected = {"1 multipart/mixed", "1.1 multipart/alternative", "1.1.1 text/plain",
                                               "1.1.2 text/html",   "1.2 message/rfc822",        "1.2.1 text/plain"};
    EXPECT_EQ(walked, expected);
    const mime::Part text = root.children()[0].children()[0];
    EXPECT_TRUE(text.contentTypeImplied());
    EXPECT_EQ(text.body().view(), "plain");
    EXPECT_EQ(root.field("content-type"), "multipart/mixed; boundary=o");
    EXPECT_TRUE(root.defects().empty());
}

} // namespace
