#include <pb/pb_buffer.h>
#include <pb/pb_int.h>
#include <pb/pb_mem.h>
#include <pb/pb_sort.hpp>
#include <pb/pb_string.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Bytes shared by the buffers that view them. Changed only while one buffer
// holds it (refs == 1); a view of shared storage copies before any change.
struct Storage {
    int64_t refs;
    PB_INT capacity;
    // bytes follow
    PB_BYTE *bytes() { return reinterpret_cast<PB_BYTE *>(this + 1); }
};

std::atomic_ref<int64_t> refsOf(Storage *st)
{
    return std::atomic_ref<int64_t>(st->refs);
}

PB_INT storageBytes(PB_INT capacity)
{
    return static_cast<PB_INT>(sizeof(Storage)) + capacity;
}

Storage *storageCreate(PB_INT capacity)
{
    auto *st = static_cast<Storage *>(pb___MemAlloc(storageBytes(capacity)));
    st->capacity = capacity;
    st->refs = 1;
    return st;
}

void storageRelease(Storage *st)
{
    if (st && refsOf(st).fetch_sub(1) == 1)
        pb___MemRelease(st, storageBytes(st->capacity));
}

} // namespace

struct PB_BUFFER {
    PB_OBJ_HEADER header;
    Storage *storage; // null while empty
    PB_INT offset;    // first byte of this buffer in the storage
    PB_INT bitLength;
};

