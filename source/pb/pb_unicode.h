/** @file
 * Single code points.
 */
#ifndef PB_UNICODE_H
#define PB_UNICODE_H

#include <pb/pb_api.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

/** 0 to 15 for the ASCII hexadecimal digits 0-9, a-f and A-F; -1 for every other
 * code point (other scripts' digits included). */
PB_API PB_INT pbUnicodeHexadecimalDigitValue(PB_CHAR c) PB_NOEXCEPT;

PB_END_DECLS

#endif
