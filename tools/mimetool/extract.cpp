// mimetool extract: the decoded body of each leaf part, written into a directory.
#include "cli.hpp"
#include "io.hpp"
#include "mailbox.hpp"
#include "text.hpp"
#include "tree.hpp"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace mimetool {
namespace {

constexpr size_t kMaxFilenameBytes = 255;

struct Target {
    const Part *part;
    std::string name;
    std::string temporary; // written, not yet in place
};

// The parts that hold content: those without parts of their own (a multipart
// body that could not be split included), nothing of a message/external-body
// (its content is elsewhere).
void collectLeaves(const Part &part, std::vector<const Part *> &leaves)
{
    Ref<PB_STRING> name = typeName(part);
    if (name && pbStringEqualsCaseFoldCstr(name.get(), "message/external-body", -1))
        return;
    if (part.parts.empty())
        leaves.push_back(&part);
    for (const Part &child : part.parts)
        collectLeaves(child, leaves);
}

// A name that stays inside the directory and shows as what it is: no path
// separator, no leading dot ("." and ".." included), no control or
// bidirectional format character, at most 255 bytes.
bool isSafeFilename(PB_STRING *name)
{
    const PB_INT length = pbStringLength(name);
    const PB_CHAR *chars = pbStringBacking(name);
    if (length == 0 || chars[0] == '.')
        return false;
    for (PB_INT i = 0; i < length; i++) {
        if (chars[i] == '/' || chars[i] == '\\' || isControlOrBidi(chars[i]) || chars[i] > 0x10FFFF ||
            (chars[i] >= 0xD800 && chars[i] <= 0xDFFF))
            return false;
    }
    return mime::toUtf8(name).size() <= kMaxFilenameBytes;
}

// part-1.2.bin (the part number within its message: a mailbox's folder is the message's).
std::string fallbackName(const Part &part)
{
    return "part-" + part.number.substr(part.number.find(':') + 1) + ".bin";
}

// Each leaf's file name: its own when safe and not taken, else part-NUMBER.bin.
// The fallback names are reserved first, so that no sender's name takes one.
std::vector<Target> chooseNames(const std::vector<const Part *> &leaves)
{
    std::set<std::string> taken;
    for (const Part *leaf : leaves)
        taken.insert(fallbackName(*leaf));
    std::vector<Target> targets;
    for (const Part *leaf : leaves) {
        Ref<PB_STRING> suggested = suggestedFilename(*leaf);
        std::string name = suggested && isSafeFilename(suggested.get()) ? mime::toUtf8(suggested.get()) : "";
        if (name.empty() || !taken.insert(name).second)
            name = fallbackName(*leaf);
        targets.push_back({leaf, name, ""});
    }
    return targets;
}

// Creates dir and the folders above it that are missing.
void makeDirectory(const std::string &dir)
{
    for (size_t slash = dir.find('/', 1); slash != std::string::npos; slash = dir.find('/', slash + 1))
        if (mkdir(dir.substr(0, slash).c_str(), 0777) != 0 && errno != EEXIST)
            throw InputError{"cannot create " + dir.substr(0, slash) + ": " + std::strerror(errno)};
    struct stat status;
    if (mkdir(dir.c_str(), 0777) != 0 && errno != EEXIST)
        throw InputError{"cannot create " + dir + ": " + std::strerror(errno)};
    if (stat(dir.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
        throw InputError{dir + " is not a directory"};
}

void writeAll(int fd, PB_BUFFER *body)
{
    const PB_BYTE *bytes = body ? pbBufferBacking(body) : nullptr;
    PB_INT left = body ? pbBufferLength(body) : 0;
    while (left > 0) {
        const ssize_t done = write(fd, bytes, static_cast<size_t>(left));
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            throw InputError{std::string("cannot write: ") + std::strerror(errno)};
        bytes += done;
        left -= done;
    }
}

mode_t currentUmask()
{
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

// Moves the written file to its name; without force only when the name is free,
// atomically (by a hard link where the file system cannot rename so).
bool place(const std::string &temporary, const std::string &path, bool force)
{
    if (force)
        return rename(temporary.c_str(), path.c_str()) == 0;
    if (renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL || link(temporary.c_str(), path.c_str()) != 0)
        return false;
    unlink(temporary.c_str());
    return true;
}

// Writes every body into a temporary file of the directory, then moves each
// into place; on failure the temporary files go again, so a run leaves all its
// files or none of them (a file that appears meanwhile stops the run at it).
void writeTargets(const std::string &dir, std::vector<Target> &targets, bool force)
{
    try {
        for (Target &target : targets) {
            std::string path = dir + "/.mimetool-XXXXXX";
            const int fd = mkstemp(path.data());
            if (fd < 0)
                throw InputError{"cannot write into " + dir + ": " + std::strerror(errno)};
            target.temporary = path;
            try {
                if (fchmod(fd, 0666 & ~currentUmask()) != 0)
                    throw InputError{std::string("cannot set the mode: ") + std::strerror(errno)};
                writeAll(fd, target.part->body.get());
            } catch (const InputError &error) {
                close(fd);
                throw InputError{"part " + target.part->number + ": " + error.message};
            }
            if (close(fd) != 0)
                throw InputError{"cannot write " + path + ": " + std::strerror(errno)};
        }
        for (Target &target : targets) {
            const std::string path = dir + "/" + target.name;
            if (!place(target.temporary, path, force))
                throw InputError{"cannot create " + path + ": " + std::strerror(errno)};
            target.temporary.clear();
        }
    } catch (...) {
        for (const Target &target : targets) {
            if (!target.temporary.empty())
                unlink(target.temporary.c_str());
        }
        throw;
    }
}

} // namespace

const Command kExtract = {
    "extract",
    "usage: mimetool extract FILE -o DIR [--force] [--strict]\n"
    "\n"
    "Writes the decoded body of each leaf part of the entity in FILE (- reads\n"
    "standard input) into DIR, which is created when missing. A part is named by\n"
    "its disposition's filename, else its media type's name, when that name is\n"
    "safe: no / or \\, no leading dot, no control or bidirectional format\n"
    "character, at most 255 bytes, and not taken by an earlier part. Other parts\n"
    "are named part-NUMBER.bin (part-1.2.bin). The parts of an enclosed message are\n"
    "written too; a message/external-body part has no content here and is skipped.\n"
    "Departures from the RFCs are warnings, as in show. FILE may be a mailbox (an\n"
    "mbox file or a Maildir folder): each message goes into its own folder,\n"
    "DIR/1, DIR/2, ...\n"
    "\n"
    "Nothing is written when a file of that name exists, or (--strict) when the\n"
    "input is malformed.\n"
    "\n"
    "  -o DIR     the directory to write into (created with its parents)\n"
    "  --force    replace existing files\n"
    "  --strict   read with the exact rules, as show --strict\n",
    runExtract,
};

namespace {

// Writes the leaves of message into dir; the lines that say what went where.
std::string extractTo(const Part &message, const std::string &dir, bool force)
{
    std::vector<const Part *> leaves;
    collectLeaves(message, leaves);
    std::vector<Target> targets = chooseNames(leaves);
    makeDirectory(dir);
    for (const Target &target : targets) {
        struct stat status;
        const std::string path = dir + "/" + target.name;
        if (!force && lstat(path.c_str(), &status) == 0)
            throw InputError{path + " exists (--force replaces it)"};
    }
    writeTargets(dir, targets, force);
    std::string out;
    for (const Target &target : targets) {
        const PB_INT size = target.part->body ? pbBufferLength(target.part->body.get()) : 0;
        out += target.part->number + "  " + dir + "/" + target.name + "  (" + byteCount(size) + ")\n";
    }
    return out;
}

// Each message of a mailbox into its own folder, DIR/3 for the third.
int extractMailbox(const Mailbox &mailbox, const std::string &dir, bool force)
{
    const Tally tally = readMailbox(mailbox, [&](size_t i, const Part &message) {
        Output output;
        output.warnings = warnings(message);
        output.text = extractTo(message, dir + "/" + std::to_string(i + 1), force);
        return output;
    });
    std::fprintf(stderr, "mimetool: %s\n", tally.line().c_str());
    return 0;
}

} // namespace

int runExtract(Args &args)
{
    const bool force = args.takeFlag("--force");
    const bool strict = args.takeFlag("--strict");
    const std::optional<std::string> dir = args.takeValue("-o");
    const std::vector<std::string> files = args.operands();
    if (!dir || dir->empty())
        throw UsageError{"extract needs -o DIR"};
    if (files.size() != 1)
        throw UsageError{"extract takes one file"};
    if (Mailbox mailbox = strict ? Mailbox() : openMailbox(files[0]))
        return extractMailbox(mailbox, *dir, force);
    Ref<PB_BUFFER> content = readFile(files[0]);
    writeOut(extractTo(readPart(std::move(content), strict), *dir, force));
    return 0;
}

} // namespace mimetool
