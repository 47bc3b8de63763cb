// The AVX-512 build of the codecs: base64 with byte permutes (VBMI), whole-block
// quoted-printable decoding with byte compression (VBMI2), and the AVX2 inner
// loops of quoted-printable encoding. This file alone is
// compiled for AVX-512, and its code runs only after avx512Kernels()
// (rfc_kernels_scalar.cpp) has seen the instructions on the processor.
// Everything in it has internal linkage and it uses no inline function of a
// library header, so no AVX-512 instruction can reach code shared with the
// other builds.
#include <rfc/rfc_avx2_ops.hpp>
#include <rfc/rfc_base64_driver.hpp>
#include <rfc/rfc_quop_driver.hpp>

namespace rfc {
namespace {

// Base64 with byte permutes (VBMI): 48 bytes to 64 characters and back per step.
struct Base64Step512 {
    static constexpr size_t kBytes = 48;
    static constexpr size_t kChars = 64;

    static __m512i alphabet()
    {
        return _mm512_loadu_si512(tables::base64Alphabet.data());
    }

    // Each group of three bytes a b c goes to a 32-bit slot as b a c b; one
    // multishift then lifts the four sextets into bytes, and a permute of the
    // alphabet turns them into characters.
    static void encode(const uint8_t *in, uint8_t *out)
    {
        const __m512i groups = _mm512_setr_epi32(0x01020001, 0x04050304, 0x07080607, 0x0a0b090a, 0x0d0e0c0d,
                                                 0x10110f10, 0x13141213, 0x16171516, 0x191a1819, 0x1c1d1b1c,
                                                 0x1f201e1f, 0x22232122, 0x25262425, 0x28292728, 0x2b2c2a2b,
                                                 0x2e2f2d2e);
        __m512i bytes = _mm512_maskz_loadu_epi8((uint64_t{1} << 48) - 1, in);
        __m512i slots = _mm512_permutexvar_epi8(groups, bytes);
        __m512i sextets = _mm512_multishift_epi64_epi8(_mm512_set1_epi64(0x3036242a1016040a), slots);
        _mm512_storeu_si512(out, _mm512_permutexvar_epi8(sextets, alphabet()));
    }

    // Characters index a 128-entry table of values (0x80 marks the outsiders);
    // characters of 128 and more are outsiders by their own top bit.
    static uint64_t decode(const uint8_t *in, uint8_t *out)
    {
        __m512i chars = _mm512_loadu_si512(in);
        __m512i values = _mm512_permutex2var_epi8(valueTable(0), chars, valueTable(64));
        uint64_t invalid = _mm512_movepi8_mask(_mm512_or_si512(values, chars));
        if (invalid)
            return invalid;
        __m512i pairs = _mm512_maddubs_epi16(values, _mm512_set1_epi32(0x01400140));
        __m512i words = _mm512_madd_epi16(pairs, _mm512_set1_epi32(0x00011000));
        _mm512_storeu_si512(out, _mm512_permutexvar_epi8(packOrder(), words));
        return 0;
    }

    static __m512i valueTable(size_t from)
    {
        alignas(64) static constexpr auto table = [] {
            std::array<uint8_t, 128> t{};
            const char *alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
            for (auto &v : t)
                v = 0x80;
            for (uint8_t i = 0; i < 64; ++i)
                t[static_cast<uint8_t>(alphabet[i])] = i;
            return t;
        }();
        return _mm512_load_si512(table.data() + from);
    }

    // Bytes 2 1 0 of each 32-bit word, the 16 words' 48 bytes first.
    static __m512i packOrder()
    {
        alignas(64) static constexpr auto order = [] {
            std::array<uint8_t, 64> t{};
            for (size_t j = 0; j < 48; ++j)
                t[j] = static_cast<uint8_t>(j / 3 * 4 + 2 - j % 3);
            return t;
        }();
        return _mm512_load_si512(order.data());
    }
};

struct Avx512Ops : Avx2Ops {
    static constexpr size_t kBlock = 64;

    static void encodeGroups(const uint8_t *in, size_t n, uint8_t *out)
    {
        Avx2::encodeGroupsWith<Base64Step512>(in, n, out);
    }
    static size_t decodeRun(const uint8_t *in, size_t n, uint8_t *out, size_t &written)
    {
        return Avx2::decodeRunWith<Base64Step512>(in, n, out, written);
    }

