/* The peer comparison's program for GMime 3:
 *     bench WORKLOAD DATADIR COUNT
 * prints "RESULT WORKLOAD UNIT AMOUNT SECONDS NOTE" (UNIT bytes or ops), or
 * FAIL or SKIP with a reason. COUNT 0: passes until PEERS_MIN_TIME seconds
 * (0.3) have passed. The first pass is checked, outside the time. */
#include <gmime/gmime.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

static const char *workload = "?";

typedef struct {
    char *data;
    size_t size;
} Bytes;

static void fail(const char *why)
{
    printf("FAIL %s %s\n", workload, why);
    exit(1);
}

static Bytes load(const char *dir, const char *name)
{
    char path[4096];
    snprintf(path, sizeof path, "%s/%s", dir, name);
    Bytes b = {NULL, 0};
    if (!g_file_get_contents(path, &b.data, &b.size, NULL))
        fail("cannot open an input");
    return b;
}

static double now(void)
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec + (double)t.tv_nsec / 1e9;
}

/* Runs pass until count passes or the minimum time, and prints the rate. */
static void timed(const char *unit, double perPass, long count, const char *note, void (*pass)(void *), void *arg)
{
    const char *minText = getenv("PEERS_MIN_TIME");
    double minimum = minText ? atof(minText) : 0.3, start = now(), seconds;
    long passes = 0;
    do {
        pass(arg);
        ++passes;
        seconds = now() - start;
    } while (count > 0 ? passes < count : seconds < minimum);
    printf("RESULT %s %s %.0f %.6f %s\n", workload, unit, perPass * (double)passes, seconds, note);
}

/* ---- codecs: one GMimeEncoding pass into a new buffer ---- */

typedef struct {
    Bytes in, out;
    GMimeContentEncoding encoding;
    gboolean encode;
} Coding;

static void code(void *arg)
{
    Coding *c = arg;
    GMimeEncoding state;
    if (c->encode)
        g_mime_encoding_init_encode(&state, c->encoding);
    else
        g_mime_encoding_init_decode(&state, c->encoding);
    g_free(c->out.data);
    c->out.data = g_malloc(g_mime_encoding_outlen(&state, c->in.size) + 16);
    c->out.size = g_mime_encoding_flush(&state, c->in.data, c->in.size, c->out.data);
}

static Bytes coded(Bytes in, GMimeContentEncoding encoding, gboolean encode)
{
    Coding c = {in, {NULL, 0}, encoding, encode};
    code(&c);
    return c.out;
}

static gboolean same(Bytes a, Bytes b)
{
    return a.size == b.size && memcmp(a.data, b.data, a.size) == 0;
}

static void codecs(const char *dir, long count)
{
    gboolean base64 = strncmp(workload, "b64", 3) == 0, encode = strstr(workload, "enc") != NULL;
    GMimeContentEncoding encoding = base64 ? GMIME_CONTENT_ENCODING_BASE64 : GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE;
    Bytes raw = load(dir, base64 ? "b64.raw" : "qp.txt"), text = load(dir, base64 ? "b64.txt" : "qp.enc");
    /* The encoders write LF line ends (the quoted-printable one takes CR LF
     * in the text for LF): the check is the round trip. */
    Bytes first = coded(encode ? raw : text, encoding, encode);
    Bytes back = encode ? coded(first, encoding, FALSE) : first;
    Bytes want = raw;
    if (encode && !base64) {
        char **lines = g_strsplit(g_strndup(raw.data, raw.size), "\r\n", -1);
        want.data = g_strjoinv("\n", lines);
        want.size = strlen(want.data);
    }
    if (!same(back, want))
        fail(encode ? "the encoded text does not decode to the input" : "decoded bytes differ from the input");
    Coding c = {encode ? raw : text, {NULL, 0}, encoding, encode};
    timed("bytes", (double)raw.size, count, encode ? "GMimeEncoding, LF lines" : "GMimeEncoding", code, &c);
}

