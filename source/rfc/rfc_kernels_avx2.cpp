// The AVX2 build of the codecs. This file alone is compiled with -mavx2, and
// its code runs only after avx2Kernels() (rfc_kernels_scalar.cpp) has seen AVX2
// on the processor. Everything in it has internal linkage and it uses no inline
// function of a library header, so no AVX2 instruction can reach code shared
// with the scalar build.
#include <rfc/rfc_avx2_ops.hpp>
#include <rfc/rfc_base64_driver.hpp>
#include <rfc/rfc_quop_driver.hpp>

namespace rfc {

extern const Kernels avx2KernelTable;
constinit const Kernels avx2KernelTable{"avx2",
                                        base64::encodeWith<Avx2Ops>,
                                        base64::decodeWith<Avx2Ops>,
                                        quop::encodeBoundWith<Avx2Ops>,
                                        quop::escapeCountWith<Avx2Ops>,
                                        quop::encodeWith<Avx2Ops>,
                                        quop::decodeWith<Avx2Ops>};

} // namespace rfc
