// Internal: where blocks of memory come from (pb___MemAlloc): malloc below
// 2 MiB, their own huge-page mappings from there on.
#pragma once

#include <pb/pb_types.h>

namespace pb::mem {

constexpr PB_INT kLargeBlock = PB_INT{2} << 20;

// Whether a block of bytes is mapped on its own (and so comes zero-filled).
constexpr bool isLarge(PB_INT bytes)
{
    return bytes >= kLargeBlock;
}

} // namespace pb::mem
