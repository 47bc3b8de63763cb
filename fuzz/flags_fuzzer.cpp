// Any text as MIME flags: parsing never fails, the result is normalised, its
// text form parses back to the same flags, and the Cstr and Wcstr forms read
// the text as the PB_STRING form does.
#include "checks.hpp"
#include "fuzz_support.hpp"

#include <mime/mime.h>

using pb::adopt;
using pb::Ref;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        const fuzz::Forms text(std::string(reinterpret_cast<const char *>(d), n));
        MIME_FLAGS flags = mimeFlagsFromString(text.string.get());
        PB_ASSERT( flags == mimeFlagsNormalize(flags) );
        PB_ASSERT( flags == mimeFlagsFromStringCstr(text.utf8.data(), text.utf8Length()) );
        PB_ASSERT( flags == mimeFlagsFromStringWcstr(text.wide.data(), text.wideLength()) );
        Ref<PB_STRING> again = adopt(mimeFlagsToString(flags));
        PB_ASSERT( mimeFlagsFromString(again.get()) == flags );
        MIME_ENCODE_FLAGS encodeFlags = mimeEncodeFlagsFromString(text.string.get());
        PB_ASSERT( encodeFlags == mimeEncodeFlagsFromStringCstr(text.utf8.data(), text.utf8Length()) );
        PB_ASSERT( encodeFlags == mimeEncodeFlagsFromStringWcstr(text.wide.data(), text.wideLength()) );
        Ref<PB_STRING> encodeAgain = adopt(mimeEncodeFlagsToString(encodeFlags));
        PB_ASSERT( mimeEncodeFlagsFromString(encodeAgain.get()) == encodeFlags );
    });
}
