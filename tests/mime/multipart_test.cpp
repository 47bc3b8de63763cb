// Multipart bodies: the boundary rules, the exact packed layout, collisions, the
// layouts that unpacking accepts and refuses, the header-block rules of one part,
// and pack/unpack round trips over generated entities whose bodies hold
// delimiter-like lines.
#include "abort.hpp"
#include "entity.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>
#include <vector>

using namespace test;

namespace {

Ref<MIME_CONTENT_TYPE> multipart(const char *boundary = nullptr)
{
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("multipart/mixed", -1));
    if (boundary)
        mimeContentTypeSetParameterCstrCstrValue(type.addr(), "boundary", -1, boundary, -1);
    return type;
}

std::string boundaryOf(MIME_CONTENT_TYPE *type)
{
    PB_STRING *b = mimeContentTypeParameterCstr(type, "boundary", -1);
    return b ? take(b) : "";
}

Ref<PB_VECTOR> vectorOf(const std::vector<Fields> &entities)
{
    Ref<PB_VECTOR> v = adopt(pbVectorCreate());
    for (const Fields &f : entities)
        pbVectorAppendObj(v.addr(), mimeEntityObj(entityOf(f).get()));
    return v;
}

std::optional<std::vector<Fields>> unpack(const std::string &body, const char *boundary = "B")
{
    Ref<PB_VECTOR> parts =
        adopt(mimeMultipartTryUnpack(multipart(boundary).get(), bytes(body).get(), adopt(mimeOptionsCreate()).get()));
    if (!parts)
        return std::nullopt;
    std::vector<Fields> out;
    for (PB_INT i = 0; i < pbVectorLength(parts.get()); ++i)
        out.push_back(fieldsOf(mimeEntityFrom(adopt(pbVectorObjAt(parts.get(), i)).get())));
    return out;
}

std::optional<Fields> parse(const std::string &content)
{
    Ref<MIME_ENTITY> ent = adopt(mimeEntityTryParse(bytes(content).get(), adopt(mimeOptionsCreate()).get()));
    return ent ? std::optional<Fields>(fieldsOf(ent.get())) : std::nullopt;
}

} // namespace

TEST(MultipartBoundary, Rules)
{
    const std::pair<std::string, bool> rows[] = {
        {"", false},     {std::string(71, 'a'), false}, {"ab ", false}, {"a@b", false},         {"\xc3\xa9", false},
        {"a", true},     {std::string(70, 'a'), true},  {"a b", true},  {"'()+_,-./:=?", true}, {"=_att_8a2f", true},
        {"a\tb", false},
    };
    for (const auto &[boundary, ok] : rows)
        EXPECT_EQ(mimeMultipartBoundaryOk(str(boundary).get()), ok) << boundary;
}

TEST(MultipartPack, ExactLayout)
{
    Ref<MIME_CONTENT_TYPE> type = multipart("B");
    Ref<PB_VECTOR> entities = vectorOf({{"text/plain", {}, {}, {}, "hello"}, {}});
    Ref<PB_BUFFER> packed = adopt(mimeMultipartTryPack(type.addr(), entities.get(), adopt(mimeOptionsCreate()).get()));
    ASSERT_TRUE(packed);
    EXPECT_EQ(bytesOf(packed.get()), "--B\r\nContent-Type: text/plain\r\n\r\nhello\r\n--B\r\n\r\n\r\n--B--\r\n");

    // Every field, in the fixed order whatever the order they were set in; UTF-8 values.
    Ref<MIME_ENTITY> ent = adopt(mimeEntityCreate());
    mimeEntitySetContentId(ent.addr(), str("<i>").get());
    mimeEntitySetContentTransferEncoding(ent.addr(), str("7bit").get());
    mimeEntitySetContentDisposition(ent.addr(), str("attachment; filename=\xe2\x82\xac").get());
    mimeEntitySetContentType(ent.addr(), str("text/plain").get());
    Ref<PB_VECTOR> one = adopt(pbVectorCreate());
    pbVectorAppendObj(one.addr(), mimeEntityObj(ent.get()));
    packed = adopt(mimeMultipartTryPack(type.addr(), one.get(), adopt(mimeOptionsCreate()).get()));
    EXPECT_EQ(bytesOf(packed.get()), crlf("--B\nContent-Type: text/plain\nContent-Disposition: attachment; "
                                          "filename=\xe2\x82\xac\nContent-Transfer-Encoding: 7bit\n"
                                          "Content-Id: <i>\n\n\n--B--\n"));
}

