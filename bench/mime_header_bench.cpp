// Header-field work: lexing over a mix of realistic values (tokens per second),
// comment removal, Content-Type decoding and encoding over a realistic mix, the
// folding encoder on long values, and the 7bit body check (bytes per second,
// beside memchr over the same bytes).
#include <benchmark/benchmark.h>
#include <mime/mime.h>
#include <pb/pb_ref.hpp>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using pb::adopt;
using pb::Ref;

const char *const kValues[] = {
    "text/plain; charset=us-ascii",
    "text/plain; charset=\"utf-8\"; format=flowed (sent by a phone)",
    "multipart/mixed;\r\n boundary=\"----=_Part_4711_1234567890.1700000000000\"",
    "application/sdp",
    "application/pidf+xml; charset=UTF-8",
    "attachment; filename*0*=UTF-8''%e2%82%ac%20rates; filename*1=\" for 2026.pdf\"; size=48213",
    "inline; filename=\"report (final) [v2].txt\"; creation-date=\"Wed, 12 Feb 1997 16:29:51 -0500\"",
    "<part1.0123456789abcdef@host.example.com>",
};

std::vector<Ref<PB_STRING>> values()
{
    std::vector<Ref<PB_STRING>> all;
    for (const char *v : kValues)
        all.push_back(adopt(pbStringCreateFromCstr(v, -1)));
    return all;
}

void lexHeaderValues(benchmark::State &state)
{
    std::vector<Ref<PB_STRING>> all = values();
    int64_t tokens = 0;
    for (auto _ : state)
        for (const auto &v : all) {
            PB_VECTOR *vec = mimeShfTokenVectorTryDecode(v.get());
            tokens += pbVectorLength(vec);
            pbVectorRelease(vec);
        }
    state.counters["tokens/s"] = benchmark::Counter(static_cast<double>(tokens), benchmark::Counter::kIsRate);
}
BENCHMARK(lexHeaderValues);

void lexAndDropComments(benchmark::State &state)
{
    std::vector<Ref<PB_STRING>> all = values();
    for (auto _ : state)
        for (const auto &v : all) {
            PB_VECTOR *vec = mimeShfTokenVectorTryDecode(v.get());
            mimeShfTokenVectorDelComments(&vec);
            pbVectorRelease(vec);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(all.size()));
}
BENCHMARK(lexAndDropComments);

const char *const kContentTypes[] = {
    "text/plain",
    "text/html; charset=UTF-8",
    "multipart/mixed; boundary=\"----=_Part_0_1234567.1700000000000\"",
    "text/plain (human readable) ; charset=\"us-ascii\" (plain ASCII) ; format=flowed",
    "multipart/related; type=\"application/sdp\"; start=\"<sdp@example.com>\"; boundary=unique-boundary-1",
    "message/external-body; access-type=URL; URL*0=\"ftp://\"; URL*1=\"cs.utk.edu/pub/moore/bulk-mailer.tar\"",
    "text/plain; charset=utf-8; title*=utf-8'de'Gr%C3%BC%C3%9Fe%20aus%20M%C3%BCnchen",
    "application/x-stuff; title*0*=us-ascii'en'This%20is%20even%20more%20; title*1*=%2A%2A%2Afun%2A%2A%2A%20",
};

// Values per second, RFC 2231 decoding on (the default options).
void contentTypeDecode(benchmark::State &state)
{
    std::vector<Ref<PB_STRING>> all;
    for (const char *v : kContentTypes)
        all.push_back(adopt(pbStringCreateFromCstr(v, -1)));
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    for (auto _ : state)
        for (const auto &v : all)
            mimeContentTypeRelease(mimeContentTypeTryDecode(v.get(), mo.get()));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(all.size()));
}
BENCHMARK(contentTypeDecode);

// The same values decoded once and encoded, RFC 2231 generation on.
void contentTypeEncode(benchmark::State &state)
{
    pbModuleStartup(mimeModule()); // the table of registered spellings
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    std::vector<Ref<MIME_CONTENT_TYPE>> all;
    for (const char *v : kContentTypes)
        all.push_back(adopt(mimeContentTypeTryDecode(adopt(pbStringCreateFromCstr(v, -1)).get(), mo.get())));
    for (auto _ : state)
        for (const auto &t : all)
            pbStringRelease(mimeContentTypeEncode(t.get(), mo.get(), MIME_FIRST_LINE_OFFSET_CONTENT_TYPE));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(all.size()));
    all.clear();
    pbModuleShutdown(mimeModule());
}
BENCHMARK(contentTypeEncode);

// A Content-Disposition of n parameters folded at 76 columns.
void foldLongValue(benchmark::State &state)
{
    std::string value = "attachment";
    for (int64_t i = 0; i < state.range(0); ++i)
        value += "; name" + std::to_string(i) + "=\"value number " + std::to_string(i) + "\"";
    Ref<PB_STRING> text = adopt(pbStringCreateFromCstr(value.data(), static_cast<PB_INT>(value.size())));
    Ref<PB_VECTOR> vec = adopt(mimeShfTokenVectorTryDecode(text.get()));
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    for (auto _ : state) {
        PB_STRING *out = mimeShfTokenVectorEncode(vec.get(), mo.get(), MIME_FIRST_LINE_OFFSET_CONTENT_DISPOSITION);
        benchmark::DoNotOptimize(out);
        pbStringRelease(out);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(value.size()));
}
BENCHMARK(foldLongValue)->Arg(4)->Arg(100)->Arg(10000);

// Mail text: CR LF lines of 20 to 100 ASCII characters.
std::string mailLines(size_t n)
{
    std::mt19937_64 rng(3);
    std::string s;
    while (s.size() < n) {
        for (size_t i = 20 + rng() % 81; i > 0; --i)
            s += static_cast<char>(' ' + rng() % 95);
        s += "\r\n";
    }
    return s;
}

void sevenBitCheck(benchmark::State &state)
{
    std::string body = mailLines(static_cast<size_t>(state.range(0)));
    Ref<PB_BUFFER> buf = adopt(pbBufferCreateFromBytesCopy(body.data(), static_cast<PB_INT>(body.size())));
    for (auto _ : state)
        benchmark::DoNotOptimize(mimeContentTransferEncodingCheck(MIME_CONTENT_TRANSFER_ENCODING_7BIT, buf.get()));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(body.size()));
}
BENCHMARK(sevenBitCheck)->Arg(64 << 10)->Arg(32 << 20);

void memchrReference(benchmark::State &state)
{
    std::string body = mailLines(static_cast<size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(std::memchr(body.data(), 0, body.size()));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(body.size()));
}
BENCHMARK(memchrReference)->Arg(64 << 10)->Arg(32 << 20);

} // namespace
