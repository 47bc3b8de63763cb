// Internal: the inner loops of the codecs, in a scalar form that runs everywhere
// and a vector form for processors with AVX2. The codecs' drivers
// (rfc_base64_codec, rfc_quop_codec) call them through this table, so both forms
// share every rule above the inner loop and tests can run either on the same
// input.
//
// Each kernel reads only in[0, n). Kernels that copy or decode may write up to
// kWriteSlack bytes beyond the end of what they report as written; callers
// allocate that much room after the output.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace rfc {

inline constexpr size_t kWriteSlack = 32;

struct Kernels {
    const char *name;
    // Encodes n bytes (a multiple of 3) as n / 3 * 4 base64 characters.
    void (*base64EncodeGroups)(const uint8_t *in, size_t n, uint8_t *out);
    // Decodes the longest prefix of whole quartets of alphabet characters; returns
    // the characters consumed (a multiple of 4) and writes 3 bytes per quartet.
    size_t (*base64DecodeQuartets)(const uint8_t *in, size_t n, uint8_t *out);
    // Copies bytes that quoted-printable writes as they are (33-60, 62-126, space,
    // tab) up to the first other byte, max bytes or the end; returns the count.
    size_t (*quopCopyLiteral)(const uint8_t *in, size_t n, size_t max, uint8_t *out);
    // Counts the bytes that quopCopyLiteral stops at.
    size_t (*quopCountSpecial)(const uint8_t *in, size_t n);
    // Copies bytes up to the first "=" or LF; returns the count.
    size_t (*quopCopyPlain)(const uint8_t *in, size_t n, uint8_t *out);
};

const Kernels &scalarKernels() noexcept;
// Null when the processor lacks AVX2.
const Kernels *avx2Kernels() noexcept;
// The fastest kernels this processor runs, chosen once.
const Kernels &bestKernels() noexcept;

// Classes of bytes shared by the scalar kernels and the drivers.
namespace tables {
inline constexpr uint8_t kBase64Invalid = 0xFF;
inline constexpr uint8_t kBase64Space = 0xFE; // CR, LF, space, tab: skipped
inline constexpr uint8_t kBase64Pad = 0xFD;   // "="
extern const std::array<uint8_t, 64> base64Alphabet;
extern const std::array<uint8_t, 256> base64Values; // 0-63 or one of the marks above
extern const std::array<bool, 256> quopLiteral;     // written as it stands by the encoder
extern const std::array<uint8_t, 16> hexUpper;
extern const std::array<int8_t, 256> hexValues; // 0-15, -1 for other bytes
} // namespace tables

} // namespace rfc
