// Random numbers and identifiers, checked by their properties.
#include "pb_text.hpp"

#include <gtest/gtest.h>

#include <array>
#include <regex>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

using namespace test;

namespace {

TEST(Random, RangeIsInclusiveAndCoversEveryValue)
{
    std::array<int, 62> seen{};
    for (int i = 0; i < 20000; ++i) {
        PB_INT v = pbRandomNonNegativeIntRange(0, 61);
        ASSERT_GE(v, 0);
        ASSERT_LE(v, 61);
        ++seen[static_cast<size_t>(v)];
    }
    for (int count : seen) {
        EXPECT_GT(count, 200); // expected 322; far from it means bias
        EXPECT_LT(count, 460);
    }
    EXPECT_EQ(pbRandomNonNegativeIntRange(7, 7), 7);
    PB_INT big = pbRandomNonNegativeIntRange(0, PB_INT_MAX);
    EXPECT_GE(big, 0);
}

TEST(Random, ForkedChildDrawsItsOwnSequence)
{
    pbRandomNonNegativeIntRange(0, 1); // seed this thread before forking
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        PB_INT v = pbRandomNonNegativeIntRange(0, PB_INT_MAX);
        ssize_t written = write(fds[1], &v, sizeof v);
        _exit(written == sizeof v ? 0 : 1);
    }
    PB_INT mine = pbRandomNonNegativeIntRange(0, PB_INT_MAX), theirs = -1;
    ASSERT_EQ(read(fds[0], &theirs, sizeof theirs), static_cast<ssize_t>(sizeof theirs));
    waitpid(child, nullptr, 0);
    close(fds[0]);
    close(fds[1]);
    EXPECT_NE(mine, theirs);
}

TEST(Identifier, TextIsAVersion4UuidAndUnique)
{
    std::set<std::string> seen;
    std::regex form("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    for (int i = 0; i < 1000; ++i) {
        Ref<PB_IDENTIFIER> id = adopt(pbIdentifierCreate());
        std::string t = text(pbIdentifierObj(id.get()));
        ASSERT_TRUE(std::regex_match(t, form)) << t;
        seen.insert(t);
    }
    EXPECT_EQ(seen.size(), 1000u);
}

} // namespace
