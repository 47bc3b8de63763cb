// Inputs shaped like the ones the product meets: the multipart body of an
// emergency call's SIP INVITE (SDP, a PIDF-LO location, additional call data
// parts), a SIP INFO body carrying an info package, and a mail message with a
// preamble, a nested multipart/alternative and a base64 attachment. Each is read
// as a whole, walked part by part, and written back and read again.
#include "entity.hpp"

#include <gtest/gtest.h>
#include <rfc/rfc.h>

#include <vector>

using namespace test;

namespace {

std::string base64(const std::string &raw)
{
    Ref<RFC_BASE_OPTIONS> bo = adopt(rfcBaseOptionsCreate());
    rfcBaseOptionsSetOutputLineLength(bo.addr(), 76);
    return bytesOf(adopt(rfcBaseEncodeWithOptions(bytes(raw).get(), RFC_BASE_VARIANT_BASE64, bo.get())).get());
}

const std::string kSdp = crlf("v=0\n"
                              "o=caller 2890844526 2890844526 IN IP4 192.0.2.10\n"
                              "s=-\n"
                              "c=IN IP4 192.0.2.10\n"
                              "t=0 0\n"
                              "m=audio 49170 RTP/AVP 0 8 101\n"
                              "a=rtpmap:101 telephone-event/8000\n"
                              "a=sendrecv\n");

const std::string kPidf = crlf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                               "<presence xmlns=\"urn:ietf:params:xml:ns:pidf\"\n"
                               "    xmlns:gp=\"urn:ietf:params:xml:ns:pidf:geopriv10\"\n"
                               "    xmlns:gml=\"http://www.opengis.net/gml\"\n"
                               "    entity=\"pres:caller@example.net\">\n"
                               "  <tuple id=\"loc1\"><status><gp:geopriv><gp:location-info>\n"
                               "    <gml:Point srsName=\"urn:ogc:def:crs:EPSG::4326\">\n"
                               "      <gml:pos>48.1371 11.5754</gml:pos>\n"
                               "    </gml:Point>\n"
                               "  </gp:location-info></gp:geopriv></status></tuple>\n"
                               "</presence>\n");

const std::string kProviderInfo = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
                                  "<ProviderInfo xmlns=\"urn:ietf:params:xml:ns:EmergencyCallData:ProviderInfo\">"
                                  "<DataProviderString>Telekom Br\xc3\xbc"
                                  "cke GmbH</DataProviderString>"
                                  "<ProviderID>urn:example:provider:42</ProviderID></ProviderInfo>\r\n";

const std::string kComment =
    crlf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<EmergencyCallData.Comment xmlns=\"urn:ietf:params:xml:ns:EmergencyCallData:Comment\">\n"
         "  <Comment xml:lang=\"en\">Caller is hearing impaired</Comment>\n"
         "</EmergencyCallData.Comment>\n");

// The body of an emergency INVITE, with the Content-* lines of the SIP message.
std::string emergencyInvite()
{
    return crlf("Content-Type: multipart/mixed; boundary=boundary1\n"
                "Content-Length: 4711\n"
                "\n"
                "--boundary1\n"
                "Content-Type: application/sdp\n"
                "\n") +
           kSdp +
           crlf("\n--boundary1\n"
                "Content-Type: application/pidf+xml\n"
                "Content-ID: <target123@example.net>\n"
                "\n") +
           kPidf +
           crlf("\n--boundary1\n"
                "Content-Type: application/EmergencyCallData.ProviderInfo+xml\n"
                "Content-ID: <1234567890@example.net>\n"
                "Content-Disposition: by-reference\n"
                "Content-Transfer-Encoding: base64\n"
                "\n") +
           base64(kProviderInfo) +
           crlf("\n--boundary1\n"
                "Content-Type: application/EmergencyCallData.Comment+xml\n"
                "Content-ID: <abc@example.net>\n"
                "Content-Disposition: by-reference; handling=optional\n"
                "\n") +
           kComment + crlf("\n--boundary1--\n");
}

std::string infoPackage()
{
    return crlf("Content-Type: multipart/mixed;boundary=\"info-1\"\n"
                "\n"
                "--info-1\n"
                "Content-Type: application/EmergencyCallData.Control+xml\n"
                "Content-Disposition: Info-Package\n"
                "\n"
                "<EmergencyCallData.Control xmlns=\"urn:ietf:params:xml:ns:EmergencyCallData:control\">"
                "<request action=\"send-data\" datatype=\"eCall.MSD\"/></EmergencyCallData.Control>\n"
                "--info-1\n"
                "Content-Type: application/EmergencyCallData.eCall.MSD\n"
                "Content-Disposition: by-reference\n"
                "Content-Transfer-Encoding: base64\n"
                "\n") +
           base64(std::string("\x01\x02\x00\xff\x80 msd", 9)) + crlf("\n--info-1--\n");
}

