#include <mime/mime_byte_search.hpp>

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace mime::bytes {

PB_INT find(const PB_BYTE *hay, PB_INT n, PB_INT from, const PB_BYTE *needle, PB_INT m) noexcept
{
    static PB_INT (*const best)(const PB_BYTE *, PB_INT, PB_INT, const PB_BYTE *, PB_INT) noexcept =
        __builtin_cpu_supports("avx2") ? findAvx2 : findSse2;
    return best(hay, n, from, needle, m);
}

PB_INT findSse2(const PB_BYTE *hay, PB_INT n, PB_INT from, const PB_BYTE *needle, PB_INT m) noexcept
{
    PB_INT i = from;
    PB_INT last = n - m; // the last position where the needle fits
    if (last < i)
        return -1;
    auto matchesAt = [&](PB_INT at) {
        return hay[at] == needle[0] && hay[at + m - 1] == needle[m - 1] && std::memcmp(hay + at, needle, m) == 0;
    };
#if defined(__SSE2__)
    const __m128i first = _mm_set1_epi8(static_cast<char>(needle[0]));
    const __m128i end = _mm_set1_epi8(static_cast<char>(needle[m - 1]));
    for (; i + 15 <= last; i += 16) {
        __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(hay + i));
        __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(hay + i + m - 1));
        auto mask =
            static_cast<unsigned>(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, end))));
        for (; mask; mask &= mask - 1) {
            PB_INT at = i + __builtin_ctz(mask);
            if (std::memcmp(hay + at, needle, static_cast<size_t>(m)) == 0)
                return at;
        }
    }
#endif
    for (; i <= last; ++i)
        if (matchesAt(i))
            return i;
    return -1;
}

} // namespace mime::bytes
