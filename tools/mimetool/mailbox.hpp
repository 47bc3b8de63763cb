// Mailboxes: the messages of an mbox file or of a Maildir folder, and reading
// many messages on every core.
#pragma once

#include "tree.hpp"

#include <functional>
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
// The message files of a Maildir folder: cur/ then new/, each by name.
std::vector<std::string> maildirFiles(const std::string &dir);

// What reading the messages found, for the summary line.
struct Tally {
    long messages = 0, parts = 0, bytes = 0;
    std::vector<std::pair<std::string, long>> defects; // by code, in code order
    void add(const Part &message, PB_INT size);
    // "3 messages, 17 parts, 12,345 bytes, 2 defects (close-delimiter-missing 2)"
    std::string line() const;
};

// Reads message count of them with load(i) on every core, as mail readers read
// them (numbered "i+1:1.2"), and hands each tree to use(i, message) in order,
// a batch at a time so that memory stays bounded. LF line ends are not
// reported (mailboxes store mail with the system's line ends). A progress line
// goes to standard error when it is a terminal. Returns the tally.
Tally readMailbox(size_t count, const std::function<Ref<PB_BUFFER>(size_t)> &load,
                  const std::function<void(size_t, const Part &)> &use);

} // namespace mimetool
