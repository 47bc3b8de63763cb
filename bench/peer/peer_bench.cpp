// The peer benchmark's program for our libraries:
//   bench WORKLOAD DATADIR COUNT
// prints "RESULT WORKLOAD bytes AMOUNT SECONDS NOTE", "SKIP WORKLOAD REASON" or
// "FAIL WORKLOAD REASON". COUNT 0 repeats passes until PEERBENCH_MIN_TIME
// seconds (0.3 by default) have passed; COUNT > 0 runs exactly COUNT passes.
// One untimed pass runs first and its output is checked. Each pass goes through
// the public interface: a new output buffer from an input buffer.
#include <mime/mime.h>
#include <pb/pb.h>
#include <rfc/rfc.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace {

const char *workload = "?";

[[noreturn]] void fail(const std::string &why)
{
    std::printf("FAIL %s %s\n", workload, why.c_str());
    std::exit(1);
}

std::string load(const std::string &dir, const char *name)
{
    std::ifstream f(dir + "/" + name, std::ios::binary);
    if (!f)
        fail(std::string("cannot open ") + name);
    return std::string(std::istreambuf_iterator<char>(f), {});
}

PB_BUFFER *bufferOf(const std::string &s)
{
    return pbBufferCreateFromBytesCopy(s.data(), static_cast<PB_INT>(s.size()));
}

bool equals(PB_BUFFER *b, const std::string &s)
{
    return b && pbBufferLength(b) == static_cast<PB_INT>(s.size()) &&
           std::memcmp(pbBufferBacking(b), s.data(), s.size()) == 0;
}

// Longest line of a text, CR LF not counted.
size_t longestLine(PB_BUFFER *b)
{
    std::string_view text(reinterpret_cast<const char *>(pbBufferBacking(b)), static_cast<size_t>(pbBufferLength(b)));
    size_t longest = 0;
    for (size_t start = 0; start <= text.size();) {
        size_t end = text.find("\r\n", start);
        if (end == std::string_view::npos)
            end = text.size();
        longest = std::max(longest, end - start);
        start = end + 2;
    }
    return longest;
}

// One pass makes a new buffer from the input; check judges the first one.
void bulk(PB_BUFFER *input, size_t bytesPerPass, long count, const char *note,
          const std::function<PB_BUFFER *(PB_BUFFER *)> &pass, const std::function<void(PB_BUFFER *)> &check)
{
    PB_BUFFER *first = pass(input);
    check(first);
    pbObjRelease(pbBufferObj(first));
    const char *minTime = std::getenv("PEERBENCH_MIN_TIME");
    double min = minTime ? std::atof(minTime) : 0.3, seconds = 0;
    long passes = 0;
    auto start = std::chrono::steady_clock::now();
    do {
        pbObjRelease(pbBufferObj(pass(input)));
        ++passes;
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    } while (count > 0 ? passes < count : seconds < min);
    std::printf("RESULT %s bytes %.0f %.6f %s\n", workload, double(bytesPerPass) * double(passes), seconds, note);
}

// The canonical dump of a Content-Type: name;key=value... in key order, UTF-8.
std::string canonical(MIME_CONTENT_TYPE *type)
{
    auto utf8 = [](PB_STRING *s) {
        PB_INT n = 0;
        char *text = pbStringConvertToCstr(s, 0, &n);
        std::string out(text, static_cast<size_t>(n));
        pbMemFree(text);
        pbStringRelease(s);
        return out;
    };
    std::string out = utf8(mimeContentTypeName(type));
    for (PB_INT i = 0; i < mimeContentTypeParametersLength(type); ++i)
        out +=
            ";" + utf8(mimeContentTypeParameterKeyAt(type, i)) + "=" + utf8(mimeContentTypeParameterValueAt(type, i));
    return out;
}

