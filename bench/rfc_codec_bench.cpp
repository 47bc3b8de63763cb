// The codecs' inner work apart from allocation: each kernel set on inputs shaped
// like the peer benchmark's (random bytes as 76-column base64, mail text as
// quoted-printable), into output memory that is reused across iterations, beside
// memcpy of the same input. Sizes: 64 KiB (cache-resident) and 32 MiB.
#include <benchmark/benchmark.h>
#include <rfc/rfc_base64_codec.hpp>
#include <rfc/rfc_quop_codec.hpp>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

std::string randomBytes(size_t n)
{
    std::mt19937_64 rng(1);
    std::string s(n, '\0');
    for (auto &c : s)
        c = static_cast<char>(rng());
    return s;
}

// Lines of 20 to 100 characters ending in CR LF, ~2% bytes of 128 and more.
std::string mailText(size_t n)
{
    std::mt19937_64 rng(2);
    const std::string alphabet = "abcdefghijklmnopqrstuvwxyz ABCDEFGHIJ0123456789      .,;:!?-'()/=\t";
    std::string s;
    while (s.size() < n) {
        size_t length = 20 + rng() % 81;
        for (size_t i = 0; i < length; ++i)
            s += rng() % 50 == 0 ? "\xc3\xa9"[rng() % 2] : alphabet[rng() % alphabet.size()];
        s += "\r\n";
    }
    s.resize(n);
    return s;
}

const uint8_t *u8(const std::string &s)
{
    return reinterpret_cast<const uint8_t *>(s.data());
}

// The kernel build of the second argument: 0 scalar, 1 AVX2, 2 AVX-512 (the
// scalar one where the processor lacks the other).
const rfc::Kernels &kernels(const benchmark::State &state)
{
    const rfc::Kernels *vector = state.range(1) == 1   ? rfc::avx2Kernels()
                                 : state.range(1) == 2 ? rfc::avx512Kernels()
                                                       : nullptr;
    return vector ? *vector : rfc::scalarKernels();
}

void memcpyReference(benchmark::State &state)
{
    std::string in = randomBytes(static_cast<size_t>(state.range(0)));
    std::vector<uint8_t> out(in.size());
    for (auto _ : state) {
        std::memcpy(out.data(), in.data(), in.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void base64Encode(benchmark::State &state)
{
    std::string in = randomBytes(static_cast<size_t>(state.range(0)));
    std::vector<uint8_t> out(rfc::base64::encodedLength(in.size(), 76));
    for (auto _ : state) {
        rfc::base64::encode(u8(in), in.size(), 76, out.data(), kernels(state));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void base64Decode(benchmark::State &state)
{
    std::string raw = randomBytes(static_cast<size_t>(state.range(0)));
    std::string text(rfc::base64::encodedLength(raw.size(), 76), '\0');
    rfc::base64::encode(u8(raw), raw.size(), 76, reinterpret_cast<uint8_t *>(text.data()), rfc::scalarKernels());
    std::vector<uint8_t> out(rfc::base64::decodeBound(text.size()));
    for (auto _ : state) {
        benchmark::DoNotOptimize(rfc::base64::decode(u8(text), text.size(), out.data(), kernels(state)));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void quopEncode(benchmark::State &state)
{
    std::string in = mailText(static_cast<size_t>(state.range(0)));
    std::vector<uint8_t> out(rfc::quop::encodeBound(u8(in), in.size(), 76, rfc::scalarKernels()));
    for (auto _ : state) {
        size_t bound = rfc::quop::encodeBound(u8(in), in.size(), 76, kernels(state));
        benchmark::DoNotOptimize(bound);
        benchmark::DoNotOptimize(rfc::quop::encode(u8(in), in.size(), 76, out.data(), kernels(state)));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void quopDecode(benchmark::State &state)
{
    std::string raw = mailText(static_cast<size_t>(state.range(0)));
    std::string text(rfc::quop::encodeBound(u8(raw), raw.size(), 76, rfc::scalarKernels()), '\0');
    text.resize(
        rfc::quop::encode(u8(raw), raw.size(), 76, reinterpret_cast<uint8_t *>(text.data()), rfc::scalarKernels()));
    std::vector<uint8_t> out(rfc::quop::decodeBound(text.size()));
    for (auto _ : state) {
        benchmark::DoNotOptimize(rfc::quop::decode(u8(text), text.size(), out.data(), kernels(state)));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

// Arguments: input size, kernels.
void sizesAndKernels(benchmark::internal::Benchmark *b)
{
    for (int64_t size : {int64_t{64} << 10, int64_t{32} << 20})
        for (int64_t vector : {0, 1, 2})
            b->Args({size, vector});
}

BENCHMARK(memcpyReference)->Arg(64 << 10)->Arg(32 << 20);
BENCHMARK(base64Encode)->Apply(sizesAndKernels);
BENCHMARK(base64Decode)->Apply(sizesAndKernels);
BENCHMARK(quopEncode)->Apply(sizesAndKernels);
BENCHMARK(quopDecode)->Apply(sizesAndKernels);

} // namespace
