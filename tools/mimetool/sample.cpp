// The embedded sample, compiled in from emergency_invite.txt.
#include "io.hpp"

#include "sample_data.h"

namespace mimetool {

Ref<PB_BUFFER> sampleMessage()
{
    return adopt(pbBufferCreateFromBytesCopy(mimetool_sample, sizeof mimetool_sample));
}

} // namespace mimetool
