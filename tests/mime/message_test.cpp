// The tolerant message reader against Python's email package, over the mail
// test messages that ship with the interpreter and the messages of
// tests/mime/mail (one for each departure from the RFCs that the reader
// tolerates); and against the strict functions, which it must agree with
// wherever they accept the input.
#include "../../fuzz/message_support.hpp"
#include "entity.hpp"
#include "oracle.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

using namespace test;

namespace {

// A part as the oracle prints it: depth, media type, parameters, transfer
// encoding, filename, body (see message_oracle.py).
using Line = std::vector<std::string>;

std::string fileBytes(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), {});
}

std::string parametersOf(MIME_CONTENT_TYPE *type)
{
    std::string out;
    for (PB_INT i = 0; i < mimeContentTypeParametersLength(type); ++i)
        out += (i ? ";" : "") + take(mimeContentTypeParameterKeyAt(type, i)) + "=" +
               hex(take(mimeContentTypeParameterValueAt(type, i)));
    return out;
}

std::string filenameOf(MIME_PART *part, MIME_CONTENT_TYPE *type)
{
    Ref<MIME_CONTENT_DISPOSITION> disposition = adopt(mimePartContentDisposition(part));
    Ref<PB_STRING> name;
    if (disposition)
        name = adopt(mimeContentDispositionParameterCstr(disposition.get(), "filename", -1));
    if (!name)
        name = adopt(mimeContentTypeParameterCstr(type, "name", -1));
    return name ? hex(utf8(name.get())) : "-";
}

void linesOf(MIME_PART *part, int depth, std::vector<Line> &lines)
{
    Ref<MIME_CONTENT_TYPE> type = adopt(mimePartContentType(part));
    std::string name = take(mimeContentTypeName(type.get()));
    MIME_CONTENT_TRANSFER_ENCODING cte = mimePartTransferEncoding(part);
    bool container = name.starts_with("multipart/") || name.starts_with("message/");
    Ref<PB_BUFFER> body = adopt(mimePartBody(part));
    lines.push_back({std::to_string(depth), name, mimePartContentTypeImplied(part) ? "-" : parametersOf(type.get()),
                     cte < 0 ? "-" : take(mimeContentTransferEncodingToString(cte)), filenameOf(part, type.get()),
                     container ? "-" : hex(body ? bytesOf(body.get()) : "")});
    for (PB_INT i = 0; i < mimePartChildCount(part); ++i)
        linesOf(adopt(mimePartChildAt(part, i)).get(), depth + 1, lines);
}

// The messages of tests/mime/mail.
std::vector<std::string> mailFiles()
{
    std::vector<std::string> files;
    for (const auto &entry : std::filesystem::directory_iterator(CORVANE_TEST_DATA_DIR "/mime/mail"))
        if (entry.path().extension() == ".eml")
            files.push_back(entry.path().string());
    return files;
}

Ref<MIME_PART> read(const std::string &message)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    return adopt(mimeMessageRead(bytes(message).get(), mo.get(), nullptr));
}

// Messages that we read differently from Python's email package on purpose.
const std::map<std::string, std::string> kDifferences = {
    {"msg_15.txt", "quoted-printable: spaces at a line end are removed, as RFC 2045 asks"},
    {"header-latin1.eml", "a header value that is not UTF-8 is Latin-1 here, U+FFFD there"},
    {"encoded-word-filename.eml", "RFC 2047 words in the name parameter are decoded here"},
    {"disposition-unreadable.eml", "an unreadable Content-Disposition is dropped here, half-read there"},
    {"stray-cr.eml", "a CR without LF is no line end here"},
};

} // namespace

