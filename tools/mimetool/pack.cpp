// mimetool pack: files into one multipart entity on standard output.
#include "cli.hpp"
#include "io.hpp"
#include "text.hpp"

#include <array>
#include <sys/stat.h>

namespace mimetool {
namespace {

struct Extension {
    std::string_view suffix;
    const char *mediaType;
};

constexpr std::array<Extension, 19> kExtensions = {{
    {".txt", "text/plain"},      {".html", "text/html"},
    {".htm", "text/html"},       {".csv", "text/csv"},
    {".xml", "application/xml"}, {".json", "application/json"},
    {".sdp", "application/sdp"}, {".pidf", "application/pidf+xml"},
    {".pdf", "application/pdf"}, {".zip", "application/zip"},
    {".gz", "application/gzip"}, {".png", "image/png"},
    {".jpg", "image/jpeg"},      {".jpeg", "image/jpeg"},
    {".gif", "image/gif"},       {".svg", "image/svg+xml"},
    {".wav", "audio/wav"},       {".mp3", "audio/mpeg"},
    {".mp4", "video/mp4"},
}};

const char *guessedMediaType(const std::string &path)
{
    Ref<PB_STRING> name = mime::makeString(path);
    for (const Extension &extension : kExtensions) {
        if (path.size() > extension.suffix.size() && endsWith(name.get(), extension.suffix))
            return extension.mediaType;
    }
    return "application/octet-stream";
}

bool isFile(const std::string &path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

mime::ContentType mediaType(const std::string &text, const mime::Options &options)
{
    mime::Result<mime::ContentType> type = mime::ContentType::decode(text, options);
    if (!type)
        throw UsageError{'"' + text + "\" is not a media type"};
    return *type;
}

std::string baseName(const std::string &path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// FILE or FILE=MEDIATYPE: the file is the longest prefix before an "=" that
// names a file, so that both names and media types may hold "=".
std::pair<std::string, std::string> splitOperand(const std::string &operand)
{
    if (isFile(operand))
        return {operand, ""};
    for (size_t eq = operand.find('='); eq != std::string::npos; eq = operand.find('=', eq + 1)) {
        if (isFile(operand.substr(0, eq)))
            return {operand.substr(0, eq), operand.substr(eq + 1)};
    }
    throw InputError{"cannot open " + operand.substr(0, operand.find('=')) + ": no such file"};
}

// A header value refused because it would not stay in its field: what gave
// it (escaped for the terminal), where and why.
[[noreturn]] void refuse(const std::string &what, const mime::Defect &defect)
{
    throw InputError{shown(mime::makeString(what).get()) + ": character " + std::to_string(defect.offset()) +
                     " of its header value: " + defect.text()};
}

mime::Entity encodedPart(const std::string &operand, bool attach, const mime::Options &options)
{
    const auto [path, given] = splitOperand(operand);
    std::optional<mime::ContentDisposition> disposition;
    if (attach) {
        disposition.emplace("attachment");
        disposition->setParameter("filename", baseName(path));
    }
    mime::Result<mime::Entity> part =
        mime::encode(options, mime::Buffer::adopt(readFile(path).release()),
                     mediaType(given.empty() ? guessedMediaType(path) : given, options), disposition);
    if (!part)
        refuse(path, part.defect());
    return *part;
}

} // namespace

const Command kPack = {
    "pack",
    "usage: mimetool pack -t TYPE [--boundary B] [--attach] FILE[=MEDIATYPE]...\n"
    "\n"
    "Builds one multipart entity of the media type TYPE (multipart/mixed,\n"
    "multipart/related; type=..., ...) from the files, each part encoded by\n"
    "mimeEncode (7bit when it passes, else the shorter of quoted-printable and\n"
    "base64), and writes its header lines and body to standard output. A part's\n"
    "media type is the one given after \"=\", else guessed from the file name's\n"
    "extension (application/octet-stream when unknown).\n"
    "\n"
    "  -t TYPE        the multipart media type, parameters allowed\n"
    "  --boundary B   use B unless a part holds it (a random boundary is chosen then)\n"
    "  --attach       give each part a Content-Disposition: attachment with its file name\n",
    runPack,
};

int runPack(Args &args)
{
    const std::optional<std::string> typeText = args.takeValue("-t");
    const std::optional<std::string> boundary = args.takeValue("--boundary");
    const bool attach = args.takeFlag("--attach");
    const std::vector<std::string> operands = args.operands();
    if (!typeText)
        throw UsageError{"pack needs -t TYPE"};
    if (operands.empty())
        throw UsageError{"pack needs at least one file"};
    const mime::Options options;
    mime::ContentType type = mediaType(*typeText, options);
    if (type.name().compare(0, 10, "multipart/") != 0)
        throw UsageError{"-t " + *typeText + " is not a multipart type"};
    if (boundary) {
        if (!mimeMultipartBoundaryOkCstr(boundary->c_str(), static_cast<PB_INT>(boundary->size())))
            throw UsageError{"--boundary " + *boundary + " is not a valid boundary (1 to 70 characters of RFC 2046)"};
        type.setParameter("boundary", *boundary);
    }
    std::vector<mime::Entity> parts;
    for (const std::string &operand : operands)
        parts.push_back(encodedPart(operand, attach, options));
    std::optional<mime::Buffer> body = mime::pack(type, parts, options);
    if (!body)
        throw InputError{"no boundary could be found that the parts do not hold"};
    const std::string header = type.encode(options);
    if (mime::Result<void> check = mime::checkHeaderValue(header); !check)
        refuse("-t " + *typeText, check.defect());
    writeOut("MIME-Version: 1.0\r\nContent-Type: " + header + "\r\n\r\n");
    writeOut(body->get());
    return 0;
}

} // namespace mimetool
