// The tolerant reader on hostile shapes from 64 KiB to 16 MiB, in bytes per
// second: a rate that holds as the size doubles is time that grows linearly.
// Each shape is read with the default limits (as a user reads it) and with no
// limits (the reader's own algorithm, limits aside):
//   parts       a multipart body of tiny parts
//   fields      a header block of short fields
//   nesting     multipart bodies nested in each other, a boundary per level
//   long-line   one header field line as long as the message
//   bare-lf     a multipart body of LF line ends only
//   delimiter   a multipart body of lines that start with the delimiter and carry more
//   base64      a base64 body of characters outside the alphabet
#include <benchmark/benchmark.h>
#include <mime/mime.h>
#include <pb/pb_ref.hpp>

#include <string>

namespace {

using pb::adopt;
using pb::Ref;

struct Module {
    Module() { pbModuleStartup(mimeModule()); }
    ~Module() { pbModuleShutdown(mimeModule()); }
} module;

std::string repeated(const std::string &head, const std::string &unit, size_t size, const std::string &tail = "")
{
    std::string s = head;
    while (s.size() + unit.size() + tail.size() <= size)
        s += unit;
    return s + tail;
}

std::string nested(size_t size)
{
    std::string s;
    for (size_t level = 0; s.size() < size; ++level) {
        std::string b = "b" + std::to_string(level);
        s += "Content-Type: multipart/mixed; boundary=" + b + "\r\n\r\n--" + b + "\r\n";
    }
    return s;
}

std::string shape(int which, size_t size)
{
    const std::string multipart = "Content-Type: multipart/mixed; boundary=b\r\n\r\n";
    switch (which) {
    case 0:
        return repeated(multipart, "--b\r\nContent-Type: text/plain\r\n\r\nx\r\n", size, "--b--\r\n");
    case 1:
        return repeated("", "X-F: v\r\n", size, "\r\nbody");
    case 2:
        return nested(size);
    case 3:
        return repeated("Subject: ", "a", size, "\r\n\r\nbody");
    case 4:
        return repeated("Content-Type: multipart/mixed; boundary=b\n\n--b\n\n", "x\n", size, "--b--\n");
    case 5:
        return repeated(multipart + "--b\r\n\r\n", "--bX\r\n", size, "--b--\r\n");
    default:
        return repeated("Content-Transfer-Encoding: base64\r\n\r\n", "QUJD*", size);
    }
}

const char *const kShapes[] = {"parts", "fields", "nesting", "long-line", "bare-lf", "delimiter", "base64"};

void read(benchmark::State &state, int which, bool limited)
{
    std::string text = shape(which, static_cast<size_t>(state.range(0)));
    Ref<PB_BUFFER> input = adopt(pbBufferCreateFromBytesCopy(text.data(), static_cast<PB_INT>(text.size())));
    Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
    MIME_READ_LIMITS limits;
    mimeReadLimitsSetDefaults(&limits);
    if (!limited)
        limits = {1000, 1000000000, 1000000000, 1000000000}; // depth stays bounded: it is stack
    for (auto _ : state)
        pbObjRelease(mimePartObj(mimeMessageRead(input.get(), mo.get(), &limits)));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
    state.SetLabel(kShapes[which]);
}

void registerAll()
{
    for (int which = 0; which < static_cast<int>(std::size(kShapes)); ++which)
        for (bool limited : {true, false})
            benchmark::RegisterBenchmark(
                (std::string("MessageRead/") + kShapes[which] + (limited ? "/limits" : "/unlimited")).c_str(),
                [which, limited](benchmark::State &state) { read(state, which, limited); })
                ->RangeMultiplier(2)
                ->Range(64 << 10, 16 << 20)
                ->Unit(benchmark::kMillisecond);
}

const int registered = (registerAll(), 0);

} // namespace
