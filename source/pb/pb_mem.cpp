#include <pb/pb_abort.h>
#include <pb/pb_int.h>
#include <pb/pb_mem.h>
#include <pb/pb_mem.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <sys/mman.h>
#include <utility>

PB_INT pbMemCompare(const void *a, const void *b, PB_INT count) noexcept
{
    PB_ASSERT( count >= 0 );
    if (count == 0)
        return 0;
    PB_ASSERT( a && b );
    return std::memcmp(a, b, static_cast<size_t>(count));
}

namespace {

constexpr size_t kHugePage = size_t{2} << 20;

size_t mappedSize(PB_INT bytes)
{
    return (static_cast<size_t>(bytes) + kHugePage - 1) & ~(kHugePage - 1);
}

void adviseHuge(void *memory, size_t bytes)
{
    madvise(memory, bytes, MADV_HUGEPAGE); // advice only: failure changes nothing
}

// A mapping of size bytes (a multiple of 2 MiB) that starts on a 2 MiB
// boundary, so that all of it can be huge pages: map 2 MiB more, cut the ends.
void *mapLarge(size_t size)
{
    void *raw = mmap(nullptr, size + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    PB_ASSERT_MSG("out of memory", raw != MAP_FAILED);
    uintptr_t start = reinterpret_cast<uintptr_t>(raw);
    uintptr_t aligned = (start + kHugePage - 1) & ~uintptr_t{kHugePage - 1};
    if (aligned > start)
        munmap(raw, aligned - start);
    if (uintptr_t end = start + size + kHugePage; end > aligned + size)
        munmap(reinterpret_cast<void *>(aligned + size), end - aligned - size);
    adviseHuge(reinterpret_cast<void *>(aligned), size);
    return reinterpret_cast<void *>(aligned);
}

// Freed large blocks, kept for the next block of about their size: a repeated
// decode or codec pass over a big value then writes into memory that is
// mapped already, instead of faulting in fresh pages that the kernel clears
// first (which costs more than most of the work). Eight blocks, 256 MiB in all
// at most; a block freed when they are full takes the place of the blocks
// kept longest, so that the kept sizes follow the work of the moment.
class KeptBlocks {
public:
    // A kept block of size to twice size bytes cut to size, or null.
    void *take(size_t size) noexcept
    {
        Block found{};
        {
            std::lock_guard<std::mutex> lock(mutex_);
            Block *best = nullptr;
            for (Block &slot : slots_)
                if (slot.memory && slot.size >= size && slot.size / 2 <= size && (!best || slot.size < best->size))
                    best = &slot;
            if (!best)
                return nullptr;
            found = std::exchange(*best, Block{});
            bytes_ -= found.size;
        }
        if (found.size > size)
            munmap(static_cast<char *>(found.memory) + size, found.size - size);
        return found.memory;
    }

    // Keeps the block, or unmaps it when it is larger than all the room.
    void keep(void *memory, size_t size) noexcept
    {
        if (size > kMaxBytes) {
            munmap(memory, size);
            return;
        }
        std::array<Block, kSlots> evicted{};
        {
            std::lock_guard<std::mutex> lock(mutex_);
            for (size_t n = 0; bytes_ + size > kMaxBytes || !hasEmptySlot(); ++n) {
                Block &oldest = *std::min_element(slots_.begin(), slots_.end(), [](const Block &a, const Block &b) {
                    return (a.memory ? a.stamp : UINT64_MAX) < (b.memory ? b.stamp : UINT64_MAX);
                });
                bytes_ -= oldest.size;
                evicted[n] = std::exchange(oldest, Block{});
            }
            for (Block &slot : slots_)
                if (!slot.memory) {
                    slot = {memory, size, ++stamp_};
                    bytes_ += size;
                    break;
                }
        }
        for (const Block &block : evicted)
            if (block.memory)
                munmap(block.memory, block.size);
    }

private:
    struct Block {
        void *memory;
        size_t size;
        uint64_t stamp; // when it was kept
    };
    static constexpr size_t kSlots = 8;
    static constexpr size_t kMaxBytes = size_t{256} << 20;

    bool hasEmptySlot() const
    {
        return std::any_of(slots_.begin(), slots_.end(), [](const Block &b) { return !b.memory; });
    }

    std::mutex mutex_;
    std::array<Block, kSlots> slots_{};
    size_t bytes_ = 0;
    uint64_t stamp_ = 0;
};

constinit KeptBlocks keptBlocks;

// Blocks from 32 KiB up to the large ones. malloc's handling of these depends
// on what was freed before: its heap goes back to the system whenever its free
// top passes a threshold (128 KiB at first, moving with the blocks it has
// mapped), so that the same work can fault in fresh pages on every call (a
// decode that made a few such blocks ran 15 times as long in a fresh process
// as after others). They are handed out in sizes of powers of two instead (32
// KiB to 2 MiB), and up to four of each size kept when freed: 16 MiB at most.
class MiddleBlocks {
public:
    static constexpr PB_INT kFirst = pb::mem::kMiddleBlock;

    // The size class of a block of bytes (kFirst <= bytes < 2 MiB).
    static int classOf(PB_INT bytes)
    {
        int c = 0;
        while ((kFirst << c) < bytes)
            ++c;
        return c;
    }
    static size_t sizeOf(int c) { return static_cast<size_t>(kFirst) << c; }

    void *take(int c) noexcept
    {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            for (void *&slot : slots_[c])
                if (slot)
                    return std::exchange(slot, nullptr);
        }
        void *memory = std::malloc(sizeOf(c));
        PB_ASSERT_MSG("out of memory", memory);
        return memory;
    }
    void release(void *memory, int c) noexcept
    {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            for (void *&slot : slots_[c])
                if (!slot) {
                    slot = memory;
                    return;
                }
        }
        std::free(memory);
    }

private:
    static constexpr int kClasses = 7; // 32 KiB ... 2 MiB
    std::mutex mutex_;
    std::array<std::array<void *, 4>, kClasses> slots_{};
};

