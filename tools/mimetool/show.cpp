// mimetool show: the tree of a message's parts, as text or JSON.
#include "cli.hpp"
#include "io.hpp"
#include "render.hpp"

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
    "  --json     print the tree as one JSON object (see the README)\n"
    "  --strict   read with the exact rules that SIP peers must follow: the first\n"
    "             departure is an error (exit status 1); a file that holds no CR\n"
    "             is read as if each LF were CR LF\n",
    runShow,
};

int runShow(Args &args)
{
    const bool json = args.takeFlag("--json");
    const bool strict = args.takeFlag("--strict");
    const std::vector<std::string> files = args.operands();
    if (files.size() > 1)
        throw UsageError{"show takes one file"};
    Ref<PB_BUFFER> content = files.empty() ? sampleMessage() : readFile(files[0]);
    const Part message = readPart(std::move(content), strict);
    writeOut(json ? treeJson(message) : treeText(message));
    return 0;
}

} // namespace mimetool
