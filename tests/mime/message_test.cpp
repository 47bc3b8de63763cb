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

// The lines of ours and theirs that differ, for the failure message.
std::string difference(const std::vector<Line> &ours, const std::vector<Line> &theirs)
{
    std::string out;
    auto print = [&](const char *who, const Line &line) {
        out += who;
        for (const std::string &field : line)
            out += " " + (field.size() > 60 ? field.substr(0, 60) + "..." : field);
        out += "\n";
    };
    for (size_t i = 0; i < std::max(ours.size(), theirs.size()); ++i) {
        if (i < ours.size() && i < theirs.size() && ours[i] == theirs[i])
            continue;
        if (i < ours.size())
            print("ours:  ", ours[i]);
        if (i < theirs.size())
            print("theirs:", theirs[i]);
    }
    return out;
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
    std::vector<std::string> files;
    for (const auto &entry : std::filesystem::directory_iterator(CORVANE_TEST_DATA_DIR "/mime/mail"))
        files.push_back(entry.path().string());
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
    int same = 0;
    for (const std::string &file : files) {
        std::string name = std::filesystem::path(file).filename().string();
        std::vector<Line> ours;
        linesOf(read(fileBytes(file)).get(), 0, ours);
        bool agrees = ours == expected[file];
        same += agrees;
        auto reason = kDifferences.find(name);
        if (reason == kDifferences.end())
            EXPECT_TRUE(agrees) << file << "\n" << difference(ours, expected[file]);
        else
            EXPECT_FALSE(agrees) << file << " agrees now, though listed: " << reason->second;
    }
    std::cout << same << " of " << files.size() << " messages agree\n";
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
    std::cout << compared[0] << " written and " << compared[1] << " damaged messages compared\n";
}
