/** @file
 * MIME_PART: one part of a message as the tolerant reader (mime_message.h)
 * found it, with the parts inside it.
 *
 * A part holds what was read and what it means:
 *
 *   number               "1" for the message, "1.2" for its second part, ...
 *   fields               every header field as read: name and value, in order
 *   entity               the Content-* values as read (the first of each) and
 *                        the body bytes as they stand, as a MIME_ENTITY
 *   content type         decoded; never null: where none is given or the
 *                        given one is unusable, the implied one (text/plain;
 *                        charset=us-ascii, or message/rfc822 in a
 *                        multipart/digest)
 *   disposition, id      decoded, or null when absent or unreadable
 *   transfer encoding    decoded, or -1 when absent or unknown
 *   body                 decoded (a view of the input where no decoding is
 *                        needed), or null when the part has no body
 *   byte ranges          of the part and of its body in the outermost input
 *   children             the parts of a multipart body, the message of a
 *                        message body, the field blocks of a delivery status
 *   defects              what departs from the RFCs in this part (not in its
 *                        children), in the order found
 *
 * A body is absent when no empty line ends the header block; a body that is
 * present may be empty. Field values are unfolded (the line ends before
 * continuation lines removed) and trimmed of spaces, tabs, CR and LF; a value
 * that is not UTF-8 is read as Latin-1, one code point per byte.
 *
 * Parts are immutable values; getters return new references. The sort has no
 * compare and no to-string function of its own: the runtime's defaults apply. */
#ifndef MIME_PART_H
#define MIME_PART_H

#include <mime/mime_api.h>
#include <mime/mime_content_disposition.h>
#include <mime/mime_content_transfer_encoding.h>
#include <mime/mime_content_type.h>
#include <mime/mime_defect.h>
#include <mime/mime_entity.h>
#include <pb/pb_buffer.h>
#include <pb/pb_sort.h>
#include <pb/pb_string.h>

#include <wchar.h>

PB_BEGIN_DECLS

typedef struct MIME_PART MIME_PART;

/** The sort record of MIME_PART. */
MIME_API const PB_SORT *mimePartSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
MIME_API MIME_PART *mimePartRetain(MIME_PART *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
MIME_API void mimePartRelease(MIME_PART *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
MIME_API PB_OBJ *mimePartObj(MIME_PART *obj) PB_NOEXCEPT;
/** obj as a MIME_PART: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
MIME_API MIME_PART *mimePartFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
MIME_API PB_STRING *mimePartToString(MIME_PART *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
MIME_API PB_INT mimePartCompare(MIME_PART *objA, MIME_PART *objB) PB_NOEXCEPT;
/** Whether mimePartCompare gives 0. */
MIME_API PB_BOOL mimePartEquals(MIME_PART *objA, MIME_PART *objB) PB_NOEXCEPT;

/** The part's number ("1", "1.2", ...). Aborts when part is null. */
MIME_API PB_STRING *mimePartNumber(MIME_PART *part) PB_NOEXCEPT;

/** The number of header fields read. Aborts when part is null. */
MIME_API PB_INT mimePartFieldCount(MIME_PART *part) PB_NOEXCEPT;
/** The name of field index as written. Aborts unless 0 <= index < mimePartFieldCount(part). */
MIME_API PB_STRING *mimePartFieldNameAt(MIME_PART *part, PB_INT index) PB_NOEXCEPT;
/** The value of field index (see above). Aborts unless 0 <= index < mimePartFieldCount(part). */
MIME_API PB_STRING *mimePartFieldValueAt(MIME_PART *part, PB_INT index) PB_NOEXCEPT;
/** The value of the first field named name (ASCII letters in any case), or
 * null when there is none. Aborts when part or name is null. */
MIME_API PB_STRING *mimePartField(MIME_PART *part, PB_STRING *name) PB_NOEXCEPT;
/** mimePartField for a name in UTF-8 (length -1: up to the NUL). */
MIME_API PB_STRING *mimePartFieldCstr(MIME_PART *part, const char *name, PB_INT length) PB_NOEXCEPT;
/** mimePartField for a name in wide characters (length -1: up to the NUL). */
MIME_API PB_STRING *mimePartFieldWcstr(MIME_PART *part, const wchar_t *name, PB_INT length) PB_NOEXCEPT;

/** The Content-* values as read and the body as it stands, as an entity (a
 * new reference). Aborts when part is null. */
MIME_API MIME_ENTITY *mimePartEntity(MIME_PART *part) PB_NOEXCEPT;
/** The content type: decoded, or implied (see above); never null. Aborts when part is null. */
MIME_API MIME_CONTENT_TYPE *mimePartContentType(MIME_PART *part) PB_NOEXCEPT;
/** Whether the content type is implied: none given, or the given one unusable. Aborts when part is null. */
MIME_API PB_BOOL mimePartContentTypeImplied(MIME_PART *part) PB_NOEXCEPT;
/** The content disposition, or null. Aborts when part is null. */
MIME_API MIME_CONTENT_DISPOSITION *mimePartContentDisposition(MIME_PART *part) PB_NOEXCEPT;
/** The Content-Id without angle brackets, or null. Aborts when part is null. */
MIME_API PB_STRING *mimePartContentId(MIME_PART *part) PB_NOEXCEPT;
/** The transfer encoding, or -1 when absent or unknown. Aborts when part is null. */
MIME_API MIME_CONTENT_TRANSFER_ENCODING mimePartTransferEncoding(MIME_PART *part) PB_NOEXCEPT;
/** The decoded body, or null when there is none. Aborts when part is null. */
MIME_API PB_BUFFER *mimePartBody(MIME_PART *part) PB_NOEXCEPT;

/** Where the part starts in the outermost input (its header block, or its
 * body when it has no header). Aborts when part is null. */
MIME_API PB_INT mimePartOffset(MIME_PART *part) PB_NOEXCEPT;
/** The part's length in bytes of input. Aborts when part is null. */
MIME_API PB_INT mimePartLength(MIME_PART *part) PB_NOEXCEPT;
/** Where its body starts in the outermost input (the part's end when it has
 * none). Aborts when part is null. */
MIME_API PB_INT mimePartBodyOffset(MIME_PART *part) PB_NOEXCEPT;
/** The body's length in bytes of input, before decoding (0 when absent). Aborts when part is null. */
MIME_API PB_INT mimePartBodyLength(MIME_PART *part) PB_NOEXCEPT;

/** The number of parts inside this one. Aborts when part is null. */
MIME_API PB_INT mimePartChildCount(MIME_PART *part) PB_NOEXCEPT;
/** Child index. Aborts unless 0 <= index < mimePartChildCount(part). */
MIME_API MIME_PART *mimePartChildAt(MIME_PART *part, PB_INT index) PB_NOEXCEPT;

/** The number of defects of this part. Aborts when part is null. */
MIME_API PB_INT mimePartDefectCount(MIME_PART *part) PB_NOEXCEPT;
/** Defect index. Aborts unless 0 <= index < mimePartDefectCount(part). */
MIME_API MIME_DEFECT *mimePartDefectAt(MIME_PART *part, PB_INT index) PB_NOEXCEPT;

PB_END_DECLS

#endif
