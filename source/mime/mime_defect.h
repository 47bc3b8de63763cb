/** @file
 * MIME_DEFECT: one departure of wire input from the RFCs, found by a reader:
 * what it is (a code from the list below), where it was found, and one
 * sentence of English that says so.
 *
 * Where: a byte offset and a part number. The strict readers
 * (mimeEntityTryParseWithDefect, mimeMultipartTryUnpackWithDefect,
 * mimeDecodeWithDefect) count bytes in the input of the call; for a header
 * value (mimeContentTypeTryDecodeWithDefect and its kin) the offset counts
 * characters of the value. Their part number is "" for the input itself and
 * "N" for the Nth part of an unpacked multipart body. The tolerant reader
 * (mime_message.h) counts bytes of the outermost input and numbers parts from
 * the message, "1", as "1.2.3".
 *
 * Defects are values: they compare by offset, then part, code and text; their
 * text form is "part 2, byte 5120: the close delimiter --b-- is missing"
 * ("byte N: ..." when the part is ""). */
#ifndef MIME_DEFECT_H
#define MIME_DEFECT_H

#include <mime/mime_api.h>
#include <pb/pb_sort.h>
#include <pb/pb_string.h>

PB_BEGIN_DECLS

typedef struct MIME_DEFECT MIME_DEFECT;

/** What a defect is: one of the codes below. */
typedef PB_INT MIME_DEFECT_CODE;

/** A line ends in LF alone (reported once per header block and once per body). */
#define MIME_DEFECT_LINE_END_BARE ((MIME_DEFECT_CODE)0)
/** An mbox "From " line stands before the header block. */
#define MIME_DEFECT_MBOX_FROM_LINE ((MIME_DEFECT_CODE)1)
/** Header bytes that are not UTF-8 (the tolerant reader takes them as Latin-1). */
#define MIME_DEFECT_HEADER_NOT_UTF8 ((MIME_DEFECT_CODE)2)
/** The first header line starts with a space or a tab. */
#define MIME_DEFECT_HEADER_CONTINUATION_FIRST ((MIME_DEFECT_CODE)3)
/** A header line without a colon, or with a bad field name. */
#define MIME_DEFECT_HEADER_LINE_MALFORMED ((MIME_DEFECT_CODE)4)
/** No empty line between the header block and the body. */
#define MIME_DEFECT_HEADER_NO_EMPTY_LINE ((MIME_DEFECT_CODE)5)
/** A Content-* field given twice (the tolerant reader reads the first). */
#define MIME_DEFECT_HEADER_FIELD_REPEATED ((MIME_DEFECT_CODE)6)
/** A Content-Type value that cannot be read. */
#define MIME_DEFECT_CONTENT_TYPE_INVALID ((MIME_DEFECT_CODE)7)
/** A Content-Disposition value that cannot be read. */
#define MIME_DEFECT_CONTENT_DISPOSITION_INVALID ((MIME_DEFECT_CODE)8)
/** A Content-Id value that cannot be read. */
#define MIME_DEFECT_CONTENT_ID_INVALID ((MIME_DEFECT_CODE)9)
/** A Content-Transfer-Encoding value that names no known encoding. */
#define MIME_DEFECT_TRANSFER_ENCODING_INVALID ((MIME_DEFECT_CODE)10)
/** An RFC 2231 charset that is no registered name (a common label, or unknown). */
#define MIME_DEFECT_CHARSET_UNKNOWN ((MIME_DEFECT_CODE)11)
/** RFC 2047 encoded words inside a parameter value. */
#define MIME_DEFECT_ENCODED_WORD_IN_PARAMETER ((MIME_DEFECT_CODE)12)
/** Base64 or quoted-printable body text that is malformed. */
#define MIME_DEFECT_BODY_INVALID ((MIME_DEFECT_CODE)13)
/** A multipart type without a valid boundary parameter. */
#define MIME_DEFECT_BOUNDARY_INVALID ((MIME_DEFECT_CODE)14)
/** A multipart body without any delimiter line. */
#define MIME_DEFECT_DELIMITER_MISSING ((MIME_DEFECT_CODE)15)
/** A line that starts with the delimiter but carries more than padding. */
#define MIME_DEFECT_DELIMITER_LINE_MALFORMED ((MIME_DEFECT_CODE)16)
/** A multipart body without its close delimiter. */
#define MIME_DEFECT_CLOSE_DELIMITER_MISSING ((MIME_DEFECT_CODE)17)
/** A multipart or message body under a base64 or quoted-printable encoding
 * (a message is then kept as a leaf). */
