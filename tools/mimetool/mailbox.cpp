#include "mailbox.hpp"

#include "cli.hpp"
#include "io.hpp"
#include "text.hpp"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

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
    Ref<PB_BUFFER> out = adopt(pbBufferCreate());
    PB_INT copied = from;
    // Each ">" found at once (memchr: outside quoted replies it is rare in
    // mail), then: does its line start with ">"s and "From "?
    for (PB_INT at = from; at < to;) {
        const void *hit = std::memchr(b + at, '>', static_cast<size_t>(to - at));
        if (!hit)
            break;
        const PB_INT quote = static_cast<const PB_BYTE *>(hit) - b;
        PB_INT quotes = quote;
        while (quotes < to && b[quotes] == '>')
            ++quotes;
        if ((quote == from || b[quote - 1] == '\n') && startsWithFrom(b, to, quotes)) {
            pbBufferAppendBytes(out.address(), b + copied, quote - copied);
            copied = quote + 1;
        }
        at = quotes;
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

// The first line end at or after at that an "F" follows, or n. Lines
// starting with "F" are rare in mail, but an "F" alone is not (base64 has one
// in 64 characters): the pairs are compared 32 at a time.
PB_INT nextLineStartingWithF(const PB_BYTE *b, PB_INT n, PB_INT at)
{
    using Lanes = signed char __attribute__((vector_size(16)));
    const Lanes lf = {'\n', '\n', '\n', '\n', '\n', '\n', '\n', '\n', '\n', '\n', '\n', '\n', '\n', '\n', '\n', '\n'};
    const Lanes f = {'F', 'F', 'F', 'F', 'F', 'F', 'F', 'F', 'F', 'F', 'F', 'F', 'F', 'F', 'F', 'F'};
    for (; at + 33 <= n; at += 32) {
        Lanes here[2], after[2];
        std::memcpy(here, b + at, sizeof here);
        std::memcpy(after, b + at + 1, sizeof after);
        const Lanes hits = ((here[0] == lf) & (after[0] == f)) | ((here[1] == lf) & (after[1] == f));
        uint64_t words[2];
        std::memcpy(words, &hits, sizeof words);
        if (words[0] | words[1])
            break;
    }
    for (; at + 1 < n; ++at)
        if (b[at] == '\n' && b[at + 1] == 'F')
            return at;
    return n;
}

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
    for (PB_INT from = at > 0 ? at - 1 : 0;;) {
        const PB_INT lf = nextLineStartingWithF(b, n, from);
        if (lf == n)
            return false;
        if (!startsWithFrom(b, n, lf + 1)) {
            from = lf + 1;
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
        from = lf + 1;
    }
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

MboxReader::MboxReader(const std::string &path, size_t step)
    : fd_(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)), path_(path), step_(step),
      block_(newBlock(0))
{
    if (fd_ < 0)
        throw InputError{"cannot open " + path + ": " + std::strerror(errno)};
}

MboxReader::~MboxReader()
{
    if (fd_ != STDIN_FILENO)
        close(fd_);
}

std::shared_ptr<MboxBlock> MboxReader::newBlock(size_t capacity)
{
    constexpr size_t kSpares = 4;
    std::unique_ptr<MboxBlock> block;
    {
        std::lock_guard<std::mutex> lock(spares_->mutex);
        auto &spare = spares_->blocks;
        auto fits = std::find_if(spare.begin(), spare.end(), [&](const auto &b) { return b->capacity >= capacity; });
        if (fits != spare.end()) {
            block = std::move(*fits);
            spare.erase(fits);
        }
    }
    if (!block) { // blocks of one size at least, so that spares fit
        block = std::make_unique<MboxBlock>();
        block->capacity = std::max(capacity, 4 * step_);
        block->bytes = std::make_unique_for_overwrite<PB_BYTE[]>(block->capacity);
    }
    block->size = 0;
    // The last message to leave the block hands it back.
    return std::shared_ptr<MboxBlock>(block.release(), [spares = spares_](MboxBlock *left) {
        std::unique_ptr<MboxBlock> owned(left);
        std::lock_guard<std::mutex> lock(spares->mutex);
        if (spares->blocks.size() < kSpares)
            spares->blocks.push_back(std::move(owned));
    });
}

bool MboxReader::readMore()
{
    // Bytes that a message was handed out of stay where they are (a worker
    // may be reading them): when the block is full, the current message's
    // bytes go into a new one, twice their size so that a long message is
    // copied a bounded number of times.
    if (block_->capacity - block_->size < step_) {
        const size_t left = block_->size - start_;
        std::shared_ptr<MboxBlock> fresh = newBlock(std::max(2 * left, left + step_));
        if (left)
            std::memcpy(fresh->bytes.get(), block_->bytes.get() + start_, left);
        fresh->size = left;
        block_ = std::move(fresh);
        start_ = 0;
    }
    ssize_t got;
    do
        got = read(fd_, block_->bytes.get() + block_->size, block_->capacity - block_->size);
    while (got < 0 && errno == EINTR);
    if (got < 0)
        throw InputError{"cannot read " + path_ + ": " + std::strerror(errno)};
    block_->size += static_cast<size_t>(got);
    return got > 0;
}

bool MboxReader::handOut(StoredMessage &message, PB_INT sep, PB_INT next)
{
    const PB_BYTE *b = block_->bytes.get() + start_;
    const auto [begin, end] = messageRange(b, static_cast<PB_INT>(block_->size - start_), 0, sep);
    message = {block_, start_ + static_cast<size_t>(begin), start_ + static_cast<size_t>(end), {}};
    start_ += static_cast<size_t>(next);
    scanned_ = 0;
    return true;
}

bool MboxReader::next(StoredMessage &message)
{
    for (;;) {
        const PB_BYTE *b = block_->bytes.get() + start_;
        const PB_INT n = static_cast<PB_INT>(block_->size - start_);
        PB_INT sep = 0, line = 0;
        // The message whose "From " line starts the unread bytes, once the next
        // one is read; the scan goes on where the last one stopped.
        const PB_INT from = std::max(scanned_, n > 0 ? nextLine(b, n, 0) : 0);
        if (n > 0 && nextFromLine(b, n, from, sep, line))
            return handOut(message, sep, line);
        // Resume at the last whole line: it may be the empty one before a "From ".
        PB_INT last = n;
        while (last > 0 && b[last - 1] != '\n')
            --last;
        PB_INT resume = last > 0 ? last - 1 : 0;
        while (resume > 0 && b[resume - 1] != '\n')
            --resume;
        scanned_ = resume;
        if (!readMore()) // the last message ends with the file
            return n > 0 && startsWithFrom(block_->bytes.get() + start_, n, 0) && handOut(message, -1, n);
    }
}

Ref<PB_BUFFER> messageBytes(const StoredMessage &message)
{
    if (!message.block)
        return adopt(pbBufferRetain(message.file.get()));
    return unquoted(message.block->bytes.get(), static_cast<PB_INT>(message.begin), static_cast<PB_INT>(message.end));
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
        return {[files, index](StoredMessage &message) {
            if (*index == files->size())
                return false;
            message = {{}, 0, 0, readFile((*files)[(*index)++])};
            return true;
        }};
    }
    char head[5] = {};
    const int fd = path == "-" ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool mbox = fd >= 0 && read(fd, head, sizeof head) == 5 && std::memcmp(head, "From ", 5) == 0;
    if (fd >= 0)
        close(fd);
    if (!mbox)
        return {};
    auto reader = std::make_shared<MboxReader>(path);
    return {[reader](StoredMessage &message) { return reader->next(message); }};
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
    const std::function<bool(StoredMessage &)> &next = mailbox.next;
    const bool progress = isatty(STDERR_FILENO);
    const unsigned workers = std::max(1u, std::thread::hardware_concurrency());
    const size_t window = kBatchPerCore * workers; // messages ahead of the one written next
    std::mutex mutex;
    std::condition_variable room;  // for the workers: the window has room, or the run ends
    std::condition_variable ready; // for the writer: the next output is done, or all are
    size_t taken = 0, written = 0;
    bool exhausted = false, stopped = false;
    std::map<size_t, Done> done;
    // Each worker takes the next few messages (reading the mailbox in turn),
    // reads their trees and works on them, all on its own core, and hands the
    // results over together: the fewer the meetings, the less the waiting.
    auto worker = [&] {
        Ref<MIME_OPTIONS> options = defaultOptions();
        for (;;) {
            std::vector<StoredMessage> messages;
            size_t first;
            {
                std::unique_lock<std::mutex> lock(mutex);
                room.wait(lock, [&] { return stopped || exhausted || taken - written < window; });
                if (stopped || exhausted)
                    return;
                first = taken;
                for (StoredMessage message; messages.size() < kTake && next(message);)
                    messages.push_back(std::move(message));
                taken += messages.size();
                exhausted = messages.size() < kTake;
                if (exhausted)
                    room.notify_all(); // the other workers stop too
                if (messages.empty()) {
                    ready.notify_one();
                    return;
                }
            }
            std::vector<Done> results(messages.size());
            for (size_t k = 0; k < messages.size(); ++k) {
                const Ref<PB_BUFFER> bytes = messageBytes(std::exchange(messages[k], {}));
                Part tree = readMail(bytes.get(), options.get(), std::to_string(first + k + 1) + ":");
                dropBareLineEnds(tree);
                results[k].tally.add(tree, pbBufferLength(bytes.get()));
                try {
                    results[k].output = work(first + k, tree);
                } catch (const InputError &error) {
                    results[k].output.failure = error.message;
                }
            }
            std::lock_guard<std::mutex> lock(mutex);
            for (size_t k = 0; k < results.size(); ++k)
                done.emplace(first + k, std::move(results[k]));
            if (first == written || exhausted)
                ready.notify_one();
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
            ready.wait(lock, [&] { return done.count(written) || (exhausted && written == taken); });
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
        if (++written % kTake == 0)
            room.notify_all();
        if (progress && written % 64 == 0)
            std::fprintf(stderr, "\rmimetool: %zu messages", written);
    }
    {
        std::lock_guard<std::mutex> lock(mutex);
        stopped = true;
        room.notify_all();
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
