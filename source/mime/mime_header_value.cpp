#include <mime/mime_defect.hpp>
#include <mime/mime_header_value.h>
#include <pb/pb_abort.h>
#include <pb/pb_text.hpp>

#include <cstdio>

namespace {

bool isBlank(PB_CHAR c)
{
    return c == ' ' || c == '\t';
}

bool isLineBreak(PB_CHAR c)
{
    return c == '\r' || c == '\n';
}

// The first character of c[0, n) at which a written value would leave its
// field, or n.
PB_INT firstUnsafe(const PB_CHAR *c, PB_INT n)
{
    for (PB_INT i = 0; i < n; ++i) {
        if (c[i] == '\r' && i + 2 < n && c[i + 1] == '\n' && isBlank(c[i + 2])) {
            // A fold: the line it starts holds more than blanks.
            PB_INT next = i + 2;
            while (next < n && isBlank(c[next]))
                ++next;
            if (next == n || isLineBreak(c[next]))
                return i;
            i = next - 1;
        } else if ((c[i] < 0x20 && c[i] != '\t') || c[i] == 0x7F) {
            return i;
        }
    }
    return n;
}

} // namespace

PB_BOOL mimeHeaderValueCheck(PB_STRING *value, MIME_DEFECT **defect) noexcept
{
    PB_ASSERT( value );
    mime::clearDefect(defect);
    const PB_CHAR *c = pbStringBacking(value);
    const PB_INT n = pbStringLength(value);
    const PB_INT at = firstUnsafe(c, n);
    if (at == n)
        return PB_TRUE;
    char detail[40];
    if (isLineBreak(c[at]))
        std::snprintf(detail, sizeof detail, "a line break that is no fold");
    else
        std::snprintf(detail, sizeof detail, "the control character U+%04X", static_cast<unsigned>(c[at]));
    mime::report(defect, MIME_DEFECT_HEADER_VALUE_UNSAFE, at, detail);
    return PB_FALSE;
}

PB_BOOL mimeHeaderValueCheckCstr(const char *value, PB_INT length, MIME_DEFECT **defect) noexcept
{
    return mimeHeaderValueCheck(pb::Text(value, length), defect);
}

PB_BOOL mimeHeaderValueCheckWcstr(const wchar_t *value, PB_INT length, MIME_DEFECT **defect) noexcept
{
    return mimeHeaderValueCheck(pb::Text(value, length), defect);
}