    static uint64_t below(size_t length) { return length == 64 ? ~uint64_t{0} : (uint64_t{1} << length) - 1; }

    // The block is cut so that it ends neither inside an escape or soft break
    // nor after a space, tab or CR (whose fate depends on what follows). Inside
    // it, every "=" must start an escape or "=" CR LF, no line end may stand in
    // the first two bytes (its white space could lie before the block), and no
    // line end may follow a space or tab (to be removed). Then the escapes are
    // decoded in place and the bytes they and the soft breaks leave out are
    // squeezed out with one compression.
    static bool decodeBlock(const uint8_t *in, uint8_t *out, size_t &consumed, size_t &written)
    {
        __m512i v = _mm512_loadu_si512(in);
        uint64_t eq = _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8('='));
        uint64_t cr = _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8('\r'));
        uint64_t lf = _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8('\n'));
        uint64_t ws = _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8(' ')) |
                      _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8('\t'));
        size_t length = 64;
        for (;;) {
            uint64_t inside = below(length);
            uint64_t settled = ~(ws | cr) & inside;
            size_t cut = settled ? 64 - static_cast<size_t>(__builtin_clzll(settled)) : 0;
            uint64_t open = eq & below(cut) & ~below(cut >= 2 ? cut - 2 : 0);
            if (open)
                cut = static_cast<size_t>(__builtin_ctzll(open));
            if (cut == length)
                break;
            length = cut;
        }
        if (length < 16)
            return false;
        uint64_t inside = below(length);
        eq &= inside;
        lf &= inside;
        uint64_t soft = eq & (cr >> 1) & (lf >> 2);
        uint64_t escape = eq & ~soft;

        // Hexadecimal digits and their values.
        __m512i digit = _mm512_sub_epi8(v, _mm512_set1_epi8('0'));
        __m512i letter = _mm512_sub_epi8(_mm512_or_si512(v, _mm512_set1_epi8(0x20)), _mm512_set1_epi8('a'));
        uint64_t isDigit = _mm512_cmplt_epu8_mask(digit, _mm512_set1_epi8(10));
        uint64_t isLetter = _mm512_cmplt_epu8_mask(letter, _mm512_set1_epi8(6));
        uint64_t hex = isDigit | isLetter;
        if (escape & ~((hex >> 1) & (hex >> 2)))
            return false;
        uint64_t lineEnd = lf & ~(soft << 2);
        uint64_t crBefore = cr << 1, wsBefore = ws << 1;
        if ((lineEnd & 3) || (lineEnd & ((crBefore & (wsBefore << 1)) | (~crBefore & wsBefore))))
            return false;

        __m512i nibble = _mm512_mask_add_epi8(digit, isLetter, letter, _mm512_set1_epi8(10));
        const __m512i next = _mm512_add_epi8(
            _mm512_set_epi8(63, 62, 61, 60, 59, 58, 57, 56, 55, 54, 53, 52, 51, 50, 49, 48, 47, 46, 45, 44, 43, 42,
                            41, 40, 39, 38, 37, 36, 35, 34, 33, 32, 31, 30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19,
                            18, 17, 16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0),
            _mm512_set1_epi8(1));
        __m512i high = _mm512_permutexvar_epi8(next, nibble);
        __m512i low = _mm512_permutexvar_epi8(_mm512_add_epi8(next, _mm512_set1_epi8(1)), nibble);
        __m512i value = _mm512_or_si512(_mm512_and_si512(_mm512_slli_epi16(high, 4), _mm512_set1_epi8(-16)), low);
        __m512i decoded = _mm512_mask_blend_epi8(escape, v, value);
        uint64_t dropped = escape << 1 | escape << 2 | soft | soft << 1 | soft << 2;
        uint64_t keep = inside & ~dropped;
        _mm512_storeu_si512(out, _mm512_maskz_compress_epi8(keep, decoded));
        consumed = length;
        written = static_cast<size_t>(__builtin_popcountll(keep));
        return true;
    }
};

} // namespace

extern const Kernels avx512KernelTable;
constinit const Kernels avx512KernelTable{"avx512", base64::encodeWith<Avx512Ops>, base64::decodeWith<Avx512Ops>,
                                          quop::encodeBoundWith<Avx512Ops>, quop::encodeWith<Avx512Ops>,
                                          quop::decodeWith<Avx512Ops>};

} // namespace rfc