// Decodes count values, cycling through the eight of ct.txt, with RFC 2231 decoding on.
void ctParse(const std::string &dir, long count)
{
    std::vector<PB_STRING *> values;
    std::string all = load(dir, "ct.txt"), expected = load(dir, "ct.expected");
    for (size_t at = 0, end; (end = all.find('\n', at)) != std::string::npos; at = end + 1)
        values.push_back(pbStringCreateFromCstr(all.data() + at, static_cast<PB_INT>(end - at)));
    MIME_OPTIONS *mo = mimeOptionsCreate();
    int matches = 0;
    size_t line = 0;
    for (PB_STRING *value : values) {
        MIME_CONTENT_TYPE *type = mimeContentTypeTryDecode(value, mo);
        size_t end = expected.find('\n', line);
        if (type && canonical(type) == expected.substr(line, end - line))
            ++matches;
        else
            std::fprintf(stderr, "ct value %zu differs\n", line);
        line = end + 1;
        if (type)
            mimeContentTypeRelease(type);
    }
    if (count <= 0)
        count = 1000000;
    auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < count; ++i)
        mimeContentTypeRelease(mimeContentTypeTryDecode(values[static_cast<size_t>(i) % values.size()], mo));
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("RESULT %s ops %ld %.6f match=%d/%zu\n", workload, count, seconds, matches, values.size());
    for (PB_STRING *value : values)
        pbStringRelease(value);
    mimeOptionsRelease(mo);
}

// Part count and body bytes of an unpacked multipart body, as the harness checks them.
struct Split {
    long parts = 0, bytes = 0;
};

Split split(MIME_CONTENT_TYPE *type, PB_BUFFER *body, MIME_OPTIONS *mo)
{
    Split s;
    PB_VECTOR *parts = mimeMultipartTryUnpack(type, body, mo);
    if (!parts)
        return s;
    s.parts = pbVectorLength(parts);
    for (PB_INT i = 0; i < s.parts; ++i) {
        PB_OBJ *part = pbVectorObjAt(parts, i);
        if (PB_BUFFER *b = mimeEntityBody(mimeEntityFrom(part))) {
            s.bytes += pbBufferLength(b);
            pbObjRelease(pbBufferObj(b));
        }
        pbObjRelease(part);
    }
    pbObjRelease(pbVectorObj(parts));
    return s;
}

// A multipart body and its decoded Content-Type, from NAME.body and NAME.ct;
// the expected part count and byte total from NAME.meta.
struct Multipart {
    PB_BUFFER *body;
    MIME_CONTENT_TYPE *type;
    Split want;
};

Multipart loadMultipart(const std::string &dir, const std::string &name, MIME_OPTIONS *mo)
{
    std::string ct = load(dir, (name + ".ct").c_str());
    PB_STRING *text = pbStringCreateFromCstr(ct.data(), static_cast<PB_INT>(ct.size()));
    Multipart m{bufferOf(load(dir, (name + ".body").c_str())), mimeContentTypeTryDecode(text, mo), {}};
    pbStringRelease(text);
    if (!m.type)
        fail(name + ".ct does not decode");
    if (std::sscanf(load(dir, (name + ".meta").c_str()).c_str(), "%ld %ld", &m.want.parts, &m.want.bytes) != 2)
        fail(name + ".meta unreadable");
    return m;
}

void checkSplit(const Multipart &m, const Split &got)
{
    if (got.parts != m.want.parts || got.bytes != m.want.bytes)
        fail("parts " + std::to_string(got.parts) + " bytes " + std::to_string(got.bytes) + ", want " +
             std::to_string(m.want.parts) + " " + std::to_string(m.want.bytes));
}

void freeMultipart(Multipart &m)
{
    pbBufferRelease(m.body);
    mimeContentTypeRelease(m.type);
}

template <class Op> void timedOps(long count, const char *note, Op op)
{
    if (count <= 0)
        count = 100000;
    auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < count; ++i)
        op();
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("RESULT %s ops %ld %.6f %s\n", workload, count, seconds, note);
}

// mp-sip: the 3-part SIP body unpacked again and again; parts are views of the body.
void mpSip(const std::string &dir, long count, MIME_OPTIONS *mo)
{
    Multipart m = loadMultipart(dir, "sip", mo);
    checkSplit(m, split(m.type, m.body, mo));
    timedOps(count, "bodies are views, not copied", [&] { split(m.type, m.body, mo); });
    freeMultipart(m);
}

// mp-big: the 32 MiB body split once per pass.
void mpBig(const std::string &dir, long count, MIME_OPTIONS *mo)
{
    Multipart m = loadMultipart(dir, "big", mo);
    Split got;
    bulk(
        m.body, static_cast<size_t>(pbBufferLength(m.body)), count, "bodies are views, not copied",
        [&](PB_BUFFER *body) {
            got = split(m.type, body, mo);
            return pbBufferCreate();
        },
        [&](PB_BUFFER *) { checkSplit(m, got); });
    freeMultipart(m);
}

