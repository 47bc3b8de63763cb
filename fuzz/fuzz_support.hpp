// What every fuzz target shares: the module started once, and the check that an
// input leaves no runtime object alive.
#pragma once

#include <mime/mime_module.h>
#include <pb/pb_abort.h>
#include <pb/pb_obj.h>

#include <cstddef>
#include <cstdint>

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

} // namespace fuzz
