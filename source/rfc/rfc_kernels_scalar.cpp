#include <rfc/rfc_base64_driver.hpp>
#include <rfc/rfc_kernels.hpp>
#include <rfc/rfc_quop_driver.hpp>
#include <rfc/rfc_scalar_ops.hpp>

namespace rfc {

namespace {

constexpr Kernels scalar{"scalar",
                         base64::encodeWith<ScalarOps>,
                         base64::decodeWith<ScalarOps>,
                         quop::encodeBoundWith<ScalarOps>,
                         quop::escapeCountWith<ScalarOps>,
                         quop::encodeWith<ScalarOps>,
                         quop::decodeWith<ScalarOps>};

} // namespace

const Kernels &scalarKernels() noexcept
{
    return scalar;
}

ptrdiff_t base64DecodeTolerant(const uint8_t *in, size_t n, uint8_t *out, size_t *fault) noexcept
{
    return base64::decodeTolerating<ScalarOps>(in, n, out, fault);
}

size_t quopGuessedRoom(size_t n, int64_t maxLineLength) noexcept
{
    return quop::roomFor(n, n / 16, maxLineLength) + kQuopStepRoom;
}

ptrdiff_t quopDecodeTolerant(const uint8_t *in, size_t n, uint8_t *out, size_t *fault) noexcept
{
    return quop::decodeTolerating<ScalarOps>(in, n, out, fault);
}

extern const Kernels avx2KernelTable;   // rfc_kernels_avx2.cpp
extern const Kernels avx512KernelTable; // rfc_kernels_avx512.cpp

const Kernels *avx2Kernels() noexcept
{
    return __builtin_cpu_supports("avx2") ? &avx2KernelTable : nullptr;
}

const Kernels *avx512Kernels() noexcept
{
    bool usable = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2") &&
                  __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                  __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vbmi2");
    return usable ? &avx512KernelTable : nullptr;
}

const Kernels &bestKernels() noexcept
{
    static const Kernels &best = avx512Kernels() ? *avx512Kernels() : avx2Kernels() ? *avx2Kernels() : scalar;
    return best;
}

} // namespace rfc
