/** @file
 * Multipart bodies (RFC 2046): boundaries, packing several entities into one
 * body, and unpacking a body into its parts.
 *
 * A boundary is 1 to 70 characters of RFC 2046's bchars (digits, ASCII letters,
 * space and ' ( ) + _ , - . / : = ?), not ending in a space. Its delimiter is
 * "--" and the boundary, at the start of a body or after a CR LF (the CR LF
 * belongs to the delimiter).
 *
 * Packing writes, for each entity, "--" boundary CR LF, the header lines that
 * the entity has ("Content-Type: ", "Content-Disposition: ",
 * "Content-Transfer-Encoding: ", "Content-Id: ", each value as stored, in UTF-8,
 * then CR LF, in this order), an empty line and the body bytes; parts after the
 * first are preceded by CR LF, and the body ends with CR LF "--" boundary "--"
 * CR LF. No preamble, no epilogue.
 *
 * Unpacking reads that layout and more: a preamble and an epilogue are ignored,
 * spaces and tabs may pad a delimiter line, and each part is read by the rules of
 * mime_entity_parse.h (folded lines, other header fields, a part without an
 * empty line). It is strict about delimiter lines and header syntax: any
 * violation fails the whole call. Part bodies share the multipart body's
 * storage: nothing is copied. Both directions are linear in the body size. */
#ifndef MIME_MULTIPART_H
#define MIME_MULTIPART_H

#include <mime/mime_api.h>
#include <mime/mime_content_type.h>
#include <mime/mime_entity.h>
#include <mime/mime_options.h>
#include <pb/pb_buffer.h>
#include <pb/pb_vector.h>

PB_BEGIN_DECLS

/** Whether pbs is a valid boundary (see above). */
MIME_API PB_BOOL mimeMultipartBoundaryOk(PB_STRING *pbs) PB_NOEXCEPT;
/** mimeMultipartBoundaryOk for text in UTF-8 (length -1: up to the NUL). */
MIME_API PB_BOOL mimeMultipartBoundaryOkCstr(const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeMultipartBoundaryOk for text in wide characters (length -1: up to the NUL). */
MIME_API PB_BOOL mimeMultipartBoundaryOkWcstr(const wchar_t *text, PB_INT length) PB_NOEXCEPT;
/** A new random boundary of 10 letters and digits. */
MIME_API PB_STRING *mimeMultipartBoundaryGenerate(void) PB_NOEXCEPT;

/** A new buffer with entities (a non-empty vector of MIME_ENTITY) packed into one
 * multipart body, whose boundary is then set as the "boundary" parameter of
 * *contentType (a private copy when it is shared). The boundary already there is
 * kept when it is valid and no body holds its delimiter; otherwise random ones
 * are tried, 10 boundaries in all. Null, with *contentType unchanged, when every
 * boundary tried occurs in a body, or when a header value holds a code point
 * that is no Unicode scalar value (it has no UTF-8 form). opt is required and
 * steers nothing yet. */
MIME_API PB_BUFFER *mimeMultipartTryPack(MIME_CONTENT_TYPE **contentType, PB_VECTOR *entities,
                                         MIME_OPTIONS *opt) PB_NOEXCEPT;

/** A new vector of MIME_ENTITY, one per part of content, whose boundary is the
 * "boundary" parameter of contentType; null when that parameter is missing or
 * invalid, when content holds no delimiter, when a delimiter line holds more than
 * padding, when the close delimiter is missing, or when a part cannot be read.
 * opt is required and steers nothing yet. */
MIME_API PB_VECTOR *mimeMultipartTryUnpack(MIME_CONTENT_TYPE *contentType, PB_BUFFER *content,
                                           MIME_OPTIONS *opt) PB_NOEXCEPT;
/** mimeMultipartTryUnpack that also says why it fails: *defect (when defect is
 * not null) is released and set to null on entry, and on failure set to a new
 * defect with the byte of content where the fault lies:
 * MIME_DEFECT_BOUNDARY_INVALID (offset 0), MIME_DEFECT_DELIMITER_MISSING
 * (offset 0), MIME_DEFECT_DELIMITER_LINE_MALFORMED (the line's start),
 * MIME_DEFECT_CLOSE_DELIMITER_MISSING (the end of content), or the defect of
 * mimeEntityTryParseWithDefect for the part that cannot be read, with its part
 * number ("1" for the first). */
MIME_API PB_VECTOR *mimeMultipartTryUnpackWithDefect(MIME_CONTENT_TYPE *contentType, PB_BUFFER *content,
                                                     MIME_OPTIONS *opt, MIME_DEFECT **defect) PB_NOEXCEPT;

PB_END_DECLS

#endif