const std::string kPdf = std::string("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n1 0 obj\n<<>>\nendobj\n", 35);

std::string mail()
{
    return crlf("From: Alice <alice@example.org>\n"
                "To: Bob <bob@example.org>\n"
                "Subject: =?UTF-8?Q?Gr=C3=BC=C3=9Fe?=\n"
                "MIME-Version: 1.0\n"
                "Content-Type: multipart/mixed;\n"
                "\tboundary=\"----=_outer_0\"\n"
                "\n"
                "This is a multi-part message in MIME format.\n"
                "\n"
                "------=_outer_0\n"
                "Content-Type: multipart/alternative; boundary=\"----=_inner_1\"\n"
                "\n"
                "\n"
                "------=_inner_1\n"
                "Content-Type: text/plain; charset=\"utf-8\"\n"
                "Content-Transfer-Encoding: quoted-printable\n"
                "\n"
                "Gr=C3=BC=C3=9Fe aus M=C3=BCnchen, the report is attached and it is a long =\n"
                "line.\n"
                "------=_inner_1\n"
                "Content-Type: text/html; charset=\"utf-8\"\n"
                "\n"
                "<p>Gr\xc3\xbc\xc3\x9f"
                "e</p>\n"
                "------=_inner_1--\n"
                "\n"
                "------=_outer_0\n"
                "Content-Type: application/pdf; name=\"report.pdf\"\n"
                "Content-Disposition: attachment;\n"
                " filename*=utf-8''Bericht%20M%C3%A4rz.pdf\n"
                "Content-Transfer-Encoding: base64\n"
                "\n") +
           base64(kPdf) + crlf("\n------=_outer_0--\n\nepilogue\n");
}

struct Leaf {
    std::string number, type, disposition, id, body;
    bool operator==(const Leaf &) const = default;
};

std::string nameOf(const Leaf &l)
{
    return l.type.substr(0, l.type.find(' '));
}

void PrintTo(const Leaf &l, std::ostream *os)
{
    *os << l.number << " " << l.type << " | " << l.disposition << " | " << l.id << " | " << l.body.size();
}

// Decodes ent and, for multipart types, its parts, depth first; leaves only.
void walk(MIME_ENTITY *ent, MIME_OPTIONS *mo, const std::string &number, std::vector<Leaf> &leaves)
{
    Ref<PB_BUFFER> body;
    Ref<MIME_CONTENT_TYPE> type;
    Ref<MIME_CONTENT_DISPOSITION> disposition;
    Ref<PB_STRING> id;
    ASSERT_TRUE(mimeDecode(ent, mo, body.addr(), type.addr(), disposition.addr(), id.addr())) << number;
    ASSERT_TRUE(type) << number;
    std::string name = take(mimeContentTypeName(type.get()));
    if (name.rfind("multipart/", 0) == 0) {
        Ref<PB_VECTOR> parts = adopt(mimeMultipartTryUnpack(type.get(), body.get(), mo));
        ASSERT_TRUE(parts) << number;
        for (PB_INT i = 0; i < pbVectorLength(parts.get()); ++i)
            walk(mimeEntityFrom(adopt(pbVectorObjAt(parts.get(), i)).get()), mo,
                 number + (number.empty() ? "" : ".") + std::to_string(i + 1), leaves);
        return;
    }
    leaves.push_back({number, text(mimeContentTypeObj(type.get())),
                      disposition ? text(mimeContentDispositionObj(disposition.get())) : "", id ? utf8(id.get()) : "",
                      body ? bytesOf(body.get()) : ""});
}

std::vector<Leaf> leavesOf(const std::string &message)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    Ref<MIME_ENTITY> ent = adopt(mimeEntityTryParse(bytes(message).get(), mo.get()));
    EXPECT_TRUE(ent);
    std::vector<Leaf> leaves;
    if (ent)
        walk(ent.get(), mo.get(), "", leaves);
    return leaves;
}

