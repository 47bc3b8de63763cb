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

/** Internal, for the runtime's modules: a block of bytes (>= 0), contents
 * undefined, that the caller releases with pb___MemRelease, giving the same
 * size. Blocks under 2 MiB come from malloc. Larger ones are mapped on their
 * own, on huge pages where the system grants them; when released, a few (256
 * MiB in all at most) are kept for later blocks of about their size, the rest
 * go back to the system: a block of many megabytes costs a few page faults at
 * most, the same whatever blocks were freed before it, and a repeated
 * operation on a large value reuses memory that is mapped already. Never
 * returns null: running out of memory aborts. */
PB_API void *pb___MemAlloc(PB_INT bytes) PB_NOEXCEPT;

/** Internal: a block of oldBytes from pb___MemAlloc resized to newBytes, its
 * first bytes (as many as both sizes hold) kept; a large block is remapped,
 * not copied. The block may move. */
PB_API void *pb___MemResize(void *memory, PB_INT oldBytes, PB_INT newBytes) PB_NOEXCEPT;

/** Internal: releases a block of bytes from pb___MemAlloc or pb___MemResize.
 * Null is ignored. */
PB_API void pb___MemRelease(void *memory, PB_INT bytes) PB_NOEXCEPT;

PB_END_DECLS

#endif
