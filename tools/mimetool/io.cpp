#include "io.hpp"

#include "cli.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace mimetool {
namespace {

constexpr PB_INT kReadStep = 1 << 16;

[[noreturn]] void failed(const std::string &what)
{
    throw InputError{what + ": " + std::strerror(errno)};
}

} // namespace

Ref<PB_BUFFER> readFile(const std::string &path)
{
    const bool standardInput = path == "-";
    const int fd = standardInput ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        failed("cannot open " + path);
    Ref<PB_BUFFER> content = adopt(pbBufferCreate());
    for (;;) {
        PB_BYTE *space = pbBufferAppendSpace(content.address(), kReadStep);
        const ssize_t got = read(fd, space, kReadStep);
        pbBufferDelTrailing(content.address(), kReadStep - (got > 0 ? got : 0));
        if (got == 0)
            break;
        if (got < 0 && errno != EINTR) {
            const int error = errno;
            if (!standardInput)
                close(fd);
            errno = error;
            failed("cannot read " + path);
        }
    }
    if (!standardInput)
        close(fd);
    return content;
}

Ref<PB_BUFFER> withWireLineEnds(Ref<PB_BUFFER> content)
{
    const PB_BYTE *bytes = pbBufferBacking(content.get());
    const PB_INT length = pbBufferLength(content.get());
    if (length == 0 || std::memchr(bytes, '\r', static_cast<size_t>(length)) != nullptr)
        return content;
    Ref<PB_BUFFER> converted = adopt(pbBufferCreate());
    PB_INT start = 0;
    for (;;) {
        const void *lf = std::memchr(bytes + start, '\n', static_cast<size_t>(length - start));
        const PB_INT end = lf ? static_cast<const PB_BYTE *>(lf) - bytes : length;
        pbBufferAppendBytes(converted.address(), bytes + start, end - start);
        if (!lf)
            return converted;
        pbBufferAppendBytes(converted.address(), "\r\n", 2);
        start = end + 1;
    }
}

void writeOut(std::string_view text)
{
    if (!text.empty() && std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        failed("cannot write the output");
}

void writeOut(PB_BUFFER *bytes)
{
    writeOut(std::string_view(reinterpret_cast<const char *>(pbBufferBacking(bytes)),
                              static_cast<size_t>(pbBufferLength(bytes))));
}

} // namespace mimetool
