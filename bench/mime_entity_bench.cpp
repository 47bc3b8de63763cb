// Entity work on 1 MiB bodies, in bytes per second: mimeDecode of a base64 body,
// and mimeEncode of a text body (quoted-printable wins) and of a binary body
// (base64 wins), each beside encoding the same body once with the winning codec
// alone. mimeEncode also runs the 7bit check and the count of bytes that
// quoted-printable must escape, so the pairs show what choosing costs.
#include <benchmark/benchmark.h>
#include <mime/mime.h>
#include <pb/pb_ref.hpp>
#include <rfc/rfc.h>

#include <random>
#include <string>

namespace {

using pb::adopt;
using pb::Ref;

// The module, for the whole run.
struct Module {
    Module() { pbModuleStartup(mimeModule()); }
    ~Module() { pbModuleShutdown(mimeModule()); }
} module;

constexpr size_t kSize = 1 << 20;

Ref<PB_BUFFER> bufferOf(const std::string &s)
{
    return adopt(pbBufferCreateFromBytesCopy(s.data(), static_cast<PB_INT>(s.size())));
}

// Lines of 60 to 80 characters of mostly ASCII text with a few 8-bit bytes.
Ref<PB_BUFFER> textBody()
{
    std::mt19937 rng(1);
    std::string s;
    while (s.size() < kSize) {
        for (size_t n = 60 + rng() % 20; n > 0; --n)
            s += rng() % 50 == 0 ? static_cast<char>(0xC3) : static_cast<char>('a' + rng() % 26);
        s += "\r\n";
    }
    return bufferOf(s);
}

Ref<PB_BUFFER> binaryBody()
{
    std::mt19937_64 rng(2);
    std::string s(kSize, '\0');
    for (char &c : s)
        c = static_cast<char>(rng());
    return bufferOf(s);
}

void bytesPerSecond(benchmark::State &state, PB_BUFFER *body)
{
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * pbBufferLength(body));
}

void decodeBase64Body(benchmark::State &state)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    Ref<PB_BUFFER> raw = binaryBody();
    Ref<MIME_ENTITY> ent = adopt(mimeEncode(mo.get(), raw.get(), nullptr, nullptr, nullptr));
    for (auto _ : state) {
        PB_BUFFER *body = nullptr;
        mimeDecode(ent.get(), mo.get(), &body, nullptr, nullptr, nullptr);
        pbBufferRelease(body);
    }
    bytesPerSecond(state, raw.get());
}
BENCHMARK(decodeBase64Body);

void encodeEntity(benchmark::State &state, Ref<PB_BUFFER> body)
{
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    for (auto _ : state)
        mimeEntityRelease(mimeEncode(mo.get(), body.get(), nullptr, nullptr, nullptr));
    bytesPerSecond(state, body.get());
}

void encodeTextEntity(benchmark::State &state)
{
    encodeEntity(state, textBody());
}
BENCHMARK(encodeTextEntity);

void encodeTextQuotedPrintableOnly(benchmark::State &state)
{
    Ref<PB_BUFFER> body = textBody();
    Ref<RFC_QUOP_OPTIONS> qo = adopt(rfcQuopOptionsCreate());
    for (auto _ : state)
        pbBufferRelease(rfcQuopEncodeWithOptions(body.get(), qo.get()));
    bytesPerSecond(state, body.get());
}
BENCHMARK(encodeTextQuotedPrintableOnly);

void encodeBinaryEntity(benchmark::State &state)
{
    encodeEntity(state, binaryBody());
}
BENCHMARK(encodeBinaryEntity);

void encodeBinaryBase64Only(benchmark::State &state)
{
    Ref<PB_BUFFER> body = binaryBody();
    Ref<RFC_BASE_OPTIONS> bo = adopt(rfcBaseOptionsCreate());
    rfcBaseOptionsSetOutputLineLength(bo.addr(), 76);
    for (auto _ : state)
        pbBufferRelease(rfcBaseEncodeWithOptions(body.get(), RFC_BASE_VARIANT_BASE64, bo.get()));
    bytesPerSecond(state, body.get());
}
BENCHMARK(encodeBinaryBase64Only);

} // namespace
