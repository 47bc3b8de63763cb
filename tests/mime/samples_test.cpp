// Messages shaped like the ones the product meets, read as a whole and walked
// part by part against Python's email package: the body of an emergency call's
// SIP INVITE (SDP, a PIDF-LO location, additional call data in base64 and
// 8bit), a mail message with a preamble, a nested multipart/alternative and an
// RFC 2231 file name, and bodies that mimetool writes. Each is then written
// back with mimeEncode and mimeMultipartTryPack and read again.
#include "entity.hpp"
#include "oracle.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <vector>

using namespace test;

namespace {

const char *const kSamples[] = {"../tools/mimetool/emergency_invite.txt",
                                "mime/samples/mail-alternative-attachment.eml",
                                "../fuzz/corpora/mimetool_fuzzer/filenames", "../fuzz/corpora/mimetool_fuzzer/packed"};

// A leaf part as the oracle prints it: number, media type, disposition type,
// file name, content id ("-" for none) and the decoded body in hexadecimal.
using Leaf = std::vector<std::string>;

std::string message(const std::string &sample)
{
    std::ifstream in(std::string(CORVANE_TEST_DATA_DIR) + "/" + sample, std::ios::binary);
    std::string raw((std::istreambuf_iterator<char>(in)), {});
    return raw.find('\r') == std::string::npos ? crlf(raw) : raw;
}

std::string orNone(PB_STRING *s)
{
    return s ? take(s) : "-";
}

// Decodes ent and, for multipart types, its parts, depth first; leaves only.
void walk(MIME_ENTITY *ent, MIME_OPTIONS *mo, const std::string &number, std::vector<Leaf> &leaves)
{
    Ref<PB_BUFFER> body;
    Ref<MIME_CONTENT_TYPE> type;
    Ref<MIME_CONTENT_DISPOSITION> disposition;
    Ref<PB_STRING> id;
    ASSERT_TRUE(mimeDecode(ent, mo, body.addr(), type.addr(), disposition.addr(), id.addr())) << number;
    std::string name = type ? take(mimeContentTypeName(type.get())) : "text/plain";
    if (name.rfind("multipart/", 0) == 0) {
        Ref<PB_VECTOR> parts = adopt(mimeMultipartTryUnpack(type.get(), body.get(), mo));
        ASSERT_TRUE(parts) << number;
        for (PB_INT i = 0; i < pbVectorLength(parts.get()); ++i)
            walk(mimeEntityFrom(adopt(pbVectorObjAt(parts.get(), i)).get()), mo,
                 number + (number.empty() ? "" : ".") + std::to_string(i + 1), leaves);
        return;
    }
    leaves.push_back(
        {number, name, disposition ? take(mimeContentDispositionType(disposition.get())) : "-",
         disposition ? orNone(mimeContentDispositionParameterCstr(disposition.get(), "filename", -1)) : "-",
         orNone(id.release()), hex(body ? bytesOf(body.get()) : "")});
}

std::vector<Leaf> leavesOf(const std::string &message)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    Ref<MIME_ENTITY> ent = adopt(mimeEntityTryParse(bytes(message).get(), mo.get()));
    std::vector<Leaf> leaves;
    if (ent)
        walk(ent.get(), mo.get(), "", leaves);
    return leaves;
}

// The leaves written again: each encoded with mimeEncode, all packed into one
// multipart/mixed body; the message of that body.
std::string rewritten(const std::vector<Leaf> &leaves)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    Ref<PB_VECTOR> entities = adopt(pbVectorCreate());
    for (const Leaf &leaf : leaves) {
        Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr(leaf[1].c_str(), -1));
        Ref<MIME_ENTITY> ent = adopt(mimeEncode(mo.get(), bytes(unhex(leaf[5])).get(), type.get(), nullptr,
                                                leaf[4] == "-" ? nullptr : str(leaf[4]).get()));
        pbVectorAppendObj(entities.addr(), mimeEntityObj(ent.get()));
    }
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("multipart/mixed", -1));
    Ref<PB_BUFFER> packed = adopt(mimeMultipartTryPack(type.addr(), entities.get(), mo.get()));
    Ref<PB_STRING> typeText = adopt(mimeContentTypeEncode(type.get(), mo.get(), MIME_FIRST_LINE_OFFSET_CONTENT_TYPE));
    return "Content-Type: " + utf8(typeText.get()) + "\r\n\r\n" + bytesOf(packed.get());
}

} // namespace

TEST(Samples, PartsAgreeWithPythonsEmailPackage)
{
    std::string arguments;
    for (const char *sample : kSamples)
        arguments += std::string(" " CORVANE_TEST_DATA_DIR "/") + sample;
    OracleLines lines = runOracle("mime/samples_oracle.py", arguments);
    if (lines.empty())
        GTEST_SKIP() << "python3 is not available";
    for (const char *sample : kSamples) {
        SCOPED_TRACE(sample);
        std::vector<Leaf> expected;
        for (const auto &line : lines)
            if (line[0].ends_with(sample))
                expected.emplace_back(line.begin() + 1, line.end());
        ASSERT_FALSE(expected.empty());
        std::vector<Leaf> leaves = leavesOf(message(sample));
        EXPECT_EQ(leaves, expected);

        // Written back, the same media types, ids and bodies come back, numbered 1, 2, ...
        std::vector<Leaf> back = leavesOf(rewritten(leaves));
        ASSERT_EQ(back.size(), leaves.size());
        for (size_t i = 0; i < leaves.size(); ++i) {
            EXPECT_EQ(back[i][0], std::to_string(i + 1));
            EXPECT_EQ((Leaf{back[i][1], back[i][4], back[i][5]}), (Leaf{leaves[i][1], leaves[i][4], leaves[i][5]}));
        }
    }
}
