// Internal: how the readers make and hand out defects.
#pragma once

#include <mime/mime_defect.h>

#include <string_view>

namespace mime {

// A new defect with the sentence of its code; detail fills the "{}" of the
// sentences that name something (a boundary, a field, a charset).
MIME_DEFECT *createDefect(MIME_DEFECT_CODE code, PB_INT offset, std::string_view part,
                          std::string_view detail = {}) noexcept;

// The strict readers' way to say why: sets *out to a new defect when out is
// not null (the caller cleared it on entry).
inline void report(MIME_DEFECT **out, MIME_DEFECT_CODE code, PB_INT offset, std::string_view detail = {},
                   std::string_view part = {}) noexcept
{
    if (out)
        *out = createDefect(code, offset, part, detail);
}

// Releases and nulls *out, when out is given: the strict readers' first step.
inline void clearDefect(MIME_DEFECT **out) noexcept
{
    if (out && *out) {
        mimeDefectRelease(*out);
        *out = nullptr;
    }
}

} // namespace mime
