/** @file
 * Reading one entity from its bytes, as a multipart body part, a SIP message
 * body with its Content-* header lines, or a mail message carries it: a header
 * block, an empty line, a body. Multipart unpacking reads each part with the
 * same rules, so a program can read a whole message from a file the way the
 * library reads the parts inside it.
 *
 * The content is split by its first empty line:
 *
 *   content                              fields            body
 *   empty                                none              absent
 *   starting with CR LF                  none              the bytes after it (absent when none)
 *   header lines, CR LF CR LF, the rest  read from lines   the rest (absent when empty)
 *   header lines without an empty line   read from lines   absent (a final CR LF ends the last line)
 *
 * The header block is UTF-8 (strictly) in lines ended by CR LF. A line that
 * starts with a space or a tab continues the line before it: the two are joined
 * by removing the CR LF only. Each joined line is a name, a colon and a value;
 * the name is not empty and holds no space and no control character, the value
 * is trimmed of spaces, tabs, CR and LF at both ends. Content-Type,
 * Content-Disposition, Content-Transfer-Encoding and Content-Id (names in any
 * case) set the entity's fields; other fields are read and ignored. The body
 * shares the content's storage: nothing is copied.
 *
 * Reading fails (null) when the header block is not UTF-8, when its first line
 * starts with a space or a tab, when a line has no colon or a bad name, and when
 * one of the four fields appears twice. The work is linear in the content, also
 * for a header block of many continuation lines. */
#ifndef MIME_ENTITY_PARSE_H
#define MIME_ENTITY_PARSE_H

#include <mime/mime_api.h>
#include <mime/mime_defect.h>
#include <mime/mime_entity.h>
#include <mime/mime_options.h>

PB_BEGIN_DECLS

/** A new entity read from the whole of content, or null; opt is required and
 * steers nothing yet. */
MIME_API MIME_ENTITY *mimeEntityTryParse(PB_BUFFER *content, MIME_OPTIONS *opt) PB_NOEXCEPT;

/** mimeEntityTryParse that also says why it fails: *defect (when defect is not
 * null) is released and set to null on entry, and on failure set to a new
 * defect whose offset is the byte of content where the fault lies: the first
 * byte that is not UTF-8 (MIME_DEFECT_HEADER_NOT_UTF8), the start of the first
 * line (MIME_DEFECT_HEADER_CONTINUATION_FIRST), or the start of the line that
 * is malformed (MIME_DEFECT_HEADER_LINE_MALFORMED) or repeats a field
 * (MIME_DEFECT_HEADER_FIELD_REPEATED). */
MIME_API MIME_ENTITY *mimeEntityTryParseWithDefect(PB_BUFFER *content, MIME_OPTIONS *opt,
                                                   MIME_DEFECT **defect) PB_NOEXCEPT;

/** Library-internal: mimeEntityTryParseWithDefect over the length bytes of
 * content from offset (defect offsets count from the start of content; defect
 * may be null). */
MIME_API MIME_ENTITY *mime___EntityTryParse(PB_BUFFER *content, PB_INT offset, PB_INT length,
                                            MIME_DEFECT **defect) PB_NOEXCEPT;

PB_END_DECLS

#endif
