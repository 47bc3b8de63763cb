// Mailboxes: the messages of an mbox file or of a Maildir folder, and reading
// many messages on every core.
#pragma once

#include "tree.hpp"

#include <array>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace mimetool {

// Whether path names a Maildir folder (one with cur/ or new/ inside).
bool isMaildir(const std::string &path);
// Whether content is an mbox file: it starts with a "From " line.
bool isMbox(PB_BUFFER *content);

// The messages of an mbox file (RFC 4155): each starts after a "From " line at
// the start of the file or after an empty line; the empty line before the next
// "From " line ends it; ">From " lines (any number of ">") lose one ">".
std::vector<Ref<PB_BUFFER>> mboxMessages(PB_BUFFER *content);
// Bytes read ahead from an mbox file: the first size of capacity are read.
struct MboxBlock {
    std::unique_ptr<PB_BYTE[]> bytes;
    size_t size = 0, capacity = 0;
};

// A message as a mailbox holds it. Its bytes are made (messageBytes) by the
// worker that reads it, so that the mailbox's reader only finds where messages
// are.
struct StoredMessage {
    // An mbox message: bytes [begin, end) of a read-ahead block that the reader
    // no longer changes, ">From " lines still quoted.
    std::shared_ptr<const MboxBlock> block;
    size_t begin = 0, end = 0;
    Ref<PB_BUFFER> file; // a Maildir message: the file's bytes
};
// The message's bytes, ">From " quotes undone for an mbox message.
Ref<PB_BUFFER> messageBytes(const StoredMessage &message);

// The messages of an mbox file read as they come: memory holds the read-ahead
// blocks of the messages not yet made into buffers, never the whole mailbox.
class MboxReader {
public:
    // path "-": standard input; step: bytes read at a time.
    explicit MboxReader(const std::string &path, size_t step = 256 << 10);
    ~MboxReader();
    MboxReader(const MboxReader &) = delete;
    MboxReader &operator=(const MboxReader &) = delete;

    // The next message; false at the end.
    bool next(StoredMessage &message);

private:
    bool readMore();
    // A block of at least capacity bytes, a spare one where it fits.
    std::shared_ptr<MboxBlock> newBlock(size_t capacity);
    // Hands out the message at start_, which ends at sep (messageRange), and
    // moves on to the next one's "From " line at start_ + next.
    bool handOut(StoredMessage &message, PB_INT sep, PB_INT next);

    int fd_;
    std::string path_;
    size_t step_;
    // Blocks that every message has left, kept for reuse (a few): fresh
    // memory costs the kernel's page faults.
    struct Spares {
        std::mutex mutex;
        std::vector<std::unique_ptr<MboxBlock>> blocks;
    };
    std::shared_ptr<Spares> spares_ = std::make_shared<Spares>();
    // The read-ahead; the current message's "From " line at start_. A block
    // that messages were handed out of is never written again: more bytes go
    // into a new one.
    std::shared_ptr<MboxBlock> block_;
    size_t start_ = 0;
    PB_INT scanned_ = 0; // where the search for the next one goes on, from start_
};

// The message files of a Maildir folder: cur/ then new/, each by name.
std::vector<std::string> maildirFiles(const std::string &dir);

// What reading the messages found, for the summary line.
struct Tally {
    long messages = 0, parts = 0, bytes = 0;
    std::array<long, MIME_DEFECT_CODE_COUNT> defects{}; // by code
    void add(const Part &message, PB_INT size);
    void merge(const Tally &other);
    // "3 messages, 17 parts, 12,345 bytes, 2 defects (close-delimiter-missing 2)"
    std::string line() const;
};

// A mailbox's messages, one after another (false at the end).
struct Mailbox {
    std::function<bool(StoredMessage &)> next;
    explicit operator bool() const { return static_cast<bool>(next); }
};

// The mailbox at path, or an empty one when path is no mailbox: a Maildir
// folder, or a file that starts with a "From " line.
Mailbox openMailbox(const std::string &path);

// What the work on one message gives: text for standard output, warnings for
// standard error, or why it failed.
struct Output {
    std::string text, warnings, failure;
};

// Reads the messages of mailbox on every core (their bytes made there too),
// as mail readers read them (numbered "i+1:1.2"), and runs work(i, message) on
// each tree there too; their outputs are written in the order of the
// messages, at most a window of them ahead, so that memory holds a window of
// messages, never the whole mailbox. LF line ends are not reported (mailboxes store mail with the
// system's line ends). A progress line goes to standard error when it is a
// terminal. The first failure stops the run (an InputError naming the message).
Tally readMailbox(const Mailbox &mailbox, const std::function<Output(size_t, const Part &)> &work);

} // namespace mimetool
