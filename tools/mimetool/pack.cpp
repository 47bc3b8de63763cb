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
    Ref<PB_STRING> name = stringOf(path);
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

Ref<MIME_CONTENT_TYPE> mediaType(const std::string &text, MIME_OPTIONS *options)
{
    Ref<MIME_CONTENT_TYPE> type(mimeContentTypeTryDecodeCstr(text.c_str(), static_cast<PB_INT>(text.size()), options));
    if (!type)
        throw UsageError{'"' + text + "\" is not a media type"};
    return type;
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

Ref<MIME_ENTITY> encodedPart(const std::string &operand, bool attach, MIME_OPTIONS *options)
{
    const auto [path, given] = splitOperand(operand);
    Ref<MIME_CONTENT_TYPE> type = mediaType(given.empty() ? guessedMediaType(path) : given, options);
    Ref<MIME_CONTENT_DISPOSITION> disposition;
    if (attach) {
        disposition.reset(mimeContentDispositionCreateCstr("attachment", -1));
        Ref<PB_STRING> name = stringOf(baseName(path));
        mimeContentDispositionSetParameterCstr(disposition.address(), "filename", -1, name.get());
    }
    Ref<PB_BUFFER> body = readFile(path);
    return Ref<MIME_ENTITY>(mimeEncode(options, body.get(), type.get(), disposition.get(), nullptr));
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
    Ref<MIME_OPTIONS> options = defaultOptions();
    Ref<MIME_CONTENT_TYPE> type = mediaType(*typeText, options.get());
    Ref<PB_STRING> name(mimeContentTypeName(type.get()));
    if (!startsWith(name.get(), "multipart/"))
        throw UsageError{"-t " + *typeText + " is not a multipart type"};
    if (boundary) {
        if (!mimeMultipartBoundaryOkCstr(boundary->c_str(), static_cast<PB_INT>(boundary->size())))
            throw UsageError{"--boundary " + *boundary + " is not a valid boundary (1 to 70 characters of RFC 2046)"};
        mimeContentTypeSetParameterCstrCstrValue(type.address(), "boundary", -1, boundary->c_str(),
                                                 static_cast<PB_INT>(boundary->size()));
    }
    Ref<PB_VECTOR> parts(pbVectorCreate());
    for (const std::string &operand : operands) {
        Ref<MIME_ENTITY> part = encodedPart(operand, attach, options.get());
        pbVectorAppendObj(parts.address(), mimeEntityObj(part.get()));
    }
    Ref<PB_BUFFER> body(mimeMultipartTryPack(type.address(), parts.get(), options.get()));
    if (!body)
        throw InputError{"no boundary could be found that the parts do not hold"};
    Ref<PB_STRING> header(mimeContentTypeEncode(type.get(), options.get(), MIME_FIRST_LINE_OFFSET_CONTENT_TYPE));
    writeOut("MIME-Version: 1.0\r\nContent-Type: " + utf8(header.get()) + "\r\n\r\n");
    writeOut(body.get());
    return 0;
}

} // namespace mimetool
