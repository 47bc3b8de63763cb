// Any bytes in any character set: decoding never fails in the lenient form;
// where the strict form succeeds, encoding the text and decoding it again gives
// the same text. UTF-8 reading of C text matches the UTF-8 character set.
#include "fuzz_support.hpp"

#include <pb/pb.h>
#include <pb/pb_ref.hpp>

using pb::adopt;
using pb::Ref;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        if (n == 0)
            return;
        PB_CHARSET cs = d[0] % 51;
        Ref<PB_BUFFER> bytes = adopt(pbBufferCreateFromBytesCopy(d + 1, static_cast<PB_INT>(n - 1)));
        Ref<PB_STRING> lenient = adopt(pbCharsetConvertBufferToString(cs, bytes.get()));
        Ref<PB_STRING> strict =
            adopt(pbCharsetTryConvertBufferToStringWithFlags(cs, bytes.get(), PB_CHARSET_FLAG_STRICT));
        PB_ASSERT( lenient );
        if (strict) {
            PB_ASSERT( pbStringEquals(strict.get(), lenient.get()) );
            Ref<PB_BUFFER> again = adopt(pbCharsetConvertStringToBuffer(cs, strict.get()));
            PB_ASSERT( again );
            Ref<PB_STRING> back =
                adopt(pbCharsetTryConvertBufferToStringWithFlags(cs, again.get(), PB_CHARSET_FLAG_STRICT));
            PB_ASSERT( back && pbStringEquals(back.get(), strict.get()) );
        }
        if (cs == PB_CHARSET_UTF_8) {
            Ref<PB_STRING> fromCstr =
                adopt(pbStringCreateFromCstr(reinterpret_cast<const char *>(d + 1), static_cast<PB_INT>(n - 1)));
            PB_ASSERT( pbStringEquals(fromCstr.get(), lenient.get()) );
            Ref<PB_BUFFER> utf8 = adopt(pbCharsetConvertStringToBuffer(cs, lenient.get()));
            PB_ASSERT( utf8 ); // replacement characters are encodable
        }
    });
}