TEST(MessageReader, AgreesWithPythonsEmailPackage)
{
    std::string arguments;
    std::vector<std::string> files = mailFiles();
    for (const Line &line : runOracle("mime/message_oracle.py", "--corpus stdlib"))
        files.push_back(line[0]);
    for (const std::string &file : files)
        arguments += " " + file;
    OracleLines lines = runOracle("mime/message_oracle.py", arguments);
    if (lines.empty())
        GTEST_SKIP() << "python3 is not available";
    std::map<std::string, std::vector<Line>> expected;
    for (const auto &line : lines)
        expected[line[0]].emplace_back(line.begin() + 1, line.end());
    for (const std::string &file : files) {
        std::string name = std::filesystem::path(file).filename().string();
        std::vector<Line> ours;
        linesOf(read(fileBytes(file)).get(), 0, ours);
        bool agrees = ours == expected[file];
        auto reason = kDifferences.find(name);
        if (reason == kDifferences.end())
            EXPECT_EQ(ours, expected[file]) << file;
        else
            EXPECT_FALSE(agrees) << file << " agrees now, though listed: " << reason->second;
    }
}

namespace {

// A random message in wire form, as the library writes it: leaves of text or
// binary bytes under random types, dispositions and ids, encoded by
// mimeEncode, nested up to depth in multipart bodies by mimeMultipartTryPack.
std::string randomEntity(std::mt19937 &rng, int depth, MIME_OPTIONS *mo)
{
    auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
    if (depth > 0 && pick(3) == 0) {
        Ref<PB_VECTOR> parts = adopt(pbVectorCreate());
        for (int i = 0, n = 1 + pick(3); i < n; ++i) {
            Ref<MIME_ENTITY> part = adopt(mimeEntityTryParse(bytes(randomEntity(rng, depth - 1, mo)).get(), mo));
            pbVectorAppendObj(parts.addr(), mimeEntityObj(part.get()));
        }
        const char *kinds[] = {"multipart/mixed", "multipart/alternative", "multipart/digest"};
        Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr(kinds[pick(3)], -1));
        Ref<PB_BUFFER> body = adopt(mimeMultipartTryPack(type.addr(), parts.get(), mo));
        std::string header = utf8(adopt(mimeContentTypeEncode(type.get(), mo, 14)).get());
        return "Subject: nested\r\nContent-Type: " + header + "\r\n\r\n" + bytesOf(body.get());
    }
    std::string content;
    for (int i = 0, n = pick(200); i < n; ++i)
        content += pick(4) ? "abc \r\n=-.;\xc3\xa9"[pick(12)] : static_cast<char>(pick(256));
    const char *types[] = {"text/plain; charset=utf-8", "application/octet-stream", "message/rfc822",
                           "text/html; name*=utf-8''%C3%A9.html"};
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeTryDecodeCstr(types[pick(4)], -1, mo));
    Ref<MIME_CONTENT_DISPOSITION> disposition =
        pick(2) ? adopt(mimeContentDispositionTryDecodeCstr("attachment; filename=\"a b.txt\"", -1, mo))
                : Ref<MIME_CONTENT_DISPOSITION>();
    Ref<MIME_ENTITY> ent = adopt(mimeEncodeCstr(mo, bytes(content).get(), type.get(), disposition.get(),
                                                pick(2) ? "id@example.org" : nullptr, -1));
    Ref<PB_VECTOR> one = adopt(pbVectorCreate());
    pbVectorAppendObj(one.addr(), mimeEntityObj(ent.get()));
    Ref<MIME_CONTENT_TYPE> mixed = adopt(mimeContentTypeCreateCstr("multipart/mixed", -1));
    mimeContentTypeSetParameterCstrCstrValue(mixed.addr(), "boundary", -1, "cut", -1);
    // The part as packed, without its delimiter lines.
    std::string packed = bytesOf(adopt(mimeMultipartTryPack(mixed.addr(), one.get(), mo)).get());
    return packed.substr(7, packed.size() - 7 - 11);
}

// text with a few random changes of the kinds that break messages.
std::string mutated(std::string text, std::mt19937 &rng)
{
    const std::string pieces[] = {"\r\n", "\n", "\r", "--", "\r\n--cut\r\n", ":", ";", "\"", "=", "=?", " ", "\x80"};
    for (int k = 0, n = 1 + static_cast<int>(rng() % 3); k < n && !text.empty(); ++k) {
        size_t at = rng() % text.size();
        switch (rng() % 3) {
        case 0:
            text.erase(at, 1 + rng() % 8);
            break;
        case 1:
            text.insert(at, pieces[rng() % std::size(pieces)]);
            break;
        default:
            text.insert(at, text.substr(rng() % text.size(), rng() % 40));
        }
    }
    return text;
}

} // namespace