constinit MiddleBlocks middleBlocks;

// Small blocks (object bodies, short strings, a dictionary's first nodes) that
// a thread frees, kept for its next blocks of their size: a list for each 16
// bytes of size up to 264, at most 32 blocks in each (70 KiB a thread), given
// back to malloc when the thread ends. Values are made and freed by the
// million, and malloc's own per-thread cache takes several times the
// instructions per block.
class SmallBlocks {
public:
    static constexpr PB_INT kMax = 256;

    // The list of blocks of bytes (1 to kMax), and the bytes its blocks hold:
    // 8, 24, 40 ... 264, what malloc's chunks of 16, 32, 48 ... hold, so that a
    // block takes no more memory than malloc would give it.
    static size_t classOf(PB_INT bytes) { return static_cast<size_t>(bytes + 7) >> 4; }
    static size_t sizeOf(size_t c) { return (c << 4) + 8; }

    // A kept block of list c, or null.
    void *tryTake(size_t c) noexcept
    {
        Free *block = lists_[c];
        if (block) {
            lists_[c] = block->next;
            --counts_[c];
        }
        return block;
    }
    // A kept block of list c, or a new one.
    void *take(size_t c) noexcept
    {
        void *block = tryTake(c);
        return block ? block : made(c);
    }
    // A new block for list c, from malloc.
    static void *made(size_t c) noexcept
    {
        void *memory = std::malloc(sizeOf(c));
        PB_ASSERT_MSG("out of memory", memory);
        return memory;
    }
    // Keeps the block in list c unless the list is full.
    bool tryKeep(void *memory, size_t c) noexcept
    {
        if (counts_[c] == kKept)
            return false;
        lists_[c] = new (memory) Free{lists_[c]};
        ++counts_[c];
        return true;
    }
    ~SmallBlocks()
    {
        for (Free *&list : lists_)
            while (Free *block = list) {
                list = block->next;
                std::free(block);
            }
    }

private:
    struct Free {
        Free *next;
    };
    static constexpr uint8_t kKept = 32;
    std::array<Free *, kMax / 16 + 1> lists_{};
    std::array<uint8_t, kMax / 16 + 1> counts_{};
};

// The thread's small blocks: null before its first small block and after its
// end (blocks then come from malloc and go back to it). Initial-exec: a plain
// offset from the thread pointer, not a call, inside a shared library.
constinit thread_local SmallBlocks *smallBlocks __attribute__((tls_model("initial-exec"))) = nullptr;
constinit thread_local bool smallBlocksEnded __attribute__((tls_model("initial-exec"))) = false;

struct OwnedSmallBlocks {
    SmallBlocks blocks;
    ~OwnedSmallBlocks()
    {
        smallBlocks = nullptr;
        smallBlocksEnded = true;
    }
};

// The thread's small blocks, made at its first small block; null once it ends.
[[gnu::noinline]] SmallBlocks *firstSmallBlocks() noexcept
{
    if (smallBlocksEnded)
        return nullptr;
    thread_local OwnedSmallBlocks owned;
    smallBlocks = &owned.blocks;
    return smallBlocks;
}

inline SmallBlocks *threadSmallBlocks() noexcept
{
    return PB_LIKELY(smallBlocks != nullptr) ? smallBlocks : firstSmallBlocks();
}

// Where a block of bytes comes from.
enum class Source { Small, Malloc, Middle, Mapping };

Source sourceOf(PB_INT bytes)
{
    if (pb::mem::isMalloced(bytes))
        return pb::mem::kMapsLargeBlocks && bytes > 0 && bytes <= SmallBlocks::kMax ? Source::Small : Source::Malloc;
    return pb::mem::isLarge(bytes) ? Source::Mapping : Source::Middle;
}

