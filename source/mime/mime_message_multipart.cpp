#include <mime/mime_byte_search.hpp>
#include <mime/mime_message_multipart.hpp>

#include <string>

namespace mime::message {

namespace {

// A delimiter line at b[at] ("--" boundary, at a line start): where the line
// that follows it starts, and whether it closes; false when more than padding
// follows the boundary.
bool readDelimiterLine(const PB_BYTE *b, PB_INT at, PB_INT end, PB_INT dashed, PB_INT &next, bool &closing)
{
    PB_INT i = at + dashed;
    closing = end - i >= 2 && b[i] == '-' && b[i + 1] == '-';
    if (closing) { // the rest of its line is epilogue
        next = end;
        return true;
    }
    while (i < end && (b[i] == ' ' || b[i] == '\t'))
        ++i;
    if (i < end && b[i] == '\r' && i + 1 < end && b[i + 1] == '\n')
        ++i;
    if (i < end && b[i] != '\n')
        return false;
    next = i < end ? i + 1 : end;
    return true;
}

// Where the line end before a delimiter at b[at] starts (at itself at from).
PB_INT lineEndBefore(const PB_BYTE *b, PB_INT from, PB_INT at)
{
    if (at == from)
        return at;
    --at; // the LF
    return at > from && b[at - 1] == '\r' ? at - 1 : at;
}

} // namespace

void splitMultipart(const PB_BYTE *b, PB_INT from, PB_INT end, std::string_view boundary, PB_INT maxParts,
                    Delimited &out, DefectList &defects) noexcept
{
    std::string dashed = "--";
    dashed += boundary;
    auto needle = reinterpret_cast<const PB_BYTE *>(dashed.data());
    PB_INT m = static_cast<PB_INT>(dashed.size());
    PB_INT partStart = -1; // in a part since then
    bool malformed = false, repeated = false;
    for (PB_INT at = from;;) {
        PB_INT hit = mime::bytes::find(b, end, at, needle, m);
        if (hit < 0)
            break;
        at = hit + 1;
        if (hit != from && b[hit - 1] != '\n')
            continue; // not at a line start
        PB_INT next = 0;
        bool closing = false;
        if (!readDelimiterLine(b, hit, end, m, next, closing)) {
            // Right after a delimiter line it is no delimiter by RFC 2046 (whose
            // delimiter takes the CR LF before it): body data, no departure.
            if (!malformed && hit != partStart) {
                defects.add(MIME_DEFECT_DELIMITER_LINE_MALFORMED, hit, boundary);
                malformed = true;
            }
            continue;
        }
        out.found = true;
        if (hit == partStart) {
            // Delimiter lines in a row enclose no part, as mail readers see them
            // (but a close delimiter right after one closes an empty part); RFC
            // 2046 reads the second as the first line of a part.
            if (!repeated)
                defects.add(MIME_DEFECT_DELIMITER_REPEATED, hit, boundary);
            repeated = true;
            if (closing)
                out.parts.push_back({partStart, partStart});
        } else if (partStart >= 0) {
            PB_INT partEnd = lineEndBefore(b, from, hit);
            out.parts.push_back({partStart, partEnd > partStart ? partEnd : partStart});
        }
        if (closing)
            return;
        if (static_cast<PB_INT>(out.parts.size()) == maxParts) {
            defects.add(MIME_DEFECT_LIMIT_EXCEEDED, hit, "part count");
            return;
        }
        partStart = at = next;
    }
    if (!out.found) {
        defects.add(MIME_DEFECT_DELIMITER_MISSING, from, boundary);
        return;
    }
    // The last part runs to the end, but for the line end it ends with.
    PB_INT partEnd = end > partStart && b[end - 1] == '\n' ? lineEndBefore(b, from, end) : end;
    out.parts.push_back({partStart, partEnd > partStart ? partEnd : partStart});
    defects.add(MIME_DEFECT_CLOSE_DELIMITER_MISSING, end, boundary);
}

} // namespace mime::message
