#include "mailbox.hpp"

#include "cli.hpp"
#include "io.hpp"
#include "text.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mimetool {
namespace {

constexpr size_t kBatchPerCore = 32; // messages read at once, for each core

bool startsWithFrom(const PB_BYTE *b, PB_INT n, PB_INT at)
{
    return n - at >= 5 && std::memcmp(b + at, "From ", 5) == 0;
}

// The next line start after at, or n.
PB_INT nextLine(const PB_BYTE *b, PB_INT n, PB_INT at)
{
    const void *lf = std::memchr(b + at, '\n', static_cast<size_t>(n - at));
    return lf ? static_cast<const PB_BYTE *>(lf) - b + 1 : n;
}

// b[from, to) with one ">" taken from each line that is ">"s and "From ".
Ref<PB_BUFFER> unquoted(PB_BUFFER *content, PB_INT from, PB_INT to)
{
    const PB_BYTE *b = pbBufferBacking(content);
    Ref<PB_BUFFER> out(pbBufferCreate());
    PB_INT copied = from;
    // Each "From " found at once (memmem), then: only ">"s before it on its line?
    for (PB_INT at = from; at < to;) {
        const void *hit = memmem(b + at, static_cast<size_t>(to - at), "From ", 5);
        if (!hit)
            break;
        const PB_INT from5 = static_cast<const PB_BYTE *>(hit) - b;
        PB_INT line = from5;
        while (line > from && b[line - 1] == '>')
            --line;
        if (line < from5 && (line == from || b[line - 1] == '\n')) {
            pbBufferAppendBytes(out.address(), b + copied, line - copied);
            copied = line + 1;
        }
        at = from5 + 5;
    }
    if (copied == from)
        return Ref<PB_BUFFER>(pbBufferRead(content, from, to - from));
    pbBufferAppendBytes(out.address(), b + copied, to - copied);
    return out;
}

void listFiles(const std::string &dir, std::vector<std::string> &out)
{
    DIR *d = opendir(dir.c_str());
    if (!d)
        return;
    std::vector<std::string> names;
    while (const dirent *entry = readdir(d)) {
        struct stat status;
        const std::string path = dir + "/" + entry->d_name;
        if (entry->d_name[0] != '.' && stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode))
            names.push_back(path);
    }
    closedir(d);
    std::sort(names.begin(), names.end());
    out.insert(out.end(), names.begin(), names.end());
}

bool isDirectory(const std::string &path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Mailboxes store mail with the line ends of their system: LF alone is no
// departure there.
void dropBareLineEnds(Part &part)
{
    std::erase_if(part.defects, [](const Defect &d) { return d.code == "line-end-bare"; });
    for (Part &child : part.parts)
        dropBareLineEnds(child);
}

void countParts(const Part &part, Tally &tally, std::map<std::string, long> &codes)
{
    ++tally.parts;
    for (const Defect &d : part.defects)
        ++codes[d.code];
    for (const Part &child : part.parts)
        countParts(child, tally, codes);
}

} // namespace

bool isMaildir(const std::string &path)
{
    return isDirectory(path + "/cur") || isDirectory(path + "/new");
}

bool isMbox(PB_BUFFER *content)
{
    return startsWithFrom(pbBufferBacking(content), pbBufferLength(content), 0);
}

