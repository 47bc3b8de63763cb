/** @file
 * Encode flags: the two unencoded body forms, for callers that record which one
 * they want. The library offers the same conversions as for the MIME flags but
 * consults encode flags in none of its own operations. */
#ifndef MIME_ENCODE_FLAGS_H
#define MIME_ENCODE_FLAGS_H

#include <mime/mime_api.h>
#include <pb/pb_string.h>

#include <stdint.h>
#include <wchar.h>

PB_BEGIN_DECLS

typedef uint64_t MIME_ENCODE_FLAGS;

#define MIME_ENCODE_FLAG_7BIT ((MIME_ENCODE_FLAGS)1)
#define MIME_ENCODE_FLAG_8BIT ((MIME_ENCODE_FLAGS)2)

/** Returns flags with unknown bits cleared and MIME_ENCODE_FLAG_8BIT cleared when
 * MIME_ENCODE_FLAG_7BIT is set (7bit takes precedence). */
MIME_API MIME_ENCODE_FLAGS mimeEncodeFlagsNormalize(MIME_ENCODE_FLAGS flags) PB_NOEXCEPT;

/** As mimeFlagsFromString and mimeFlagsToString, for encode flags. */
MIME_API MIME_ENCODE_FLAGS mimeEncodeFlagsFromString(PB_STRING *pbs) PB_NOEXCEPT;
/** mimeEncodeFlagsFromString for pbs in UTF-8 (length -1: up to the NUL). */
MIME_API MIME_ENCODE_FLAGS mimeEncodeFlagsFromStringCstr(const char *pbs, PB_INT length) PB_NOEXCEPT;
/** mimeEncodeFlagsFromString for pbs in wide characters (length -1: up to the NUL). */
MIME_API MIME_ENCODE_FLAGS mimeEncodeFlagsFromStringWcstr(const wchar_t *pbs, PB_INT length) PB_NOEXCEPT;
/** A new string naming the set flags, as mimeEncodeFlagsFromString reads them. */
MIME_API PB_STRING *mimeEncodeFlagsToString(MIME_ENCODE_FLAGS flags) PB_NOEXCEPT;

/** Library-internal: module start-up and shut-down build and release the flag table. */
MIME_API void mime___EncodeFlagsStartup(void) PB_NOEXCEPT;
/** Library-internal: releases the flag set at module shut-down. */
MIME_API void mime___EncodeFlagsShutdown(void) PB_NOEXCEPT;

PB_END_DECLS

#endif
