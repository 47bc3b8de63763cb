// What the codec targets share: every kernel set this processor runs, each to
// be compared with the scalar one on the same input.
#pragma once

#include <rfc/rfc_kernels.hpp>

#include <vector>

namespace fuzz {

// The vector builds this processor offers (AVX2, AVX-512), not the scalar one.
inline std::vector<const rfc::Kernels *> vectorKernels()
{
    std::vector<const rfc::Kernels *> sets;
    for (const rfc::Kernels *k : {rfc::avx2Kernels(), rfc::avx512Kernels()})
        if (k)
            sets.push_back(k);
    return sets;
}

} // namespace fuzz
