// Internal: where blocks of memory come from (pb___MemAlloc): malloc below
// 32 KiB (up to 256 bytes through lists of the blocks that each thread frees),
// blocks of powers of two kept for reuse up to 2 MiB, their own huge-page
// mappings from there on. Under AddressSanitizer every block comes from malloc
// as it is, so that the sanitizer guards all of them.
#pragma once

#include <pb/pb_types.h>

namespace pb::mem {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMapsLargeBlocks = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kMapsLargeBlocks = false;
#else
constexpr bool kMapsLargeBlocks = true;
#endif
#else
constexpr bool kMapsLargeBlocks = true;
#endif

constexpr PB_INT kMiddleBlock = PB_INT{32} << 10;
constexpr PB_INT kLargeBlock = PB_INT{2} << 20;

// Whether a block of bytes comes from malloc as it is (below 32 KiB); the
// larger ones come from the runtime's own kept blocks (pb_mem.h).
constexpr bool isMalloced(PB_INT bytes)
{
    return !kMapsLargeBlocks || bytes < kMiddleBlock;
}

// Whether a block of bytes is mapped on its own (and kept for reuse when freed).
constexpr bool isLarge(PB_INT bytes)
{
    return kMapsLargeBlocks && bytes >= kLargeBlock;
}

} // namespace pb::mem
