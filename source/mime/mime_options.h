/** @file
 * MIME_OPTIONS: the settings that steer encoding and decoding. Six settings,
 * each with an is-default mark: nonzero while the setting holds the default put
 * there by its reset (or by creation), zero once a caller has set it, even to
 * the default value. Marks take part in comparison and decide what a store
 * records.
 *
 *   setting                  default                                  valid
 *   flags                    MIME_FLAG_PARSE_RFC2231_HEADERS |         normalised on set
 *                            MIME_FLAG_GENERATE_RFC2231_HEADERS
 *   wrapLineLength           76 (header lines are folded past it)     -1 (never fold) or >= 0
 *   rfc2231Charset           44 (UTF-8)                               0 to 50
 *   rfc2231MaxSegmentLength  60                                       -1 (no splitting) or > 0
 *   rfcBaseOptions           base64 options with output line length 76
 *   rfcQuopOptions           quoted-printable options as created
 *
 * Options are values: setters and resets take the address of the caller's
 * reference and change a private copy when the object is shared; copies share
 * the codec option objects, which change only through the codec library's own
 * setters. Comparison walks the settings in the order above, mark before value;
 * codec option objects compare through the runtime. */
#ifndef MIME_OPTIONS_H
#define MIME_OPTIONS_H

#include <mime/mime_api.h>
#include <mime/mime_flags.h>
#include <pb/pb_charset.h>
#include <pb/pb_sort.h>
#include <pb/pb_store.h>
#include <rfc/rfc_base_options.h>
#include <rfc/rfc_quop_options.h>

PB_BEGIN_DECLS

typedef struct MIME_OPTIONS MIME_OPTIONS;