TEST(MultipartPack, BoundaryChoice)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    struct Row {
        const char *given; // null: no boundary parameter
        std::string body;
        bool kept;
    } rows[] = {
        {nullptr, "x", false},
        {"bad@", "x", false},
        {"B1", "no delimiter here", true},
        {"B1", "--B1 at the start", false},
        {"B1", "line\r\n--B1\r\nafter a line break", false},
        {"B1", "line\r\n--B1longer boundary line", false},
        {"B1", "in the middle --B1 of a line", true},
        {"B1", "line\n--B1 after a bare LF", true},
    };
    for (const Row &row : rows) {
        Ref<MIME_CONTENT_TYPE> type = multipart(row.given);
        Ref<MIME_CONTENT_TYPE> shared = pb::retained(type.get());
        Ref<PB_VECTOR> entities = vectorOf({{{}, {}, {}, {}, row.body}});
        Ref<PB_BUFFER> packed = adopt(mimeMultipartTryPack(type.addr(), entities.get(), mo.get()));
        ASSERT_TRUE(packed);
        std::string chosen = boundaryOf(type.get());
        EXPECT_EQ(chosen == (row.given ? row.given : ""), row.kept) << row.body;
        if (!row.kept) {
            EXPECT_EQ(chosen.size(), 10u);
        }
        EXPECT_EQ(boundaryOf(shared.get()), row.given ? row.given : "") << "the shared value changed";
        EXPECT_NE(bytesOf(packed.get()).find("\r\n--" + chosen + "--\r\n"), std::string::npos);
    }
}

TEST(MultipartPack, HeaderValueWithoutUtf8FormFails)
{
    Ref<MIME_CONTENT_TYPE> type = multipart("B");
    Ref<MIME_ENTITY> ent = adopt(mimeEntityCreate());
    mimeEntitySetContentType(ent.addr(), chars(U"text/\xD800").get());
    Ref<PB_VECTOR> one = adopt(pbVectorCreate());
    pbVectorAppendObj(one.addr(), mimeEntityObj(ent.get()));
    MIME_CONTENT_TYPE *before = type.get();
    EXPECT_FALSE(adopt(mimeMultipartTryPack(type.addr(), one.get(), adopt(mimeOptionsCreate()).get())));
    EXPECT_EQ(type.get(), before);
    EXPECT_EQ(boundaryOf(type.get()), "B");
}

TEST(MultipartUnpack, AcceptedLayouts)
{
    const Fields text{"text/plain", {}, {}, {}, "hi"};
    const Fields none{};
    const std::pair<std::string, std::vector<Fields>> rows[] = {
        {"--B--", {}},
        {"--B--\r\n", {}},
        {crlf("preamble\n--B\nContent-Type: text/plain\n\nhi\n--B--\nepilogue"), {text}},
        {crlf("\n--B\nContent-Type: text/plain\n\nhi\n--B--"), {text}},
        {crlf("--B \t\nContent-Type: text/plain\n\nhi\n--B\t\n\n--B--"), {text, none}},
        {crlf("--B\n\n--B\n\n--B--"), {none, none}},
        {crlf("--B\n\nbody only\n--B--"), {{{}, {}, {}, {}, "body only"}}},
        {crlf("--B\n\n\n--B--"), {none}},
        {crlf("--B\n\n\n\n--B--"), {{{}, {}, {}, {}, "\r\n"}}},
        {crlf("--B\nContent-Type: text/plain\n--B--"), {{"text/plain", {}, {}, {}, {}}}},
        {crlf("--B\nContent-Type: text/plain\n\n--B--"), {{"text/plain", {}, {}, {}, {}}}},
        {crlf("--B\nContent-Type: text/plain\n\n\n--B--"), {{"text/plain", {}, {}, {}, {}}}},
        {crlf("--B\nContent-Type: text/plain\n\nends in a lone CR\r\n--B--"),
         {{"text/plain", {}, {}, {}, "ends in a lone CR\r"}}},
        {crlf("--B\nCONTENT-TYPE: text/plain\nContent-id:  <a> \nX-Other: ignored\n\nhi\n--B--"),
         {{"text/plain", {}, {}, "<a>", "hi"}}},
        {crlf("--B\nContent-Type: multipart/mixed;\n\tboundary=inner\n\n--inner--\n--B--"),
         {{"multipart/mixed;\tboundary=inner", {}, {}, {}, "--inner--"}}},
        {crlf("--B\nContent-Type: text/plain\n\nsee --B in the text\n--B--"),
         {{"text/plain", {}, {}, {}, "see --B in the text"}}},
    };
    for (const auto &[body, parts] : rows) {
        auto got = unpack(body);
        ASSERT_TRUE(got) << body;
        EXPECT_EQ(*got, parts) << body;
    }
}

