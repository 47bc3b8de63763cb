// Death-test matcher for the runtime's abort line:
//   <message, or "assertion failed">: <file>:<line>: <condition>
#pragma once

#include <gmock/gmock.h>

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

} // namespace test
