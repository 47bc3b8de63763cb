// The module frame, read word by word as the product's loader reads it.
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime.h>

#include <regex>

using namespace test;

namespace {

TEST(Module, ObjectRecordAndVersionText)
{
    const PB_MODULE *module = mimeModule();
    ASSERT_EQ(module, &mime___module);
    auto words = reinterpret_cast<const int64_t *>(module);
    const int64_t header[10] = {PB_OBJ_KIND_MODULE, 0, -1, 1, 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(std::equal(header, header + 10, words));
    EXPECT_EQ(reinterpret_cast<const void *>(words[10]), &mime___module_record);
    const PB_MODULE_RECORD *r = pbModuleRecord(module);
    EXPECT_TRUE(
        std::regex_match(r->buildTime, std::regex("UTC \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d \\(\\w+day\\)")))
        << r->buildTime;
    std::string version = std::to_string(r->versionMajor) + "\\." + std::to_string(r->versionMinor) + "\\." +
                          std::to_string(r->versionPatch);
    std::regex form("\\S+ corvane-" + version + " \\([^,()]+, [^,()]+, [^,()]+\\), mime 0\\.0");
    EXPECT_TRUE(std::regex_match(mime___module_version_string, form)) << mime___module_version_string;
    EXPECT_EQ(text(reinterpret_cast<PB_OBJ *>(const_cast<PB_MODULE *>(module))), "mime");
}

// The loader may stop and start the module again: the tables are rebuilt.
TEST(Module, RestartRebuildsTables)
{
    pbModuleShutdown(mimeModule());
    ASSERT_TRUE(pbModuleStartup(mimeModule()));
    EXPECT_EQ(mimeFlagsFromStringCstr("MIME_FLAG_PARSE_RFC2231_HEADERS", -1), MIME_FLAG_PARSE_RFC2231_HEADERS);
}

} // namespace
