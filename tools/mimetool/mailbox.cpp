#include "mailbox.hpp"

#include "cli.hpp"
#include "io.hpp"
#include "text.hpp"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mimetool {
namespace {

constexpr size_t kTake = 16;         // messages a worker takes at once
constexpr size_t kBatchPerCore = 64; // messages read ahead of the one written, for each core

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

// b[from, to) as a new buffer, with one ">" taken from each line that is
// ">"s and "From ".
Ref<PB_BUFFER> unquoted(const PB_BYTE *b, PB_INT from, PB_INT to)
{
    Ref<PB_BUFFER> out(pbBufferCreate());
    PB_INT copied = from;
    // Each "F" found at once (memchr: it is rare in mail), then: "From " with
    // only ">"s before it on its line?
    for (PB_INT at = from; at < to;) {
        const void *hit = std::memchr(b + at, 'F', static_cast<size_t>(to - at));
        if (!hit)
            break;
        const PB_INT from5 = static_cast<const PB_BYTE *>(hit) - b;
        if (!startsWithFrom(b, to, from5) || from5 == from || b[from5 - 1] != '>') {
            at = from5 + 1;
            continue;
        }
        PB_INT line = from5;
        while (line > from && b[line - 1] == '>')
            --line;
        if (line < from5 && (line == from || b[line - 1] == '\n')) {
            pbBufferAppendBytes(out.address(), b + copied, line - copied);
            copied = line + 1;
        }
        at = from5 + 5;
    }
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
    std::erase_if(part.defects, [](const Defect &d) { return d.code == MIME_DEFECT_LINE_END_BARE; });
    for (Part &child : part.parts)
        dropBareLineEnds(child);
}

void countParts(const Part &part, Tally &tally)
{
    ++tally.parts;
    for (const Defect &d : part.defects)
        ++tally.defects[static_cast<size_t>(d.code)];
    for (const Part &child : part.parts)
        countParts(child, tally);
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
    for (PB_INT from = at > 0 ? at : 1; from < n;) {
        // An "F" is rare in mail, so memchr for it runs at memory speed.
        const void *hit = std::memchr(b + from, 'F', static_cast<size_t>(n - from));
        if (!hit)
            return false;
        const PB_INT lf = static_cast<const PB_BYTE *>(hit) - b - 1;
        if (b[lf] != '\n' || !startsWithFrom(b, n, lf + 1)) {
            from = lf + 2;
            continue;
        }
        const PB_INT empty = lf >= 1 && b[lf - 1] == '\n'                        ? lf
                             : lf >= 2 && b[lf - 1] == '\r' && b[lf - 2] == '\n' ? lf - 1
                                                                                 : -1;
        if (empty >= at) {
            sep = empty;
            line = lf + 1;
            return true;
        }
        from = lf + 2;
    }
    return false;
}

// Where the message starts that follows the "From " line at b[line], and
// where it ends: at end, the empty line before the next "From " line (end < 0:
// at the end of the content, before an empty last line).
std::pair<PB_INT, PB_INT> messageRange(const PB_BYTE *b, PB_INT n, PB_INT line, PB_INT end)
{
    const PB_INT start = nextLine(b, n, line);
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
    return {start, end < start ? start : end};
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
        const bool last = !nextFromLine(b, n, nextLine(b, n, line), nextSep, nextLineAt);
        const auto [start, end] = messageRange(b, n, line, last ? -1 : nextSep);
        messages.push_back(unquoted(b, start, end));
        if (last)
            return messages;
        line = nextLineAt;
    }
}

MboxReader::MboxReader(const std::string &path)
    : fd_(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)), path_(path)
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
    constexpr size_t kStep = 1 << 20;
    // The bytes before the current message are done with: move the rest to the
    // front, so that the buffer is reused and grows only for a larger message.
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<ptrdiff_t>(start_));
    start_ = 0;
    const size_t had = buffer_.size();
    buffer_.resize(had + kStep);
    ssize_t got;
    do
        got = read(fd_, buffer_.data() + had, kStep);
    while (got < 0 && errno == EINTR);
    buffer_.resize(had + static_cast<size_t>(got > 0 ? got : 0));
    if (got < 0)
        throw InputError{"cannot read " + path_ + ": " + std::strerror(errno)};
    return got > 0;
}

