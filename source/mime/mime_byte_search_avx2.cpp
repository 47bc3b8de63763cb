// The AVX2 build of mime::bytes::find. This file alone is compiled for AVX2,
// and find calls it only after the processor was seen to have it; it uses no
// inline function of a library header.
#include <mime/mime_byte_search.hpp>

#include <immintrin.h>

#include <cstdint>
#include <cstring>

namespace mime::bytes {

PB_INT findAvx2(const PB_BYTE *hay, PB_INT n, PB_INT from, const PB_BYTE *needle, PB_INT m) noexcept
{
    PB_INT i = from;
    const PB_INT last = n - m; // the last position where the needle fits
    const __m256i first = _mm256_set1_epi8(static_cast<char>(needle[0]));
    const __m256i end = _mm256_set1_epi8(static_cast<char>(needle[m - 1]));
    auto candidates = [&](PB_INT at) {
        __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(hay + at));
        __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(hay + at + m - 1));
        return _mm256_and_si256(_mm256_cmpeq_epi8(a, first), _mm256_cmpeq_epi8(b, end));
    };
    for (; i + 63 <= last; i += 64) {
        __m256i low = candidates(i), high = candidates(i + 32);
        __m256i any = _mm256_or_si256(low, high);
        if (_mm256_testz_si256(any, any))
            continue;
        uint64_t mask = static_cast<uint32_t>(_mm256_movemask_epi8(low)) |
                        uint64_t{static_cast<uint32_t>(_mm256_movemask_epi8(high))} << 32;
        for (; mask; mask &= mask - 1) {
            PB_INT at = i + __builtin_ctzll(mask);
            if (std::memcmp(hay + at, needle, static_cast<size_t>(m)) == 0)
                return at;
        }
    }
    return i <= last ? findSse2(hay, n, i, needle, m) : -1;
}

} // namespace mime::bytes
