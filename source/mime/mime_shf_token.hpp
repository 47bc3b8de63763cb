// Internal: tokens made by the lexer from pieces it has already classified.
#pragma once

#include <mime/mime_shf_token.h>

namespace mime {

// A new token of the given type over a copy of chars[0, length), which must be
// wire text of that type (the lexer's pieces are).
MIME_SHF_TOKEN *shfTokenCreateScanned(MIME_SHF_TOKEN_TYPE type, const PB_CHAR *chars, PB_INT length) noexcept;

} // namespace mime