#define MIME_DEFECT_CONTAINER_ENCODED ((MIME_DEFECT_CODE)18)
/** Nesting depth, part count or header size past its limit. */
#define MIME_DEFECT_LIMIT_EXCEEDED ((MIME_DEFECT_CODE)19)
/** Delimiter lines in a row (they enclose no part). */
#define MIME_DEFECT_DELIMITER_REPEATED ((MIME_DEFECT_CODE)20)
/** A parameter list that RFC 2045's grammar cannot read to its end (the
 * tolerant reader splits it at each ";" outside quotes). */
#define MIME_DEFECT_PARAMETERS_MALFORMED ((MIME_DEFECT_CODE)21)
/** A header value to be written holds a line break that is no fold, or
 * another control character (mimeHeaderValueCheck): written as it stands, it
 * would end its field or reach the wire as it is. */
#define MIME_DEFECT_HEADER_VALUE_UNSAFE ((MIME_DEFECT_CODE)22)
/** The number of codes: every code lies in 0 .. MIME_DEFECT_CODE_COUNT - 1. */
#define MIME_DEFECT_CODE_COUNT 23

/** The sort record of MIME_DEFECT. */
MIME_API const PB_SORT *mimeDefectSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
MIME_API MIME_DEFECT *mimeDefectRetain(MIME_DEFECT *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
MIME_API void mimeDefectRelease(MIME_DEFECT *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
MIME_API PB_OBJ *mimeDefectObj(MIME_DEFECT *obj) PB_NOEXCEPT;
/** obj as a MIME_DEFECT: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
MIME_API MIME_DEFECT *mimeDefectFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string "part P, byte N: text" (see above). Aborts when obj is null. */
MIME_API PB_STRING *mimeDefectToString(MIME_DEFECT *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB (offset, part, code, text). Aborts when either is null. */
MIME_API PB_INT mimeDefectCompare(MIME_DEFECT *objA, MIME_DEFECT *objB) PB_NOEXCEPT;
/** Whether mimeDefectCompare gives 0. */
MIME_API PB_BOOL mimeDefectEquals(MIME_DEFECT *objA, MIME_DEFECT *objB) PB_NOEXCEPT;

/** A new defect. Aborts unless code is a listed code, offset >= 0 and part and
 * text are not null. */
MIME_API MIME_DEFECT *mimeDefectCreate(MIME_DEFECT_CODE code, PB_INT offset, PB_STRING *part,
                                       PB_STRING *text) PB_NOEXCEPT;
/** The defect's code. Aborts when defect is null. */
MIME_API MIME_DEFECT_CODE mimeDefectCode(MIME_DEFECT *defect) PB_NOEXCEPT;
/** Where the defect was found (see above). Aborts when defect is null. */
MIME_API PB_INT mimeDefectOffset(MIME_DEFECT *defect) PB_NOEXCEPT;
/** The number of the part it belongs to, a new reference ("" for the input
 * itself). Aborts when defect is null. */
MIME_API PB_STRING *mimeDefectPart(MIME_DEFECT *defect) PB_NOEXCEPT;
/** Its sentence, a new reference. Aborts when defect is null. */
MIME_API PB_STRING *mimeDefectText(MIME_DEFECT *defect) PB_NOEXCEPT;
/** The name of code as static text ("close-delimiter-missing" and so on: the
 * macro's name after MIME_DEFECT_, lower case, "_" as "-"). Aborts unless
 * 0 <= code < MIME_DEFECT_CODE_COUNT. */
MIME_API const char *mimeDefectCodeName(MIME_DEFECT_CODE code) PB_NOEXCEPT;

PB_END_DECLS

#endif
