/** @file
 * Decoding one entity: its header values into value objects, its body out of
 * its transfer encoding. */
#ifndef MIME_DECODE_H
#define MIME_DECODE_H

#include <mime/mime_api.h>
#include <mime/mime_content_disposition.h>
#include <mime/mime_content_type.h>
#include <mime/mime_defect.h>
#include <mime/mime_entity.h>
#include <mime/mime_options.h>
#include <pb/pb_buffer.h>

PB_BEGIN_DECLS

/** Decodes entity with the header codecs and the options' codec settings; 1 on
 * success, 0 when a header value or a base64 or quoted-printable body is
 * invalid. All or nothing: each given result variable is cleared first (its old
 * object released) and receives a new reference only on success, null for an
 * absent field. A null address skips that result, but its field is still
 * checked. Without a Content-Transfer-Encoding field the body is taken as
 * binary; 7bit, 8bit and binary bodies come back as the entity's own buffer,
 * unchecked. The Content-Id comes back without its angle brackets. */
MIME_API PB_BOOL mimeDecode(MIME_ENTITY *entity, MIME_OPTIONS *opt, PB_BUFFER **body, MIME_CONTENT_TYPE **contentType,
                            MIME_CONTENT_DISPOSITION **contentDisposition, PB_STRING **contentId) PB_NOEXCEPT;

/** mimeDecode that also says why it fails: *defect (when defect is not null)
 * is released and set to null on entry, and on failure set to a new defect:
 * the one the header value's decoder gives (offset: the character of that
 * value), or MIME_DEFECT_BODY_INVALID with the offset of the first byte of the
 * body text that the codec refuses. */
MIME_API PB_BOOL mimeDecodeWithDefect(MIME_ENTITY *entity, MIME_OPTIONS *opt, PB_BUFFER **body,
                                      MIME_CONTENT_TYPE **contentType, MIME_CONTENT_DISPOSITION **contentDisposition,
                                      PB_STRING **contentId, MIME_DEFECT **defect) PB_NOEXCEPT;

PB_END_DECLS

#endif
