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

PB_SORT_STDFUNCS_DECL(MIME_API, mime, Options, MIME_OPTIONS)

/** A new object with every setting at its default. */
MIME_API MIME_OPTIONS *mimeOptionsCreate(void) PB_NOEXCEPT;
/** A new object with the settings and marks of source; the codec option objects are shared. */
MIME_API MIME_OPTIONS *mimeOptionsCreateFrom(MIME_OPTIONS *source) PB_NOEXCEPT;

/** Each setting has four functions: its value; set it (a private copy when the
 * object is shared; the is-default mark is cleared; an invalid value aborts, see
 * the table above); whether it holds the default put there by creation or by
 * the reset (nonzero) or was set (0); reset it to the default. */
MIME_API MIME_FLAGS mimeOptionsFlags(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetFlags(MIME_OPTIONS **mo, MIME_FLAGS flags) PB_NOEXCEPT;
MIME_API int mimeOptionsFlagsDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetFlagsDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** Header lines are folded past this many characters; -1: never. */
MIME_API PB_INT mimeOptionsWrapLineLength(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetWrapLineLength(MIME_OPTIONS **mo, PB_INT wrapLineLength) PB_NOEXCEPT;
MIME_API int mimeOptionsWrapLineLengthDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetWrapLineLengthDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** The charset in which RFC 2231 writes parameter values beyond ASCII. */
MIME_API PB_CHARSET mimeOptionsRfc2231Charset(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetRfc2231Charset(MIME_OPTIONS **mo, PB_CHARSET charset) PB_NOEXCEPT;
MIME_API int mimeOptionsRfc2231CharsetDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetRfc2231CharsetDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** The longest RFC 2231 segment (key*0*, key*1*, ...) written; -1: one segment. */
MIME_API PB_INT mimeOptionsRfc2231MaxSegmentLength(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetRfc2231MaxSegmentLength(MIME_OPTIONS **mo, PB_INT maxSegmentLength) PB_NOEXCEPT;
MIME_API int mimeOptionsRfc2231MaxSegmentLengthDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetRfc2231MaxSegmentLengthDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** New references to the codec option objects; the setters store the given object itself. */
MIME_API RFC_BASE_OPTIONS *mimeOptionsRfcBaseOptions(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetRfcBaseOptions(MIME_OPTIONS **mo, RFC_BASE_OPTIONS *bo) PB_NOEXCEPT;
MIME_API int mimeOptionsRfcBaseOptionsDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetRfcBaseOptionsDefault(MIME_OPTIONS **mo) PB_NOEXCEPT;

/** The same for the quoted-printable options. */
MIME_API RFC_QUOP_OPTIONS *mimeOptionsRfcQuopOptions(MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API void mimeOptionsSetRfcQuopOptions(MIME_OPTIONS **mo, RFC_QUOP_OPTIONS *qo) PB_NOEXCEPT;
MIME_API int mimeOptionsRfcQuopOptionsDefault(MIME_OPTIONS *mo) PB_NOEXCEPT;
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
MIME_API MIME_OPTIONS *mimeOptionsRestore(PB_STORE *store) PB_NOEXCEPT;

PB_END_DECLS

#endif