namespace {

// The next "From " line at or after at that starts the file or follows an
// empty line, and where that empty line starts (sep == line at the start);
// false when b[at, n) holds none.
bool nextFromLine(const PB_BYTE *b, PB_INT n, PB_INT at, PB_INT &sep, PB_INT &line)
{
    if (at == 0 && startsWithFrom(b, n, 0)) {
        sep = line = 0;
        return true;
    }
    // "From " after a line end that ends an empty line: LF LF or LF CR LF.
    for (PB_INT from = at > 0 ? at - 1 : 0; from < n;) {
        const void *hit = memmem(b + from, static_cast<size_t>(n - from), "\nFrom ", 6);
        if (!hit)
            return false;
        const PB_INT lf = static_cast<const PB_BYTE *>(hit) - b;
        const PB_INT empty = lf >= 1 && b[lf - 1] == '\n'                        ? lf
                             : lf >= 2 && b[lf - 1] == '\r' && b[lf - 2] == '\n' ? lf - 1
                                                                                 : -1;
        if (empty >= at) {
            sep = empty;
            line = lf + 1;
            return true;
        }
        from = lf + 1;
    }
    return false;
}

// The message that starts after the "From " line at b[line] and ends at the
// next one (end < 0: at the end of the content, before an empty last line).
Ref<PB_BUFFER> messageAt(PB_BUFFER *content, PB_INT line, PB_INT end)
{
    const PB_BYTE *b = pbBufferBacking(content);
    const PB_INT n = pbBufferLength(content), start = nextLine(b, n, line);
    if (end < 0) {
        end = n;
        if (end > start && b[end - 1] == '\n') { // a last empty line is the separator
            PB_INT last = end - 1 > start && b[end - 2] == '\r' ? end - 2 : end - 1;
            PB_INT lineStart = last;
            while (lineStart > start && b[lineStart - 1] != '\n')
                --lineStart;
            end = lineStart == last && lineStart > start ? lineStart : end;
        }
    }
    return unquoted(content, start, end < start ? start : end);
}

} // namespace

std::vector<Ref<PB_BUFFER>> mboxMessages(PB_BUFFER *content)
{
    const PB_BYTE *b = pbBufferBacking(content);
    const PB_INT n = pbBufferLength(content);
    std::vector<Ref<PB_BUFFER>> messages;
    PB_INT sep = 0, line = 0;
    if (!nextFromLine(b, n, 0, sep, line) || line != 0)
        return messages;
    for (PB_INT nextSep = 0, nextLineAt = 0;;) {
        if (!nextFromLine(b, n, nextLine(b, n, line), nextSep, nextLineAt)) {
            messages.push_back(messageAt(content, line, -1));
            return messages;
        }
        messages.push_back(messageAt(content, line, nextSep));
        line = nextLineAt;
    }
}

MboxReader::MboxReader(const std::string &path)
    : fd_(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)), path_(path),
      pending_(pbBufferCreate())
{
    if (fd_ < 0)
        throw InputError{"cannot open " + path + ": " + std::strerror(errno)};
}

MboxReader::~MboxReader()
{
    if (fd_ != STDIN_FILENO)
        close(fd_);
}

bool MboxReader::readMore()
{
    constexpr PB_INT kStep = 1 << 20;
    PB_BYTE *space = pbBufferAppendSpace(pending_.address(), kStep);
    ssize_t got;
    do
        got = read(fd_, space, kStep);
    while (got < 0 && errno == EINTR);
    pbBufferDelTrailing(pending_.address(), kStep - (got > 0 ? got : 0));
    if (got < 0)
        throw InputError{"cannot read " + path_ + ": " + std::strerror(errno)};
    return got > 0;
}

bool MboxReader::next(Ref<PB_BUFFER> &message)
{
    for (;;) {
        const PB_BYTE *b = pbBufferBacking(pending_.get());
        const PB_INT n = pbBufferLength(pending_.get());
        PB_INT sep = 0, line = 0;
        // The message whose "From " line starts pending, once the next one is
        // read; the scan goes on where the last one stopped.
        const PB_INT from = std::max(scanned_, n > 0 ? nextLine(b, n, 0) : 0);
        if (n > 0 && nextFromLine(b, n, from, sep, line)) {
            message = messageAt(pending_.get(), 0, sep);
            pending_.reset(pbBufferRead(pending_.get(), line, n - line));
            scanned_ = 0;
            return true;
        }
        // Resume at the last whole line: it may be the empty one before a "From ".
        PB_INT last = n;
        while (last > 0 && b[last - 1] != '\n')
            --last;
        PB_INT start = last > 0 ? last - 1 : 0;
        while (start > 0 && b[start - 1] != '\n')
            --start;
        scanned_ = start;
        if (!readMore()) { // nothing appended: pending is as it was
            if (n == 0 || !startsWithFrom(pbBufferBacking(pending_.get()), n, 0))
                return false;
            message = messageAt(pending_.get(), 0, -1);
            pending_.reset(pbBufferCreate());
            return true;
        }
    }
}

