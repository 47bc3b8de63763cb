// Internal: the names of the four header fields an entity holds, in the order
// mimeEntityFieldName numbers them and a packed part writes them.
#pragma once

#include <mime/mime_entity.h>

#include <string_view>

namespace mime {

inline constexpr std::string_view kEntityFieldNames[MIME_ENTITY_FIELD_COUNT] = {
    "Content-Type", "Content-Disposition", "Content-Transfer-Encoding", "Content-Id"};

// The field a header name sets, compared as the runtime lowers text (ASCII
// letters only); -1 for any other name.
inline int entityFieldOf(const PB_BYTE *name, PB_INT n) noexcept
{
    auto lowered = [](PB_BYTE c) { return c >= 'A' && c <= 'Z' ? static_cast<PB_BYTE>(c + 32) : c; };
    for (int f = 0; f < MIME_ENTITY_FIELD_COUNT; ++f) {
        std::string_view field = kEntityFieldNames[f];
        if (static_cast<size_t>(n) != field.size())
            continue;
        PB_INT i = 0;
        while (i < n && lowered(name[i]) == lowered(static_cast<PB_BYTE>(field[i])))
            ++i;
        if (i == n)
            return f;
    }
    return -1;
}

} // namespace mime
