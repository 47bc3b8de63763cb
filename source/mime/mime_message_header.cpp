#include <mime/mime_char.hpp>
#include <mime/mime_message_header.hpp>
#include <mime/mime_message_lines.hpp>
#include <pb/pb_utf8.hpp>

namespace mime::message {

namespace {

bool isLwsp(PB_BYTE c)
{
    return c == ' ' || c == '\t';
}

// The colon of a field line: a name of at least one byte without space or
// control character before it (the strict reader's rule); -1 for no field.
PB_INT colonOf(const PB_BYTE *b, const Line &line)
{
    for (PB_INT i = line.start; i < line.end; ++i) {
        if (b[i] == ':')
            return i > line.start ? i : -1;
        if (b[i] == ' ' || chars::is(b[i], chars::kCtl))
            return -1;
    }
    return -1;
}

} // namespace

void readHeader(const PB_BYTE *b, PB_INT from, PB_INT end, PB_INT maxBytes, Header &header,
                DefectList &defects) noexcept
{
    bool bareLf = false, continuationFirst = false;
    PB_INT at = from;
    header.end = end;
    while (at < end) {
        Line line = lineAt(b, at, end);
        if (line.next - from > maxBytes) {
            defects.add(MIME_DEFECT_LIMIT_EXCEEDED, at, "header size");
            header = {std::move(header.fields), at, true, true};
            break;
        }
        if (line.bareLf && !bareLf) {
            bareLf = true;
            defects.add(MIME_DEFECT_LINE_END_BARE, line.end);
        }
        at = line.next;
        if (line.start == line.end) { // the empty line
            header.end = line.next;
            header.hasBody = true;
            break;
        }
        if (isLwsp(b[line.start])) {
            if (!header.fields.empty())
                header.fields.back().end = line.end;
            else if (!continuationFirst) {
                continuationFirst = true;
                defects.add(MIME_DEFECT_HEADER_CONTINUATION_FIRST, line.start);
            }
            continue;
        }
        PB_INT colon = colonOf(b, line);
        if (colon < 0) {
            defects.add(MIME_DEFECT_HEADER_NO_EMPTY_LINE, line.start);
            header.end = line.start;
            header.hasBody = true;
            break;
        }
        header.fields.push_back({line.start, colon - line.start, colon + 1, line.end});
    }
    size_t length = static_cast<size_t>(header.end - from);
    if (size_t valid = pb::utf8::wellFormedLength(b + from, length); valid < length)
        defects.add(MIME_DEFECT_HEADER_NOT_UTF8, from + static_cast<PB_INT>(valid));
}

} // namespace mime::message
