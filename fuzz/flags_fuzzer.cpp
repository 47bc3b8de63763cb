// Any text as MIME flags: parsing never fails, the result is normalised, and
// its text form parses back to the same flags.
#include "fuzz_support.hpp"

#include <mime/mime.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_string.h>

using pb::adopt;
using pb::Ref;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        Ref<PB_STRING> text = adopt(pbStringCreateFromCstr(reinterpret_cast<const char *>(d), static_cast<PB_INT>(n)));
        MIME_FLAGS flags = mimeFlagsFromString(text.get());
        PB_ASSERT( flags == mimeFlagsNormalize(flags) );
        Ref<PB_STRING> again = adopt(mimeFlagsToString(flags));
        PB_ASSERT( mimeFlagsFromString(again.get()) == flags );
        MIME_ENCODE_FLAGS encodeFlags = mimeEncodeFlagsFromString(text.get());
        Ref<PB_STRING> encodeAgain = adopt(mimeEncodeFlagsToString(encodeFlags));
        PB_ASSERT( mimeEncodeFlagsFromString(encodeAgain.get()) == encodeFlags );
    });
}