namespace {

const PB_BYTE emptyBacking[1] = {0};

PB_INT byteSpan(const PB_BUFFER *b)
{
    return (b->bitLength + 7) / 8;
}

extern "C" {
static void pb___BufferFreeFunc(PB_OBJ *obj) noexcept;
static PB_INT pb___BufferCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept;
static PB_STRING *pb___BufferToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

PB___SORT_DEFINE(pb, Buffer, PB_BUFFER, nullptr, pb___BufferFreeFunc, pb___BufferCompareFunc, pb___BufferToStringFunc)

namespace {

void pb___BufferFreeFunc(PB_OBJ *obj) noexcept
{
    PB_BUFFER *b = pbBufferFrom(obj);
    storageRelease(b->storage);
    b->storage = pb::poison<Storage>();
}

// Bytes first, then bit length: a prefix orders first.
PB_INT pb___BufferCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept
{
    PB_BUFFER *x = pbBufferFrom(a);
    PB_BUFFER *y = pbBufferFrom(b);
    PB_INT n = std::min(byteSpan(x), byteSpan(y));
    if (n) {
        int c = std::memcmp(pbBufferBacking(x), pbBufferBacking(y), static_cast<size_t>(n));
        if (c)
            return c < 0 ? -1 : 1;
    }
    return x->bitLength < y->bitLength ? -1 : x->bitLength > y->bitLength ? 1 : 0;
}

// Hexadecimal bytes, for diagnostics.
PB_STRING *pb___BufferToStringFunc(PB_OBJ *obj) noexcept
{
    PB_BUFFER *b = pbBufferFrom(obj);
    PB_STRING *s = pbStringCreate();
    const PB_BYTE *bytes = pbBufferBacking(b);
    for (PB_INT i = 0; i < byteSpan(b); ++i) {
        char hex[3];
        std::snprintf(hex, sizeof hex, "%02x", bytes[i]);
        pbStringAppendChar(&s, static_cast<PB_CHAR>(hex[0]));
        pbStringAppendChar(&s, static_cast<PB_CHAR>(hex[1]));
    }
    return s;
}

PB_BUFFER *createEmpty()
{
    return pb::create<PB_BUFFER>(&pb___sort_PB_BUFFER);
}

PB_BUFFER *createFrom(PB_BUFFER *source)
{
    PB_BUFFER *b = createEmpty();
    b->storage = source->storage;
    if (b->storage)
        refsOf(b->storage).fetch_add(1);
    b->offset = source->offset;
    b->bitLength = source->bitLength;
    return b;
}

// Makes *buf private, its storage its own, starting at offset 0 when it must be
// moved, with room for extraBytes more bytes after its last (possibly incomplete) byte.
void reserve(PB_BUFFER **buf, PB_INT extraBytes)
{
    PB_ASSERT( buf );
    PB_ASSERT( *buf );
    pb::unshare(buf, createFrom);
    PB_BUFFER *b = *buf;
    PB_INT span = byteSpan(b);
    PB_ASSERT( extraBytes >= 0 && extraBytes <= PB_BUFFER_MAX_LENGTH - span );
    PB_INT need = span + extraBytes;
    Storage *st = b->storage;
    bool own = st && refsOf(st).load() == 1;
    if (own && b->offset + need <= st->capacity)
        return;
    if (!st && need == 0)
        return;
    PB_INT capacity = std::max({need, std::min(PB_BUFFER_MAX_LENGTH, span * 2), PB_INT{64}});
    if (own && b->offset == 0) {
        auto *grown = static_cast<Storage *>(pb___MemResize(st, storageBytes(st->capacity), storageBytes(capacity)));
        grown->capacity = capacity;
        b->storage = grown;
        return;
    }
    Storage *fresh = storageCreate(capacity);
    if (span)
        std::memcpy(fresh->bytes(), st->bytes() + b->offset, static_cast<size_t>(span));
    storageRelease(st);
    b->storage = fresh;
    b->offset = 0;
}

PB_BYTE *writable(PB_BUFFER *b)
{
    return b->storage->bytes() + b->offset;
}

} // namespace

PB_BUFFER *pbBufferCreate(void) noexcept
{
    return createEmpty();
}

PB_BUFFER *pbBufferCreateFromBytesCopy(const void *bytes, PB_INT length) noexcept
{
    PB_BUFFER *b = createEmpty();
    pbBufferAppendBytes(&b, bytes, length);
    return b;
}

PB_INT pbBufferLength(PB_BUFFER *buf) noexcept
{
    PB_ASSERT( buf );
    return buf->bitLength / 8;
}

PB_INT pbBufferBitLength(PB_BUFFER *buf) noexcept
{
    PB_ASSERT( buf );
    return buf->bitLength;
}

const PB_BYTE *pbBufferBacking(PB_BUFFER *buf) noexcept
{
    PB_ASSERT( buf );
    return buf->storage ? buf->storage->bytes() + buf->offset : emptyBacking;
}

void pbBufferAppend(PB_BUFFER **buf, PB_BUFFER *other) noexcept
{
    PB_ASSERT( other );
    if (other->bitLength == 0)
        return;
    if (*buf && (*buf)->bitLength == 0 && (*buf)->storage == nullptr) {
        // Appending to an empty buffer shares the other's storage.
        PB_BUFFER *copy = createFrom(other);
        pbBufferRelease(*buf);
        *buf = copy;
        return;
    }
    // Hold other's storage, so its bytes stay in place while *buf grows (*buf may
    // be other, or view the same storage).
    Storage *keep = other->storage;
    refsOf(keep).fetch_add(1);
    pbBufferAppendBits(buf, keep->bytes() + other->offset, other->bitLength);
    storageRelease(keep);
}

void pbBufferAppendByte(PB_BUFFER **buf, PB_BYTE byte) noexcept
{
    pbBufferAppendBits(buf, &byte, 8);
}

void pbBufferAppendBytes(PB_BUFFER **buf, const void *bytes, PB_INT length) noexcept
{
    PB_ASSERT( length >= 0 && length <= PB_BUFFER_MAX_LENGTH );
    pbBufferAppendBits(buf, bytes, length * 8);
}

void pbBufferAppendBits(PB_BUFFER **buf, const void *bits, PB_INT bitCount) noexcept
{
    PB_ASSERT( buf );
    PB_ASSERT( *buf );
    PB_ASSERT( bitCount >= 0 );
    PB_ASSERT( bits || bitCount == 0 );
    if (bitCount == 0)
        return;
    PB_ASSERT( bitCount <= PB_INT_MAX - (*buf)->bitLength );
    const auto *src = static_cast<const PB_BYTE *>(bits);
    PB_INT srcBytes = (bitCount + 7) / 8;
    PB_INT shift = (*buf)->bitLength % 8;
    PB_INT newBits = (*buf)->bitLength + bitCount;
    PB_INT extra = (newBits + 7) / 8 - byteSpan(*buf);
    // src may point into *buf's own storage, which growing may move.
    PB_BYTE *copy = nullptr;
    if ((*buf)->storage && src >= (*buf)->storage->bytes() &&
        src < (*buf)->storage->bytes() + (*buf)->storage->capacity) {
        copy = static_cast<PB_BYTE *>(std::malloc(static_cast<size_t>(srcBytes)));
        PB_ASSERT_MSG("out of memory", copy);
        std::memcpy(copy, src, static_cast<size_t>(srcBytes));
        src = copy;
    }
    reserve(buf, extra);
    PB_BUFFER *b = *buf;
    PB_BYTE *out = writable(b) + b->bitLength / 8;
    if (shift == 0) {
        std::memcpy(out, src, static_cast<size_t>(srcBytes));
    } else {
        // Slow path: the buffer ends inside a byte, so every byte is split.
        PB_BYTE keepMask = static_cast<PB_BYTE>(0xFF << (8 - shift));
        out[0] = static_cast<PB_BYTE>(out[0] & keepMask);
        for (PB_INT i = 0; i < srcBytes; ++i) {
            out[i] = static_cast<PB_BYTE>(out[i] | (src[i] >> shift));
            if (i + 1 <= extra)
                out[i + 1] = static_cast<PB_BYTE>(src[i] << (8 - shift));
        }
    }
    b->bitLength = newBits;
    if (newBits % 8)
        writable(b)[newBits / 8] &= static_cast<PB_BYTE>(0xFF << (8 - newBits % 8));
    std::free(copy);
}

PB_BYTE *pbBufferAppendSpace(PB_BUFFER **buf, PB_INT length) noexcept
{
    PB_ASSERT( buf );
    PB_ASSERT( *buf );
    PB_ASSERT( pbBufferBitLength( *buf ) % 8 == 0 );
    PB_ASSERT( length >= 0 );
    reserve(buf, length);
    PB_BUFFER *b = *buf;
    if (!b->storage)
        return const_cast<PB_BYTE *>(emptyBacking);
    PB_BYTE *at = writable(b) + b->bitLength / 8;
    b->bitLength += length * 8;
    return at;
}

void pbBufferDelTrailing(PB_BUFFER **buf, PB_INT count) noexcept
{
    PB_ASSERT( buf );
    PB_ASSERT( *buf );
    PB_ASSERT( pbBufferBitLength( *buf ) % 8 == 0 );
    PB_ASSERT( count >= 0 && count <= pbBufferLength( *buf ) );
    if (count == 0)
        return;
    pb::unshare(buf, createFrom); // the storage stays shared: only the view shrinks
    (*buf)->bitLength -= count * 8;
}

void pbBufferClear(PB_BUFFER **buf) noexcept
{
    PB_ASSERT( buf );
    PB_ASSERT( *buf );
    if ((*buf)->bitLength == 0 && !(*buf)->storage)
        return;
    pb::unshare(buf, createFrom);
    storageRelease((*buf)->storage);
    (*buf)->storage = nullptr;
    (*buf)->offset = 0;
    (*buf)->bitLength = 0;
}

PB_INT pbBufferSpace(PB_BUFFER *buf) noexcept
{
    PB_ASSERT( buf );
    return PB_BUFFER_MAX_LENGTH - byteSpan(buf);
}

PB_BUFFER *pbBufferRead(PB_BUFFER *buf, PB_INT offset, PB_INT count) noexcept
{
    PB_ASSERT( buf );
    PB_ASSERT( offset >= 0 && count >= 0 );
    PB_ASSERT( PB_INT_ADD_OK( offset, count ) );
    PB_ASSERT( offset + count <= pbBufferLength( buf ) );
    if (offset == 0 && count * 8 == buf->bitLength)
        return pbBufferRetain(buf);
    PB_BUFFER *view = createEmpty();
    if (count) {
        view->storage = buf->storage;
        refsOf(view->storage).fetch_add(1);
        view->offset = buf->offset + offset;
        view->bitLength = count * 8;
    }
    return view;
}
