// The C++ interface beside the C calls it wraps, on the peer comparison's
// ct-parse values (Content-Type text in, a value out) and on unpacking a SIP
// multipart body (the emergency INVITE's, with each part's body read). The
// pairs run the same work; the interface may cost at most a few percent.
#include <benchmark/benchmark.h>
#include <mime/mime.hpp>

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace {

const mime::Library library;

constexpr std::string_view kValues[] = {
    "text/plain",
    "text/html; charset=UTF-8",
    "multipart/mixed; boundary=\"----=_Part_0_1234567.1700000000000\"",
    "text/plain (human readable) ; charset=\"us-ascii\" (plain ASCII) ; format=flowed",
    "multipart/related; type=\"application/sdp\"; start=\"<sdp@example.com>\"; boundary=unique-boundary-1",
    "message/external-body; access-type=URL; URL*0=\"ftp://\"; "
    "URL*1=\"cs.utk.edu/pub/moore/bulk-mailer/bulk-mailer.tar\"",
    "text/plain; charset=utf-8; title*=utf-8'de'Gr%C3%BC%C3%9Fe%20aus%20M%C3%BCnchen",
    "application/x-stuff; title*0*=us-ascii'en'This%20is%20even%20more%20; title*1*=%2A%2A%2Afun%2A%2A%2A%20; "
    "title*2=\"isn't it!\"",
};

void ctParseC(benchmark::State &state)
{
    MIME_OPTIONS *options = mimeOptionsCreate();
    for (auto _ : state)
        for (std::string_view value : kValues)
            mimeContentTypeRelease(
                mimeContentTypeTryDecodeCstr(value.data(), static_cast<PB_INT>(value.size()), options));
    mimeOptionsRelease(options);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(std::size(kValues)));
}
BENCHMARK(ctParseC);

void ctParseCpp(benchmark::State &state)
{
    const mime::Options options;
    for (auto _ : state)
        for (std::string_view value : kValues)
            benchmark::DoNotOptimize(mime::ContentType::decode(value, options));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(std::size(kValues)));
}
BENCHMARK(ctParseCpp);

// The emergency INVITE's multipart body and its Content-Type.
struct SipBody {
    mime::ContentType type{"multipart/mixed"};
    mime::Buffer body;
    SipBody()
    {
        std::ifstream file(CORVANE_SOURCE_DIR "/tools/mimetool/emergency_invite.txt", std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(file), {});
        mime::Result<mime::Entity> entity = mime::Entity::parse(mime::Buffer(text.substr(text.find("Content-Type:"))));
        type = *mime::ContentType::decode(*entity->contentType());
        body = *entity->body();
    }
};

void sipUnpackC(benchmark::State &state)
{
    const SipBody sip;
    MIME_OPTIONS *options = mimeOptionsCreate();
    PB_INT bytes = 0;
    for (auto _ : state) {
        PB_VECTOR *parts = mimeMultipartTryUnpack(sip.type.get(), sip.body.get(), options);
        for (PB_INT i = 0; i < pbVectorLength(parts); ++i) {
            PB_OBJ *part = pbVectorObjAt(parts, i);
            PB_BUFFER *body = mimeEntityBody(mimeEntityFrom(part));
            bytes += pbBufferLength(body);
            pbBufferRelease(body);
            pbObjRelease(part);
        }
        pbVectorRelease(parts);
    }
    mimeOptionsRelease(options);
    benchmark::DoNotOptimize(bytes);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(sipUnpackC);

void sipUnpackCpp(benchmark::State &state)
{
    const SipBody sip;
    const mime::Options options;
    size_t bytes = 0;
    for (auto _ : state)
        for (const mime::Entity &part : *mime::unpack(sip.type, sip.body, options))
            bytes += part.body()->size();
    benchmark::DoNotOptimize(bytes);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(sipUnpackCpp);

} // namespace
