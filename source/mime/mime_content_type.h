/** @file
 * MIME_CONTENT_TYPE: the value of a Content-Type header field, a media type name
 * (type "/" subtype) in lower case and parameters under lower-case keys (see
 * mime_parameterized.h for the operations it shares with Content-Disposition).
 *
 * A name is accepted (mimeContentTypeNameOk) when it is not empty, holds only
 * ASCII letters, digits, "+", "-", ".", "_" and exactly one "/", which is neither
 * first nor last. mimeContentTypeNameToWireFormat restores the registered
 * spelling of the media types that have a mixed-case one (the emergency-call
 * data types, such as "application/EmergencyCallData.Control+xml").
 *
 * Compare orders by name, then by the parameter dictionaries; to-string gives
 * "name {key=value, ...}", or the name alone without parameters. */
#ifndef MIME_CONTENT_TYPE_H
#define MIME_CONTENT_TYPE_H

#include <mime/mime_options.h>
#include <mime/mime_parameterized.h>

PB_BEGIN_DECLS

typedef struct MIME_CONTENT_TYPE MIME_CONTENT_TYPE;

MIME___PARAMETERIZED_DECL(ContentType, MIME_CONTENT_TYPE, Name)

/** The Content-Type a header value holds, or null. The value must start with a
 * media type (word "/" word, each a token or quoted string, accepted by the name
 * rule); comments anywhere are ignored. Parameters follow as "; key = value"
 * and are read leniently: a key without a value gets the empty value, a key that
 * is not an RFC 2045 token is skipped, a later key replaces an earlier one of any
 * case, and the first element that does not fit ends the list without failing.
 * With MIME_FLAG_PARSE_RFC2231_HEADERS the parameters are then decoded by RFC 2231. */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeTryDecode(PB_STRING *contentType, MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API MIME_CONTENT_TYPE *mimeContentTypeTryDecodeCstr(const char *text, PB_INT length, MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API MIME_CONTENT_TYPE *mimeContentTypeTryDecodeWcstr(const wchar_t *text, PB_INT length,
                                                          MIME_OPTIONS *mo) PB_NOEXCEPT;
/** The header value of contentType: the registered spelling of the name, then
 * ";key=value" for each parameter in key order (values as tokens or quoted
 * strings), folded by the options' wrap line length; firstLineOffset is the
 * length of what precedes the value on its line (14 for "Content-Type: ").
 * With MIME_FLAG_GENERATE_RFC2231_HEADERS the parameters are written in RFC 2231
 * form; otherwise values beyond ASCII are written as they are with
 * MIME_FLAG_GENERATE_UNICODE_HEADERS, and left out without it. */
MIME_API PB_STRING *mimeContentTypeEncode(MIME_CONTENT_TYPE *contentType, MIME_OPTIONS *mo,
                                          PB_INT firstLineOffset) PB_NOEXCEPT;

PB_END_DECLS

#endif
