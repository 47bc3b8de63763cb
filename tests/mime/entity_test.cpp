// The entity record, and one entity's decoding and encoding: the all-or-nothing
// decoder over a table of entities, the encoder's choice of transfer encoding
// checked against both codings' real lengths, and encode/decode round trips over
// generated bodies under every flag combination.
#include "abort.hpp"
#include "entity.hpp"

#include <gtest/gtest.h>
#include <rfc/rfc.h>

#include <random>

using namespace test;

TEST(Entity, FieldsAreValuesSharedByReference)
{
    Ref<MIME_ENTITY> ent = adopt(mimeEntityCreate());
    EXPECT_EQ(fieldsOf(ent.get()), Fields{});
    EXPECT_FALSE(mimeEntityHasBody(ent.get()));
    const Fields all{"text/plain", "inline", "7bit", "<a@b>", ""};
    ent = entityOf(all);
    EXPECT_EQ(fieldsOf(ent.get()), all);
    EXPECT_TRUE(mimeEntityHasBody(ent.get())) << "an empty body is a body";

    // A change through one holder leaves the other's entity as it was; the copy
    // holds the same objects.
    Ref<MIME_ENTITY> other = pb::retained(ent.get());
    Ref<PB_BUFFER> body = adopt(mimeEntityBody(ent.get()));
    mimeEntitySetContentType(ent.addr(), str("text/html").get());
    EXPECT_NE(ent.get(), other.get());
    EXPECT_EQ(fieldsOf(other.get()), all);
    EXPECT_EQ(adopt(mimeEntityBody(ent.get())).get(), body.get());

    // Deleting, also an absent field, and setting the object a field holds.
    mimeEntityDelContentId(ent.addr());
    mimeEntityDelContentId(ent.addr());
    mimeEntitySetBody(ent.addr(), body.get());
    EXPECT_EQ(fieldsOf(ent.get()), (Fields{"text/html", "inline", "7bit", {}, ""}));
}

namespace {

struct Decoded {
    bool ok;
    std::string type, disposition;
    Text id, body;
    bool operator==(const Decoded &) const = default;
};

void PrintTo(const Decoded &d, std::ostream *os)
{
    *os << d.ok << " [" << d.type << "] [" << d.disposition << "] " << d.id.value_or("-") << " "
        << d.body.value_or("-");
}

Decoded decode(const Fields &fields, MIME_OPTIONS *mo)
{
    Ref<MIME_ENTITY> ent = entityOf(fields);
    // Stale objects in the result variables are released first.
    Ref<PB_BUFFER> body = bytes("stale");
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("a/b", -1));
    Ref<MIME_CONTENT_DISPOSITION> disposition;
    Ref<PB_STRING> id = str("stale");
    bool ok = mimeDecode(ent.get(), mo, body.addr(), type.addr(), disposition.addr(), id.addr());
    // The validity does not depend on the results asked for.
    EXPECT_EQ(ok, mimeDecode(ent.get(), mo, nullptr, nullptr, nullptr, nullptr));
    return {ok, type ? text(mimeContentTypeObj(type.get())) : "",
            disposition ? text(mimeContentDispositionObj(disposition.get())) : "",
            id ? Text(utf8(id.get())) : std::nullopt, body ? Text(bytesOf(body.get())) : std::nullopt};
}

} // namespace

TEST(EntityDecode, AllOrNothing)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    const Decoded failed{false, "", "", {}, {}};
    const std::pair<Fields, Decoded> rows[] = {
        {{}, {true, "", "", {}, {}}},
        {{{}, {}, {}, {}, "as is \xff"}, {true, "", "", {}, "as is \xff"}},
        {{"text/plain; charset=utf-8", "attachment; filename=a.txt", "BASE64", "<x@y>", "aGk="},
         {true, "text/plain {charset=utf-8}", "attachment {filename=a.txt}", "x@y", "hi"}},
        {{{}, {}, "quoted-printable", {}, "a=3Db=\r\nc"}, {true, "", "", {}, "a=bc"}},
        {{{}, {}, "7bit", {}, "long line \xff unchecked"}, {true, "", "", {}, "long line \xff unchecked"}},
        {{{}, {}, "base64", {}, {}}, {true, "", "", {}, {}}},
        {{"text/plain", {}, {}, "no brackets", {}}, failed},
        {{"text", {}, {}, {}, {}}, failed},
        {{{}, "attachment;", "x-unknown", {}, {}}, failed},
        {{{}, "", {}, {}, {}}, failed},
        {{{}, {}, "base64", {}, "a=b="}, failed},
        {{{}, {}, "quoted-printable", {}, "a=zz"}, failed},
    };
    for (const auto &[fields, want] : rows)
        EXPECT_EQ(decode(fields, mo.get()), want);
}