// mp-pack: the three SIP parts (Content-Type and body, as they are) packed under
// a fresh boundary each time.
void mpPack(const std::string &dir, long count, MIME_OPTIONS *mo)
{
    PB_VECTOR *entities = pbVectorCreate();
    std::vector<std::string> bodies;
    for (int i = 0; i < 3; ++i) {
        std::string ct = load(dir, ("pack" + std::to_string(i) + ".ct").c_str());
        bodies.push_back(load(dir, ("pack" + std::to_string(i) + ".body").c_str()));
        MIME_ENTITY *ent = mimeEntityCreate();
        mimeEntitySetContentTypeCstr(&ent, ct.data(), static_cast<PB_INT>(ct.size()));
        PB_BUFFER *body = bufferOf(bodies.back());
        mimeEntitySetBody(&ent, body);
        pbBufferRelease(body);
        pbVectorAppendObj(&entities, mimeEntityObj(ent));
        mimeEntityRelease(ent);
    }
    MIME_CONTENT_TYPE *mixed = mimeContentTypeCreateCstr("multipart/mixed", -1);
    auto pack = [&] {
        MIME_CONTENT_TYPE *type = mimeContentTypeRetain(mixed);
        PB_BUFFER *packed = mimeMultipartTryPack(&type, entities, mo);
        mimeContentTypeRelease(type);
        return packed;
    };
    // Check: the output unpacks into the same three bodies.
    MIME_CONTENT_TYPE *type = mimeContentTypeRetain(mixed);
    PB_BUFFER *packed = mimeMultipartTryPack(&type, entities, mo);
    PB_VECTOR *parts = packed ? mimeMultipartTryUnpack(type, packed, mo) : nullptr;
    if (!parts || pbVectorLength(parts) != 3)
        fail("packed output does not unpack into 3 parts");
    for (PB_INT i = 0; i < 3; ++i) {
        PB_OBJ *part = pbVectorObjAt(parts, i);
        PB_BUFFER *b = mimeEntityBody(mimeEntityFrom(part));
        if (!equals(b, bodies[static_cast<size_t>(i)]))
            fail("body " + std::to_string(i) + " differs after packing");
        pbObjRelease(pbBufferObj(b));
        pbObjRelease(part);
    }
    pbObjRelease(pbVectorObj(parts));
    pbBufferRelease(packed);
    mimeContentTypeRelease(type);
    timedOps(count, "fresh boundary, collision check", [&] { pbBufferRelease(pack()); });
    mimeContentTypeRelease(mixed);
    pbObjRelease(pbVectorObj(entities));
}

// Leaves and their decoded bytes, as the harness counts them.
struct Leaves {
    long count = 0, bytes = 0;
};

void countLeaves(MIME_PART *part, Leaves &leaves)
{
    PB_INT children = mimePartChildCount(part);
    for (PB_INT i = 0; i < children; ++i) {
        MIME_PART *child = mimePartChildAt(part, i);
        countLeaves(child, leaves);
        mimePartRelease(child);
    }
    if (children > 0)
        return;
    ++leaves.count;
    if (PB_BUFFER *body = mimePartBody(part)) {
        leaves.bytes += pbBufferLength(body);
        pbBufferRelease(body);
    }
}

