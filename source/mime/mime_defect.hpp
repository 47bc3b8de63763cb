// Internal: how the readers make and hand out defects.
#pragma once

#include <mime/mime_defect.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_vector.h>

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

// The defects of one part, as the tolerant reader collects them: at most max,
// then one that says the limit was reached.
class DefectList {
public:
    DefectList(std::string_view part, PB_INT max) noexcept : part_(part), max_(max) {}

    void add(MIME_DEFECT_CODE code, PB_INT offset, std::string_view detail = {}) noexcept;
    // How many were added.
    PB_INT count() const noexcept { return count_; }
    // The defects as a vector, or null when there are none.
    pb::Ref<PB_VECTOR> take() noexcept { return static_cast<pb::Ref<PB_VECTOR> &&>(list_); }

private:
    std::string_view part_;
    PB_INT max_;
    PB_INT count_ = 0;
    pb::Ref<PB_VECTOR> list_;
};

} // namespace mime
