// mimetool: MIME entities on the command line, built on the library's public
// C interface.
#include "cli.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace mimetool {
namespace {

constexpr const char *kUsage = "usage: mimetool COMMAND [OPTIONS] ...\n"
                               "\n"
                               "  show [--json] [FILE | -]           print the tree of a message's parts\n"
                               "  extract FILE -o DIR [--force]      write each part's decoded body into DIR\n"
                               "  pack -t TYPE [--boundary B] [--attach] FILE[=MEDIATYPE]...\n"
                               "                                     build a multipart entity from files\n"
                               "  header NAME VALUE                  decode one header value and write it back\n"
                               "\n"
                               "Without a command, mimetool shows its embedded sample: the body of an\n"
                               "emergency-call INVITE. `mimetool COMMAND --help` describes a command.\n"
                               "Exit status: 0 done, 1 malformed input or a file that cannot be read or\n"
                               "written, 2 wrong usage.\n";

constexpr const Command *kCommands[] = {&kShow, &kExtract, &kPack, &kHeader};

// The module is started before the first call into the library and stopped
// after the last, as the product's loader does.
class ModuleScope {
public:
    ModuleScope() { started_ = pbModuleStartup(mimeModule()); }
    ~ModuleScope()
    {
        if (started_)
            pbModuleShutdown(mimeModule());
    }
    bool started() const { return started_; }

private:
    PB_BOOL started_;
};

bool wantsHelp(const std::vector<std::string> &args)
{
    for (const std::string &arg : args) {
        if (arg == "--")
            return false;
        if (arg == "--help" || arg == "-h")
            return true;
    }
    return false;
}

int run(const Command &command, std::vector<std::string> args)
{
    if (wantsHelp(args)) {
        std::fputs(command.usage, stdout);
        return 0;
    }
    try {
        ModuleScope module;
        if (!module.started()) {
            std::fputs("mimetool: the mime module did not start\n", stderr);
            return 1;
        }
        Args parsed(std::move(args));
        const int status = command.run(parsed);
        if (std::fflush(stdout) != 0)
            throw InputError{std::string("cannot write the output: ") + std::strerror(errno)};
        return status;
    } catch (const UsageError &error) {
        std::fprintf(stderr, "mimetool %s: %s\n\n%s", command.name, error.message.c_str(), command.usage);
        return 2;
    } catch (const InputError &error) {
        std::fprintf(stderr, "mimetool %s: %s\n", command.name, error.message.c_str());
        return 1;
    }
}

} // namespace
} // namespace mimetool

int main(int argc, char **argv)
{
    using namespace mimetool;
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty())
        return run(kShow, {});
    if (args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        std::fputs(kUsage, stdout);
        return 0;
    }
    for (const Command *command : kCommands) {
        if (args[0] == command->name)
            return run(*command, std::vector<std::string>(args.begin() + 1, args.end()));
    }
    std::fprintf(stderr, "mimetool: unknown command %s\n\n%s", args[0].c_str(), kUsage);
    return 2;
}