bool MboxReader::next(Ref<PB_BUFFER> &message)
{
    for (;;) {
        const PB_BYTE *b = buffer_.data() + start_;
        const PB_INT n = static_cast<PB_INT>(buffer_.size() - start_);
        PB_INT sep = 0, line = 0;
        // The message whose "From " line starts the unread bytes, once the next
        // one is read; the scan goes on where the last one stopped.
        const PB_INT from = std::max(scanned_, n > 0 ? nextLine(b, n, 0) : 0);
        if (n > 0 && nextFromLine(b, n, from, sep, line)) {
            const auto [begin, end] = messageRange(b, n, 0, sep);
            message = Ref<PB_BUFFER>(pbBufferCreateFromBytesCopy(b + begin, end - begin));
            start_ += static_cast<size_t>(line);
            scanned_ = 0;
            return true;
        }
        // Resume at the last whole line: it may be the empty one before a "From ".
        PB_INT last = n;
        while (last > 0 && b[last - 1] != '\n')
            --last;
        PB_INT resume = last > 0 ? last - 1 : 0;
        while (resume > 0 && b[resume - 1] != '\n')
            --resume;
        scanned_ = resume;
        if (!readMore()) {
            const PB_BYTE *rest = buffer_.data();
            const PB_INT left = static_cast<PB_INT>(buffer_.size());
            if (left == 0 || !startsWithFrom(rest, left, 0))
                return false;
            const auto [begin, end] = messageRange(rest, left, 0, -1);
            message = Ref<PB_BUFFER>(pbBufferCreateFromBytesCopy(rest + begin, end - begin));
            start_ = buffer_.size();
            return true;
        }
    }
}

Ref<PB_BUFFER> mboxUnquoted(PB_BUFFER *message)
{
    Ref<PB_BUFFER> out = unquoted(pbBufferBacking(message), 0, pbBufferLength(message));
    if (pbBufferLength(out.get()) == pbBufferLength(message)) // nothing was quoted
        out.reset(pbBufferRetain(message));
    return out;
}

std::vector<std::string> maildirFiles(const std::string &dir)
{
    std::vector<std::string> files;
    listFiles(dir + "/cur", files);
    listFiles(dir + "/new", files);
    return files;
}

Mailbox openMailbox(const std::string &path)
{
    if (isMaildir(path)) {
        auto files = std::make_shared<std::vector<std::string>>(maildirFiles(path));
        auto index = std::make_shared<size_t>(0);
        return {[files, index](Ref<PB_BUFFER> &message) {
                    if (*index == files->size())
                        return false;
                    message = readFile((*files)[(*index)++]);
                    return true;
                },
                false};
    }
    char head[5] = {};
    const int fd = path == "-" ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool mbox = fd >= 0 && read(fd, head, sizeof head) == 5 && std::memcmp(head, "From ", 5) == 0;
    if (fd >= 0)
        close(fd);
    if (!mbox)
        return {};
    auto reader = std::make_shared<MboxReader>(path);
    return {[reader](Ref<PB_BUFFER> &message) { return reader->next(message); }, true};
}

void Tally::add(const Part &message, PB_INT size)
{
    ++messages;
    bytes += size;
    countParts(message, *this);
}

void Tally::merge(const Tally &other)
{
    messages += other.messages;
    parts += other.parts;
    bytes += other.bytes;
    for (size_t code = 0; code < defects.size(); ++code)
        defects[code] += other.defects[code];
}