// The leaves written again: each encoded with mimeEncode, all packed into one
// multipart/mixed body, and read back.
std::vector<Leaf> rewritten(const std::vector<Leaf> &leaves)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    Ref<PB_VECTOR> entities = adopt(pbVectorCreate());
    for (const Leaf &leaf : leaves) {
        // The name alone: the to-string text of the parameters is no wire text.
        Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeTryDecode(str(nameOf(leaf)).get(), mo.get()));
        Ref<MIME_ENTITY> ent = adopt(mimeEncode(mo.get(), bytes(leaf.body).get(), type.get(), nullptr,
                                                leaf.id.empty() ? nullptr : str(leaf.id).get()));
        pbVectorAppendObj(entities.addr(), mimeEntityObj(ent.get()));
    }
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("multipart/mixed", -1));
    Ref<PB_BUFFER> packed = adopt(mimeMultipartTryPack(type.addr(), entities.get(), mo.get()));
    Ref<PB_STRING> typeText = adopt(mimeContentTypeEncode(type.get(), mo.get(), 14));
    std::string message = "Content-Type: " + utf8(typeText.get()) + "\r\n\r\n" + bytesOf(packed.get());
    std::vector<Leaf> back = leavesOf(message);
    for (Leaf &leaf : back)
        leaf.number = leaf.number.substr(leaf.number.find('.') + 1);
    return back;
}

} // namespace

TEST(Samples, EmergencyCallInvite)
{
    std::vector<Leaf> leaves = leavesOf(emergencyInvite());
    const std::vector<Leaf> want = {
        {"1", "application/sdp", "", "", kSdp},
        {"2", "application/pidf+xml", "", "target123@example.net", kPidf},
        {"3", "application/emergencycalldata.providerinfo+xml", "by-reference", "1234567890@example.net",
         kProviderInfo},
        {"4", "application/emergencycalldata.comment+xml", "by-reference {handling=optional}", "abc@example.net",
         kComment},
    };
    EXPECT_EQ(leaves, want);
    // Registered types go back on the wire in their registered spelling.
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeTryDecode(str(want[2].type).get(), mo.get()));
    EXPECT_EQ(take(mimeContentTypeEncode(type.get(), mo.get(), 14)), "application/EmergencyCallData.ProviderInfo+xml");
}

TEST(Samples, InfoPackage)
{
    std::vector<Leaf> leaves = leavesOf(infoPackage());
    ASSERT_EQ(leaves.size(), 2u);
    EXPECT_EQ(leaves[0].type, "application/emergencycalldata.control+xml");
    EXPECT_EQ(leaves[0].disposition, "info-package");
    EXPECT_EQ(leaves[1].type, "application/emergencycalldata.ecall.msd");
    EXPECT_EQ(leaves[1].body, std::string("\x01\x02\x00\xff\x80 msd", 9));
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    Ref<MIME_CONTENT_DISPOSITION> disposition =
        adopt(mimeContentDispositionTryDecode(str(leaves[0].disposition).get(), mo.get()));
    EXPECT_EQ(take(mimeContentDispositionEncode(disposition.get(), mo.get(), 21)), "Info-Package");
}

TEST(Samples, MailWithAlternativeAndAttachment)
{
    std::vector<Leaf> leaves = leavesOf(mail());
    const std::vector<Leaf> want = {
        {"1.1", "text/plain {charset=utf-8}", "", "",
         "Gr\xc3\xbc\xc3\x9f"
         "e aus M\xc3\xbcnchen, the report is attached and it is a long line."},
        {"1.2", "text/html {charset=utf-8}", "", "",
         "<p>Gr\xc3\xbc\xc3\x9f"
         "e</p>"},
        {"2", "application/pdf {name=report.pdf}", "attachment {filename=Bericht M\xc3\xa4rz.pdf}", "", kPdf},
    };
    EXPECT_EQ(leaves, want);
}

TEST(Samples, WrittenBackAndReadAgain)
{
    for (const std::string &message : {emergencyInvite(), infoPackage(), mail()}) {
        std::vector<Leaf> leaves = leavesOf(message);
        std::vector<Leaf> back = rewritten(leaves);
        ASSERT_EQ(back.size(), leaves.size());
        for (size_t i = 0; i < leaves.size(); ++i) {
            EXPECT_EQ(back[i].number, std::to_string(i + 1));
            EXPECT_EQ(nameOf(back[i]), nameOf(leaves[i]));
            EXPECT_EQ(back[i].id, leaves[i].id);
            EXPECT_EQ(back[i].body, leaves[i].body);
        }
    }
}