namespace {

std::string encoded(PB_BUFFER *body, MIME_OPTIONS *mo, bool base64)
{
    Ref<RFC_BASE_OPTIONS> bo = adopt(mimeOptionsRfcBaseOptions(mo));
    Ref<RFC_QUOP_OPTIONS> qo = adopt(mimeOptionsRfcQuopOptions(mo));
    Ref<PB_BUFFER> out = adopt(base64 ? rfcBaseEncodeWithOptions(body, RFC_BASE_VARIANT_BASE64, bo.get())
                                      : rfcQuopEncodeWithOptions(body, qo.get()));
    return bytesOf(out.get());
}

// The transfer encoding the choice table prescribes, from both real codings.
std::string prescribed(PB_BUFFER *body, MIME_OPTIONS *mo)
{
    MIME_FLAGS flags = mimeOptionsFlags(mo);
    if (flags & MIME_FLAG_GENERATE_EIGHT_BIT_BODY)
        return "binary";
    if (mimeContentTransferEncodingCheck(MIME_CONTENT_TRANSFER_ENCODING_7BIT, body))
        return "7bit";
    if (flags & MIME_FLAG_GENERATE_DISABLE_QUOTED_PRINTABLE)
        return "base64";
    return encoded(body, mo, true).size() > encoded(body, mo, false).size() ? "quoted-printable" : "base64";
}

} // namespace

TEST(EntityEncode, FieldsAndChoiceExamples)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    Ref<MIME_ENTITY> bare = adopt(mimeEncode(mo.get(), nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(fieldsOf(bare.get()), Fields{});

    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("text/plain", -1));
    mimeContentTypeSetParameterCstrCstrValue(type.addr(), "charset", -1, "utf-8", -1);
    Ref<MIME_CONTENT_DISPOSITION> disposition = adopt(mimeContentDispositionCreateCstr("info-package", -1));
    Ref<PB_BUFFER> text = bytes("line one\r\nline two\r\n");
    Ref<MIME_ENTITY> ent = adopt(mimeEncode(mo.get(), text.get(), type.get(), disposition.get(), str("part1").get()));
    EXPECT_EQ(fieldsOf(ent.get()),
              (Fields{"text/plain;charset=utf-8", "Info-Package", "7bit", "<part1>", "line one\r\nline two\r\n"}));
    EXPECT_EQ(adopt(mimeEntityBody(ent.get())).get(), text.get()) << "a 7bit body is stored as it is";

    const std::pair<std::string, std::string> rows[] = {
        {"line one\r\nline two", "quoted-printable"},         // no final CR LF
        {"caf\xc3\xa9 au lait\r\n", "quoted-printable"},      // a few 8-bit bytes
        {std::string(999, 'a') + "\r\n", "quoted-printable"}, // a line too long for 7bit
        {"\xff\xfe\xfd\xfc", "base64"},
        {"", "7bit"},
        {"=", "quoted-printable"}, // "=3D" against "PQ=="
        {"abcde=", "base64"},      // "abcde=3D" against "YWJjZGU9": a tie goes to base64
        {"abcde ", "base64"},      // "abcde=20": a tie that only the encoding shows
    };
    for (const auto &[body, cte] : rows) {
        Ref<MIME_ENTITY> e = adopt(mimeEncode(mo.get(), bytes(body).get(), nullptr, nullptr, nullptr));
        EXPECT_EQ(fieldsOf(e.get()).contentTransferEncoding, cte) << body;
    }
    EXPECT_DEATH(
        mimeEncode(mo.get(), nullptr, nullptr, nullptr, str("").get()),
        assertion("source/mime/mime_encode.cpp", "!optionalContentId || mimeContentIdOk( optionalContentId )"));
}