// The delimiter is found at every offset within and across the blocks that the
// search reads at once, behind near misses that share its first and last bytes,
// for a short and a 70-character boundary.
TEST(MultipartUnpack, DelimiterAtEveryOffset)
{
    for (const std::string &boundary : {std::string("B"), std::string(69, 'q') + "B"}) {
        const std::string misses[] = {"\r\n-x" + boundary, "\rx--" + boundary, "x", "\r\n--b"};
        std::string text;
        for (size_t length = 0; length < 300; ++length) {
            text.resize(length);
            std::string body = "--" + boundary + "\r\n\r\n" + text + "\r\n--" + boundary + "--";
            auto got = unpack(body, boundary.c_str());
            ASSERT_TRUE(got && got->size() == 1) << length;
            const Fields expected = text.empty() ? Fields{} : Fields{{}, {}, {}, {}, text};
            EXPECT_EQ((*got)[0], expected) << length;
            text += misses[length % 4];
        }
    }
}

// Each refusal, and the reason mimeMultipartTryUnpackWithDefect gives for it.
TEST(MultipartUnpack, RefusedLayouts)
{
    const std::pair<std::string, MIME_DEFECT_CODE> rows[] = {
        {"", MIME_DEFECT_DELIMITER_MISSING},
        {"no delimiter", MIME_DEFECT_DELIMITER_MISSING},
        {"x--B--", MIME_DEFECT_DELIMITER_MISSING},                                // not at a line start
        {crlf("--B\n\nhi"), MIME_DEFECT_CLOSE_DELIMITER_MISSING},                 // no further delimiter
        {crlf("--B\n\nhi\n--B"), MIME_DEFECT_DELIMITER_LINE_MALFORMED},           // ends right after the boundary
        {crlf("--B\n\nhi\n--B -- \n"), MIME_DEFECT_DELIMITER_LINE_MALFORMED},     // padding before "--"
        {crlf("--BX\n\nhi\n--B--"), MIME_DEFECT_DELIMITER_LINE_MALFORMED},        // a longer boundary
        {crlf("--B\n\nhi\n--BX\n\n--B--"), MIME_DEFECT_DELIMITER_LINE_MALFORMED}, // a longer boundary ends a part
        {crlf("--B x\n\nhi\n--B--"), MIME_DEFECT_DELIMITER_LINE_MALFORMED},       // more than padding
        {crlf("--B\n Content-Type: a\n\nhi\n--B--"), MIME_DEFECT_HEADER_CONTINUATION_FIRST},
        {crlf("--B\nContent-Type a\n\nhi\n--B--"), MIME_DEFECT_HEADER_LINE_MALFORMED}, // no colon
        {crlf("--B\nContent-Type : a\n\nhi\n--B--"), MIME_DEFECT_HEADER_LINE_MALFORMED},
        {crlf("--B\n: text/plain\n\nhi\n--B--"), MIME_DEFECT_HEADER_LINE_MALFORMED}, // empty name
        {crlf("--B\nContent-Id: <a>\ncontent-id: <b>\n\n--B--"), MIME_DEFECT_HEADER_FIELD_REPEATED},
        {crlf("--B\nX-Bytes: \xff\n\nhi\n--B--"), MIME_DEFECT_HEADER_NOT_UTF8},
        {crlf("--B\nno header line\n--B--"), MIME_DEFECT_HEADER_LINE_MALFORMED}, // no empty line: read as headers
    };
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    for (const auto &[body, code] : rows) {
        EXPECT_FALSE(unpack(body)) << body;
        Ref<MIME_DEFECT> defect;
        EXPECT_FALSE(
            adopt(mimeMultipartTryUnpackWithDefect(multipart("B").get(), bytes(body).get(), mo.get(), defect.addr())));
        EXPECT_EQ(defect ? mimeDefectCode(defect.get()) : -1, code) << body;
    }
    EXPECT_FALSE(unpack("--B--", nullptr)) << "no boundary parameter";
    EXPECT_FALSE(unpack("--a@--", "a@")) << "an invalid boundary";
}

