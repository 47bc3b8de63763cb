// The module frame, read as the product's loader reads it.
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime.h>

#include <cstring>
#include <regex>

using namespace test;

namespace {

TEST(Module, ObjectAndRecordWords)
{
    const PB_MODULE *module = mimeModule();
    ASSERT_EQ(module, mimeModule());
    ASSERT_EQ(module, &mime___module);
    // Read word by word, as the loader does.
    auto words = reinterpret_cast<const int64_t *>(module);
    EXPECT_EQ(words[0], 2);
    EXPECT_EQ(words[1], 0);
    EXPECT_EQ(words[2], -1);
    EXPECT_EQ(words[3], 1);
    for (int i = 4; i < 10; ++i)
        EXPECT_EQ(words[i], 0);
    EXPECT_EQ(reinterpret_cast<const void *>(words[10]), &mime___module_record);
    EXPECT_EQ(words[12], 0);
    for (int i = 14; i < 19; ++i)
        EXPECT_EQ(words[i], 0);

    const PB_MODULE_RECORD *r = pbModuleRecord(module);
    EXPECT_EQ(r->format, 2);
    EXPECT_STREQ(r->productName, "corvane");
    EXPECT_STREQ(r->productName2, "corvane");
    EXPECT_GE(r->versionMajor, 0);
    EXPECT_TRUE(
        std::regex_match(r->buildTime, std::regex("UTC [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} "
                                                  "\\((Monday|Tuesday|Wednesday|Thursday|Friday|Saturday|Sunday)\\)")))
        << r->buildTime;
    EXPECT_GT(std::strlen(r->company), 0u);
    EXPECT_GT(std::strlen(r->copyright), 0u);
    EXPECT_STREQ(r->moduleName, "mime");
    EXPECT_STREQ(r->description, "Multipurpose Internet Mail Extensions");
    EXPECT_STREQ(r->moduleVersion, "0.0");
    EXPECT_STREQ(r->dependencies, "pb rfc tr");
    EXPECT_STREQ(r->further, "");
    EXPECT_EQ(text(reinterpret_cast<PB_OBJ *>(const_cast<PB_MODULE *>(module))), "mime");
}

TEST(Module, VersionText)
{
    const PB_MODULE_RECORD *r = &mime___module_record;
    std::string version = std::to_string(r->versionMajor) + "\\." + std::to_string(r->versionMinor) + "\\." +
                          std::to_string(r->versionPatch);
    std::regex form("\\S+ corvane-" + version + " \\([^,()]+, [^,()]+, [^,()]+\\), mime 0\\.0");
    EXPECT_TRUE(std::regex_match(mime___module_version_string, form)) << mime___module_version_string;
}

// The loader may stop and start the module again: the tables are rebuilt.
TEST(Module, RestartRebuildsTables)
{
    pbModuleShutdown(mimeModule());
    ASSERT_TRUE(pbModuleStartup(mimeModule()));
    EXPECT_EQ(mimeFlagsFromStringCstr("MIME_FLAG_PARSE_RFC2231_HEADERS", -1), MIME_FLAG_PARSE_RFC2231_HEADERS);
}

} // namespace
