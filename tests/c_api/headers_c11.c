/* Compile-only check: every public header is plain C11. */
#include <mime/mime.h>
#include <pb/pb.h>
#include <rfc/rfc.h>

int corvane_c_api_check(void);

int corvane_c_api_check(void)
{
    PB_STRING *s = pbStringCreateFromCstr("x", -1);
    PB_INT n = pbStringLength(s);
    pbStringRelease(s);
    return (int)n + (int)mimeFlagsNormalize(MIME_FLAG_PARSE_RFC2231_HEADERS) + PB_CHARSET_OK(PB_CHARSET_UTF_8) +
           (mimeModule() != NULL);
}
