// mimetool show: the tree of a message's parts, as text or JSON.
#include "cli.hpp"
#include "io.hpp"
#include "render.hpp"

namespace mimetool {
const Command kShow = {
    "show",
    "usage: mimetool show [--json] [FILE | -]\n"
    "\n"
    "Reads one entity (header lines, an empty line and a body: a mail message, or a\n"
    "SIP message body with its Content-* header lines), decodes it, unpacks\n"
    "multipart bodies and prints the tree of its parts: number (1, 1.2, ...), media\n"
    "type with parameters, disposition, Content-Id, transfer encoding, decoded size\n"
    "and the first line of text parts.\n"
    "\n"
    "Without FILE it shows the embedded sample (an emergency-call INVITE body); -\n"
    "reads standard input. A file that holds no CR is read as if each LF were CR LF.\n"
    "\n"
    "  --json   print the tree as one JSON object; \"parts\" holds the parts of a\n"
    "           multipart entity, \"size\" is null for a part without a body\n",
    runShow,
};

int runShow(Args &args)
{
    const bool json = args.takeFlag("--json");
    const std::vector<std::string> files = args.operands();
    if (files.size() > 1)
        throw UsageError{"show takes one file"};
    Ref<PB_BUFFER> content = files.empty() ? sampleMessage() : withWireLineEnds(readFile(files[0]));
    Ref<MIME_OPTIONS> options = defaultOptions();
    const Part message = readMessage(content.get(), options.get());
    writeOut(json ? treeJson(message) : treeText(message));
    return 0;
}

} // namespace mimetool