// msg-read: every message of msgs/ read whole with the tolerant reader (header,
// tree, enclosed messages, every leaf decoded), one pass over all of them.
void msgRead(const std::string &dir, long count, MIME_OPTIONS *mo)
{
    long wantLeaves = 0, wantBytes = 0, messages = 0, size = 0;
    if (std::sscanf(load(dir, "msgs.meta").c_str(), "%ld %ld %ld %ld", &wantLeaves, &wantBytes, &messages, &size) != 4)
        fail("msgs.meta unreadable");
    std::vector<PB_BUFFER *> inputs;
    size_t total = 0;
    for (long i = 0; i < messages; ++i) {
        char name[32];
        std::snprintf(name, sizeof name, "msgs/%04ld.eml", i);
        inputs.push_back(bufferOf(load(dir, name)));
        total += static_cast<size_t>(pbBufferLength(inputs.back()));
    }
    if (static_cast<long>(total) != size)
        fail("the messages hold another byte count than msgs.meta says");
    Leaves got;
    bulk(
        nullptr, total, count, "tolerant reader, leaves decoded",
        [&](PB_BUFFER *) {
            got = {};
            for (PB_BUFFER *input : inputs) {
                MIME_PART *tree = mimeMessageRead(input, mo, nullptr);
                countLeaves(tree, got);
                mimePartRelease(tree);
            }
            return pbBufferCreate();
        },
        [&](PB_BUFFER *) {
            if (got.count != wantLeaves || got.bytes != wantBytes)
                fail("leaves " + std::to_string(got.count) + " bytes " + std::to_string(got.bytes) + ", want " +
                     std::to_string(wantLeaves) + " " + std::to_string(wantBytes));
        });
    for (PB_BUFFER *input : inputs)
        pbBufferRelease(input);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s WORKLOAD DATADIR COUNT\n", argv[0]);
        return 2;
    }
    workload = argv[1];
    std::string dir = argv[2], w = argv[1];
    long count = std::atol(argv[3]);

    RFC_BASE_OPTIONS *base = rfcBaseOptionsCreate();
    rfcBaseOptionsSetOutputLineLength(&base, 76);
    RFC_QUOP_OPTIONS *quop = rfcQuopOptionsCreate();
    auto encode64 = [&](PB_BUFFER *b) { return rfcBaseEncodeWithOptions(b, RFC_BASE_VARIANT_BASE64, base); };
    auto decode64 = [&](PB_BUFFER *b) { return rfcBaseTryDecodeWithOptions(b, RFC_BASE_VARIANT_BASE64, base); };
    auto encodeQp = [&](PB_BUFFER *b) { return rfcQuopEncodeWithOptions(b, quop); };
    auto decodeQp = [&](PB_BUFFER *b) { return rfcQuopTryDecodeWithOptions(b, quop); };

    if (w == "b64-enc" || w == "b64-dec") {
        std::string raw = load(dir, "b64.raw"), text = load(dir, "b64.txt");
        if (text.size() >= 2 && text.compare(text.size() - 2, 2, "\r\n") == 0)
            text.resize(text.size() - 2); // no line break after the last line
        if (w == "b64-enc")
            bulk(bufferOf(raw), raw.size(), count, "76-column CRLF lines", encode64, [&](PB_BUFFER *out) {
                if (!equals(out, text))
                    fail("encoded text differs from b64.txt");
            });
        else
            bulk(bufferOf(text), raw.size(), count, "76-column CRLF lines", decode64, [&](PB_BUFFER *out) {
                if (!equals(out, raw))
                    fail("decoded bytes differ from b64.raw");
            });
    } else if (w == "qp-enc") {
        std::string raw = load(dir, "qp.txt");
        bulk(bufferOf(raw), raw.size(), count, "", encodeQp, [&](PB_BUFFER *out) {
            PB_BUFFER *back = decodeQp(out);
            if (!equals(back, raw) || longestLine(out) > 76)
                fail("encoded text does not decode to qp.txt within 76 columns");
            pbObjRelease(pbBufferObj(back));
        });
    } else if (w == "qp-dec") {
        std::string raw = load(dir, "qp.txt"), text = load(dir, "qp.enc");
        bulk(bufferOf(text), raw.size(), count, "", decodeQp, [&](PB_BUFFER *out) {
            if (!equals(out, raw))
                fail("decoded bytes differ from qp.txt");
        });
    } else if (w == "ct-parse") {
        pbModuleStartup(mimeModule());
        ctParse(dir, count);
        pbModuleShutdown(mimeModule());
    } else if (w == "mp-sip" || w == "mp-big" || w == "mp-pack" || w == "msg-read") {
        pbModuleStartup(mimeModule());
        MIME_OPTIONS *mo = mimeOptionsCreate();
        (w == "mp-sip" ? mpSip : w == "mp-big" ? mpBig : w == "mp-pack" ? mpPack : msgRead)(dir, count, mo);
        mimeOptionsRelease(mo);
        pbModuleShutdown(mimeModule());
    } else {
        std::printf("SKIP %s not built yet\n", workload);
    }
    return 0;
}
