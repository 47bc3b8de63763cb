/* A C program built against the installed libraries: starts the module, uses a
 * flag text, and stops it again. */
#include <mime/mime.h>
#include <pb/pb.h>

#include <stdio.h>
#include <string.h>

int main(void)
{
    if (!pbModuleStartup(mimeModule()))
        return 1;
    PB_STRING *text = mimeFlagsToString(MIME_FLAG_PARSE_RFC2231_HEADERS);
    char *utf8 = pbStringConvertToCstr(text, 0, NULL);
    int ok = strcmp(utf8, "MIME_FLAG_PARSE_RFC2231_HEADERS") == 0 &&
             strcmp(pbModuleRecord(mimeModule())->moduleName, "mime") == 0;
    printf("%s %s\n", utf8, ok ? "ok" : "WRONG");
    pbMemFree(utf8);
    pbStringRelease(text);
    pbModuleShutdown(mimeModule());
    return ok ? 0 : 1;
}
