/** @file
 * Strings of Unicode code points.
 *
 * A string is a value: operations that change one take the address of the
 * caller's reference and first replace a shared string by a private copy, so
 * other holders never see the change. Strings compare by code points
 * (lexicographically, a prefix first). Counts and indices are in code points. */
#ifndef PB_STRING_H
#define PB_STRING_H

#include <pb/pb_api.h>
#include <pb/pb_obj.h>
#include <pb/pb_sort.h>
#include <pb/pb_types.h>

#include <stdarg.h>
#include <wchar.h>

PB_BEGIN_DECLS

typedef struct PB_VECTOR PB_VECTOR;

/** The sort record of PB_STRING. */
PB_API const PB_SORT *pbStringSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
PB_API PB_STRING *pbStringRetain(PB_STRING *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
PB_API void pbStringRelease(PB_STRING *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
PB_API PB_OBJ *pbStringObj(PB_STRING *obj) PB_NOEXCEPT;
/** obj as a PB_STRING: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
PB_API PB_STRING *pbStringFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
PB_API PB_STRING *pbStringToString(PB_STRING *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
PB_API PB_INT pbStringCompare(PB_STRING *objA, PB_STRING *objB) PB_NOEXCEPT;
/** Whether pbStringCompare gives 0. */
PB_API PB_BOOL pbStringEquals(PB_STRING *objA, PB_STRING *objB) PB_NOEXCEPT;

/** Returns a new empty string. */
PB_API PB_STRING *pbStringCreate(void) PB_NOEXCEPT;

/** Returns a new string read from UTF-8 text of length bytes (-1: up to the NUL).
 * Each ill-formed part becomes U+FFFD. */
PB_API PB_STRING *pbStringCreateFromCstr(const char *utf8, PB_INT length) PB_NOEXCEPT;

/** Returns a new string from wide characters (-1: up to the NUL). UTF-32 or, where
 * wchar_t has 16 bits, UTF-16; values that are no Unicode scalar become U+FFFD. */
PB_API PB_STRING *pbStringCreateFromWcstr(const wchar_t *text, PB_INT length) PB_NOEXCEPT;

/** Returns a new string holding a copy of count code points, taken as they are. */
PB_API PB_STRING *pbStringCreateFromCharsCopy(const PB_CHAR *chars, PB_INT count) PB_NOEXCEPT;

/** Internal, for the runtime's modules: a string of count code points that lives
 * for the rest of the process. It is not counted among the live objects, retain
 * and release leave it alone (so threads share it without writing to it), and a
 * change goes to a copy, as for any string with more than one holder. For the
 * few fixed words that a module hands out very often. */
PB_API PB_STRING *pb___StringCreateConstant(const PB_CHAR *chars, PB_INT count) PB_NOEXCEPT;

/** Internal: a new string of count code points (>= 0) not yet written, and in
 * *chars where they go. The caller writes every one of them (or cuts the rest
 * off with pbStringDelTrailing) before any other use of the string: for a
 * module that decodes text straight into the string it returns. */
PB_API PB_STRING *pb___StringCreateUnfilled(PB_INT count, PB_CHAR **chars) PB_NOEXCEPT;

/** Internal: a new empty string with room for count code points (>= 0), so
 * that appending up to that many allocates nothing: for a module that knows
 * how long the text it joins can grow. */
PB_API PB_STRING *pb___StringCreateWithRoom(PB_INT count) PB_NOEXCEPT;

/** Returns a new string of the first count code points of s (count <= length). */
PB_API PB_STRING *pbStringCreateFromLeading(PB_STRING *s, PB_INT count) PB_NOEXCEPT;

/** Returns a new string of count code points of s from offset (within s). */
PB_API PB_STRING *pbStringCreateFromInner(PB_STRING *s, PB_INT offset, PB_INT count) PB_NOEXCEPT;

/** Returns a new string made from a format text (UTF-8, formatLength bytes or -1)
 * and arguments. Directives: %[~][^][-][0][width][!base][l]conversion, or %%.
 *   %s   a PB_STRING *            %o   any PB_OBJ *, by its pbObjToString text
 *   %i   a PB_INT (int64_t)       %c   one code point (PB_CHAR)
 *   %lc  a NUL-terminated UTF-8 text (const char *)
 *   ~    the format takes over the caller's reference to the %s or %o argument
 *        and releases it once the text is complete
 *   ^    upper-case digits; !base: base 2..36 for %i (default 10)
 *   width: pad to at least that many code points, with spaces on the left (on the
 *        right with -); 0 pads %i with zeros after any sign
 * A null %s or %o argument is written as "(null)". Any other directive is a
 * programming error and aborts. Arguments must have exactly these types. */
PB_API PB_STRING *pbStringCreateFromFormatCstr(const char *format, PB_INT formatLength, ...) PB_NOEXCEPT;
/** pbStringCreateFromFormatCstr with the arguments as a va_list. */
PB_API PB_STRING *pbStringCreateFromFormatCstrVa(const char *format, PB_INT formatLength, va_list args) PB_NOEXCEPT;

/** Appends the formatted text to *s (directives as above). */
PB_API void pbStringAppendFormatCstr(PB_STRING **s, const char *format, PB_INT formatLength, ...) PB_NOEXCEPT;
/** pbStringAppendFormatCstr with the arguments as a va_list. */
PB_API void pbStringAppendFormatCstrVa(PB_STRING **s, const char *format, PB_INT formatLength,
                                       va_list args) PB_NOEXCEPT;

/** The code points, valid while the string is held and unchanged. */
PB_API const PB_CHAR *pbStringBacking(PB_STRING *s) PB_NOEXCEPT;
/** The number of code points. */
PB_API PB_INT pbStringLength(PB_STRING *s) PB_NOEXCEPT;
/** The code point at index (0 <= index < length). */
PB_API PB_CHAR pbStringCharAt(PB_STRING *s, PB_INT index) PB_NOEXCEPT;

/** Append other, one code point or count code points at the end of *s, or one
 * code point at its start (a private copy when *s is shared). */
PB_API void pbStringAppend(PB_STRING **s, PB_STRING *other) PB_NOEXCEPT;
/** Appends one code point to *s (a private copy when *s is shared). */
PB_API void pbStringAppendChar(PB_STRING **s, PB_CHAR c) PB_NOEXCEPT;
/** Appends count code points to *s (a private copy when *s is shared). */
PB_API void pbStringAppendChars(PB_STRING **s, const PB_CHAR *chars, PB_INT count) PB_NOEXCEPT;
/** Puts one code point before the start of *s (a private copy when *s is shared). */
PB_API void pbStringPrependChar(PB_STRING **s, PB_CHAR c) PB_NOEXCEPT;

/** Remove count code points (count <= length) at the start or at the end. */
PB_API void pbStringDelLeading(PB_STRING **s, PB_INT count) PB_NOEXCEPT;
/** Removes count code points (count <= length) at the end of *s. */
PB_API void pbStringDelTrailing(PB_STRING **s, PB_INT count) PB_NOEXCEPT;

/** Maps A-Z to a-z; every other code point stays (locale-independent). */
PB_API void pbStringToLower(PB_STRING **s) PB_NOEXCEPT;

/** Removes spaces, horizontal tabs, CR and LF at both ends. */
PB_API void pbStringTrim(PB_STRING **s) PB_NOEXCEPT;

/** Returns a new vector of new strings: the pieces between occurrences of c (or of
 * the whole sequence chars[0..count), count > 0). maxParts -1 means no limit; with
 * a limit n > 0 there are at most n pieces and the last keeps the rest, separators
 * included. The empty string gives one empty piece. */
PB_API PB_VECTOR *pbStringSplitChar(PB_STRING *s, PB_CHAR c, PB_INT maxParts) PB_NOEXCEPT;
/** pbStringSplitChar with the count code points of chars each a separator. */
PB_API PB_VECTOR *pbStringSplitChars(PB_STRING *s, const PB_CHAR *chars, PB_INT count, PB_INT maxParts) PB_NOEXCEPT;

/** True when s is exactly chars[0..count). */
PB_API PB_BOOL pbStringEqualsChars(PB_STRING *s, const PB_CHAR *chars, PB_INT count) PB_NOEXCEPT;
/** True when s ends with chars[0..count). */
PB_API PB_BOOL pbStringEndsWithChars(PB_STRING *s, const PB_CHAR *chars, PB_INT count) PB_NOEXCEPT;

/** True when s equals other without regard to the case of A-Z and a-z. */
PB_API PB_BOOL pbStringEqualsCaseFold(PB_STRING *s, PB_STRING *other) PB_NOEXCEPT;
/** pbStringEqualsCaseFold for text in UTF-8 (length -1: up to the NUL). */
PB_API PB_BOOL pbStringEqualsCaseFoldCstr(PB_STRING *s, const char *text, PB_INT length) PB_NOEXCEPT;
/** pbStringEqualsCaseFold for text in wide characters (length -1: up to the NUL). */
PB_API PB_BOOL pbStringEqualsCaseFoldWcstr(PB_STRING *s, const wchar_t *text, PB_INT length) PB_NOEXCEPT;

/** Returns newly allocated, NUL-terminated UTF-8 text of s (a value that is no
 * Unicode scalar becomes U+FFFD), and its length in bytes through length when
 * that is not null. flags must be 0. Free the text with pbMemFree. */
PB_API char *pbStringConvertToCstr(PB_STRING *s, PB_INT flags, PB_INT *length) PB_NOEXCEPT;

PB_END_DECLS

#endif
