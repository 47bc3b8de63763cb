// Internal: the names of the four header fields an entity holds, in the order
// mimeEntityFieldName numbers them and a packed part writes them.
#pragma once

#include <mime/mime_entity.h>

#include <string_view>

namespace mime {

inline constexpr std::string_view kEntityFieldNames[MIME_ENTITY_FIELD_COUNT] = {
    "Content-Type", "Content-Disposition", "Content-Transfer-Encoding", "Content-Id"};

} // namespace mime
