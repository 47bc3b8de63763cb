#include "mailbox.hpp"

#include "cli.hpp"
#include "io.hpp"
#include "text.hpp"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <map>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mimetool {
namespace {

constexpr size_t kBatch = 256; // messages read before their trees are used

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

bool isEmptyLine(const PB_BYTE *b, PB_INT at, PB_INT next)
{
    return next - at == 1 || (next - at == 2 && b[at] == '\r');
}

// b[from, to) with one ">" taken from each line that is ">"s and "From ".
Ref<PB_BUFFER> unquoted(PB_BUFFER *content, PB_INT from, PB_INT to)
{
    const PB_BYTE *b = pbBufferBacking(content);
    Ref<PB_BUFFER> out(pbBufferCreate());
    PB_INT copied = from;
    for (PB_INT at = from; at < to; at = nextLine(b, to, at)) {
        PB_INT quote = at;
        while (quote < to && b[quote] == '>')
            ++quote;
        if (quote > at && startsWithFrom(b, to, quote)) {
            pbBufferAppendBytes(out.address(), b + copied, at - copied);
            copied = at + 1;
        }
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

std::vector<Ref<PB_BUFFER>> mboxMessages(PB_BUFFER *content)
{
    const PB_BYTE *b = pbBufferBacking(content);
    const PB_INT n = pbBufferLength(content);
    std::vector<Ref<PB_BUFFER>> messages;
    PB_INT start = -1, lastEmpty = -1; // where the message and its last empty line start
    bool afterEmpty = true;
    for (PB_INT at = 0; at < n;) {
        const PB_INT next = nextLine(b, n, at);
        if (afterEmpty && startsWithFrom(b, n, at)) {
            if (start >= 0)
                messages.push_back(unquoted(content, start, lastEmpty >= start ? lastEmpty : at));
            start = next;
        }
        afterEmpty = isEmptyLine(b, at, next);
        if (afterEmpty)
            lastEmpty = at;
        at = next;
    }
    if (start >= 0) // the last message ends before an empty line that ends the file
        messages.push_back(unquoted(content, start, afterEmpty && lastEmpty >= start ? lastEmpty : n));
    return messages;
}

std::vector<std::string> maildirFiles(const std::string &dir)
{
    std::vector<std::string> files;
    listFiles(dir + "/cur", files);
    listFiles(dir + "/new", files);
    return files;
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

Tally readMailbox(size_t count, const std::function<Ref<PB_BUFFER>(size_t)> &load,
                  const std::function<void(size_t, const Part &)> &use)
{
    const bool progress = isatty(STDERR_FILENO);
    const unsigned workers = std::max(1u, std::thread::hardware_concurrency());
    Tally tally;
    for (size_t first = 0; first < count; first += kBatch) {
        const size_t end = std::min(count, first + kBatch);
        std::vector<Part> trees(end - first);
        std::vector<PB_INT> sizes(end - first);
        std::atomic<size_t> nextIndex{first};
        std::vector<std::string> failures(end - first);
        auto work = [&] {
            Ref<MIME_OPTIONS> options = defaultOptions();
            for (size_t i; (i = nextIndex.fetch_add(1)) < end;) {
                try {
                    Ref<PB_BUFFER> content = load(i);
                    sizes[i - first] = pbBufferLength(content.get());
                    trees[i - first] = readMail(content.get(), options.get(), std::to_string(i + 1) + ":");
                    dropBareLineEnds(trees[i - first]);
                } catch (const InputError &error) {
                    failures[i - first] = error.message;
                }
            }
        };
        std::vector<std::thread> threads;
        for (unsigned t = 1; t < workers && t < end - first; ++t)
            threads.emplace_back(work);
        work();
        for (std::thread &t : threads)
            t.join();
        for (size_t i = first; i < end; ++i) {
            if (!failures[i - first].empty())
                throw InputError{"message " + std::to_string(i + 1) + ": " + failures[i - first]};
            use(i, trees[i - first]);
            tally.add(trees[i - first], sizes[i - first]);
        }
        if (progress)
            std::fprintf(stderr, "\rmimetool: %zu/%zu messages", end, count);
    }
    if (progress)
        std::fputs("\r\033[K", stderr);
    return tally;
}

} // namespace mimetool
