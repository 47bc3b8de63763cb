/** @file
 * Reading mail as it arrives: the tolerant message reader.
 *
 * mimeMessageRead takes the bytes of a message (or of a SIP body with its
 * Content-* lines) and always returns its tree of parts (mime_part.h). It never
 * refuses input and never aborts on it. Where the input departs from the RFCs,
 * it reads as mail readers do and records a defect (mime_defect.h) in the part
 * where it was found:
 *
 * - Lines end in CR LF or in LF alone, decided line by line (a CR that no LF
 *   follows is a byte of its line). An mbox "From " line before the header
 *   block is skipped.
 * - Header bytes that are not UTF-8 are read as Latin-1; a header block
 *   without its empty line ends at the first line that is no header field (the
 *   body starts there); a continuation line before any field is ignored; of a
 *   repeated Content-* field the first is read.
 * - An unusable Content-Type gives the implied type, text/plain (with the
 *   parameters that can be read, charset=us-ascii when there is none); an
 *   unreadable Content-Disposition or Content-Id is dropped; an unknown
 *   transfer encoding keeps the body as it stands.
 * - Multipart: without a boundary, or without any delimiter line, the part
 *   stays a leaf of its declared type; without the close delimiter the last
 *   part runs to the end; a line that starts with the delimiter but carries
 *   more than padding is body data; delimiter lines in a row enclose no part.
 *   A boundary that RFC 2046 does not allow is used as it stands, but for
 *   spaces at its end. A parameter list that RFC 2045 cannot read to its end
 *   is split as mail readers split it: at each ";" outside quotes, then at
 *   the first "=" (so that an unquoted "filename=My Document.pdf" is kept).
 * - Base64 with characters outside the alphabet or bad padding decodes what is
 *   there; quoted-printable keeps malformed escapes as they stand
 *   (rfcBaseDecodeTolerant, rfcQuopDecodeTolerant).
 * - RFC 2231 charsets are also found by the labels that mail and web software
 *   use (cp1252, utf8, latin1, ...: the WHATWG Encoding Standard's labels);
 *   an unknown charset reads its bytes as US-ASCII with U+FFFD for the rest,
 *   and the parameter is kept. RFC 2047 encoded words in "name" and
 *   "filename" parameter values are decoded.
 * - The body of a message/... part is read as a message (message/rfc822,
 *   message/global, and the header of a message/external-body), and a
 *   message/delivery-status body as blocks of header fields (RFC 3464), each
 *   a part without body; unless it is under a base64 or quoted-printable
 *   encoding.
 *
 * A strict reading of the same input (mimeEntityTryParse, mimeDecode,
 * mimeMultipartTryUnpack) that succeeds, on input whose every LF follows a CR,
 * gives the same parts, values and bodies (a strict body that is absent
 * because nothing follows the empty line is present and empty here), and the
 * tree then holds no defect; but for the departures that the strict functions
 * pass without a word, which are defects here and may change values: an
 * RFC 2231 charset that is no registered name, RFC 2047 words in a parameter,
 * a parameter list cut short, a multipart or message body under a transfer
 * encoding (a multipart body is split as it stands, a message kept as a leaf).
 *
 * Limits bound the work that hostile input can ask for; past one, a defect,
 * and the rest of that part is kept as an undecoded leaf. The time is linear in
 * the input and the memory a small multiple of it. */
#ifndef MIME_MESSAGE_H
#define MIME_MESSAGE_H

#include <mime/mime_api.h>
#include <mime/mime_options.h>
#include <mime/mime_part.h>
#include <pb/pb_buffer.h>

PB_BEGIN_DECLS

/** Limits of one mimeMessageRead call. The defaults lie far beyond real mail
 * (nesting of a few levels, tens of parts, header blocks of some kilobytes)
 * and well inside what keeps a hostile message's tree small: every part,
 * field and defect costs memory, so each count is bounded. */
typedef struct MIME_READ_LIMITS {
    PB_INT maxDepth;          /**< multipart and message nesting below the message (each level also takes some
                                   hundred bytes of stack) */
    PB_INT maxParts;          /**< parts in the whole tree */
    PB_INT maxHeaderBytes;    /**< bytes of one header block */
    PB_INT maxDefectsPerPart; /**< defects kept per part (one more says that the limit was reached) */
} MIME_READ_LIMITS;

#define MIME_READ_LIMITS_DEFAULT_MAX_DEPTH 32
#define MIME_READ_LIMITS_DEFAULT_MAX_PARTS 10000
#define MIME_READ_LIMITS_DEFAULT_MAX_HEADER_BYTES 262144
#define MIME_READ_LIMITS_DEFAULT_MAX_DEFECTS_PER_PART 64

/** Sets every limit of limits to its default. Aborts when limits is null. */
MIME_API void mimeReadLimitsSetDefaults(MIME_READ_LIMITS *limits) PB_NOEXCEPT;

/** The tree of the message in message (see above); never null. opt steers the
 * RFC 2231 decoding of parameters (MIME_FLAG_PARSE_RFC2231_HEADERS); limits
 * null means the defaults. Aborts when message or opt is null, or when a limit
 * is negative. */
MIME_API MIME_PART *mimeMessageRead(PB_BUFFER *message, MIME_OPTIONS *opt, const MIME_READ_LIMITS *limits) PB_NOEXCEPT;

PB_END_DECLS

#endif