/* ---- multipart bodies ---- */

static GMimeObject *parse(const char *headerName, Bytes header, Bytes body, gboolean message)
{
    GByteArray *all = g_byte_array_new();
    g_byte_array_append(all, (const guint8 *)headerName, (guint)strlen(headerName));
    g_byte_array_append(all, (const guint8 *)header.data, (guint)header.size);
    g_byte_array_append(all, (const guint8 *)"\r\n\r\n", 4);
    g_byte_array_append(all, (const guint8 *)body.data, (guint)body.size);
    GMimeStream *stream = g_mime_stream_mem_new_with_byte_array(all);
    GMimeParser *parser = g_mime_parser_new_with_stream(stream);
    GMimeObject *object = message ? (GMimeObject *)g_mime_parser_construct_message(parser, NULL)
                                  : g_mime_parser_construct_part(parser, NULL);
    g_object_unref(parser);
    g_object_unref(stream);
    return object;
}

/* Bytes of a leaf's content: decoded when decode, else as it stands. */
static long contentBytes(GMimePart *part, gboolean decode)
{
    GMimeDataWrapper *content = g_mime_part_get_content(part);
    if (!content)
        return 0;
    GMimeStream *sink = g_mime_stream_null_new();
    if (decode)
        g_mime_data_wrapper_write_to_stream(content, sink);
    else
        g_mime_stream_write_to_stream(g_mime_data_wrapper_get_stream(content), sink);
    g_mime_stream_reset(g_mime_data_wrapper_get_stream(content));
    long n = (long)GMIME_STREAM_NULL(sink)->written;
    g_object_unref(sink);
    return n;
}

typedef struct {
    Bytes type, body;
    long parts, bytes;
} Split;

static void split(void *arg)
{
    Split *s = arg;
    GMimeObject *object = parse("Content-Type: ", s->type, s->body, FALSE);
    s->parts = s->bytes = 0;
    if (GMIME_IS_MULTIPART(object)) {
        GMimeMultipart *multipart = GMIME_MULTIPART(object);
        s->parts = g_mime_multipart_get_count(multipart);
        for (int i = 0; i < s->parts; ++i)
            s->bytes += contentBytes(GMIME_PART(g_mime_multipart_get_part(multipart, i)), FALSE);
    }
    g_object_unref(object);
}

static void multipart(const char *dir, long count)
{
    const char *name = strcmp(workload, "mp-sip") == 0 ? "sip" : "big";
    char file[64];
    snprintf(file, sizeof file, "%s.ct", name);
    Split s = {load(dir, file), {0}, 0, 0};
    snprintf(file, sizeof file, "%s.body", name);
    s.body = load(dir, file);
    snprintf(file, sizeof file, "%s.meta", name);
    long parts = 0, bytes = 0;
    if (sscanf(load(dir, file).data, "%ld %ld", &parts, &bytes) != 2)
        fail("unreadable meta");
    split(&s);
    if (s.parts != parts || s.bytes != bytes)
        fail("part count or byte total differs from the meta");
    if (name[0] == 's')
        timed("ops", 1, count, "GMimeParser", split, &s);
    else
        timed("bytes", (double)s.body.size, count, "GMimeParser", split, &s);
}

/* ---- Content-Type values ---- */

static char *canonical(const char *value)
{
    GMimeContentType *type = g_mime_content_type_parse(NULL, value);
    if (!type)
        return g_strdup("");
    GString *out = g_string_new(NULL);
    char *mime = g_mime_content_type_get_mime_type(type);
    g_string_append(out, mime);
    g_free(mime);
    GMimeParamList *params = g_mime_content_type_get_parameters(type);
    int n = g_mime_param_list_length(params);
    char **pairs = g_new0(char *, n + 1);
    for (int i = 0; i < n; ++i) {
        GMimeParam *p = g_mime_param_list_get_parameter_at(params, i);
        char *key = g_ascii_strdown(g_mime_param_get_name(p), -1);
        pairs[i] = g_strconcat(key, "=", g_mime_param_get_value(p), NULL);
        g_free(key);
    }
    qsort(pairs, (size_t)n, sizeof *pairs, (int (*)(const void *, const void *))strcmp);
    for (int i = 0; i < n; ++i)
        g_string_append_printf(out, ";%s", pairs[i]);
    g_strfreev(pairs);
    g_object_unref(type);
    return g_string_free(out, FALSE);
}

