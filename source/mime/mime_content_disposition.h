/** @file
 * MIME_CONTENT_DISPOSITION: the value of a Content-Disposition header field
 * (RFC 2183), a disposition type in lower case and parameters under lower-case
 * keys (see mime_parameterized.h for the operations it shares with
 * Content-Type).
 *
 * A type is accepted (mimeContentDispositionTypeOk) when it is not empty and
 * holds only ASCII letters, digits, "+", "-", ".", "_"; a null type is refused.
 * mimeContentDispositionTypeToWireFormat restores the registered spelling
 * "Info-Package".
 *
 * Compare orders by type, then by the parameter dictionaries; to-string gives
 * "type {key=value, ...}", or the type alone without parameters. */
#ifndef MIME_CONTENT_DISPOSITION_H
#define MIME_CONTENT_DISPOSITION_H

#include <mime/mime_options.h>
#include <mime/mime_parameterized.h>

PB_BEGIN_DECLS

typedef struct MIME_CONTENT_DISPOSITION MIME_CONTENT_DISPOSITION;

MIME___PARAMETERIZED_DECL(ContentDisposition, MIME_CONTENT_DISPOSITION, Type)

/** The Content-Disposition a header value holds, or null: a type (a token or
 * quoted string accepted by the type rule), then parameters read as by
 * mimeContentTypeTryDecode, with the same RFC 2231 flag. */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecode(PB_STRING *value, MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecodeCstr(const char *text, PB_INT length,
                                                                       MIME_OPTIONS *mo) PB_NOEXCEPT;
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecodeWcstr(const wchar_t *text, PB_INT length,
                                                                        MIME_OPTIONS *mo) PB_NOEXCEPT;
/** The header value: the registered spelling of the type, then the parameters as
 * mimeContentTypeEncode writes them; firstLineOffset is 21 for
 * "Content-Disposition: ". */
MIME_API PB_STRING *mimeContentDispositionEncode(MIME_CONTENT_DISPOSITION *contentDisposition, MIME_OPTIONS *mo,
                                                 PB_INT firstLineOffset) PB_NOEXCEPT;

PB_END_DECLS

#endif
