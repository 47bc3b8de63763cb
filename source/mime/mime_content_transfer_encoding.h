/** @file
 * Content-Transfer-Encoding: the five names, their header-field codec, and the
 * check whether a body may travel under an encoding unchanged. */
#ifndef MIME_CONTENT_TRANSFER_ENCODING_H
#define MIME_CONTENT_TRANSFER_ENCODING_H

#include <mime/mime_api.h>
#include <mime/mime_defect.h>
#include <mime/mime_options.h>
#include <pb/pb_buffer.h>
#include <pb/pb_string.h>

#include <stdint.h>

PB_BEGIN_DECLS

typedef PB_INT MIME_CONTENT_TRANSFER_ENCODING;

#define MIME_CONTENT_TRANSFER_ENCODING_7BIT ((MIME_CONTENT_TRANSFER_ENCODING)0)             /* "7bit" */
#define MIME_CONTENT_TRANSFER_ENCODING_8BIT ((MIME_CONTENT_TRANSFER_ENCODING)1)             /* "8bit" */
#define MIME_CONTENT_TRANSFER_ENCODING_BINARY ((MIME_CONTENT_TRANSFER_ENCODING)2)           /* "binary" */
#define MIME_CONTENT_TRANSFER_ENCODING_QUOTED_PRINTABLE ((MIME_CONTENT_TRANSFER_ENCODING)3) /* "quoted-printable" */
#define MIME_CONTENT_TRANSFER_ENCODING_BASE64 ((MIME_CONTENT_TRANSFER_ENCODING)4)           /* "base64" */
#define MIME_CONTENT_TRANSFER_ENCODING_OK(cte) ((uint64_t)(cte) <= 4u)

/** The wire name (new string); cte must be valid. */
MIME_API PB_STRING *mimeContentTransferEncodingToString(MIME_CONTENT_TRANSFER_ENCODING cte) PB_NOEXCEPT;
/** The encoding a header value names: exactly one token or quoted string besides
 * comments, one of the five names in any letter case. -1 otherwise. */
MIME_API MIME_CONTENT_TRANSFER_ENCODING mimeContentTransferEncodingTryDecode(PB_STRING *cte,
                                                                             MIME_OPTIONS *mo) PB_NOEXCEPT;
/** mimeContentTransferEncodingTryDecode that also says why it fails, as
 * mimeContentTypeTryDecodeWithDefect does (code
 * MIME_DEFECT_TRANSFER_ENCODING_INVALID, offset 0: the value as a whole). */
MIME_API MIME_CONTENT_TRANSFER_ENCODING
mimeContentTransferEncodingTryDecodeWithDefect(PB_STRING *cte, MIME_OPTIONS *mo, MIME_DEFECT **defect) PB_NOEXCEPT;
/** mimeContentTransferEncodingTryDecode for text in UTF-8 (length -1: up to the NUL). */
MIME_API MIME_CONTENT_TRANSFER_ENCODING mimeContentTransferEncodingTryDecodeCstr(const char *text, PB_INT length,
                                                                                 MIME_OPTIONS *mo) PB_NOEXCEPT;
/** mimeContentTransferEncodingTryDecode for text in wide characters (length -1: up to the NUL). */
MIME_API MIME_CONTENT_TRANSFER_ENCODING mimeContentTransferEncodingTryDecodeWcstr(const wchar_t *text, PB_INT length,
                                                                                  MIME_OPTIONS *mo) PB_NOEXCEPT;
/** The wire name as a header value, folded when firstLineOffset is already past
 * the options' wrap line length. */
MIME_API PB_STRING *mimeContentTransferEncodingEncode(MIME_CONTENT_TRANSFER_ENCODING cte, MIME_OPTIONS *mo,
                                                      PB_INT firstLineOffset) PB_NOEXCEPT;
/** True when buf may travel under cte unchanged. Binary, quoted-printable and
 * base64 take any whole bytes. 7bit and 8bit take an empty buffer, or complete
 * lines each ended by CR LF, of at most 998 bytes before it, without zero bytes,
 * bare CR or bare LF; 7bit also refuses bytes of 128 and more. A buffer ending
 * in an incomplete byte passes none. One pass over the bytes. */
MIME_API PB_BOOL mimeContentTransferEncodingCheck(MIME_CONTENT_TRANSFER_ENCODING cte, PB_BUFFER *buf) PB_NOEXCEPT;

PB_END_DECLS

#endif
