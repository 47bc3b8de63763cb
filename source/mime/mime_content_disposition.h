/* MIME_CONTENT_DISPOSITION: the value of a Content-Disposition header field
 * (RFC 2183), a disposition type in lower case and parameters under lower-case
 * keys (see mime_parameterized.h for the operations it shares with
 * Content-Type).
 *
 * A type is accepted (mimeContentDispositionTypeOk) when it is not empty and
 * holds only ASCII letters, digits, "+", "-", ".", "_"; a null type is refused.
 * mimeContentDispositionTypeToWireFormat restores the registered spelling
 * "Info-Package".
 *
 * Compare orders by type, then by the parameter dictionaries; to-string gives
 * "type {key=value, ...}", or the type alone without parameters. */
#ifndef MIME_CONTENT_DISPOSITION_H
#define MIME_CONTENT_DISPOSITION_H

#include <mime/mime_parameterized.h>

PB_BEGIN_DECLS

typedef struct MIME_CONTENT_DISPOSITION MIME_CONTENT_DISPOSITION;

MIME___PARAMETERIZED_DECL(ContentDisposition, MIME_CONTENT_DISPOSITION, Type)

PB_END_DECLS

#endif
