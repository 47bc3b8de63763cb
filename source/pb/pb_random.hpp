// Internal: the runtime's fast random source (see pb_random.h).
#pragma once

#include <cstdint>

namespace pb::random {

// 64 random bits from this thread's generator, seeded from the operating system.
uint64_t next64() noexcept;

// 64 random bits for balancing data structures: unpredictable from outside, but
// without the fork check (a child that shares its parent's sequence is harmless here).
uint64_t priority() noexcept;

// Fills n bytes from the operating system's random source.
void osBytes(void *out, unsigned long n) noexcept;

} // namespace pb::random
