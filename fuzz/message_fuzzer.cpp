// Any bytes as a message: the tolerant reader never aborts or leaks, its tree
// stays inside the input, and it agrees with the strict functions wherever they
// accept (message_support.hpp).
#include "fuzz_support.hpp"
#include "message_support.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        std::string failure = fuzz::MessageCheck().run(d, n);
        if (!failure.empty())
            pb___Abort(failure.c_str(), __FILE__, __LINE__, "");
    });
}
