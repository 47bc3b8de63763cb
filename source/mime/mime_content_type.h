/* MIME_CONTENT_TYPE: the value of a Content-Type header field, a media type name
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

#include <mime/mime_parameterized.h>

PB_BEGIN_DECLS

typedef struct MIME_CONTENT_TYPE MIME_CONTENT_TYPE;

MIME___PARAMETERIZED_DECL(ContentType, MIME_CONTENT_TYPE, Name)

PB_END_DECLS

#endif
