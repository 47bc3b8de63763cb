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

/** Internal, for the runtime's modules: asks for huge pages for the whole 4 KiB
 * pages of memory[0, bytes) when bytes is 2 MiB or more (advice only; nothing
 * changes where the system declines). Filling a fresh block of many megabytes
 * then costs a few page faults instead of one per 4 KiB page, which would
 * otherwise cost more than the work done in it. */
PB_API void pb___MemAdviseLarge(void *memory, PB_INT bytes) PB_NOEXCEPT;

PB_END_DECLS

#endif
