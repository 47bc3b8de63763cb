// What every fuzz target shares: the module started once, and the check that an
// input leaves no runtime object alive.
#pragma once

#include <mime/mime_module.h>
#include <pb/pb_abort.h>
#include <pb/pb_obj.h>

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    PB_ASSERT( pbModuleStartup(mimeModule()) );
    return 0;
}

namespace fuzz {

// Runs body(data, size) and aborts when it leaked an object.
template <class Body> int run(const uint8_t *data, size_t size, Body body)
{
    PB_INT live = pb___ObjLiveCount();
    body(data, size);
    PB_ASSERT_MSG("leaked objects", pb___ObjLiveCount() == live);
    return 0;
}

// A decoder's output for d[0, n) in a vector of exactly bound bytes, so that the
// sanitizers see a write beyond the room; ok tells whether the input was valid.
template <class Decode> std::vector<uint8_t> decoded(const uint8_t *d, size_t n, size_t bound, Decode decode, bool &ok)
{
    std::vector<uint8_t> out(bound);
    ptrdiff_t length = decode(d, n, out.data());
    ok = length >= 0;
    out.resize(ok ? static_cast<size_t>(length) : 0);
    return out;
}

} // namespace fuzz