std::string Tally::line() const
{
    long total = 0;
    std::string detail;
    for (size_t code = 0; code < defects.size(); ++code) {
        if (!defects[code])
            continue;
        total += defects[code];
        detail += (detail.empty() ? "" : ", ") + std::string(mimeDefectCodeName(static_cast<PB_INT>(code))) + " " +
                  std::to_string(defects[code]);
    }
    return std::to_string(messages) + " messages, " + std::to_string(parts) + " parts, " + byteCount(bytes) + ", " +
           std::to_string(total) + " defects" + (detail.empty() ? "" : " (" + detail + ")");
}

namespace {

// One message read and worked on, waiting for its turn to be written.
struct Done {
    Output output;
    Tally tally; // of this message alone
};

} // namespace

Tally readMailbox(const Mailbox &mailbox, const std::function<Output(size_t, const Part &)> &work)
{
    const std::function<bool(Ref<PB_BUFFER> &)> &next = mailbox.next;
    const bool progress = isatty(STDERR_FILENO);
    const unsigned workers = std::max(1u, std::thread::hardware_concurrency());
    const size_t window = kBatchPerCore * workers; // messages ahead of the one written next
    std::mutex mutex;
    std::condition_variable changed;
    size_t taken = 0, written = 0;
    bool exhausted = false, stopped = false;
    std::map<size_t, Done> done;
    // Each worker takes the next few messages (reading the mailbox in turn),
    // reads their trees and works on them, all on its own core, and hands the
    // results over together: the fewer the meetings, the less the waiting.
    auto worker = [&] {
        Ref<MIME_OPTIONS> options = defaultOptions();
        for (;;) {
            std::vector<Ref<PB_BUFFER>> messages;
            size_t first;
            {
                std::unique_lock<std::mutex> lock(mutex);
                changed.wait(lock, [&] { return stopped || exhausted || taken - written < window; });
                if (stopped || exhausted)
                    return;
                first = taken;
                for (Ref<PB_BUFFER> message; messages.size() < kTake && next(message);)
                    messages.push_back(std::move(message));
                taken += messages.size();
                exhausted = messages.size() < kTake;
                if (messages.empty()) {
                    changed.notify_all();
                    return;
                }
            }
            std::vector<Done> results(messages.size());
            for (size_t k = 0; k < messages.size(); ++k) {
                if (mailbox.quoted)
                    messages[k] = mboxUnquoted(messages[k].get());
                Part tree = readMail(messages[k].get(), options.get(), std::to_string(first + k + 1) + ":");
                dropBareLineEnds(tree);
                results[k].tally.add(tree, pbBufferLength(messages[k].get()));
                try {
                    results[k].output = work(first + k, tree);
                } catch (const InputError &error) {
                    results[k].output.failure = error.message;
                }
            }
            std::lock_guard<std::mutex> lock(mutex);
            for (size_t k = 0; k < results.size(); ++k)
                done.emplace(first + k, std::move(results[k]));
            changed.notify_all();
        }
    };
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < workers; ++t)
        threads.emplace_back(worker);
    Tally tally;
    std::string failure;
    for (;;) {
        Done result;
        {
            std::unique_lock<std::mutex> lock(mutex);
            changed.wait(lock, [&] { return done.count(written) || (exhausted && written == taken); });
            if (!done.count(written))
                break;
            result = std::move(done[written]);
            done.erase(written);
        }
        std::fputs(result.output.warnings.c_str(), stderr);
        if (!result.output.failure.empty()) {
            failure = "message " + std::to_string(written + 1) + ": " + result.output.failure;
            break;
        }
        writeOut(result.output.text);
        tally.merge(result.tally);
        std::lock_guard<std::mutex> lock(mutex);
        if (++written % kTake == 0 || written == taken)
            changed.notify_all();
        if (progress && written % 64 == 0)
            std::fprintf(stderr, "\rmimetool: %zu messages", written);
    }
    {
        std::lock_guard<std::mutex> lock(mutex);
        stopped = true;
        changed.notify_all();
    }
    for (std::thread &t : threads)
        t.join();
    if (progress)
        std::fputs("\r\033[K", stderr);
    if (!failure.empty())
        throw InputError{failure};
    return tally;
}

} // namespace mimetool
