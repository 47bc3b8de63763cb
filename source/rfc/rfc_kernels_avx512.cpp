// The AVX-512 build of the codecs: base64 with byte permutes (VBMI), whole-block
// quoted-printable decoding with byte compression (VBMI2), and quoted-printable
// encoding 64 bytes at a time. This file alone is
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

    static __m512i alphabet() { return _mm512_loadu_si512(tables::base64Alphabet.at); }

    // Each group of three bytes a b c goes to a 32-bit slot as b a c b; one
    // multishift then lifts the four sextets into bytes, and a permute of the
    // alphabet turns them into characters.
    static void encode(const uint8_t *in, uint8_t *out)
    {
        const __m512i groups = _mm512_setr_epi32(0x01020001, 0x04050304, 0x07080607, 0x0a0b090a, 0x0d0e0c0d, 0x10110f10,
                                                 0x13141213, 0x16171516, 0x191a1819, 0x1c1d1b1c, 0x1f201e1f, 0x22232122,
                                                 0x25262425, 0x28292728, 0x2b2c2a2b, 0x2e2f2d2e);
        _mm_prefetch(reinterpret_cast<const char *>(in + kPrefetchAhead), _MM_HINT_T0);
        __m512i bytes = _mm512_maskz_loadu_epi8((uint64_t{1} << 48) - 1, in);
        __m512i slots = _mm512_permutexvar_epi8(groups, bytes);
        __m512i sextets = _mm512_multishift_epi64_epi8(_mm512_set1_epi64(0x3036242a1016040a), slots);
        _mm512_storeu_si512(out, _mm512_permutexvar_epi8(sextets, alphabet()));
    }

    // Characters index a 128-entry table of values (0x80 marks the outsiders);
    // characters of 128 and more are outsiders by their own top bit.
    static uint64_t decode(const uint8_t *in, uint8_t *out)
    {
        _mm_prefetch(reinterpret_cast<const char *>(in + kPrefetchAhead), _MM_HINT_T0);
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
        alignas(64) static constexpr Table<uint8_t, 128> table = [] {
            Table<uint8_t, 128> t{};
            const char *alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
            for (auto &v : t.at)
                v = 0x80;
            for (uint8_t i = 0; i < 64; ++i)
                t.at[static_cast<uint8_t>(alphabet[i])] = i;
            return t;
        }();
        return _mm512_load_si512(table.at + from);
    }

    // Bytes 2 1 0 of each 32-bit word, the 16 words' 48 bytes first.
    static __m512i packOrder()
    {
        alignas(64) static constexpr Table<uint8_t, 64> order = [] {
            Table<uint8_t, 64> t{};
            for (size_t j = 0; j < 48; ++j)
                t.at[j] = static_cast<uint8_t>(j / 3 * 4 + 2 - j % 3);
            return t;
        }();
        return _mm512_load_si512(order.at);
    }
};

struct Avx512Ops : Avx2Ops {

    static void encodeGroups(const uint8_t *in, size_t n, uint8_t *out)
    {
        Avx2::encodeGroupsWith<Base64Step512>(in, n, out);
    }
    static size_t decodeRun(const uint8_t *in, size_t n, uint8_t *out, size_t &written)
    {
        return Avx2::decodeRunWith<Base64Step512>(in, n, out, written);
    }

    // Blocks of 64 bytes at a fixed stride, so that no load waits for the
    // previous block. Each block also reads the two bytes before it (line ends
    // look back at their white space) and the two after it (escapes and soft
    // breaks look ahead); bytes that an escape or soft break at its end takes
    // from the next block are skipped there. A block falls back to the caller's
    // loop when an "=" starts neither an escape nor "=" CR LF, or when white
    // space stands before a line end (to be removed from output already
    // written). Escapes decode from the views one and two bytes ahead, and one
    // compression squeezes out what escapes and soft breaks leave out.
    static void decodeBlocks(const uint8_t *in, size_t n, size_t &i, uint8_t *out, size_t &o, size_t &kept)
    {
        size_t skip = 0; // leading bytes of this block taken by the previous one
        for (; i >= 2 && n - i >= 66; i += 64) {
            _mm_prefetch(reinterpret_cast<const char *>(in + i + kPrefetchAhead), _MM_HINT_T0);
            __m512i v = _mm512_loadu_si512(in + i);
            __m512i ahead1 = _mm512_loadu_si512(in + i + 1), ahead2 = _mm512_loadu_si512(in + i + 2);
            __m512i back1 = _mm512_loadu_si512(in + i - 1), back2 = _mm512_loadu_si512(in + i - 2);
            uint64_t eq = _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8('='));
            uint64_t soft = eq & _mm512_cmpeq_epi8_mask(ahead1, _mm512_set1_epi8('\r')) &
                            _mm512_cmpeq_epi8_mask(ahead2, _mm512_set1_epi8('\n'));
            uint64_t escape = eq & ~soft;
            __m512i nibble1 = _mm512_setzero_si512(), nibble2 = _mm512_setzero_si512();
            uint64_t hex = hexDigits(ahead1, nibble1) & hexDigits(ahead2, nibble2);
            if (escape & ~hex)
                break;
            uint64_t taken = (uint64_t{1} << skip) - 1;
            uint64_t dropped = taken | escape << 1 | escape << 2 | soft | soft << 1 | soft << 2;
            uint64_t lineEnd = _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8('\n')) & ~dropped;
            uint64_t crBefore = _mm512_cmpeq_epi8_mask(back1, _mm512_set1_epi8('\r'));
            if (lineEnd & ((crBefore & space(back2)) | (~crBefore & space(back1))))
                break;

