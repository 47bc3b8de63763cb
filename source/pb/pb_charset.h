/** @file
 * Character sets: codes 0 to 50, their IANA names, and conversion between
 * strings and bytes.
 *
 * US-ASCII, ISO-8859-1 and UTF-8 are converted natively; the others through the
 * C library's iconv. Names are matched without regard to case, registered IANA
 * aliases included. */
#ifndef PB_CHARSET_H
#define PB_CHARSET_H

#include <pb/pb_api.h>
#include <pb/pb_buffer.h>
#include <pb/pb_string.h>
#include <pb/pb_types.h>

#include <wchar.h>

PB_BEGIN_DECLS

/** True for a valid code, 0 to 50 (compared unsigned, so negative codes fail). */
#define PB_CHARSET_OK(cs) ((uint64_t)(cs) <= 50u)

#define PB_CHARSET_US_ASCII 0
#define PB_CHARSET_ISO_8859_1 1
#define PB_CHARSET_ISO_8859_2 2
#define PB_CHARSET_ISO_8859_3 3
#define PB_CHARSET_ISO_8859_4 4
#define PB_CHARSET_ISO_8859_5 5
#define PB_CHARSET_ISO_8859_6 6
#define PB_CHARSET_ISO_8859_7 7
#define PB_CHARSET_ISO_8859_8 8
#define PB_CHARSET_ISO_8859_9 9
#define PB_CHARSET_ISO_8859_10 10
#define PB_CHARSET_ISO_8859_13 11
#define PB_CHARSET_ISO_8859_14 12
#define PB_CHARSET_ISO_8859_15 13
#define PB_CHARSET_ISO_8859_16 14
#define PB_CHARSET_WINDOWS_1250 15
#define PB_CHARSET_WINDOWS_1251 16
#define PB_CHARSET_WINDOWS_1252 17
#define PB_CHARSET_WINDOWS_1253 18
#define PB_CHARSET_WINDOWS_1254 19
#define PB_CHARSET_WINDOWS_1255 20
#define PB_CHARSET_WINDOWS_1256 21
#define PB_CHARSET_WINDOWS_1257 22
#define PB_CHARSET_WINDOWS_1258 23
#define PB_CHARSET_KOI8_R 24
#define PB_CHARSET_KOI8_U 25
#define PB_CHARSET_IBM437 26
#define PB_CHARSET_IBM850 27
#define PB_CHARSET_IBM852 28
#define PB_CHARSET_IBM866 29
#define PB_CHARSET_MACINTOSH 30
#define PB_CHARSET_TIS_620 31
#define PB_CHARSET_SHIFT_JIS 32
#define PB_CHARSET_EUC_JP 33
#define PB_CHARSET_ISO_2022_JP 34
#define PB_CHARSET_GB2312 35
#define PB_CHARSET_GBK 36
#define PB_CHARSET_GB18030 37
#define PB_CHARSET_BIG5 38
#define PB_CHARSET_BIG5_HKSCS 39
#define PB_CHARSET_EUC_KR 40
#define PB_CHARSET_ISO_2022_KR 41
#define PB_CHARSET_WINDOWS_874 42
#define PB_CHARSET_UTF_7 43
#define PB_CHARSET_UTF_8 44
#define PB_CHARSET_UTF_16 45
#define PB_CHARSET_UTF_16BE 46
#define PB_CHARSET_UTF_16LE 47
#define PB_CHARSET_UTF_32 48
#define PB_CHARSET_UTF_32BE 49
#define PB_CHARSET_UTF_32LE 50

/** Conversion flag: fail (null) on bytes that are not valid in the charset,
 * instead of replacing them with U+FFFD. */
#define PB_CHARSET_FLAG_STRICT 1

/** The code of the charset with that IANA name or registered alias (any case), or
 * -1 when there is none (the empty name included). */
PB_API PB_CHARSET pbCharsetFromIanaName(PB_STRING *name) PB_NOEXCEPT;
/** pbCharsetFromIanaName for name in UTF-8 (length -1: up to the NUL). */
PB_API PB_CHARSET pbCharsetFromIanaNameCstr(const char *name, PB_INT length) PB_NOEXCEPT;
/** pbCharsetFromIanaName for name in wide characters (length -1: up to the NUL). */
PB_API PB_CHARSET pbCharsetFromIanaNameWcstr(const wchar_t *name, PB_INT length) PB_NOEXCEPT;
/** Internal (for the other libraries of this product): pbCharsetFromIanaName
 * for the name chars[0, count) of a caller's memory. */
PB_API PB_CHARSET pb___CharsetFromIanaNameChars(const PB_CHAR *chars, PB_INT count) PB_NOEXCEPT;

/** A new string, the preferred IANA name of a valid code ("UTF-8" for 44). */
PB_API PB_STRING *pbCharsetToIanaName(PB_CHARSET charset) PB_NOEXCEPT;

/** The code's text form for stores (its IANA name), and the inverse, which reads
 * what pbCharsetFromIanaName reads (-1 for an unknown text). */
PB_API PB_STRING *pbCharsetToString(PB_CHARSET charset) PB_NOEXCEPT;
/** The code of a text that pbCharsetFromIanaName reads, or -1 for an unknown text. */
PB_API PB_CHARSET pbCharsetFromString(PB_STRING *text) PB_NOEXCEPT;
/** pbCharsetFromString for text in UTF-8 (length -1: up to the NUL). */
PB_API PB_CHARSET pbCharsetFromStringCstr(const char *text, PB_INT length) PB_NOEXCEPT;
/** pbCharsetFromString for text in wide characters (length -1: up to the NUL). */
PB_API PB_CHARSET pbCharsetFromStringWcstr(const wchar_t *text, PB_INT length) PB_NOEXCEPT;

/** A new buffer with s encoded in the charset, or null when some code point has no
 * encoding there (a value that is no Unicode scalar has none anywhere). */
PB_API PB_BUFFER *pbCharsetConvertStringToBuffer(PB_CHARSET charset, PB_STRING *s) PB_NOEXCEPT;

/** A new string decoded from the buffer's bytes; bytes that are not valid in the
 * charset (an incomplete last byte included) become U+FFFD. UTF-8 follows the
 * Unicode practice of one U+FFFD per maximal ill-formed subpart. */
PB_API PB_STRING *pbCharsetConvertBufferToString(PB_CHARSET charset, PB_BUFFER *buf) PB_NOEXCEPT;

/** As pbCharsetConvertBufferToString; with PB_CHARSET_FLAG_STRICT in flags it
 * returns null for invalid bytes instead. */
PB_API PB_STRING *pbCharsetTryConvertBufferToStringWithFlags(PB_CHARSET charset, PB_BUFFER *buf,
                                                             PB_INT flags) PB_NOEXCEPT;

/** Internal (for the other libraries of this product): as
 * pbCharsetConvertBufferToString, from the bytes[0, count) of a caller's
 * memory rather than from a buffer. */
PB_API PB_STRING *pb___CharsetConvertBytesToString(PB_CHARSET charset, const PB_BYTE *bytes, PB_INT count) PB_NOEXCEPT;

PB_END_DECLS

#endif
