#include <mime/mime_char.h>
#include <mime/mime_char.hpp>

using namespace mime::chars;

PB_BOOL mime___CharIsAlpha(PB_CHAR c) noexcept
{
    return is(c, kAlpha);
}
PB_BOOL mime___CharIsDigit(PB_CHAR c) noexcept
{
    return is(c, kDigit);
}
PB_BOOL mime___CharIsCr(PB_CHAR c) noexcept
{
    return c == 0x0D;
}
PB_BOOL mime___CharIsLf(PB_CHAR c) noexcept
{
    return c == 0x0A;
}
PB_BOOL mime___CharIsHtab(PB_CHAR c) noexcept
{
    return c == 0x09;
}
PB_BOOL mime___CharIsSpace(PB_CHAR c) noexcept
{
    return c == 0x20;
}
PB_BOOL mime___CharIsLwsp(PB_CHAR c) noexcept
{
    return is(c, kLwsp);
}
PB_BOOL mime___CharIsQuotationMark(PB_CHAR c) noexcept
{
    return c == 0x22;
}
PB_BOOL mime___CharIsCtl(PB_CHAR c) noexcept
{
    return is(c, kCtl);
}
PB_BOOL mime___CharIsTspecial(PB_CHAR c) noexcept
{
    return is(c, kTspecial);
}
PB_BOOL mime___CharIsBcharsNospace(PB_CHAR c) noexcept
{
    return is(c, kBcharNospace);
}
PB_BOOL mime___CharIsBchars(PB_CHAR c) noexcept
{
    return c == 0x20 || is(c, kBcharNospace);
}
