// Internal: the quoted-printable codec over a set of inner loops Ops, which provides
//   copyLiteral(in, n, max, out)  copies bytes the encoder writes as they are (33-60,
//                                 62-126, space, tab) up to the first other byte,
//                                 max bytes or the end; returns the count
//   countSpecial(in, n)           counts the bytes copyLiteral stops at
//   copyPlain(in, n, out)         copies bytes up to the first "=" or LF; returns the count
// and may provide
//   quopWholeBlock(in, lineRoom, out, length, column)
//                                 encodes a block of 64 at once where its lines
//                                 fit (see rfc_kernels_avx512.cpp), or returns 0
//   kQuopBlock, quopStops(in), crLfStarts(in), spaceBeforeCrLf(in), copyBlock(in, out)
//                                 a block width (32 or 64), the masks of the
//                                 bytes of in[0, kQuopBlock) that copyLiteral
//                                 stops at, of those that start a CR LF (the
//                                 LF may be in[kQuopBlock]) and of the spaces
//                                 and tabs before one, and a copy of
//                                 kQuopBlock bytes: the encoder then runs whole
//                                 blocks (encodeBlocks below)
//   decodeBlocks(in, n, i, out, o, kept)  decodes whole blocks from in[i] on for as
//                                 long as their text is regular, advancing i, o
//                                 and kept (the output that white-space removal
//                                 must not reach) exactly as the loop below would
// Included by the two kernel builds only; everything here has internal linkage,
// so each build keeps its own instructions.
#pragma once

#include <rfc/rfc_quop_codec.hpp>

#include <cstring>
#include <xmmintrin.h>

namespace rfc::quop {
namespace {

inline bool isSpaceOrTab(uint8_t b)
{
    return b == ' ' || b == '\t';
}

inline bool isHardBreakAt(const uint8_t *in, size_t n, size_t i)
{
    return i + 1 < n && in[i] == '\r' && in[i + 1] == '\n';
}

// The encoder's output cursor: where it writes and how long the current line is.
struct Writer {
    uint8_t *out;
    size_t length = 0;
    size_t column = 0;
    size_t limit; // maximum line length

