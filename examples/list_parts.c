/* list_parts: reads one MIME entity from a file (a mail message, or a SIP
 * message body with its Content-* header lines, CR LF line ends), decodes it
 * and lists its parts, descending into multipart bodies.
 *
 *   $ list_parts message.eml
 *   1 multipart/mixed, 2556 bytes
 *     1.1 application/sdp, 172 bytes
 *     ...
 *
 * Plain C11 against the installed package: find_package(corvane) or
 * pkg-config corvane-mime. */
#include <mime/mime.h>
#include <pb/pb.h>

#include <stdio.h>
#include <string.h>

/* The whole file as a new buffer, or null. */
static PB_BUFFER *readFile(const char *path)
{
    FILE *file = fopen(path, "rb");
    if (!file)
        return NULL;
    PB_BUFFER *content = pbBufferCreate();
    char chunk[65536];
    size_t got;
    while ((got = fread(chunk, 1, sizeof chunk, file)) > 0)
        pbBufferAppendBytes(&content, chunk, (PB_INT)got);
    int failed = ferror(file);
    fclose(file);
    if (failed) {
        pbBufferRelease(content);
        return NULL;
    }
    return content;
}

/* The UTF-8 text of s in out (cut to its size). */
static void textOf(PB_STRING *s, char *out, size_t size)
{
    char *text = pbStringConvertToCstr(s, 0, NULL);
    snprintf(out, size, "%s", text);
    pbMemFree(text);
}

/* Decodes entity, prints it and its parts; 0 when something is malformed.
 * Every reference taken here is released before returning. */
static int listEntity(MIME_ENTITY *entity, MIME_OPTIONS *options, const char *number, int depth)
{
    PB_BUFFER *body = NULL;
    MIME_CONTENT_TYPE *type = NULL;
    if (depth > 32 || !mimeDecode(entity, options, &body, &type, NULL, NULL)) {
        fprintf(stderr, "part %s is malformed\n", number);
        return 0;
    }
    char name[256] = "text/plain"; /* RFC 2045's default */
    if (type) {
        PB_STRING *typeName = mimeContentTypeName(type);
        textOf(typeName, name, sizeof name);
        pbStringRelease(typeName);
    }
    printf("%*s%s %s, %lld bytes\n", 2 * depth, "", number, name, body ? (long long)pbBufferLength(body) : 0LL);

    int ok = 1;
    if (type && strncmp(name, "multipart/", 10) == 0) {
        PB_VECTOR *parts = body ? mimeMultipartTryUnpack(type, body, options) : NULL;
        if (!parts) {
            fprintf(stderr, "part %s: malformed multipart body\n", number);
            ok = 0;
        }
        for (PB_INT i = 0; ok && parts && i < pbVectorLength(parts); i++) {
            char childNumber[512];
            snprintf(childNumber, sizeof childNumber, "%s.%lld", number, (long long)i + 1);
            PB_OBJ *part = pbVectorObjAt(parts, i);
            ok = listEntity(mimeEntityFrom(part), options, childNumber, depth + 1);
            pbObjRelease(part);
        }
        pbObjRelease(pbVectorObj(parts)); /* null is ignored */
    }
    pbObjRelease(pbBufferObj(body));
    pbObjRelease(mimeContentTypeObj(type));
    return ok;
}

int main(int argc, char **argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: list_parts FILE\n");
        return 2;
    }
    if (!pbModuleStartup(mimeModule()))
        return 1;
    int status = 1;
    PB_BUFFER *content = readFile(argv[1]);
    MIME_OPTIONS *options = mimeOptionsCreate();
    MIME_ENTITY *entity = content ? mimeEntityTryParse(content, options) : NULL;
    if (!content)
        perror(argv[1]);
    else if (!entity)
        fprintf(stderr, "%s: not a MIME entity\n", argv[1]);
    else if (listEntity(entity, options, "1", 0))
        status = 0;
    pbObjRelease(mimeEntityObj(entity));
    mimeOptionsRelease(options);
    pbObjRelease(pbBufferObj(content));
    pbModuleShutdown(mimeModule());
    return status;
}