/** The sort record of MIME_OPTIONS. */
MIME_API const PB_SORT *mimeOptionsSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
MIME_API MIME_OPTIONS *mimeOptionsRetain(MIME_OPTIONS *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
MIME_API void mimeOptionsRelease(MIME_OPTIONS *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
MIME_API PB_OBJ *mimeOptionsObj(MIME_OPTIONS *obj) PB_NOEXCEPT;
/** obj as a MIME_OPTIONS: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
MIME_API MIME_OPTIONS *mimeOptionsFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
MIME_API PB_STRING *mimeOptionsToString(MIME_OPTIONS *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
MIME_API PB_INT mimeOptionsCompare(MIME_OPTIONS *objA, MIME_OPTIONS *objB) PB_NOEXCEPT;
/** Whether mimeOptionsCompare gives 0. */
MIME_API PB_BOOL mimeOptionsEquals(MIME_OPTIONS *objA, MIME_OPTIONS *objB) PB_NOEXCEPT;

/** A new object with every setting at its default. */
MIME_API MIME_OPTIONS *mimeOptionsCreate(void) PB_NOEXCEPT;
/** A new object with the settings and marks of source; the codec option objects are shared. */
MIME_API MIME_OPTIONS *mimeOptionsCreateFrom(MIME_OPTIONS *source) PB_NOEXCEPT;

/** Each setting has four functions: its value; set it (a private copy when the
 * object is shared; the is-default mark is cleared; an invalid value aborts, see
 * the table above); whether it holds the default put there by creation or by
 * the reset (nonzero) or was set (0); reset it to the default. */
MIME_API MIME_FLAGS mimeOptionsFlags(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Sets the flags in normalised form (mimeFlagsNormalize) and marks them as set. Aborts when mo or *mo is null. */
MIME_API void mimeOptionsSetFlags(MIME_OPTIONS **mo, MIME_FLAGS flags) PB_NOEXCEPT;
/** Nonzero when the flags hold the default put there by creation or the reset, 0 when they were set. Aborts when mo
 * is null. */
MIME_API int mimeOptionsFlagsDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Resets the flags to the default, MIME_FLAG_PARSE_RFC2231_HEADERS | MIME_FLAG_GENERATE_RFC2231_HEADERS. Aborts
 * when mo or *mo is null. */
MIME_API void mimeOptionsSetFlagsDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** Header lines are folded past this many characters; -1: never. */
MIME_API PB_INT mimeOptionsWrapLineLength(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Sets the wrap line length and marks it as set. Aborts when mo or *mo is null or wrapLineLength is below -1. */
MIME_API void mimeOptionsSetWrapLineLength(MIME_OPTIONS **mo, PB_INT wrapLineLength) PB_NOEXCEPT;
/** Nonzero when the wrap line length holds its default, 0 when it was set. Aborts when mo is null. */
MIME_API int mimeOptionsWrapLineLengthDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Resets the wrap line length to the default, 76. Aborts when mo or *mo is null. */
MIME_API void mimeOptionsSetWrapLineLengthDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** The charset in which RFC 2231 writes parameter values beyond ASCII. */
MIME_API PB_CHARSET mimeOptionsRfc2231Charset(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Sets the RFC 2231 charset and marks it as set. Aborts when mo or *mo is null or charset is not a code from 0 to
 * 50. */
MIME_API void mimeOptionsSetRfc2231Charset(MIME_OPTIONS **mo, PB_CHARSET charset) PB_NOEXCEPT;
/** Nonzero when the RFC 2231 charset holds its default, 0 when it was set. Aborts when mo is null. */
MIME_API int mimeOptionsRfc2231CharsetDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Resets the RFC 2231 charset to the default, UTF-8 (PB_CHARSET_UTF_8). Aborts when mo or *mo is null. */
MIME_API void mimeOptionsSetRfc2231CharsetDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** The longest RFC 2231 segment (key*0*, key*1*, ...) written; -1: one segment. */
MIME_API PB_INT mimeOptionsRfc2231MaxSegmentLength(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Sets the RFC 2231 segment length and marks it as set. Aborts when mo or *mo is null or maxSegmentLength is
 * neither -1 nor positive. */
MIME_API void mimeOptionsSetRfc2231MaxSegmentLength(MIME_OPTIONS **mo, PB_INT maxSegmentLength) PB_NOEXCEPT;
/** Nonzero when the RFC 2231 segment length holds its default, 0 when it was set. Aborts when mo is null. */
MIME_API int mimeOptionsRfc2231MaxSegmentLengthDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Resets the RFC 2231 segment length to the default, 60. Aborts when mo or *mo is null. */
MIME_API void mimeOptionsSetRfc2231MaxSegmentLengthDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** New references to the codec option objects; the setters store the given object itself. */
MIME_API RFC_BASE_OPTIONS *mimeOptionsRfcBaseOptions(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Stores bo itself (no copy) as the base64 options and marks them as set. Aborts when mo, *mo or bo is null. */
MIME_API void mimeOptionsSetRfcBaseOptions(MIME_OPTIONS **mo, RFC_BASE_OPTIONS *bo) PB_NOEXCEPT;
/** Nonzero when the base64 options are the default ones, 0 when they were set. Aborts when mo is null. */
MIME_API int mimeOptionsRfcBaseOptionsDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Resets the base64 options to a new default object with output line length 76. Aborts when mo or *mo is null. */
MIME_API void mimeOptionsSetRfcBaseOptionsDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** The same for the quoted-printable options. */
MIME_API RFC_QUOP_OPTIONS *mimeOptionsRfcQuopOptions(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Stores qo itself (no copy) as the quoted-printable options and marks them as set. Aborts when mo, *mo or qo is
 * null. */
MIME_API void mimeOptionsSetRfcQuopOptions(MIME_OPTIONS **mo, RFC_QUOP_OPTIONS *qo) PB_NOEXCEPT;
/** Nonzero when the quoted-printable options are the default ones, 0 when they were set. Aborts when mo is null. */
MIME_API int mimeOptionsRfcQuopOptionsDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
/** Resets the quoted-printable options to a new object with the codec library's defaults. Aborts when mo or *mo is
 * null. */
MIME_API void mimeOptionsSetRfcQuopOptionsDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** Persistence in a store of the runtime: "flags" (flag names), "wrapLineLength"
 * (integer), "rfc2231Charset" (charset text), "rfc2231MaxSegmentLength"
 * (integer), and the codec options as the sub-stores "rfcBaseOptions" and
 * "rfcQuopOptions". mimeOptionsStore writes the settings set explicitly, or all
 * of them when full is nonzero, into a new store. mimeOptionsRestore returns a
 * new object (never null) with the defaults, then each stored setting that is
 * present and valid set through its setter (and so marked as set); anything
 * missing, of the wrong kind or out of range is skipped. */
MIME_API PB_STORE *mimeOptionsStore(MIME_OPTIONS *mo, int full) PB_NOEXCEPT;
/** A new options object (never null): the defaults, then each setting that the store holds under its key with the
 * right kind and a valid value, set through its setter. Aborts when store is null. */
MIME_API MIME_OPTIONS *mimeOptionsRestore(PB_STORE *store) PB_NOEXCEPT;

PB_END_DECLS

#endif
