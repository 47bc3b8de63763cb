// Test helpers for the codecs: the plain-memory codecs run with a chosen kernel
// set, the buffer interface with options, and generated inputs.
#pragma once

#include "pb_text.hpp"

#include <rfc/rfc.h>
#include <rfc/rfc_base64_codec.hpp>
#include <rfc/rfc_quop_codec.hpp>

#include <optional>
#include <random>
#include <string>
#include <vector>

namespace test {

// Every kernel set this processor runs: scalar first.
inline std::vector<const rfc::Kernels *> allKernels()
{
    std::vector<const rfc::Kernels *> all{&rfc::scalarKernels()};
    for (const rfc::Kernels *vector : {rfc::avx2Kernels(), rfc::avx512Kernels()})
        if (vector)
            all.push_back(vector);
    return all;
}

inline const uint8_t *u8(const std::string &s)
{
    return reinterpret_cast<const uint8_t *>(s.data());
}

inline std::string base64Encode(const std::string &in, int64_t lineLength, const rfc::Kernels &k)
{
    std::string out(rfc::base64::encodedLength(in.size(), lineLength), '\0');
    rfc::base64::encode(u8(in), in.size(), lineLength, reinterpret_cast<uint8_t *>(out.data()), k);
    return out;
}

inline std::optional<std::string> base64Decode(const std::string &in, const rfc::Kernels &k)
{
    std::string out(rfc::base64::decodeBound(in.size()), '\0');
    ptrdiff_t n = rfc::base64::decode(u8(in), in.size(), reinterpret_cast<uint8_t *>(out.data()), k);
    if (n < 0)
        return std::nullopt;
    out.resize(static_cast<size_t>(n));
    return out;
}

inline std::string quopEncode(const std::string &in, int64_t maxLineLength, const rfc::Kernels &k)
{
    std::string out(rfc::quop::encodeBound(u8(in), in.size(), maxLineLength, k), '\0');
    out.resize(rfc::quop::encode(u8(in), in.size(), maxLineLength, reinterpret_cast<uint8_t *>(out.data()), k));
    return out;
}

inline std::optional<std::string> quopDecode(const std::string &in, const rfc::Kernels &k)
{
    std::string out(rfc::quop::decodeBound(in.size()), '\0');
    ptrdiff_t n = rfc::quop::decode(u8(in), in.size(), reinterpret_cast<uint8_t *>(out.data()), k);
    if (n < 0)
        return std::nullopt;
    out.resize(static_cast<size_t>(n));
    return out;
}

// The buffer interface: null results become nullopt.
inline std::optional<std::string> taken(PB_BUFFER *b)
{
    if (!b)
        return std::nullopt;
    Ref<PB_BUFFER> held = adopt(b);
    return bytesOf(held.get());
}

inline std::string randomBytes(std::mt19937_64 &rng, size_t n)
{
    std::string s(n, '\0');
    for (auto &c : s)
        c = static_cast<char>(rng());
    return s;
}

// Text the way mail carries it: words, spaces and tabs, CR LF line ends of
// varied length, some "=" and bytes of 128 and more, and the odd bare CR or LF.
inline std::string randomText(std::mt19937_64 &rng, size_t n)
{
    static const std::string pieces[] = {"a", "b",    "x",    "Z",  "7",  " ",        " ",    "\t",
                                         "=", "\r\n", "\r\n", "\r", "\n", "\xc3\xa9", "\xff", std::string(1, '\0'),
                                         ".", "-"};
    std::string s;
    std::uniform_int_distribution<size_t> pick(0, std::size(pieces) - 1);
    std::uniform_int_distribution<int> run(0, 90);
    while (s.size() < n) {
        s.append(static_cast<size_t>(run(rng)) % 8 == 0 ? pieces[pick(rng)]
                                                        : std::string(1, "abcdefghij KLM"[rng() % 14]));
        if (run(rng) == 0)
            s.append(static_cast<size_t>(run(rng)), 'w'); // a long line
    }
    s.resize(n);
    return s;
}

} // namespace test