static void parseAll(void *arg)
{
    for (char **value = arg; *value; ++value)
        g_object_unref(g_mime_content_type_parse(NULL, *value));
}

static void contentTypes(const char *dir, long count)
{
    char **values = g_strsplit(g_strchomp(load(dir, "ct.txt").data), "\n", -1);
    char **expected = g_strsplit(load(dir, "ct.expected").data, "\n", -1);
    int n = (int)g_strv_length(values), matches = 0;
    for (int i = 0; i < n; ++i) {
        char *got = canonical(values[i]);
        matches += strcmp(got, expected[i]) == 0;
        g_free(got);
    }
    char note[32];
    snprintf(note, sizeof note, "match=%d/%d", matches, n);
    timed("ops", n, count, note, parseAll, values);
}

/* ---- packing ---- */

typedef struct {
    Bytes types[3], bodies[3];
    GByteArray *out;
    GMimeFormatOptions *format; /* CR LF line ends, as on the wire */
} Pack;

static void pack(void *arg)
{
    Pack *p = arg;
    GMimeMultipart *multipart = g_mime_multipart_new_with_subtype("mixed");
    for (int i = 0; i < 3; ++i) {
        char *type = g_strndup(p->types[i].data, p->types[i].size);
        char *slash = strchr(type, '/');
        *slash = '\0';
        GMimePart *part = g_mime_part_new_with_type(type, slash + 1);
        GMimeStream *stream = g_mime_stream_mem_new_with_buffer(p->bodies[i].data, p->bodies[i].size);
        GMimeDataWrapper *content = g_mime_data_wrapper_new_with_stream(stream, GMIME_CONTENT_ENCODING_DEFAULT);
        g_mime_part_set_content(part, content);
        g_mime_multipart_add(multipart, (GMimeObject *)part);
        g_object_unref(content);
        g_object_unref(stream);
        g_object_unref(part);
        g_free(type);
    }
    if (p->out)
        g_byte_array_unref(p->out);
    p->out = g_byte_array_new();
    GMimeStream *sink = g_mime_stream_mem_new_with_byte_array(p->out);
    g_mime_stream_mem_set_owner(GMIME_STREAM_MEM(sink), FALSE);
    g_mime_object_write_to_stream((GMimeObject *)multipart, p->format, sink);
    g_object_unref(sink);
    g_object_unref(multipart);
}

static void packing(const char *dir, long count)
{
    Pack p = {{{0}}, {{0}}, NULL, g_mime_format_options_new()};
    g_mime_format_options_set_newline_format(p.format, GMIME_NEWLINE_FORMAT_DOS);
    for (int i = 0; i < 3; ++i) {
        char file[32];
        snprintf(file, sizeof file, "pack%d.ct", i);
        p.types[i] = load(dir, file);
        snprintf(file, sizeof file, "pack%d.body", i);
        p.bodies[i] = load(dir, file);
    }
    pack(&p);
    GMimeStream *stream = g_mime_stream_mem_new_with_buffer((const char *)p.out->data, p.out->len);
    GMimeParser *parser = g_mime_parser_new_with_stream(stream);
    GMimeObject *back = g_mime_parser_construct_part(parser, NULL);
    if (!GMIME_IS_MULTIPART(back) || g_mime_multipart_get_count(GMIME_MULTIPART(back)) != 3)
        fail("packed output does not unpack into 3 parts");
    for (int i = 0; i < 3; ++i)
        if (contentBytes(GMIME_PART(g_mime_multipart_get_part(GMIME_MULTIPART(back), i)), TRUE) !=
            (long)p.bodies[i].size)
            fail(g_strdup_printf("body %d: %ld bytes, want %zu", i,
                                 contentBytes(GMIME_PART(g_mime_multipart_get_part(GMIME_MULTIPART(back), i)), TRUE),
                                 p.bodies[i].size));
    g_object_unref(back);
    g_object_unref(parser);
    g_object_unref(stream);
    timed("ops", 1, count, "GMimeMultipart, fresh boundary", pack, &p);
}

