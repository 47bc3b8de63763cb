/** @file
 * Character classes of header-field text (RFC 822, RFC 2045, RFC 2046). Each
 * test takes one code point; code points above U+007F belong to none of the
 * classes. Library-internal (prefix mime___), exported for the library's other
 * files and its tests. */
#ifndef MIME_CHAR_H
#define MIME_CHAR_H

#include <mime/mime_api.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

/** A-Z a-z */
MIME_API PB_BOOL mime___CharIsAlpha(PB_CHAR c) PB_NOEXCEPT;
/** 0-9 */
MIME_API PB_BOOL mime___CharIsDigit(PB_CHAR c) PB_NOEXCEPT;
/** U+000D */
MIME_API PB_BOOL mime___CharIsCr(PB_CHAR c) PB_NOEXCEPT;
/** U+000A */
MIME_API PB_BOOL mime___CharIsLf(PB_CHAR c) PB_NOEXCEPT;
/** U+0009 */
MIME_API PB_BOOL mime___CharIsHtab(PB_CHAR c) PB_NOEXCEPT;
/** U+0020 */
MIME_API PB_BOOL mime___CharIsSpace(PB_CHAR c) PB_NOEXCEPT;
/** space and tab */
MIME_API PB_BOOL mime___CharIsLwsp(PB_CHAR c) PB_NOEXCEPT;
/** U+0022 */
MIME_API PB_BOOL mime___CharIsQuotationMark(PB_CHAR c) PB_NOEXCEPT;
/** U+0000-U+001F, U+007F */
MIME_API PB_BOOL mime___CharIsCtl(PB_CHAR c) PB_NOEXCEPT;
/** The fifteen tspecials of RFC 2045: ( ) < > @ , ; : \ " / [ ] ? = */
MIME_API PB_BOOL mime___CharIsTspecial(PB_CHAR c) PB_NOEXCEPT;
/** RFC 2046 bcharsnospace: digits, letters and ' ( ) + _ , - . / : = ? */
MIME_API PB_BOOL mime___CharIsBcharsNospace(PB_CHAR c) PB_NOEXCEPT;
/** RFC 2046 bchars: bcharsnospace and space. */
MIME_API PB_BOOL mime___CharIsBchars(PB_CHAR c) PB_NOEXCEPT;

PB_END_DECLS

#endif
