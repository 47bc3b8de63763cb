#include "cli.hpp"

namespace mimetool {
namespace {

bool endsOptions(const std::string &arg)
{
    return arg == "--";
}

} // namespace

bool Args::takeFlag(std::string_view name)
{
    for (size_t i = 0; i < args_.size() && !endsOptions(args_[i]); i++) {
        if (args_[i] == name) {
            args_.erase(args_.begin() + static_cast<std::ptrdiff_t>(i));
            return true;
        }
    }
    return false;
}

std::optional<std::string> Args::takeValue(std::string_view name)
{
    for (size_t i = 0; i < args_.size() && !endsOptions(args_[i]); i++) {
        const std::string &arg = args_[i];
        const auto at = args_.begin() + static_cast<std::ptrdiff_t>(i);
        if (arg == name) {
            if (i + 1 == args_.size())
                throw UsageError{std::string(name) + " needs a value"};
            std::string value = args_[i + 1];
            args_.erase(at, at + 2);
            return value;
        }
        if (arg.size() > name.size() && arg.compare(0, name.size(), name) == 0 && arg[name.size()] == '=') {
            std::string value = arg.substr(name.size() + 1);
            args_.erase(at);
            return value;
        }
    }
    return std::nullopt;
}

std::vector<std::string> Args::operands() const
{
    std::vector<std::string> result;
    bool options = true;
    for (const std::string &arg : args_) {
        if (options && endsOptions(arg)) {
            options = false;
        } else if (options && arg.size() > 1 && arg[0] == '-') {
            throw UsageError{"unknown option " + arg};
        } else {
            result.push_back(arg);
        }
    }
    return result;
}

Ref<MIME_OPTIONS> defaultOptions()
{
    return adopt(mimeOptionsCreate());
}

} // namespace mimetool