/* ---- whole messages ---- */

typedef struct {
    Bytes *inputs;
    long messages, leaves, bytes;
} Mail;

static void countLeaves(GMimeObject *parent, GMimeObject *part, gpointer data)
{
    (void)parent;
    Mail *m = data;
    if (GMIME_IS_PART(part)) {
        m->leaves++;
        m->bytes += contentBytes(GMIME_PART(part), TRUE);
    } else if (GMIME_IS_MESSAGE_PART(part)) { /* foreach does not enter an enclosed message */
        GMimeMessage *inner = g_mime_message_part_get_message(GMIME_MESSAGE_PART(part));
        if (inner) {
            countLeaves(NULL, g_mime_message_get_mime_part(inner), m);
            g_mime_message_foreach(inner, countLeaves, m);
        }
    }
}

static void readAll(void *arg)
{
    Mail *m = arg;
    m->leaves = m->bytes = 0;
    for (long i = 0; i < m->messages; ++i) {
        GMimeStream *stream = g_mime_stream_mem_new_with_buffer(m->inputs[i].data, m->inputs[i].size);
        GMimeParser *parser = g_mime_parser_new_with_stream(stream);
        GMimeMessage *message = g_mime_parser_construct_message(parser, NULL);
        if (message) {
            g_mime_message_foreach(message, countLeaves, m);
            g_object_unref(message);
        }
        g_object_unref(parser);
        g_object_unref(stream);
    }
}

static void mail(const char *dir, long count)
{
    long leaves = 0, bytes = 0, messages = 0, size = 0;
    if (sscanf(load(dir, "msgs.meta").data, "%ld %ld %ld %ld", &leaves, &bytes, &messages, &size) != 4)
        fail("unreadable msgs.meta");
    Mail m = {g_new(Bytes, messages), messages, 0, 0};
    for (long i = 0; i < messages; ++i) {
        char file[32];
        snprintf(file, sizeof file, "msgs/%04ld.eml", i);
        m.inputs[i] = load(dir, file);
    }
    readAll(&m);
    if (m.leaves != leaves || m.bytes != bytes)
        fail(g_strdup_printf("leaves %ld bytes %ld, want %ld %ld", m.leaves, m.bytes, leaves, bytes));
    timed("bytes", (double)size, count, "GMimeParser, leaves decoded", readAll, &m);
}

int main(int argc, char **argv)
{
    if (argc != 4) {
        fprintf(stderr, "usage: bench WORKLOAD DATADIR COUNT\n");
        return 2;
    }
    workload = argv[1];
    long count = atol(argv[3]);
    g_mime_init();
    if (strncmp(workload, "b64-", 4) == 0 || strncmp(workload, "qp-", 3) == 0)
        codecs(argv[2], count);
    else if (strcmp(workload, "mp-sip") == 0 || strcmp(workload, "mp-big") == 0)
        multipart(argv[2], count);
    else if (strcmp(workload, "ct-parse") == 0)
        contentTypes(argv[2], count);
    else if (strcmp(workload, "mp-pack") == 0)
        packing(argv[2], count);
    else if (strcmp(workload, "msg-read") == 0)
        mail(argv[2], count);
    else
        printf("SKIP %s not measured for this library\n", workload);
    g_mime_shutdown();
    return 0;
}
