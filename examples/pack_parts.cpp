// pack_parts: builds the body of a SIP INVITE that carries an SDP offer and a
// location (PIDF-LO) by reference, writes it to standard output, then reads it
// back and checks that both bodies arrive unchanged.
//
// C++ against the installed package, through <mime/mime.hpp>: the values are
// C++ values, and every reference is released on every path.
#include <mime/mime.hpp>

#include <cstdio>
#include <string_view>

namespace {

constexpr std::string_view kSdp =
    "v=0\r\no=alice 2890844526 2890844526 IN IP4 192.0.2.10\r\ns=-\r\nc=IN IP4 192.0.2.10\r\n"
    "t=0 0\r\nm=audio 49170 RTP/AVP 0\r\n";
constexpr std::string_view kLocation =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<presence xmlns=\"urn:ietf:params:xml:ns:pidf\" entity=\"pres:alice@example.net\"/>\r\n";

bool packAndUnpack()
{
    const mime::Options options;
    const mime::Buffer sdp(kSdp), location(kLocation);

    // Two entities: the SDP offer, and the location by reference with a Content-Id.
    mime::ContentDisposition byReference("by-reference");
    byReference.setParameter("handling", "optional");
    mime::Result<mime::Entity> offer = mime::encode(options, sdp, mime::ContentType("application/sdp"));
    mime::Result<mime::Entity> where = mime::encode(options, location, mime::ContentType("application/pidf+xml"),
                                                    byReference, "location@alice.example.net");
    if (!offer || !where)
        return false;

    // Packed under a boundary that neither body holds, recorded in the Content-Type.
    mime::ContentType mixed("multipart/mixed");
    std::optional<mime::Buffer> body = mime::pack(mixed, {*offer, *where}, options);
    if (!body)
        return false;
    std::printf("Content-Type: %s\r\n\r\n", mixed.encode(options).c_str());
    std::fwrite(body->data(), 1, body->size(), stdout);

    // Back again: the parts, each decoded, give the bodies that went in.
    mime::Result<mime::Entities> parts = mime::unpack(mixed, *body, options);
    if (!parts || parts->size() != 2)
        return false;
    for (size_t i = 0; i < 2; ++i) {
        mime::Result<mime::Decoded> decoded = mime::decode((*parts)[i], options);
        if (!decoded || decoded->body != (i == 0 ? sdp : location))
            return false;
    }
    return true;
}

} // namespace

int main()
{
    mime::Library library;
    const bool ok = library.ok() && packAndUnpack();
    std::fprintf(stderr, "round trip %s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
