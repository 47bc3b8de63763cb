// pack_parts: builds the body of a SIP INVITE that carries an SDP offer and a
// location (PIDF-LO) by reference, writes it to standard output, then reads it
// back and checks that both bodies arrive unchanged.
//
// C++ against the installed package. The library's objects are reference
// counted; a holder that releases one reference is all a C++ caller needs to
// release every reference on every path.
#include <mime/mime.h>
#include <pb/pb.h>

#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

inline void release(PB_STRING *s)
{
    pbStringRelease(s);
}
inline void release(PB_BUFFER *b)
{
    pbBufferRelease(b);
}
inline void release(PB_VECTOR *v)
{
    pbVectorRelease(v);
}
inline void release(PB_OBJ *o)
{
    pbObjRelease(o);
}
inline void release(MIME_OPTIONS *o)
{
    mimeOptionsRelease(o);
}
inline void release(MIME_ENTITY *e)
{
    mimeEntityRelease(e);
}
inline void release(MIME_CONTENT_TYPE *t)
{
    mimeContentTypeRelease(t);
}
inline void release(MIME_CONTENT_DISPOSITION *d)
{
    mimeContentDispositionRelease(d);
}

// Holds one reference. address() is for the operations that change a value
// (they take T ** and copy the object first when it is shared). A stand-in
// until the library's C++ interface (mime/mime.hpp) provides the holder.
template <class T> class Ref {
public:
    explicit Ref(T *adopted = nullptr) : p_(adopted) {}
    Ref(const Ref &) = delete;
    Ref &operator=(const Ref &) = delete;
    ~Ref()
    {
        if (p_)
            release(p_);
    }
    T *get() const { return p_; }
    T **address() { return &p_; }
    explicit operator bool() const { return p_ != nullptr; }

private:
    T *p_;
};

Ref<PB_BUFFER> bufferOf(std::string_view text)
{
    return Ref<PB_BUFFER>(pbBufferCreateFromBytesCopy(text.data(), static_cast<PB_INT>(text.size())));
}

bool sameBytes(PB_BUFFER *a, PB_BUFFER *b)
{
    return a && b && pbBufferLength(a) == pbBufferLength(b) &&
           std::memcmp(pbBufferBacking(a), pbBufferBacking(b), static_cast<size_t>(pbBufferLength(a))) == 0;
}

constexpr std::string_view kSdp =
    "v=0\r\no=alice 2890844526 2890844526 IN IP4 192.0.2.10\r\ns=-\r\nc=IN IP4 192.0.2.10\r\n"
    "t=0 0\r\nm=audio 49170 RTP/AVP 0\r\n";
constexpr std::string_view kLocation =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<presence xmlns=\"urn:ietf:params:xml:ns:pidf\" entity=\"pres:alice@example.net\"/>\r\n";

} // namespace

int main()
{
    if (!pbModuleStartup(mimeModule()))
        return 1;
    bool ok = false;
    {
        Ref<MIME_OPTIONS> options(mimeOptionsCreate());
        Ref<PB_BUFFER> sdp = bufferOf(kSdp);
        Ref<PB_BUFFER> location = bufferOf(kLocation);

        // Two entities: the SDP offer, and the location by reference with a Content-Id.
        Ref<MIME_CONTENT_TYPE> sdpType(mimeContentTypeCreateCstr("application/sdp", -1));
        Ref<MIME_CONTENT_TYPE> pidfType(mimeContentTypeCreateCstr("application/pidf+xml", -1));
        Ref<MIME_CONTENT_DISPOSITION> byReference(mimeContentDispositionCreateCstr("by-reference", -1));
        mimeContentDispositionSetParameterCstrCstrValue(byReference.address(), "handling", -1, "optional", -1);
        Ref<MIME_ENTITY> offer(mimeEncode(options.get(), sdp.get(), sdpType.get(), nullptr, nullptr));
        Ref<MIME_ENTITY> where(mimeEncodeCstr(options.get(), location.get(), pidfType.get(), byReference.get(),
                                              "location@alice.example.net", -1));

        // Packed under a boundary that neither body holds, recorded in the Content-Type.
        Ref<PB_VECTOR> parts(pbVectorCreate());
        pbVectorAppendObj(parts.address(), mimeEntityObj(offer.get()));
        pbVectorAppendObj(parts.address(), mimeEntityObj(where.get()));
        Ref<MIME_CONTENT_TYPE> mixedType(mimeContentTypeCreateCstr("multipart/mixed", -1));
        Ref<PB_BUFFER> body(mimeMultipartTryPack(mixedType.address(), parts.get(), options.get()));
        if (body) {
            Ref<PB_STRING> header(
                mimeContentTypeEncode(mixedType.get(), options.get(), MIME_FIRST_LINE_OFFSET_CONTENT_TYPE));
            char *headerText = pbStringConvertToCstr(header.get(), 0, nullptr);
            std::printf("Content-Type: %s\r\n\r\n", headerText);
            pbMemFree(headerText);
            std::fwrite(pbBufferBacking(body.get()), 1, static_cast<size_t>(pbBufferLength(body.get())), stdout);

            // Back again: the parts, each decoded, give the bodies that went in.
            Ref<PB_VECTOR> unpacked(mimeMultipartTryUnpack(mixedType.get(), body.get(), options.get()));
            ok = unpacked && pbVectorLength(unpacked.get()) == 2;
            for (PB_INT i = 0; ok && i < 2; i++) {
                Ref<PB_OBJ> part(pbVectorObjAt(unpacked.get(), i));
                PB_BUFFER *decoded = nullptr;
                ok = mimeDecode(mimeEntityFrom(part.get()), options.get(), &decoded, nullptr, nullptr, nullptr) &&
                     sameBytes(decoded, i == 0 ? sdp.get() : location.get());
                pbObjRelease(pbBufferObj(decoded));
            }
        }
    }
    pbModuleShutdown(mimeModule());
    std::fprintf(stderr, "round trip %s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
