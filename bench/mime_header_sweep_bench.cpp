// Hostile Content-Type values from 64 KiB to 16 MiB, in bytes per second: a
// rate that holds as the size doubles is time that grows linearly. Decoded with
// RFC 2231 decoding on:
//   same-name     many parameters of one name (each replaces the last)
//   segments      many RFC 2231 segments of one parameter
//   segments-cs   the same with a charset and percent-encoded segments
//   quoted        one very long quoted string
//   comments      comments nested deep
// and encoded:
//   encode-seg1   one long parameter value written in RFC 2231 form with
//                 segments of one character
#include <benchmark/benchmark.h>
#include <mime/mime.hpp>
#include <pb/pb_ref.hpp>

#include <string>

namespace {

using pb::adopt;
using pb::Ref;

const mime::Library library;

// head, then unit(i) for i = 0, 1, ... while the text stays within size, then tail.
template <class Unit> std::string grown(std::string head, Unit unit, size_t size, const std::string &tail = "")
{
    for (size_t i = 0;; ++i) {
        std::string next = unit(i);
        if (head.size() + next.size() + tail.size() > size)
            return head + tail;
        head += next;
    }
}

std::string value(int shape, size_t size)
{
    switch (shape) {
    case 0:
        return grown(
            "text/plain", [](size_t i) { return "; a=" + std::to_string(i); }, size);
    case 1:
        return grown(
            "text/plain", [](size_t i) { return "; t*" + std::to_string(i) + "=x"; }, size);
    case 2:
        return grown(
            "text/plain; t*0*=utf-8''%41", [](size_t i) { return "; t*" + std::to_string(i + 1) + "*=%42"; }, size);
    case 3:
        return grown(
            "text/plain; a=\"", [](size_t) { return std::string("x\\\"y "); }, size, "\"");
    default: {
        const size_t depth = size / 2;
        return "text/plain " + std::string(depth, '(') + std::string(depth, ')');
    }
    }
}

const char *const kShapes[] = {"same-name", "segments", "segments-cs", "quoted", "comments"};

void decode(benchmark::State &state, int shape)
{
    const std::string text = value(shape, static_cast<size_t>(state.range(0)));
    Ref<PB_STRING> input = adopt(pbStringCreateFromCstr(text.data(), static_cast<PB_INT>(text.size())));
    Ref<MIME_OPTIONS> options = adopt(mimeOptionsCreate());
    mimeOptionsSetFlags(options.addr(), MIME_FLAG_PARSE_RFC2231_HEADERS);
    for (auto _ : state) {
        MIME_CONTENT_TYPE *type = mimeContentTypeTryDecode(input.get(), options.get());
        if (type)
            mimeContentTypeRelease(type);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

void encodeSegmentsOfOne(benchmark::State &state)
{
    const std::string text(static_cast<size_t>(state.range(0)) / 8, 'x'); // each character becomes "; t*N=x"
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("text/plain", -1));
    mimeContentTypeSetParameterCstrCstrValue(type.addr(), "t", -1, text.data(), static_cast<PB_INT>(text.size()));
    Ref<MIME_OPTIONS> options = adopt(mimeOptionsCreate());
    mimeOptionsSetFlags(options.addr(), MIME_FLAG_GENERATE_RFC2231_HEADERS);
    mimeOptionsSetRfc2231MaxSegmentLength(options.addr(), 1);
    for (auto _ : state)
        pbObjRelease(pbStringObj(mimeContentTypeEncode(type.get(), options.get(), 14)));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

[[maybe_unused]] const bool registered = [] {
    for (int shape = 0; shape < 5; ++shape)
        benchmark::RegisterBenchmark((std::string("decode/") + kShapes[shape]).c_str(), decode, shape)
            ->RangeMultiplier(2)
            ->Range(64 << 10, 16 << 20)
            ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("encode-seg1", encodeSegmentsOfOne)
        ->RangeMultiplier(2)
        ->Range(64 << 10, 16 << 20)
        ->Unit(benchmark::kMillisecond);
    return true;
}();

} // namespace
