// Internal: the codecs over plain memory in three builds: a scalar one that
// runs everywhere and vector ones for processors with AVX2 and with AVX-512. All
// are instantiated from the same drivers (rfc_base64_driver.hpp, rfc_quop_driver.hpp) over a set
// of inner loops (ScalarOps, Avx2Ops), so every rule lives in one place, the
// inner loops inline into the drivers, and tests can run every build on the
// same input.
//
// The codecs read only in[0, n). They may write up to kWriteSlack bytes beyond
// the end of their output; the bounds of rfc_base64_codec.hpp and
// rfc_quop_codec.hpp include that room.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rfc {

inline constexpr size_t kWriteSlack = 32;

// The vector loops ask for the input this far ahead of where they read (a
// prefetch, which never faults): on hosts whose hardware prefetcher falls
// behind a loop that also writes a stream of its own, they would otherwise
// wait for memory (quoted-printable decoding of 32 MiB ran 2.5 times faster
// with it on the host of the README's figures, AVX-512 base64 encoding 3 times;
// the AVX2 base64 encoder runs faster without it).
inline constexpr size_t kPrefetchAhead = 2048;

// Where a quoted-printable encoding stands: input consumed, output written, and
// the length of the output's last line. An encoding that ran out of room
// resumes from it with more.
struct QuopCursor {
    size_t in = 0;
    size_t out = 0;
    size_t column = 0;
};

// The most that one step of the quoted-printable encoder writes, stores beyond
// its text included (a block of 64 bytes escaped whole, or a line): it stops
// before a step for which less room is left.
inline constexpr size_t kQuopStepRoom = 512;

struct Kernels {
    const char *name;
    void (*base64Encode)(const uint8_t *in, size_t n, int64_t lineLength, uint8_t *out);
    ptrdiff_t (*base64Decode)(const uint8_t *in, size_t n, uint8_t *out);
    size_t (*quopEncodeBound)(const uint8_t *in, size_t n, int64_t maxLineLength);
    size_t (*quopEscapeCount)(const uint8_t *in, size_t n);
    bool (*quopEncode)(const uint8_t *in, size_t n, int64_t maxLineLength, uint8_t *out, size_t room,
                       QuopCursor &cursor);
    ptrdiff_t (*quopDecode)(const uint8_t *in, size_t n, uint8_t *out);
};

const Kernels &scalarKernels() noexcept;
// Null when the processor lacks AVX2.
const Kernels *avx2Kernels() noexcept;
// Null when the processor lacks AVX-512 with byte instructions (BW, VBMI, VBMI2).
const Kernels *avx512Kernels() noexcept;
// The fastest kernels this processor runs, chosen once.
const Kernels &bestKernels() noexcept;

// The tolerant decoders (scalar; for text that the strict ones refuse): *fault
// must be SIZE_MAX on entry and becomes the offset of the first fault.
ptrdiff_t base64DecodeTolerant(const uint8_t *in, size_t n, uint8_t *out, size_t *fault) noexcept;
ptrdiff_t quopDecodeTolerant(const uint8_t *in, size_t n, uint8_t *out, size_t *fault) noexcept;
// Room for encoding n bytes as quoted-printable when no more than one in
// sixteen needs an escape (most text): the first try, without counting.
size_t quopGuessedRoom(size_t n, int64_t maxLineLength) noexcept;

// Classes of bytes shared by the inner loops and the drivers. Plain arrays in a
// struct, so that reading them calls no inline library function, which the
// vector builds would otherwise compile with their own instruction sets.
template <class T, size_t N> struct Table {
    T at[N];
};

namespace tables {
inline constexpr uint8_t kBase64Invalid = 0xFF;
inline constexpr uint8_t kBase64Space = 0xFE; // CR, LF, space, tab: skipped
inline constexpr uint8_t kBase64Pad = 0xFD;   // "="
extern const Table<uint8_t, 64> base64Alphabet;
extern const Table<uint8_t, 256> base64Values; // 0-63 or one of the marks above
extern const Table<bool, 256> quopLiteral;     // written as it stands by the encoder
extern const Table<uint8_t, 16> hexUpper;
extern const Table<int8_t, 256> hexValues; // 0-15, -1 for other bytes
} // namespace tables

} // namespace rfc
