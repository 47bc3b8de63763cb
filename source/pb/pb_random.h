/** @file
 * Random numbers: a fast generator per thread (xoshiro256**), seeded from the
 * operating system's random source and seeded again in a child after fork. Not
 * for secrets: identifiers (pb_identifier.h) read the operating system directly. */
#ifndef PB_RANDOM_H
#define PB_RANDOM_H

#include <pb/pb_api.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

/** A uniformly distributed integer from low to high, both included (0 <= low <= high). */
PB_API PB_INT pbRandomNonNegativeIntRange(PB_INT low, PB_INT high) PB_NOEXCEPT;

PB_END_DECLS

#endif
