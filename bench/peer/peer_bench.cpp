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
        out += ";" + utf8(mimeContentTypeParameterKeyAt(type, i)) + "=" + utf8(mimeContentTypeParameterValueAt(type, i));
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
    } else {
        std::printf("SKIP %s not built yet\n", workload);
    }
    return 0;
}