TEST(EntityEncode, RoundTripsAndChoosesByTheTable)
{
    std::mt19937_64 rng(7);
    auto pick = [&](size_t n) { return static_cast<size_t>(rng() % n); };
    // Bodies of every kind the table separates: 7bit text, text without its
    // final line break, 8-bit text, long lines, binary, empty.
    auto body = [&](int kind) {
        std::string b;
        size_t n = pick(kind == 5 ? 1 : 3000), rate = 120 + pick(40);
        for (size_t i = 0; i < n; ++i) {
            switch (kind) {
            case 0:
                b += pick(30) ? static_cast<char>('a' + pick(26)) : '\n';
                break;
            case 1:
                b += pick(50) ? static_cast<char>(' ' + pick(95)) : static_cast<char>(0xC3 + pick(2));
                break;
            case 2:
                b += pick(2000) ? 'x' : '\n';
                break;
            case 3:
                b += static_cast<char>(rng());
                break;
            case 4:
                b += pick(4) ? 'a' : static_cast<char>(rng());
                break;
            case 6: // near the tie of the two codings, with every byte class
                b += pick(1000) < rate ? "=\x7f\x80\xff\x1f\x01\r"[pick(7)] : "ab\t\n  "[pick(6)];
                break;
            default:
                break;
            }
        }
        return kind == 0 && pick(2) ? crlf(b + "\n") : crlf(b);
    };
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("application/octet-stream", -1));
    mimeContentTypeSetParameterCstrCstrValue(type.addr(), "name", -1, "r\xc3\xa9sum\xc3\xa9 of a long file name.txt",
                                             -1);
    Ref<MIME_CONTENT_DISPOSITION> disposition = adopt(mimeContentDispositionCreateCstr("attachment", -1));
    const MIME_FLAGS flagSets[] = {0, MIME_FLAG_GENERATE_EIGHT_BIT_BODY, MIME_FLAG_GENERATE_DISABLE_QUOTED_PRINTABLE,
                                   MIME_FLAG_GENERATE_RFC2231_HEADERS | MIME_FLAG_PARSE_RFC2231_HEADERS};
    for (MIME_FLAGS flags : flagSets) {
        Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
        mimeOptionsSetFlags(mo.addr(), flags | MIME_FLAG_PARSE_RFC2231_HEADERS);
        for (int round = 0; round < 140; ++round) {
            Ref<PB_BUFFER> b = bytes(body(round % 7));
            Ref<MIME_ENTITY> ent = adopt(
                mimeEncode(mo.get(), b.get(), type.get(), disposition.get(), str("id" + std::to_string(round)).get()));
            ASSERT_EQ(fieldsOf(ent.get()).contentTransferEncoding, prescribed(b.get(), mo.get())) << flags;
            Ref<PB_BUFFER> back;
            Ref<MIME_CONTENT_TYPE> typeBack;
            Ref<MIME_CONTENT_DISPOSITION> dispositionBack;
            Ref<PB_STRING> id;
            ASSERT_TRUE(
                mimeDecode(ent.get(), mo.get(), back.addr(), typeBack.addr(), dispositionBack.addr(), id.addr()));
            EXPECT_EQ(bytesOf(back.get()), bytesOf(b.get()));
            EXPECT_EQ(utf8(id.get()), "id" + std::to_string(round));
            EXPECT_TRUE(mimeContentDispositionEquals(dispositionBack.get(), disposition.get()));
            // Without RFC 2231 (and without Unicode) the non-ASCII name stays behind.
            if (flags & MIME_FLAG_GENERATE_RFC2231_HEADERS) {
                EXPECT_TRUE(mimeContentTypeEquals(typeBack.get(), type.get()));
            }
        }
    }
}
