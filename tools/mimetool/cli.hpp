// The command line: the arguments of one command, and the two ways a command
// fails (a usage error exits with status 2 and the usage text, an input error
// with status 1 and one line naming what failed and where).
#pragma once

#include "library.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mimetool {

struct UsageError {
    std::string message;
};

struct InputError {
    std::string message;
};

// The arguments after the command name. Options are taken out by name, in any
// order before "--"; what remains are the operands.
class Args {
public:
    explicit Args(std::vector<std::string> args) : args_(std::move(args)) {}

    bool takeFlag(std::string_view name);
    // "--name VALUE" or "--name=VALUE" ("-t VALUE" for a short name).
    std::optional<std::string> takeValue(std::string_view name);
    // The operands; an option that no command took is a usage error.
    std::vector<std::string> operands() const;

private:
    std::vector<std::string> args_;
};

struct Command {
    const char *name;
    const char *usage; // the first line is the synopsis
    int (*run)(Args &args);
};

// The options every command starts from: the library's defaults.
Ref<MIME_OPTIONS> defaultOptions();

int runShow(Args &args);
int runExtract(Args &args);
int runPack(Args &args);
int runHeader(Args &args);

extern const Command kShow;
extern const Command kExtract;
extern const Command kPack;
extern const Command kHeader;

} // namespace mimetool