// The properties of message_support.hpp over generated messages, as written
// and with random damage: a third of them still pass the strict reading.
TEST(MessageReader, AgreesWithTheStrictFunctions)
{
    std::mt19937 rng(2231);
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    int compared[2] = {};
    for (int i = 0; i < 3000; ++i) {
        std::string message = randomEntity(rng, 3, mo.get());
        if (i % 2)
            message = mutated(message, rng);
        fuzz::MessageCheck check;
        ASSERT_EQ(check.run(reinterpret_cast<const uint8_t *>(message.data()), message.size()), "") << hex(message);
        compared[i % 2] += check.compared();
    }
    // All written messages pass the strict reading; those with a message/rfc822
    // leaf in base64 (a departure that strict reading passes) are not compared.
    EXPECT_GT(compared[0], 900);
    EXPECT_GT(compared[1], 250);
}

namespace {

// "part code" for each defect of the tree, depth first.
void defectsOf(MIME_PART *part, std::vector<std::string> &out)
{
    for (PB_INT i = 0; i < mimePartDefectCount(part); ++i) {
        Ref<MIME_DEFECT> defect = adopt(mimePartDefectAt(part, i));
        out.push_back(take(mimeDefectPart(defect.get())) + " " + mimeDefectCodeName(mimeDefectCode(defect.get())));
    }
    for (PB_INT i = 0; i < mimePartChildCount(part); ++i)
        defectsOf(adopt(mimePartChildAt(part, i)).get(), out);
}

} // namespace

// Each message of tests/mime/mail says what it departs in, and where.
TEST(MessageReader, NamesEachDeparture)
{
    // defects.txt: a message, then "part code" for each of its defects.
    std::ifstream table(CORVANE_TEST_DATA_DIR "/mime/mail/defects.txt");
    std::map<std::string, std::vector<std::string>> expected;
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        std::string name, defect;
        std::getline(fields, name, '\t');
        if (!name.starts_with("#"))
            while (std::getline(fields, defect, '\t'))
                expected[name].push_back(defect);
    }
    for (const std::string &file : mailFiles()) {
        std::vector<std::string> found;
        defectsOf(read(fileBytes(file)).get(), found);
        EXPECT_EQ(found, expected[std::filesystem::path(file).filename().string()]) << file;
    }
}

