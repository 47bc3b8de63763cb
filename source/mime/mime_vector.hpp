// Internal: std::vector on the runtime's blocks (pb___MemAlloc), for sequences
// that grow with the input: past 2 MiB they live on huge pages of their own,
// which go back to the system when they are freed.
#pragma once

#include <pb/pb_mem.h>

#include <cstddef>
#include <vector>

namespace mime {

template <class T> struct BlockAllocator {
    using value_type = T;

    BlockAllocator() = default;
    template <class U> BlockAllocator(const BlockAllocator<U> &) noexcept {}

    T *allocate(size_t count) { return static_cast<T *>(pb___MemAlloc(bytes(count))); }
    void deallocate(T *items, size_t count) noexcept { pb___MemRelease(items, bytes(count)); }

    friend bool operator==(const BlockAllocator &, const BlockAllocator &) { return true; }

private:
    static PB_INT bytes(size_t count) { return static_cast<PB_INT>(count * sizeof(T)); }
};

template <class T> using Vector = std::vector<T, BlockAllocator<T>>;

} // namespace mime
