// Internal: the runtime's fast random source (see pb_random.h).
#pragma once

#include <cstdint>

namespace pb::random {

// 64 random bits from this thread's generator, seeded from the operating system.
uint64_t next64() noexcept;

// Fills n bytes from the operating system's random source.
void osBytes(void *out, unsigned long n) noexcept;

} // namespace pb::random
