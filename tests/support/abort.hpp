// Death-test matchers for the runtime's abort line:
//   <message, or "assertion failed">: <file>:<line>: <condition>
#pragma once

#include <gmock/gmock.h>

#include <fstream>
#include <string>

namespace test {

inline testing::Matcher<const std::string &> abortLine(const std::string &message, const std::string &file,
                                                       const std::string &condition)
{
    return testing::AllOf(testing::HasSubstr(message + ": " + file + ":"), testing::HasSubstr(": " + condition + "\n"));
}

inline testing::Matcher<const std::string &> assertion(const std::string &file, const std::string &condition)
{
    return abortLine("assertion failed", file, condition);
}

// The assertion "PB_ASSERT( condition )" of function in file (a path from the
// repository root), reported from its own line in the function's definition.
inline testing::Matcher<const std::string &> assertionIn(const std::string &file, const std::string &function,
                                                         const std::string &condition)
{
    std::ifstream source(std::string(CORVANE_TEST_DATA_DIR) + "/../" + file);
    std::string line, reported = "(no such assertion in " + function + ")";
    bool inside = false;
    for (int number = 1; std::getline(source, line) && !(inside && line == "}"); ++number) {
        if (!inside)
            inside =
                !line.empty() && line[0] != ' ' && line.find(function + "(") != std::string::npos && line.back() != ';';
        else if (line.find("PB_ASSERT( " + condition + " )") != std::string::npos)
            reported = "assertion failed: " + file + ":" + std::to_string(number) + ": " + condition + "\n";
    }
    return testing::HasSubstr(reported);
}

} // namespace test
