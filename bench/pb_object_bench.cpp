// Runtime operations on the library's paths: reading header text as UTF-8,
// dictionary insertion in hostile orders, buffer views, reference counting.
#include <benchmark/benchmark.h>
#include <pb/pb.h>
#include <pb/pb_ref.hpp>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

void stringFromUtf8(benchmark::State &state)
{
    std::string text(static_cast<size_t>(state.range(0)), 'a');
    for (size_t i = 0; i < text.size(); i += 40)
        text.replace(i, 2, "\xc3\xa9");
    for (auto _ : state) {
        PB_STRING *s = pbStringCreateFromCstr(text.data(), static_cast<PB_INT>(text.size()));
        benchmark::DoNotOptimize(s);
        pbStringRelease(s);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(stringFromUtf8)->Range(16, 1 << 20);

// n insertions into one dictionary, keys in random order: O(n log n) in all.
void dictInsertRandom(benchmark::State &state)
{
    auto n = static_cast<int>(state.range(0));
    std::vector<pb::Ref<PB_STRING>> keys;
    for (int i = 0; i < n; ++i)
        keys.push_back(pb::adopt(pbStringCreateFromFormatCstr("param%i", -1, PB_INT{i})));
    std::shuffle(keys.begin(), keys.end(), std::mt19937(1));
    for (auto _ : state) {
        PB_DICT *d = pbDictCreate();
        for (auto &k : keys)
            pbDictSetStringKey(&d, k.get(), pbStringObj(k.get()));
        benchmark::DoNotOptimize(d);
        pbDictRelease(d);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(dictInsertRandom)->Range(8, 100000);

void bufferReadView(benchmark::State &state)
{
    std::string body(32 << 20, 'x');
    PB_BUFFER *whole = pbBufferCreateFromBytesCopy(body.data(), static_cast<PB_INT>(body.size()));
    for (auto _ : state) {
        PB_BUFFER *part = pbBufferRead(whole, 1000, 30 << 20);
        benchmark::DoNotOptimize(part);
        pbBufferRelease(part);
    }
    pbBufferRelease(whole);
}
BENCHMARK(bufferReadView);

void retainRelease(benchmark::State &state)
{
    PB_STRING *s = pbStringCreate();
    for (auto _ : state) {
        pbStringRetain(s);
        pbStringRelease(s);
    }
    pbStringRelease(s);
}
BENCHMARK(retainRelease);

} // namespace
