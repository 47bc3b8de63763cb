// Internal: the character classes as one table of class bits, for the lexer's
// and the codecs' inner loops; the exported tests of mime_char.h read it too.
#pragma once

#include <pb/pb_types.h>

#include <cstdint>
#include <initializer_list>

namespace mime::chars {

enum Class : uint16_t {
    kAlpha = 1 << 0,
    kDigit = 1 << 1,
    kCtl = 1 << 2,
    kTspecial = 1 << 3,
    kBcharNospace = 1 << 4,
    kLwsp = 1 << 5,
    // A character that ends a token: a tspecial, a space or a control character.
    kTokenEnd = 1 << 6,
    // RFC 2045 token character: printable ASCII but space and tspecials.
    kTokenChar = 1 << 7,
    // RFC 2231 attribute-char: a token character but "*", "'" and "%".
    kAttributeChar = 1 << 8,
    // A character of media type names and disposition types: letter, digit, + - . _
    kTypeChar = 1 << 9,
};

struct ClassTable {
    uint16_t at[128];
};

constexpr ClassTable makeClassTable()
{
    ClassTable t{};
    for (int c = 'A'; c <= 'Z'; ++c) {
        t.at[c] |= kAlpha | kBcharNospace;
        t.at[c + 32] |= kAlpha | kBcharNospace;
    }
    for (int c = '0'; c <= '9'; ++c)
        t.at[c] |= kDigit | kBcharNospace;
    for (int c = 0; c < 32; ++c)
        t.at[c] |= kCtl | kTokenEnd;
    t.at[127] |= kCtl | kTokenEnd;
    for (char c : {'(', ')', '<', '>', '@', ',', ';', ':', '\\', '"', '/', '[', ']', '?', '='})
        t.at[static_cast<uint8_t>(c)] |= kTspecial | kTokenEnd;
    for (char c : {'\'', '(', ')', '+', '_', ',', '-', '.', '/', ':', '=', '?'})
        t.at[static_cast<uint8_t>(c)] |= kBcharNospace;
    t.at[static_cast<uint8_t>(' ')] |= kLwsp | kTokenEnd;
    t.at[static_cast<uint8_t>('\t')] |= kLwsp;
    for (char c : {'+', '-', '.', '_'})
        t.at[static_cast<uint8_t>(c)] |= kTypeChar;
    for (int c = 33; c < 127; ++c)
        if (!(t.at[c] & kTspecial))
            t.at[c] |= kTokenChar | (c == '*' || c == '\'' || c == '%' ? 0 : kAttributeChar) |
                       (t.at[c] & (kAlpha | kDigit) ? kTypeChar : 0);
    return t;
}

inline constexpr ClassTable kClassTable = makeClassTable();

constexpr bool is(PB_CHAR c, uint16_t classes)
{
    return c < 128 && (kClassTable.at[c] & classes) != 0;
}

// The value of an ASCII hexadecimal digit (either case), or -1.
constexpr PB_INT hexValue(PB_CHAR c)
{
    const PB_CHAR lower = c | 0x20;
    return c - '0' < 10u ? PB_INT(c - '0') : lower - 'a' < 6u ? PB_INT(lower - 'a' + 10) : -1;
}

// True when every code point of chars[0, n) is in one of classes.
inline bool all(const PB_CHAR *chars, PB_INT n, uint16_t classes)
{
    for (PB_INT i = 0; i < n; ++i)
        if (!is(chars[i], classes))
            return false;
    return true;
}

// True when no code point of chars[0, n) is above 127.
inline bool isAscii(const PB_CHAR *chars, PB_INT n)
{
    for (PB_INT i = 0; i < n; ++i)
        if (chars[i] > 127)
            return false;
    return true;
}

} // namespace mime::chars
