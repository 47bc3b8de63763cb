/** @file
 * Byte buffers with a length in bits.
 *
 * A buffer is a value (copy before change, like strings). Its bits are kept in
 * bytes, most significant bit first; a buffer whose bit length is not a multiple
 * of 8 ends in an incomplete byte whose low bits are zero. Buffers read from
 * another (pbBufferRead) share its storage: splitting a large body copies
 * nothing, and a later change to either side copies first. */
#ifndef PB_BUFFER_H
#define PB_BUFFER_H

#include <pb/pb_api.h>
#include <pb/pb_obj.h>
#include <pb/pb_sort.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

typedef struct PB_BUFFER PB_BUFFER;

/** The sort record of PB_BUFFER. */
PB_API const PB_SORT *pbBufferSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
PB_API PB_BUFFER *pbBufferRetain(PB_BUFFER *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
PB_API void pbBufferRelease(PB_BUFFER *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
PB_API PB_OBJ *pbBufferObj(PB_BUFFER *obj) PB_NOEXCEPT;
/** obj as a PB_BUFFER: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
PB_API PB_BUFFER *pbBufferFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
PB_API PB_STRING *pbBufferToString(PB_BUFFER *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
PB_API PB_INT pbBufferCompare(PB_BUFFER *objA, PB_BUFFER *objB) PB_NOEXCEPT;
/** Whether pbBufferCompare gives 0. */
PB_API PB_BOOL pbBufferEquals(PB_BUFFER *objA, PB_BUFFER *objB) PB_NOEXCEPT;

/** The largest length of a buffer in bytes (its length in bits fits a PB_INT). */
#define PB_BUFFER_MAX_LENGTH (PB_INT_MAX / 8)

/** Returns a new empty buffer. */
PB_API PB_BUFFER *pbBufferCreate(void) PB_NOEXCEPT;
/** Returns a new buffer holding a copy of length bytes. */
PB_API PB_BUFFER *pbBufferCreateFromBytesCopy(const void *bytes, PB_INT length) PB_NOEXCEPT;

/** Length in whole bytes (an incomplete last byte is not counted). */
PB_API PB_INT pbBufferLength(PB_BUFFER *buf) PB_NOEXCEPT;
/** Length in bits. */
PB_API PB_INT pbBufferBitLength(PB_BUFFER *buf) PB_NOEXCEPT;
/** The bytes, read only, incomplete last byte included; valid while the buffer is
 * held and unchanged. Never null, also for an empty buffer. */
PB_API const PB_BYTE *pbBufferBacking(PB_BUFFER *buf) PB_NOEXCEPT;

/** Append to *buf: another buffer's bits, one byte, length bytes, or bitCount bits
 * (bits read most significant first from bits[0]). */
PB_API void pbBufferAppend(PB_BUFFER **buf, PB_BUFFER *other) PB_NOEXCEPT;
/** Appends one byte to *buf (a private copy when *buf is shared). */
PB_API void pbBufferAppendByte(PB_BUFFER **buf, PB_BYTE byte) PB_NOEXCEPT;
/** Appends length bytes to *buf (a private copy when *buf is shared). */
PB_API void pbBufferAppendBytes(PB_BUFFER **buf, const void *bytes, PB_INT length) PB_NOEXCEPT;
/** Appends bitCount bits, read most significant first from bits[0], to *buf (a private copy when *buf is shared). */
PB_API void pbBufferAppendBits(PB_BUFFER **buf, const void *bits, PB_INT bitCount) PB_NOEXCEPT;

/** Makes *buf length bytes longer and returns where those bytes go, for the caller
 * to fill (their content is undefined until then). *buf must hold whole bytes.
 * The pointer is valid until the next change of *buf. */
PB_API PB_BYTE *pbBufferAppendSpace(PB_BUFFER **buf, PB_INT length) PB_NOEXCEPT;

/** Removes count bytes at the end; *buf must hold whole bytes. */
PB_API void pbBufferDelTrailing(PB_BUFFER **buf, PB_INT count) PB_NOEXCEPT;

/** Removes all bits. */
PB_API void pbBufferClear(PB_BUFFER **buf) PB_NOEXCEPT;

/** How many more bytes may still be appended: PB_BUFFER_MAX_LENGTH less the length. */
PB_API PB_INT pbBufferSpace(PB_BUFFER *buf) PB_NOEXCEPT;

/** Returns a new buffer of count bytes from byte offset, sharing buf's storage.
 * offset and count must lie within the whole bytes of buf. */
PB_API PB_BUFFER *pbBufferRead(PB_BUFFER *buf, PB_INT offset, PB_INT count) PB_NOEXCEPT;

PB_END_DECLS

#endif
