/** @file
 * MIME flags: how header fields and bodies are parsed and generated. They live
 * in the options object and are persisted by name. */
#ifndef MIME_FLAGS_H
#define MIME_FLAGS_H

#include <mime/mime_api.h>
#include <pb/pb_string.h>

#include <stdint.h>
#include <wchar.h>

PB_BEGIN_DECLS

typedef uint64_t MIME_FLAGS;

/** Content-Type and Content-Disposition decoding applies RFC 2231 to parameters. */
#define MIME_FLAG_PARSE_RFC2231_HEADERS ((MIME_FLAGS)1)
/** Content-Type and Content-Disposition encoding writes parameters in RFC 2231 form. */
#define MIME_FLAG_GENERATE_RFC2231_HEADERS ((MIME_FLAGS)2)
/** Without RFC 2231 generation, parameter values beyond ASCII are written as they
 * are instead of being left out. */
#define MIME_FLAG_GENERATE_UNICODE_HEADERS ((MIME_FLAGS)4)
/** Entity encoding sends the body unencoded ("binary"). */
#define MIME_FLAG_GENERATE_EIGHT_BIT_BODY ((MIME_FLAGS)8)
/** Entity encoding uses base64, never quoted-printable, for a body that cannot go as 7bit. */
#define MIME_FLAG_GENERATE_DISABLE_QUOTED_PRINTABLE ((MIME_FLAGS)16)

/** Returns flags with unknown bits cleared and MIME_FLAG_GENERATE_UNICODE_HEADERS
 * cleared when MIME_FLAG_GENERATE_RFC2231_HEADERS is set (it takes precedence). */
MIME_API MIME_FLAGS mimeFlagsNormalize(MIME_FLAGS flags) PB_NOEXCEPT;

/** Returns the normalised flags that the text names: names separated by commas or
 * white space, in any letter case; unknown names are ignored. pbs must not be
 * null. Only between module start-up and shut-down. */
MIME_API MIME_FLAGS mimeFlagsFromString(PB_STRING *pbs) PB_NOEXCEPT;
/** mimeFlagsFromString for pbs in UTF-8 (length -1: up to the NUL). */
MIME_API MIME_FLAGS mimeFlagsFromStringCstr(const char *pbs, PB_INT length) PB_NOEXCEPT;
/** mimeFlagsFromString for pbs in wide characters (length -1: up to the NUL). */
MIME_API MIME_FLAGS mimeFlagsFromStringWcstr(const wchar_t *pbs, PB_INT length) PB_NOEXCEPT;

/** Returns a new string naming the normalised flags, such as
 * "MIME_FLAG_PARSE_RFC2231_HEADERS, MIME_FLAG_GENERATE_RFC2231_HEADERS"; the empty
 * string for none. mimeFlagsFromString reads it back. Only between module start-up
 * and shut-down. */
MIME_API PB_STRING *mimeFlagsToString(MIME_FLAGS flags) PB_NOEXCEPT;

/** Build and release the flag set behind the text conversions; run by the module's
 * start-up and shut-down. */
MIME_API void mime___FlagsStartup(void) PB_NOEXCEPT;
/** Library-internal: releases the flag set at module shut-down. */
MIME_API void mime___FlagsShutdown(void) PB_NOEXCEPT;

PB_END_DECLS

#endif
