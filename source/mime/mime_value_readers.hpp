// Internal: the Content-Type and Content-Disposition decoders behind the
// public ones, with the charset lookup of RFC 2231 values as a choice, for the
// tolerant message reader.
#pragma once

#include <mime/mime_content_disposition.h>
#include <mime/mime_content_type.h>
#include <mime/mime_rfc2231.hpp>

namespace mime {

// mimeContentTypeTryDecodeWithDefect with lookup (defect may be null).
MIME_CONTENT_TYPE *readContentType(PB_STRING *value, MIME_OPTIONS *mo, MIME_DEFECT **defect,
                                   const rfc2231::Tolerance &lookup) noexcept;

// mimeContentDispositionTryDecodeWithDefect with lookup (defect may be null).
MIME_CONTENT_DISPOSITION *readContentDisposition(PB_STRING *value, MIME_OPTIONS *mo, MIME_DEFECT **defect,
                                                 const rfc2231::Tolerance &lookup) noexcept;

// The parameters that can be read from value after its first ";" (none when it
// has none), as the decoders above read them: what is kept of a Content-Type
// whose type is unusable. A value that the lexer refuses is read from its
// start up to the fault (parameters only when it starts with ";").
PB_DICT *readParametersOnly(PB_STRING *value, MIME_OPTIONS *mo, const rfc2231::Tolerance &lookup) noexcept;

} // namespace mime
