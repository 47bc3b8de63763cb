/* A C program built against the installed libraries: starts the module, uses a
 * flag text and the base64 codec, and stops the module again. */
#include <mime/mime.h>
#include <pb/pb.h>
#include <rfc/rfc.h>

#include <stdio.h>
#include <string.h>

int main(void)
{
    if (!pbModuleStartup(mimeModule()))
        return 1;
    PB_STRING *text = mimeFlagsToString(MIME_FLAG_PARSE_RFC2231_HEADERS);
    char *utf8 = pbStringConvertToCstr(text, 0, NULL);
    PB_BUFFER *raw = pbBufferCreateFromBytesCopy("hello", 5);
    RFC_BASE_OPTIONS *options = rfcBaseOptionsCreate();
    PB_BUFFER *encoded = rfcBaseEncodeWithOptions(raw, RFC_BASE_VARIANT_BASE64, options);
    int ok = strcmp(utf8, "MIME_FLAG_PARSE_RFC2231_HEADERS") == 0 &&
             strcmp(pbModuleRecord(mimeModule())->moduleName, "mime") == 0 && pbBufferLength(encoded) == 8 &&
             memcmp(pbBufferBacking(encoded), "aGVsbG8=", 8) == 0;
    printf("%s %s\n", utf8, ok ? "ok" : "WRONG");
    pbBufferRelease(encoded);
    rfcBaseOptionsRelease(options);
    pbBufferRelease(raw);
    pbMemFree(utf8);
    pbStringRelease(text);
    pbModuleShutdown(mimeModule());
    return ok ? 0 : 1;
}
