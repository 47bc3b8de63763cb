#include <pb/pb_abort.h>
#include <pb/pb_int.h>
#include <pb/pb_mem.h>

#include <cstdlib>
#include <cstring>

PB_INT pbMemCompare(const void *a, const void *b, PB_INT count) noexcept
{
    PB_ASSERT( count >= 0 );
    if (count == 0)
        return 0;
    PB_ASSERT( a && b );
    return std::memcmp(a, b, static_cast<size_t>(count));
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