std::vector<std::string> maildirFiles(const std::string &dir)
{
    std::vector<std::string> files;
    listFiles(dir + "/cur", files);
    listFiles(dir + "/new", files);
    return files;
}

std::function<bool(Ref<PB_BUFFER> &)> openMailbox(const std::string &path)
{
    if (isMaildir(path)) {
        auto files = std::make_shared<std::vector<std::string>>(maildirFiles(path));
        auto index = std::make_shared<size_t>(0);
        return [files, index](Ref<PB_BUFFER> &message) {
            if (*index == files->size())
                return false;
            message = readFile((*files)[(*index)++]);
            return true;
        };
    }
    char head[5] = {};
    const int fd = path == "-" ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool mbox = fd >= 0 && read(fd, head, sizeof head) == 5 && std::memcmp(head, "From ", 5) == 0;
    if (fd >= 0)
        close(fd);
    if (!mbox)
        return {};
    auto reader = std::make_shared<MboxReader>(path);
    return [reader](Ref<PB_BUFFER> &message) { return reader->next(message); };
}

void Tally::add(const Part &message, PB_INT size)
{
    ++messages;
    bytes += size;
    std::map<std::string, long> codes(defects.begin(), defects.end());
    countParts(message, *this, codes);
    defects.assign(codes.begin(), codes.end());
}

std::string Tally::line() const
{
    long total = 0;
    std::string detail;
    for (const auto &[code, count] : defects) {
        total += count;
        detail += (detail.empty() ? "" : ", ") + code + " " + std::to_string(count);
    }
    return std::to_string(messages) + " messages, " + std::to_string(parts) + " parts, " + byteCount(bytes) + ", " +
           std::to_string(total) + " defects" + (detail.empty() ? "" : " (" + detail + ")");
}

Tally readMailbox(const std::function<bool(Ref<PB_BUFFER> &)> &next,
                  const std::function<Output(size_t, const Part &)> &work)
{
    const bool progress = isatty(STDERR_FILENO);
    const unsigned workers = std::max(1u, std::thread::hardware_concurrency());
    const size_t batch = kBatchPerCore * workers;
    Tally tally;
    for (size_t first = 0;; first += batch) {
        std::vector<Ref<PB_BUFFER>> messages;
        for (Ref<PB_BUFFER> message; messages.size() < batch && next(message);)
            messages.push_back(std::move(message));
        if (messages.empty())
            break;
        std::vector<Part> trees(messages.size());
        std::vector<Output> outputs(messages.size());
        std::atomic<size_t> nextIndex{0};
        auto run = [&] {
            Ref<MIME_OPTIONS> options = defaultOptions();
            for (size_t i; (i = nextIndex.fetch_add(1)) < messages.size();) {
                trees[i] = readMail(messages[i].get(), options.get(), std::to_string(first + i + 1) + ":");
                dropBareLineEnds(trees[i]);
                try {
                    outputs[i] = work(first + i, trees[i]);
                } catch (const InputError &error) {
                    outputs[i].failure = error.message;
                }
            }
        };
        std::vector<std::thread> threads;
        for (unsigned t = 1; t < workers && t < messages.size(); ++t)
            threads.emplace_back(run);
        run();
        for (std::thread &t : threads)
            t.join();
        for (size_t i = 0; i < messages.size(); ++i) {
            std::fputs(outputs[i].warnings.c_str(), stderr);
            if (!outputs[i].failure.empty())
                throw InputError{"message " + std::to_string(first + i + 1) + ": " + outputs[i].failure};
            writeOut(outputs[i].text);
            tally.add(trees[i], pbBufferLength(messages[i].get()));
        }
        if (progress)
            std::fprintf(stderr, "\rmimetool: %zu messages", first + messages.size());
    }
    if (progress)
        std::fputs("\r\033[K", stderr);
    return tally;
}

} // namespace mimetool
