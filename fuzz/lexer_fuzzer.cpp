// Any bytes as a header-field value: lexing never aborts or leaks; when it
// succeeds, comments are removed, the tokens encoded (at a wrap line length and
// offset taken from the input) and the text lexed again, which must succeed with
// tokens of the same types and plain values.
#include "fuzz_support.hpp"

#include <mime/mime.h>
#include <pb/pb_ref.hpp>

using pb::adopt;
using pb::Ref;

namespace {

Ref<MIME_SHF_TOKEN> tokenAt(PB_VECTOR *vec, PB_INT i)
{
    return adopt(mimeShfTokenFrom(pbVectorObjAt(vec, i)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        Ref<PB_STRING> value = adopt(pbStringCreateFromCstr(reinterpret_cast<const char *>(d), static_cast<PB_INT>(n)));
        Ref<PB_VECTOR> tokens = adopt(mimeShfTokenVectorTryDecode(value.get()));
        if (!tokens)
            return;
        mimeShfTokenVectorDelComments(tokens.addr());
        Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
        mimeOptionsSetWrapLineLength(mo.addr(), n ? static_cast<PB_INT>(d[0] % 90) - 1 : 76);
        Ref<PB_STRING> text = adopt(mimeShfTokenVectorEncode(tokens.get(), mo.get(), n > 1 ? d[1] % 40 : 0));
        Ref<PB_VECTOR> again = adopt(mimeShfTokenVectorTryDecode(text.get()));
        PB_ASSERT( again && pbVectorLength(again.get()) == pbVectorLength(tokens.get()) );
        for (PB_INT i = 0; i < pbVectorLength(tokens.get()); ++i) {
            Ref<MIME_SHF_TOKEN> a = tokenAt(tokens.get(), i), b = tokenAt(again.get(), i);
            PB_ASSERT( mimeShfTokenType(a.get()) == mimeShfTokenType(b.get()) );
            Ref<PB_STRING> va = adopt(mimeShfTokenValue(a.get())), vb = adopt(mimeShfTokenValue(b.get()));
            PB_ASSERT( pbStringCompare(va.get(), vb.get()) == 0 );
        }
    });
}
