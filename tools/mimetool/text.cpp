#include "text.hpp"

#include <cstdio>

namespace mimetool {
namespace {

constexpr PB_INT kExcerptLength = 60;

void appendUtf8(std::string &out, PB_CHAR c)
{
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
        c = 0xFFFD;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

void appendEscape(std::string &out, PB_CHAR c)
{
    char text[16];
    if (c < 0x80)
        std::snprintf(text, sizeof text, "\\x%02X", static_cast<unsigned>(c));
    else
        std::snprintf(text, sizeof text, "\\u{%04X}", static_cast<unsigned>(c));
    out += text;
}

bool isToken(PB_STRING *s)
{
    const PB_INT length = pbStringLength(s);
    const PB_CHAR *chars = pbStringBacking(s);
    if (length == 0)
        return false;
    for (PB_INT i = 0; i < length; i++) {
        const PB_CHAR c = chars[i];
        if (c <= 0x20 || c >= 0x7F ||
            std::string_view("()<>@,;:\\\"/[]?=").find(static_cast<char>(c)) != std::string_view::npos)
            return false;
    }
    return true;
}

std::string shownChars(PB_STRING *s, bool quoted)
{
    std::string out;
    const PB_INT length = pbStringLength(s);
    const PB_CHAR *chars = pbStringBacking(s);
    for (PB_INT i = 0; i < length; i++) {
        const PB_CHAR c = chars[i];
        if (c == '\\' || (quoted && c == '"')) {
            out += '\\';
            out += static_cast<char>(c);
        } else if (isControlOrBidi(c)) {
            appendEscape(out, c);
        } else {
            appendUtf8(out, c);
        }
    }
    return out;
}

bool equalsAscii(const PB_CHAR *chars, std::string_view ascii)
{
    for (size_t i = 0; i < ascii.size(); i++) {
        PB_CHAR c = chars[i];
        if (c >= 'A' && c <= 'Z')
            c += 'a' - 'A';
        if (c != static_cast<PB_CHAR>(ascii[i]))
            return false;
    }
    return true;
}

} // namespace

bool isControlOrBidi(PB_CHAR c)
{
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) ||
           c == 0x200E || c == 0x200F || c == 0x061C || c == 0x2028 || c == 0x2029;
}

std::string shown(PB_STRING *s)
{
    return shownChars(s, false);
}

std::string shownValue(PB_STRING *s)
{
    if (isToken(s))
        return shownChars(s, false);
    return '"' + shownChars(s, true) + '"';
}

std::string jsonString(PB_STRING *s)
{
    std::string out = "\"";
    const PB_INT length = pbStringLength(s);
    const PB_CHAR *chars = pbStringBacking(s);
    for (PB_INT i = 0; i < length; i++) {
        const PB_CHAR c = chars[i];
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20 || c == 0x2028 || c == 0x2029) {
            char text[8];
            std::snprintf(text, sizeof text, "\\u%04X", static_cast<unsigned>(c));
            out += text;
        } else {
            appendUtf8(out, c);
        }
    }
    return out + '"';
}

std::string jsonString(std::string_view ascii)
{
    return jsonString(mime::makeString(ascii).get());
}

std::string byteCount(PB_INT count)
{
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string excerpt(PB_STRING *s)
{
    if (pbStringLength(s) <= kExcerptLength)
        return '"' + shownChars(s, true) + '"';
    Ref<PB_STRING> leading = adopt(pbStringCreateFromLeading(s, kExcerptLength));
    return '"' + shownChars(leading.get(), true) + "...\"";
}

bool startsWith(PB_STRING *s, std::string_view ascii)
{
    return static_cast<size_t>(pbStringLength(s)) >= ascii.size() && equalsAscii(pbStringBacking(s), ascii);
}

bool endsWith(PB_STRING *s, std::string_view ascii)
{
    const size_t length = static_cast<size_t>(pbStringLength(s));
    return length >= ascii.size() && equalsAscii(pbStringBacking(s) + (length - ascii.size()), ascii);
}

} // namespace mimetool
