/** @file
 * Encoding one entity: a body and value objects into wire form, with the body's
 * transfer encoding chosen and applied. */
#ifndef MIME_ENCODE_H
#define MIME_ENCODE_H

#include <mime/mime_api.h>
#include <mime/mime_content_disposition.h>
#include <mime/mime_content_type.h>
#include <mime/mime_entity.h>
#include <mime/mime_options.h>
#include <pb/pb_buffer.h>

PB_BEGIN_DECLS

/** A new entity (never null) with each given value written as folded header text
 * (Content-Type after 14 characters of line, Content-Disposition after 21), the
 * Content-Id between angle brackets (it must pass mimeContentIdOk), and, when a
 * body is given, the body with its transfer encoding, chosen by the first row
 * that applies:
 *
 *   MIME_FLAG_GENERATE_EIGHT_BIT_BODY set          binary, the body itself
 *   the body passes the 7bit check                 7bit, the body itself
 *   MIME_FLAG_GENERATE_DISABLE_QUOTED_PRINTABLE    base64
 *   otherwise                                      quoted-printable when its text is
 *                                                  strictly shorter than base64's, else base64
 *
 * The last row encodes only the winner when a count of the bytes that
 * quoted-printable must escape already shows base64 to be no longer. Without a
 * body the entity has no Content-Transfer-Encoding field. Nothing given is
 * changed. */
MIME_API MIME_ENTITY *mimeEncode(MIME_OPTIONS *opt, PB_BUFFER *body, MIME_CONTENT_TYPE *contentType,
                                 MIME_CONTENT_DISPOSITION *contentDisposition,
                                 PB_STRING *optionalContentId) PB_NOEXCEPT;
/** The same with the Content-Id as a C string (null: none). */
MIME_API MIME_ENTITY *mimeEncodeCstr(MIME_OPTIONS *opt, PB_BUFFER *body, MIME_CONTENT_TYPE *contentType,
                                     MIME_CONTENT_DISPOSITION *contentDisposition, const char *optionalContentId,
                                     PB_INT length) PB_NOEXCEPT;
/** mimeEncode for text in wide characters (length -1: up to the NUL). */
MIME_API MIME_ENTITY *mimeEncodeWcstr(MIME_OPTIONS *opt, PB_BUFFER *body, MIME_CONTENT_TYPE *contentType,
                                      MIME_CONTENT_DISPOSITION *contentDisposition, const wchar_t *optionalContentId,
                                      PB_INT length) PB_NOEXCEPT;

PB_END_DECLS

#endif
