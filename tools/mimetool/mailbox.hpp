// Mailboxes: the messages of an mbox file or of a Maildir folder, and reading
// many messages on every core.
#pragma once

#include "tree.hpp"

#include <array>
#include <functional>
#include <memory>
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
// The messages of an mbox file read as they come: memory holds one message
// and what is read ahead of it, never the whole mailbox.
class MboxReader {
public:
    explicit MboxReader(const std::string &path); // "-": standard input
    ~MboxReader();
    MboxReader(const MboxReader &) = delete;
    MboxReader &operator=(const MboxReader &) = delete;

    // The next message as it stands in the file (">From " lines still
    // quoted: mboxUnquoted undoes that); false at the end.
    bool next(Ref<PB_BUFFER> &message);

private:
    bool readMore();

    int fd_;
    std::string path_;
    std::vector<PB_BYTE> buffer_; // read ahead; the current message's "From " line at start_
    size_t start_ = 0;
    PB_INT scanned_ = 0; // where the search for the next one goes on, from start_
};

// message with one ">" taken from each line that is ">"s and "From ".
Ref<PB_BUFFER> mboxUnquoted(PB_BUFFER *message);

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

// A mailbox's messages, one after another (false at the end); quoted: they
// are an mbox file's, ">From " lines still quoted.
struct Mailbox {
    std::function<bool(Ref<PB_BUFFER> &)> next;
    bool quoted = false;
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

// Reads the messages of mailbox on every core (unquoted there too),
// as mail readers read them (numbered "i+1:1.2"), and runs work(i, message) on
// each tree there too; their outputs are written in the order of the
// messages, at most a window of them ahead, so that memory holds a window of
// messages, never the whole mailbox. LF line ends are not reported (mailboxes store mail with the
// system's line ends). A progress line goes to standard error when it is a
// terminal. The first failure stops the run (an InputError naming the message).
Tally readMailbox(const Mailbox &mailbox, const std::function<Output(size_t, const Part &)> &work);

} // namespace mimetool