            __m512i value =
                _mm512_or_si512(_mm512_and_si512(_mm512_slli_epi16(nibble1, 4), _mm512_set1_epi8(-16)), nibble2);
            uint64_t keep = ~dropped;
            _mm512_storeu_si512(out + o, _mm512_maskz_compress_epi8(keep, _mm512_mask_blend_epi8(escape, v, value)));
            o += static_cast<size_t>(__builtin_popcountll(keep));
            // White space and CR at the end stay open to removal by a later line end.
            uint64_t open = space(v) | _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8('\r'));
            if (uint64_t solid = (keep & ~open) | soft) {
                uint64_t above = ~uint64_t{0} << (63 - __builtin_clzll(solid)) << 1;
                kept = o - static_cast<size_t>(__builtin_popcountll(keep & above));
            }
            uint64_t reach = (escape | soft) >> 62; // bit 0: at byte 62, bit 1: at byte 63
            skip = reach & 1 ? 1 : reach >> 1 ? 2 : 0;
        }
        i += skip;
    }

    // Quoted-printable encoding a block of 64 at a time: the bytes not written
    // as they are (controls but tab, "=", 127 and up).
    static constexpr size_t kQuopBlock = 64;
    static uint64_t quopStops(const uint8_t *in)
    {
        __m512i v = _mm512_loadu_si512(in);
        uint64_t control =
            _mm512_cmplt_epu8_mask(v, _mm512_set1_epi8(32)) & ~_mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8('\t'));
        return control | _mm512_cmpge_epu8_mask(v, _mm512_set1_epi8(127)) |
               _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8('='));
    }
    static uint64_t crLfStarts(const uint8_t *in)
    {
        return _mm512_cmpeq_epi8_mask(_mm512_loadu_si512(in), _mm512_set1_epi8('\r')) &
               _mm512_cmpeq_epi8_mask(_mm512_loadu_si512(in + 1), _mm512_set1_epi8('\n'));
    }
    static uint64_t spaceBeforeCrLf(const uint8_t *in) { return space(_mm512_loadu_si512(in)) & crLfStarts(in + 1); }
    static void copyBlock(const uint8_t *in, uint8_t *out) { _mm512_storeu_si512(out, _mm512_loadu_si512(in)); }

    // Encodes the block in[0, 64) at once (in[64, 66) is read too) when every
    // line in it fits, a space or tab before a CR LF escaped: returns the bytes
    // taken (64, or 65 when its last byte starts a CR LF), or 0 when the block
    // does not qualify (nothing is written then). The line the block continues
    // is counted exactly (its last byte may fill it up to the column of a soft
    // break's "="), the lines after it by their room.
    static size_t quopWholeBlock(const uint8_t *in, size_t lineRoom, uint8_t *out, size_t &length, size_t &column)
    {
        __m512i v = _mm512_loadu_si512(in);
        const uint64_t crLf = crLfStarts(in), lastOnLine = crLfStarts(in + 1);
        const uint64_t escaped = (quopStops(in) & ~crLf & ~(crLf << 1)) | (space(v) & lastOnLine);
        const size_t firstEnd = atMost64(static_cast<size_t>(_tzcnt_u64(crLf)));
        // Whether the line's last byte in the block ends it (the byte before firstEnd,
        // after a rotation that also serves firstEnd 64; firstEnd 0 has no byte).
        const uint64_t fills = (lastOnLine << 1 | lastOnLine >> 63) >> (firstEnd & 63) & 1;
        const size_t firstRoom = (column < lineRoom ? lineRoom - column : 0) + fills;
        const size_t total = textBefore(escaped, 64), secondLine = textBefore(escaped, atMost64(firstEnd + 2));
        if (textBefore(escaped, firstEnd) > firstRoom ||
            (total - secondLine > lineRoom && !laterLinesFit(escaped, crLf, lineRoom)))
            return 0;
        writeText(v, escaped, out + length);
        length += total;
        const size_t lineStart = static_cast<size_t>(64 - __builtin_clzll(crLf | 1)) + 1; // after the last CR LF
        if (crLf)
            column = total - textBefore(escaped, atMost64(lineStart));
        else
            column += total;
        if (lineStart == 65) // the LF of a CR LF that the block's last byte starts
            out[length++] = '\n';
        return lineStart == 65 ? 65 : 64;
    }

    // Writes the text of the block v, with room for 64 bytes more: each group of
    // 16 bytes becomes triples (the byte or "=", and two hex digits) that one
    // compression cuts down to the group's text.
    static void writeText(__m512i v, uint64_t escaped, uint8_t *out)
    {
        const __m512i digits =
            _mm512_broadcast_i32x4(_mm_loadu_si128(reinterpret_cast<const __m128i *>(tables::hexUpper.at)));
        __m512i high = _mm512_shuffle_epi8(digits, _mm512_and_si512(_mm512_srli_epi16(v, 4), _mm512_set1_epi8(15)));
        __m512i low = _mm512_shuffle_epi8(digits, _mm512_and_si512(v, _mm512_set1_epi8(15)));
        __m512i first = _mm512_mask_blend_epi8(escaped, v, _mm512_set1_epi8('='));
        constexpr uint64_t kFirsts = 0x249249249249; // bits 0, 3, ..., 45
        size_t at = 0;
        for (size_t group = 0; group < 4; ++group) {
            const __m512i shift = _mm512_set1_epi8(static_cast<char>(16 * group));
            __m512i triples = _mm512_permutex2var_epi8(first, _mm512_add_epi8(tripleOrder(), shift), high);
            triples = _mm512_mask_permutexvar_epi8(triples, kFirsts << 2, _mm512_add_epi8(tripleOrder(), shift), low);
            uint64_t groupEscapes = escaped >> (16 * group) & 0xFFFF;
            uint64_t keep = kFirsts | _pdep_u64(groupEscapes, kFirsts << 1) | _pdep_u64(groupEscapes, kFirsts << 2);
            _mm512_storeu_si512(out + at, _mm512_maskz_compress_epi8(keep, triples));
            at += static_cast<size_t>(__builtin_popcountll(keep));
        }
    }

    // (Not std::min: this file uses no inline function of a library header.)
    static size_t atMost64(size_t n) { return n < 64 ? n : 64; }

    // The text written for in[0, to): one byte per byte and two more per escape.
    static size_t textBefore(uint64_t escaped, size_t to)
    {
        return to + 2 * static_cast<size_t>(__builtin_popcountll(_bzhi_u64(escaped, static_cast<unsigned>(to))));
    }

    // Whether every line that starts after a CR LF of the block fits in lineRoom.
    static bool laterLinesFit(uint64_t escaped, uint64_t crLf, size_t lineRoom)
    {
        for (uint64_t ends = crLf; ends; ends &= ends - 1) {
            size_t start = static_cast<size_t>(__builtin_ctzll(ends)) + 2;
            uint64_t next = ends & (ends - 1);
            size_t end = next ? static_cast<size_t>(__builtin_ctzll(next)) : 64;
            if (start < end && textBefore(escaped, end) - textBefore(escaped, start) > lineRoom)
                return false;
        }
        return true;
    }

    // Slot 3j takes byte j of the first source, 3j + 1 byte j of the second
    // (permutex2var) and 3j + 2 byte j of the third (a masked permute).
    static __m512i tripleOrder()
    {
        alignas(64) static constexpr Table<uint8_t, 64> order = [] {
            Table<uint8_t, 64> t{};
            for (size_t j = 0; j < 16; ++j) {
                t.at[3 * j] = static_cast<uint8_t>(j);
                t.at[3 * j + 1] = static_cast<uint8_t>(64 + j);
                t.at[3 * j + 2] = static_cast<uint8_t>(j);
            }
            return t;
        }();
        return _mm512_load_si512(order.at);
    }

    static uint64_t space(__m512i v)
    {
        return _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8(' ')) | _mm512_cmpeq_epi8_mask(v, _mm512_set1_epi8('\t'));
    }

    // The mask of hexadecimal digits (either case), and their values.
    static uint64_t hexDigits(__m512i v, __m512i &values)
    {
        __m512i digit = _mm512_sub_epi8(v, _mm512_set1_epi8('0'));
        __m512i letter = _mm512_sub_epi8(_mm512_or_si512(v, _mm512_set1_epi8(0x20)), _mm512_set1_epi8('a'));
        uint64_t isDigit = _mm512_cmplt_epu8_mask(digit, _mm512_set1_epi8(10));
        uint64_t isLetter = _mm512_cmplt_epu8_mask(letter, _mm512_set1_epi8(6));
        values = _mm512_mask_add_epi8(digit, isLetter, letter, _mm512_set1_epi8(10));
        return isDigit | isLetter;
    }
};

} // namespace

extern const Kernels avx512KernelTable;
constinit const Kernels avx512KernelTable{"avx512",
                                          base64::encodeWith<Avx512Ops>,
                                          base64::decodeWith<Avx512Ops>,
                                          quop::encodeBoundWith<Avx512Ops>,
                                          quop::escapeCountWith<Avx512Ops>,
                                          quop::encodeWith<Avx512Ops>,
                                          quop::decodeWith<Avx512Ops>};

} // namespace rfc