// The strict functions' defects: code and offset of the first fault.
TEST(Defects, StrictReadersSayWhyAndWhere)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    auto check = [](MIME_DEFECT *defect, MIME_DEFECT_CODE code, PB_INT offset) {
        ASSERT_TRUE(defect);
        EXPECT_EQ(mimeDefectCodeName(mimeDefectCode(defect)), std::string(mimeDefectCodeName(code)));
        EXPECT_EQ(mimeDefectOffset(defect), offset);
    };
    struct Case {
        std::string input;
        MIME_DEFECT_CODE code;
        PB_INT offset;
    };
    for (const Case &c :
         std::vector<Case>{{"Content-Type: a\r\ncontent-type: b\r\n\r\n", MIME_DEFECT_HEADER_FIELD_REPEATED, 17},
                           {" X: a\r\n\r\n", MIME_DEFECT_HEADER_CONTINUATION_FIRST, 0},
                           {"X: a\r\nno colon\r\n\r\n", MIME_DEFECT_HEADER_LINE_MALFORMED, 6},
                           {"X: a\xff\r\n\r\n", MIME_DEFECT_HEADER_NOT_UTF8, 4}}) {
        Ref<MIME_DEFECT> defect;
        EXPECT_FALSE(adopt(mimeEntityTryParseWithDefect(bytes(c.input).get(), mo.get(), defect.addr())));
        check(defect.get(), c.code, c.offset);
    }
    // A value the lexer refuses is refused there, even after a bad type or
    // after parameters read well.
    Ref<MIME_DEFECT> defect;
    for (const Case &c : std::vector<Case>{{"text/plain; a=\"open", MIME_DEFECT_CONTENT_TYPE_INVALID, 14},
                                           {"text/ (x) ; a=b; c=d (open", MIME_DEFECT_CONTENT_TYPE_INVALID, 21},
                                           {"text/; a=\"open", MIME_DEFECT_CONTENT_TYPE_INVALID, 9},
                                           {"text (c) /; a=b", MIME_DEFECT_CONTENT_TYPE_INVALID, 10},
                                           {"", MIME_DEFECT_CONTENT_TYPE_INVALID, 0}}) {
        EXPECT_FALSE(adopt(mimeContentTypeTryDecodeWithDefect(str(c.input).get(), mo.get(), defect.addr())));
        check(defect.get(), c.code, c.offset);
    }
    for (const Case &c : std::vector<Case>{{"inline; a=b; c=[open", MIME_DEFECT_CONTENT_DISPOSITION_INVALID, 15},
                                           {"; a=b; c=\"open", MIME_DEFECT_CONTENT_DISPOSITION_INVALID, 9},
                                           {" ; a=b", MIME_DEFECT_CONTENT_DISPOSITION_INVALID, 1},
                                           {" (c)", MIME_DEFECT_CONTENT_DISPOSITION_INVALID, 4}}) {
        EXPECT_FALSE(adopt(mimeContentDispositionTryDecodeWithDefect(str(c.input).get(), mo.get(), defect.addr())));
        check(defect.get(), c.code, c.offset);
    }
    Ref<MIME_ENTITY> entity = entityOf({"text/plain", {}, "base64", {}, "QUJD\r\nQ*JD"});
    EXPECT_FALSE(mimeDecodeWithDefect(entity.get(), mo.get(), nullptr, nullptr, nullptr, nullptr, defect.addr()));
    check(defect.get(), MIME_DEFECT_BODY_INVALID, 7);
    EXPECT_EQ(utf8(adopt(mimeDefectToString(defect.get())).get()), "byte 7: the base64 body is malformed");
    // Success clears what the variable held.
    EXPECT_TRUE(adopt(mimeContentTypeTryDecodeWithDefect(str("a/b").get(), mo.get(), defect.addr())));
    EXPECT_FALSE(defect);
}

// RFC 2047 words as Python's email package decodes them; a charset with a
// language, which it refuses, as RFC 2231 section 5 asks.
TEST(EncodedWords, DecodeAsPythonsEmailPackage)
{
    const std::vector<std::string> texts = {"=?UTF-8?B?w6l0w6k=?=",
                                            "=?iso-8859-1?Q?caf=E9?= au lait",
                                            "Re: =?utf-8?q?hello_world?= =?utf-8?q?_again?=",
                                            "plain  text only",
                                            "=?windows-1252?Q?=80uro?=",
                                            "a =?utf-8?b?YQ==?= b",
                                            "=?utf-8?q?a?=  \t =?utf-8?q?b?=",
                                            "x=?utf-8?q?broken",
                                            "=?utf8?B?w6k=?=",
                                            "=?cp1252?q?=80?= =?koi8-r?b?8g==?="};
    std::string arguments;
    for (const std::string &text : texts)
        arguments += " " + hex(text);
    OracleLines lines = runOracle("mime/message_oracle.py", "--words" + arguments);
    if (lines.empty())
        GTEST_SKIP() << "python3 is not available";
    ASSERT_EQ(lines.size(), texts.size());
    for (const auto &line : lines)
        EXPECT_EQ(hex(take(mimeEncodedWordsDecode(str(unhex(line[0])).get()))), line[1]) << unhex(line[0]);
    EXPECT_EQ(take(mimeEncodedWordsDecode(str("=?utf-8*en?q?lang?=").get())), "lang");
}
