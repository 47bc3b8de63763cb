/** @file
 * Quoted-printable coding of byte buffers (RFC 2045 section 6.7).
 *
 * Encoding: CR LF in the input is a hard line break and is written as CR LF.
 * Every other CR and LF, "=", control byte (tab excepted) and byte of 127 or more
 * is written as "=XX" with upper-case hexadecimal digits, as is a space or tab
 * that stands before a hard line break or at the end of the buffer. Soft line
 * breaks ("=" CR LF) keep every line within the options' maximum line length;
 * an escape is never split, and no line ends in a space or tab. Decoding the
 * text gives back the exact bytes. A buffer that ends in an incomplete byte is
 * not encoded: the result is null.
 *
 * Decoding: "=XX" with hexadecimal digits of either case gives the byte; "="
 * followed by optional spaces and tabs and a line end (CR LF or LF) is a soft
 * line break and gives nothing; spaces and tabs at the end of a line or of the
 * text are removed, as RFC 2045 asks of text that transport may have padded.
 * Every other byte is taken as it stands (bytes of 128 or more included), line
 * ends too. An "=" that starts neither an escape nor a soft line break makes the
 * text invalid: the result is null. Decoding ignores the options.
 *
 * Both run in time linear in the buffer, with vector code where the processor
 * offers it. */
#ifndef RFC_QUOP_H
#define RFC_QUOP_H

#include <pb/pb_buffer.h>
#include <pb/pb_types.h>
#include <rfc/rfc_api.h>
#include <rfc/rfc_quop_options.h>

PB_BEGIN_DECLS

/** Returns a new buffer with the quoted-printable text, or null when the buffer
 * ends in an incomplete byte. */
RFC_API PB_BUFFER *rfcQuopEncodeWithOptions(PB_BUFFER *buffer, RFC_QUOP_OPTIONS *options) PB_NOEXCEPT;
/** The number of bytes among the length bytes of buffer from offset on that the
 * encoder writes as "=XX" wherever they stand: "=", control bytes other than
 * tab, CR and LF, and bytes of 127 or more (a CR or LF outside a CR LF pair, or a
 * space or tab before a line end, is escaped too but not counted). The encoded
 * text is therefore at least the buffer's length plus twice the count over the
 * whole buffer. Aborts when buffer is null or the range does not lie inside it. */
RFC_API PB_INT rfcQuopEscapeCount(PB_BUFFER *buffer, PB_INT offset, PB_INT length) PB_NOEXCEPT;
/** Returns a new buffer with the decoded bytes, or null when the text is invalid. */
RFC_API PB_BUFFER *rfcQuopTryDecodeWithOptions(PB_BUFFER *buffer, RFC_QUOP_OPTIONS *options) PB_NOEXCEPT;
/** Decodes as mail readers do; never null. Text that rfcQuopTryDecodeWithOptions
 * takes gives the same bytes and *fault -1 (when fault is not null). Other text
 * sets *fault to the offset of the first "=" that starts neither an escape nor
 * a soft line break, and each such "=" is kept as it stands. */
RFC_API PB_BUFFER *rfcQuopDecodeTolerant(PB_BUFFER *buffer, PB_INT *fault) PB_NOEXCEPT;

PB_END_DECLS

#endif
