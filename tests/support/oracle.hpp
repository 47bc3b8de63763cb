// Runs a Python oracle script and hands back its output lines split at tabs.
// No interpreter: no lines (the caller skips). A script that starts and then
// fails is a test failure, not a skip.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace test {

using OracleLines = std::vector<std::vector<std::string>>;

// script is relative to the tests folder; arguments are passed as they are.
inline OracleLines runOracle(const std::string &script, const std::string &arguments = "")
{
    OracleLines result;
    std::string command = std::string(CORVANE_PYTHON) + " " CORVANE_TEST_DATA_DIR "/" + script + " " + arguments;
    FILE *pipe = popen(command.c_str(), "r");
    if (!pipe)
        return result;
    std::string all;
    char chunk[65536];
    for (size_t n; (n = fread(chunk, 1, sizeof chunk, pipe)) > 0;)
        all.append(chunk, n);
    int status = pclose(pipe);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 127)
        return result; // no interpreter
    EXPECT_EQ(status, 0) << "the oracle script " << script << " failed";
    std::istringstream in(all);
    for (std::string line; std::getline(in, line);) {
        std::vector<std::string> fields;
        std::istringstream f(line);
        for (std::string field; std::getline(f, field, '\t');)
            fields.push_back(field);
        if (line.size() && line.back() == '\t')
            fields.push_back("");
        result.push_back(fields);
    }
    return result;
}

inline std::string unhex(const std::string &hex)
{
    std::string out;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        out += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return out;
}

inline std::string hex(const std::string &bytes)
{
    static const char digits[] = "0123456789abcdef";
    std::string out;
    for (unsigned char c : bytes) {
        out += digits[c >> 4];
        out += digits[c & 15];
    }
    return out;
}

} // namespace test