    void put(uint8_t b)
    {
        out[length++] = b;
        ++column;
    }
    void lineBreak(bool soft)
    {
        if (soft)
            out[length++] = '=';
        out[length++] = '\r';
        out[length++] = '\n';
        column = 0;
    }
    // An escape fits when it leaves room for a soft break, or when it is the last
    // token of its line and fills the line at most.
    void escape(uint8_t b, bool lastOnLine)
    {
        if (column + 3 > limit - 1 && !(lastOnLine && column + 3 <= limit))
            lineBreak(true);
        out[length] = '=';
        out[length + 1] = tables::hexUpper.at[b >> 4];
        out[length + 2] = tables::hexUpper.at[b & 15];
        length += 3;
        column += 3;
    }
};

// Room for n bytes of which special are not written as they are.
inline size_t roomFor(size_t n, size_t special, int64_t maxLineLength)
{
    // Escapes come from special bytes and from one space or tab per line end.
    size_t content = n + 2 * (special + 1) + 2;
    // A soft break follows at least maxLineLength - 3 characters of its line.
    size_t softBreaks = content / static_cast<size_t>(maxLineLength - 3) + 1;
    return content + 3 * softBreaks + kWriteSlack;
}

template <class Ops> size_t encodeBoundWith(const uint8_t *in, size_t n, int64_t maxLineLength)
{
    return roomFor(n, Ops::countSpecial(in, n), maxLineLength);
}

template <class Ops> size_t escapeCountWith(const uint8_t *in, size_t n)
{
    return Ops::countEscaped(in, n);
}

// Encodes whole blocks from in[i] on. Each block is copied to the output at
// once; at each stop (an escape, a space or tab before a CR LF, or a CR LF) the
// escape or line break is written in place and the rest of the block copied
// again behind it, and so is a soft line break where a line fills up. Returns
// (advancing i and w exactly as the loop below would) where the rule needs more
// than the block shows: at a byte that fills a line and is the last before a
// CR LF; and before the last two blocks of input, or where less than
// kQuopStepRoom of output room is left.
template <class Ops> void encodeBlocks(const uint8_t *in, size_t n, size_t &i, Writer &w, size_t outRoom)
{
    constexpr size_t kBlock = Ops::kQuopBlock;
    static_assert(6 * kBlock + 64 <= kQuopStepRoom); // every byte escaped after a soft break
    const size_t room = w.limit - 1;                 // the columns a line may fill before its soft break
    const auto &hex = tables::hexUpper.at;
    auto softBreak = [&] {
        std::memcpy(w.out + w.length, "=\r\n", 3);
        w.length += 3;
        w.column = 0;
    };
    auto lastOnLine = [&](size_t at) { return in[at + 1] == '\r' && in[at + 2] == '\n'; };
    while (n - i > 2 * kBlock && outRoom - w.length >= kQuopStepRoom) {
        _mm_prefetch(reinterpret_cast<const char *>(in + i + kPrefetchAhead), _MM_HINT_T0);
        if constexpr (requires(size_t at) { Ops::quopWholeBlock(in, room, w.out, at, at); }) {
            if (size_t taken = Ops::quopWholeBlock(in + i, room, w.out, w.length, w.column)) {
                i += taken;
                continue;
            }
        }
        uint64_t hardBreaks = Ops::crLfStarts(in + i);
        // A CR LF is one stop, and so is a space or tab before one (it is escaped).
        uint64_t stops = (Ops::quopStops(in + i) & ~(hardBreaks << 1)) | Ops::spaceBeforeCrLf(in + i);
        size_t pos = 0; // in[i, i + pos) is written
        Ops::copyBlock(in + i, w.out + w.length);
        // The literals in[i + pos, i + end), already copied, with soft breaks
        // where lines fill up; false at a byte the loop below must place.
        auto literals = [&](size_t end) {
            // (The column passes room only after a byte that filled its line,
            // and a CR LF follows that at once: then end is pos.)
            while (end > pos && w.column + (end - pos) > room) {
                size_t fit = w.column < room ? room - w.column : 0;
                w.length += fit;
                w.column += fit;
                pos += fit;
                if (lastOnLine(i + pos))
                    return false;
                softBreak();
                Ops::copyBlock(in + i + pos, w.out + w.length);
            }
            w.length += end - pos;
            w.column += end - pos;
            pos = end;
            return true;
        };
        for (; stops; stops &= stops - 1) {
            size_t p = static_cast<size_t>(__builtin_ctzll(stops));
            if (!literals(p)) {
                i += pos;
                return;
            }
            const bool hard = hardBreaks >> p & 1;
            if (hard) {
                std::memcpy(w.out + w.length, "\r\n", 2);
                w.length += 2;
                w.column = 0;
            } else {
                if (w.column + 3 > room) {
                    if (lastOnLine(i + p)) {
                        i += p;
                        return;
                    }
                    softBreak();
                }
                const uint8_t b = in[i + p];
                const uint8_t escape[3] = {'=', hex[b >> 4], hex[b & 15]};
                std::memcpy(w.out + w.length, escape, 3);
                w.length += 3;
                w.column += 3;
            }
            pos = p + 1 + hard;
            Ops::copyBlock(in + i + pos, w.out + w.length);
        }
        if (pos < kBlock && !literals(kBlock)) {
            i += pos;
            return;
        }
        i += pos;
    }
}

// Encodes in[cursor.in, n) into out[cursor.out, room) from where cursor stands:
// true when the text is complete, false when it stopped, with less than
// kQuopStepRoom of room left, at a point from which it resumes as if it had
// not stopped.
template <class Ops>
bool encodeWith(const uint8_t *in, size_t n, int64_t maxLineLength, uint8_t *out, size_t room, QuopCursor &cursor)
{
    Writer w{out, cursor.out, cursor.column, static_cast<size_t>(maxLineLength)};
    size_t i = cursor.in;
    auto stop = [&](bool done) {
        cursor = {i, w.length, w.column};
        return done;
    };
    for (;;) {
        if constexpr (requires { Ops::kQuopBlock; })
            encodeBlocks<Ops>(in, n, i, w, room);
        if (room - w.length < kQuopStepRoom && i < n)
            return stop(false);
        if (w.column < w.limit - 1) {
            size_t copied = Ops::copyLiteral(in + i, n - i, w.limit - 1 - w.column, w.out + w.length);
            i += copied;
            w.length += copied;
            w.column += copied;
        }
        bool lineEnd = i == n || isHardBreakAt(in, n, i);
        if (lineEnd && w.column > 0 && isSpaceOrTab(w.out[w.length - 1])) {
            // A space or tab was copied last before the line end: take it back
            // and write it as an escape (an escape's output ends in a digit, so
            // the last byte of a non-empty line is a copied one).
            --w.length;
            --w.column;
            w.escape(in[--i], true);
            ++i;
        }
        if (i == n)
            return stop(true);
        uint8_t b = in[i];
        if (lineEnd) {
            w.lineBreak(false);
            i += 2;
        } else if (tables::quopLiteral.at[b]) {
            // The line is full up to the soft break's "=": the byte still fits as
            // the last of its line, unless it is a space or tab that must be escaped.
            bool last = i + 1 == n || isHardBreakAt(in, n, i + 1);
            if (last && isSpaceOrTab(b))
                w.escape(b, true);
            else if (last)
                w.put(b);
            else
                w.lineBreak(true);
            i += last;
        } else {
            w.escape(b, i + 1 == n || isHardBreakAt(in, n, i + 1));
            ++i;
        }
    }
}

// Decodes in[0, n). Strict without fault (-1 for invalid text); with fault,
// tolerant: *fault becomes the offset of the first "=" that starts neither an
// escape nor a soft line break, and each such "=" is kept as it stands.
template <class Ops> ptrdiff_t decodeTolerating(const uint8_t *in, size_t n, uint8_t *out, size_t *fault)
{
    const auto &hex = tables::hexValues;
    size_t i = 0, o = 0;
    size_t kept = 0; // output before this is final: trailing white space is not stripped below it
    for (;;) {
        if constexpr (requires(size_t at) { Ops::decodeBlocks(in, n, at, out, at, at); })
            Ops::decodeBlocks(in, n, i, out, o, kept);
        size_t copied = Ops::copyPlain(in + i, n - i, out + o);
        i += copied;
        o += copied;
        if (i == n || in[i] == '\n') {
            // A line end: drop the spaces and tabs before it (and before its CR).
            bool cr = i < n && o > kept && out[o - 1] == '\r';
            o -= cr;
            while (o > kept && isSpaceOrTab(out[o - 1]))
                --o;
            if (i == n)
                return static_cast<ptrdiff_t>(o);
            if (cr)
                out[o++] = '\r';
            out[o++] = '\n';
            kept = o;
            ++i;
            continue;
        }
        // "=": an escape or a soft line break.
        if (i + 2 < n && hex.at[in[i + 1]] >= 0 && hex.at[in[i + 2]] >= 0) {
            out[o++] = static_cast<uint8_t>(hex.at[in[i + 1]] << 4 | hex.at[in[i + 2]]);
            kept = o;
            i += 3;
            continue;
        }
        size_t j = i + 1;
        while (j < n && isSpaceOrTab(in[j]))
            ++j;
        if (j < n && in[j] == '\n')
            i = j + 1;
        else if (isHardBreakAt(in, n, j))
            i = j + 2;
        else if (!fault)
            return -1;
        else {
            if (*fault == SIZE_MAX)
                *fault = i;
            out[o++] = in[i++];
        }
        kept = o;
    }
}

template <class Ops> ptrdiff_t decodeWith(const uint8_t *in, size_t n, uint8_t *out)
{
    return decodeTolerating<Ops>(in, n, out, nullptr);
}

} // namespace
} // namespace rfc::quop
