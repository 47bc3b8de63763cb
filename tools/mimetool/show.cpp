// mimetool show: the tree of a message's parts, as text or JSON.
#include "cli.hpp"
#include "io.hpp"
#include "mailbox.hpp"
#include "render.hpp"

#include <cstdio>

#include <utility>

namespace mimetool {
const Command kShow = {
    "show",
    "usage: mimetool show [--json] [--strict] [FILE | -]\n"
    "\n"
    "Reads one message (header lines, an empty line and a body: a mail message, or\n"
    "a SIP message body with its Content-* header lines), decodes it, unpacks\n"
    "multipart bodies and enclosed messages and prints the tree of its parts:\n"
    "number (1, 1.2, ...), media type with parameters, From, Subject and Date of a\n"
    "message, disposition, Content-Id, transfer encoding, decoded size and the\n"
    "first line of text parts.\n"
    "\n"
    "It reads as mail readers do: each departure from the RFCs is one warning line\n"
    "on standard error (part, byte, what), and the tree is shown (exit status 0).\n"
    "Without FILE it shows the embedded sample (an emergency-call INVITE body); -\n"
    "reads standard input.\n"
    "\n"
    "FILE may also be a mailbox: an mbox file (it starts with a \"From \" line) or a\n"
    "Maildir folder. Its messages are read on every core and shown in order,\n"
    "numbered 3:1.2 (the message's number, then the part's), and a summary line\n"
    "ends the run.\n"
    "\n"
    "  --json     print the tree as one JSON object (see the README); a mailbox\n"
    "             as a JSON array of them\n"
    "  --strict   read with the exact rules that SIP peers must follow: the first\n"
    "             departure is an error (exit status 1); a file that holds no CR\n"
    "             is read as if each LF were CR LF\n",
    runShow,
};

namespace {

int showMailbox(const Mailbox &mailbox, bool json, bool strict)
{
    if (strict)
        throw UsageError{"--strict reads one message, not a mailbox"};
    writeOut(json ? "[\n" : "");
    const Tally tally = readMailbox(mailbox, [&](size_t i, const Part &message) {
        Output output;
        output.warnings = warnings(message);
        const std::string tree = json ? treeJson(message) : treeText(message);
        output.text = (i ? (json ? ",\n" : "\n") : "") + (json ? tree.substr(0, tree.size() - 1) : tree);
        return output;
    });
    writeOut(json ? (tally.messages ? "\n]\n" : "]\n") : "");
    std::fprintf(stderr, "mimetool: %s\n", tally.line().c_str());
    return 0;
}

} // namespace

int runShow(Args &args)
{
    const bool json = args.takeFlag("--json");
    const bool strict = args.takeFlag("--strict");
    const std::vector<std::string> files = args.operands();
    if (files.size() > 1)
        throw UsageError{"show takes one file"};
    if (!files.empty())
        if (auto mailbox = openMailbox(files[0]))
            return showMailbox(mailbox, json, strict);
    Ref<PB_BUFFER> content = files.empty() ? sampleMessage() : readFile(files[0]);
    const Part message = readPart(std::move(content), strict);
    writeOut(json ? treeJson(message) : treeText(message));
    return 0;
}

} // namespace mimetool
