/** @file
 * Content-ID values (RFC 2045): an identifier kept without its angle brackets.
 * A value is valid when it is not empty and holds no control character
 * (U+0000-U+001F, U+007F); spaces, brackets and all other characters are allowed. */
#ifndef MIME_CONTENT_ID_H
#define MIME_CONTENT_ID_H

#include <mime/mime_api.h>
#include <mime/mime_defect.h>
#include <pb/pb_string.h>

PB_BEGIN_DECLS

/** Whether cid (without angle brackets) is a valid Content-Id (see above). */
MIME_API PB_BOOL mimeContentIdOk(PB_STRING *cid) PB_NOEXCEPT;
/** mimeContentIdOk for text in UTF-8 (length -1: up to the NUL). */
MIME_API PB_BOOL mimeContentIdOkCstr(const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeContentIdOk for text in wide characters (length -1: up to the NUL). */
MIME_API PB_BOOL mimeContentIdOkWcstr(const wchar_t *text, PB_INT length) PB_NOEXCEPT;
/** A new unique value: the texts of two new runtime identifiers joined by "@". */
MIME_API PB_STRING *mimeContentIdGenerate(void) PB_NOEXCEPT;
/** "<cid>"; cid must be valid. No folding. */
MIME_API PB_STRING *mimeContentIdEncode(PB_STRING *cid) PB_NOEXCEPT;
/** mimeContentIdEncode for text in UTF-8 (length -1: up to the NUL). */
MIME_API PB_STRING *mimeContentIdEncodeCstr(const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeContentIdEncode for text in wide characters (length -1: up to the NUL). */
MIME_API PB_STRING *mimeContentIdEncodeWcstr(const wchar_t *text, PB_INT length) PB_NOEXCEPT;
/** The value between "<" and ">" of a header value (spaces and tabs around it
 * are skipped), or null when the brackets are missing or the value is not valid.
 * Nothing is unfolded: a line break inside gives null. */
MIME_API PB_STRING *mimeContentIdTryDecode(PB_STRING *raw) PB_NOEXCEPT;
/** mimeContentIdTryDecode that also says why it fails, as
 * mimeContentTypeTryDecodeWithDefect does (code MIME_DEFECT_CONTENT_ID_INVALID;
 * the offset of the "<" expected, or of the value inside the brackets). */
MIME_API PB_STRING *mimeContentIdTryDecodeWithDefect(PB_STRING *raw, MIME_DEFECT **defect) PB_NOEXCEPT;
/** mimeContentIdTryDecode for text in UTF-8 (length -1: up to the NUL). */
MIME_API PB_STRING *mimeContentIdTryDecodeCstr(const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeContentIdTryDecode for text in wide characters (length -1: up to the NUL). */
MIME_API PB_STRING *mimeContentIdTryDecodeWcstr(const wchar_t *text, PB_INT length) PB_NOEXCEPT;

PB_END_DECLS

#endif