TEST(EntityParse, HeaderBlocks)
{
    const std::pair<std::string, std::optional<Fields>> rows[] = {
        {"", Fields{}},
        {"\r\n", Fields{}},
        {"\r\nbody", Fields{{}, {}, {}, {}, "body"}},
        {crlf("Content-Type: text/plain\n\nbody\n"), Fields{"text/plain", {}, {}, {}, "body\r\n"}},
        {crlf("Content-Type: text/plain\n"), Fields{"text/plain", {}, {}, {}, {}}},
        {crlf("Subject: hi\nContent-Type: text/plain;\n charset=utf-8\n\nx"),
         Fields{"text/plain; charset=utf-8", {}, {}, {}, "x"}},
        {crlf("Content-Type: \n \n\n"), Fields{"", {}, {}, {}, {}}},
        {crlf("X: \xe2\x82\xac\nContent-Disposition: attachment; filename=\xe2\x82\xac\n\n"),
         Fields{{}, "attachment; filename=\xe2\x82\xac", {}, {}, {}}},
        {crlf("Content-Type: a\rb\n\n"), Fields{"a\rb", {}, {}, {}, {}}},
        {crlf("Content\r-Type: a\n\n"), std::nullopt},
        {crlf("Content-Type: a\nContent-Type: b\n\n"), std::nullopt},
        {crlf("\tContent-Type: a\n\n"), std::nullopt},
    };
    for (const auto &[content, fields] : rows)
        EXPECT_EQ(parse(content), fields) << content;
}

TEST(MultipartRoundTrip, GeneratedEntities)
{
    std::mt19937_64 rng(42);
    auto pick = [&](size_t n) { return static_cast<size_t>(rng() % n); };
    // Pieces that make bodies look like multipart text, delimiters of the
    // boundary in use included.
    const std::string pieces[] = {"--",   "\r\n", "\r", "\n",       "--B",  "\r\n--B", "\r\n--B--",
                                  "text", "\xff", " ",  "\r\n\r\n", "--Bx", "=_",      std::string(1, '\0')};
    auto body = [&] {
        std::string b;
        for (size_t n = pick(12); n > 0; --n)
            b += pieces[pick(std::size(pieces))];
        return b;
    };
    auto value = [&]() -> Text {
        if (pick(3) == 0)
            return std::nullopt;
        std::string v = "v" + std::to_string(pick(1000));
        if (pick(2))
            v += "; a=\"b c\"; \xe2\x82\xac";
        return v;
    };
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    int replaced = 0;
    for (int round = 0; round < 300; ++round) {
        std::vector<Fields> entities(1 + pick(4));
        for (Fields &f : entities) {
            f = {value(), value(), value(), value(), pick(4) ? Text(body()) : std::nullopt};
        }
        Ref<MIME_CONTENT_TYPE> type = multipart("B");
        Ref<PB_BUFFER> packed = adopt(mimeMultipartTryPack(type.addr(), vectorOf(entities).get(), mo.get()));
        ASSERT_TRUE(packed);
        replaced += boundaryOf(type.get()) != "B";
        Ref<PB_VECTOR> parts = adopt(mimeMultipartTryUnpack(type.get(), packed.get(), mo.get()));
        ASSERT_TRUE(parts) << bytesOf(packed.get());
        ASSERT_EQ(pbVectorLength(parts.get()), static_cast<PB_INT>(entities.size()));
        for (size_t i = 0; i < entities.size(); ++i) {
            Fields want = entities[i];
            if (want.body && want.body->empty())
                want.body.reset(); // an empty body comes back absent
            EXPECT_EQ(fieldsOf(mimeEntityFrom(adopt(pbVectorObjAt(parts.get(), static_cast<PB_INT>(i))).get())), want);
        }
    }
    EXPECT_GT(replaced, 10) << "the bodies should force boundary changes";
}

// Threads pack under one shared Content-Type and unpack and decode one shared
// body, each through its own references; the shared values never change.
TEST(MultipartConcurrency, SharedValuesAcrossThreads)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    Ref<MIME_CONTENT_TYPE> shared = multipart("B");
    Ref<PB_VECTOR> entities = vectorOf({{"text/plain", {}, "base64", "<a>", "aGVsbG8="}, {{}, {}, {}, {}, "x"}});
    Ref<MIME_CONTENT_TYPE> packedType = pb::retained(shared.get());
    Ref<PB_BUFFER> packed = adopt(mimeMultipartTryPack(packedType.addr(), entities.get(), mo.get()));
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int round = 0; round < 500; ++round) {
                Ref<MIME_CONTENT_TYPE> mine = pb::retained(shared.get());
                Ref<PB_BUFFER> out = adopt(mimeMultipartTryPack(mine.addr(), entities.get(), mo.get()));
                Ref<PB_VECTOR> parts = adopt(mimeMultipartTryUnpack(packedType.get(), packed.get(), mo.get()));
                Ref<PB_BUFFER> body;
                bool ok = out && parts && pbVectorLength(parts.get()) == 2 &&
                          mimeDecode(mimeEntityFrom(adopt(pbVectorObjAt(parts.get(), 0)).get()), mo.get(), body.addr(),
                                     nullptr, nullptr, nullptr) &&
                          bytesOf(body.get()) == "hello" && mine.get() != shared.get();
                failures += !ok;
            }
        });
    }
    for (std::thread &t : threads)
        t.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(boundaryOf(shared.get()), "B");
}
