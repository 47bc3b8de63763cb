// Internal: lines as the tolerant reader sees them. A line ends at LF; a CR
// before the LF belongs to the line end; a CR elsewhere is a byte of its line.
#pragma once

#include <pb/pb_types.h>

#include <cstring>

namespace mime::message {

struct Line {
    PB_INT start;
    PB_INT end;  // where its line end starts (or the end of the text)
    PB_INT next; // where the next line starts
    bool bareLf; // ended by LF without CR
};

// The line at from in b[0, n); from < n.
inline Line lineAt(const PB_BYTE *b, PB_INT from, PB_INT n)
{
    const void *lf = std::memchr(b + from, '\n', static_cast<size_t>(n - from));
    if (!lf)
        return {from, n, n, false};
    PB_INT at = static_cast<const PB_BYTE *>(lf) - b;
    bool cr = at > from && b[at - 1] == '\r';
    return {from, at - cr, at + 1, !cr};
}

} // namespace mime::message
