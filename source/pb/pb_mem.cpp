#include <pb/pb_abort.h>
#include <pb/pb_int.h>
#include <pb/pb_mem.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

PB_INT pbMemCompare(const void *a, const void *b, PB_INT count) noexcept
{
    PB_ASSERT( count >= 0 );
    if (count == 0)
        return 0;
    PB_ASSERT( a && b );
    return std::memcmp(a, b, static_cast<size_t>(count));
}

void pb___MemAdviseLarge(void *memory, PB_INT bytes) noexcept
{
    constexpr uintptr_t kPage = 4096;
    if (bytes < (PB_INT{2} << 20))
        return;
    uintptr_t start = (reinterpret_cast<uintptr_t>(memory) + kPage - 1) & ~(kPage - 1);
    uintptr_t end = (reinterpret_cast<uintptr_t>(memory) + static_cast<uintptr_t>(bytes)) & ~(kPage - 1);
    madvise(reinterpret_cast<void *>(start), end - start, MADV_HUGEPAGE); // failure changes nothing
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
