// Internal: tokens made by the lexer from pieces it has already classified, and
// the classification and quoting rules of the public constructors for writers
// that lay out text without making tokens (mime_header_writer.hpp).
#pragma once

#include <mime/mime_shf_token.h>

namespace mime {

// A new token of the given type over a copy of chars[0, length), which must be
// wire text of that type (the lexer's pieces are).
MIME_SHF_TOKEN *shfTokenCreateScanned(MIME_SHF_TOKEN_TYPE type, const PB_CHAR *chars, PB_INT length) noexcept;

// The type that mimeShfTokenCreateRawValue gives wire text chars[0, length);
// aborts, as it does, on text of none of the forms.
MIME_SHF_TOKEN_TYPE shfRawValueType(const PB_CHAR *chars, PB_INT length) noexcept;
// Whether mimeShfTokenCreateTokenOrQuotedString writes the text as it is (a token).
bool shfIsPlainToken(const PB_CHAR *chars, PB_INT length) noexcept;
// The quoted string it writes for other text (a new string).
PB_STRING *shfQuotedString(const PB_CHAR *chars, PB_INT length) noexcept;

} // namespace mime