// pb___MemAlloc but for a small block that the thread has kept.
[[gnu::noinline]] void *allocated(PB_INT bytes) noexcept
{
    PB_ASSERT( bytes >= 0 );
    switch (sourceOf(bytes)) {
    case Source::Small: {
        const size_t c = SmallBlocks::classOf(bytes);
        if (SmallBlocks *blocks = threadSmallBlocks())
            return blocks->take(c);
        return SmallBlocks::made(c); // whole, for the list of the thread that frees it
    }
    case Source::Malloc: {
        void *memory = std::malloc(static_cast<size_t>(bytes));
        PB_ASSERT_MSG("out of memory", memory || bytes == 0);
        return memory;
    }
    case Source::Middle:
        return middleBlocks.take(MiddleBlocks::classOf(bytes));
    case Source::Mapping:
        break;
    }
    size_t size = mappedSize(bytes);
    void *kept = keptBlocks.take(size);
    return kept ? kept : mapLarge(size);
}

// pb___MemRelease but for a small block that the thread's list takes.
[[gnu::noinline]] void released(void *memory, PB_INT bytes) noexcept
{
    if (!memory)
        return;
    switch (sourceOf(bytes)) {
    case Source::Small:
        if (SmallBlocks *blocks = threadSmallBlocks(); blocks && blocks->tryKeep(memory, SmallBlocks::classOf(bytes)))
            return;
        [[fallthrough]];
    case Source::Malloc:
        std::free(memory);
        return;
    case Source::Middle:
        middleBlocks.release(memory, MiddleBlocks::classOf(bytes));
        return;
    case Source::Mapping:
        break;
    }
    keptBlocks.keep(memory, mappedSize(bytes));
}

} // namespace

// The common cases first, without a call or a saved register: a small block
// that the thread has kept, or one that its list takes back.
void *pb___MemAlloc(PB_INT bytes) noexcept
{
    if (sourceOf(bytes) == Source::Small && smallBlocks)
        if (void *block = smallBlocks->tryTake(SmallBlocks::classOf(bytes)))
            return block;
    return allocated(bytes);
}

void *pb___MemResize(void *memory, PB_INT oldBytes, PB_INT newBytes) noexcept
{
    PB_ASSERT( oldBytes >= 0 && newBytes >= 0 );
    PB_ASSERT( memory || oldBytes == 0 );
    Source from = sourceOf(oldBytes), to = sourceOf(newBytes);
    // (A small block is made whole for its list, not resized by malloc.)
    if ((from == Source::Malloc || from == Source::Small) && to == Source::Malloc) {
        void *resized = std::realloc(memory, static_cast<size_t>(newBytes));
        PB_ASSERT_MSG("out of memory", resized || newBytes == 0);
        return resized;
    }
    if ((from == Source::Middle && to == Source::Middle &&
         MiddleBlocks::classOf(oldBytes) == MiddleBlocks::classOf(newBytes)) ||
        (from == Source::Small && to == Source::Small &&
         SmallBlocks::classOf(oldBytes) == SmallBlocks::classOf(newBytes)))
        return memory;
    if (from == Source::Mapping && to == Source::Mapping) {
        size_t mappedFrom = mappedSize(oldBytes), mappedTo = mappedSize(newBytes);
        if (mappedFrom == mappedTo)
            return memory;
        // Growing, a kept block takes a copy of the bytes rather than have
        // the kernel map and clear the new part.
        if (void *kept = mappedTo > mappedFrom ? keptBlocks.take(mappedTo) : nullptr) {
            std::memcpy(kept, memory, static_cast<size_t>(oldBytes));
            pb___MemRelease(memory, oldBytes);
            return kept;
        }
        void *moved = mremap(memory, mappedFrom, mappedTo, MREMAP_MAYMOVE);
        PB_ASSERT_MSG("out of memory", moved != MAP_FAILED);
        adviseHuge(moved, mappedTo);
        return moved;
    }
    void *fresh = pb___MemAlloc(newBytes);
    if (PB_INT kept = oldBytes < newBytes ? oldBytes : newBytes)
        std::memcpy(fresh, memory, static_cast<size_t>(kept));
    pb___MemRelease(memory, oldBytes);
    return fresh;
}

void pb___MemRelease(void *memory, PB_INT bytes) noexcept
{
    if (memory && sourceOf(bytes) == Source::Small && smallBlocks &&
        smallBlocks->tryKeep(memory, SmallBlocks::classOf(bytes)))
        return;
    released(memory, bytes);
}

void pbMemFree(void *memory) noexcept
{
    std::free(memory);
}

PB_INT pbIntMin(PB_INT a, PB_INT b) noexcept
{
    return a < b ? a : b;
}

PB_INT pbIntMax(PB_INT a, PB_INT b) noexcept
{
    return a > b ? a : b;
}
