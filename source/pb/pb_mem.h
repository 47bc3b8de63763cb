/** @file
 * Raw memory: comparison and the release of memory that the runtime hands out.
 */
#ifndef PB_MEM_H
#define PB_MEM_H

#include <pb/pb_api.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

/** Compares count bytes; returns 0 when equal, else negative or positive as memcmp
 * does. count must be >= 0; with count 0 the addresses may be null. */
PB_API PB_INT pbMemCompare(const void *a, const void *b, PB_INT count) PB_NOEXCEPT;

/** Frees memory returned by the runtime (pbStringConvertToCstr). Null is ignored. */
PB_API void pbMemFree(void *memory) PB_NOEXCEPT;

PB_END_DECLS

#endif
