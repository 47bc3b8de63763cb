// Test main: starts the mime module as the product's loader would, and fails
// every test that leaves runtime objects alive.
#include <gtest/gtest.h>

#include <mime/mime_module.h>
#include <pb/pb_obj.h>

namespace {

class ModuleEnvironment : public testing::Environment {
public:
    void SetUp() override { ASSERT_TRUE(pbModuleStartup(mimeModule())); }
    void TearDown() override { pbModuleShutdown(mimeModule()); }
};

// Compares the live-object count at the start and at the end of each test.
class LiveObjectCheck : public testing::EmptyTestEventListener {
public:
    void OnTestStart(const testing::TestInfo &) override { atStart_ = pb___ObjLiveCount(); }
    void OnTestEnd(const testing::TestInfo &) override
    {
        PB_INT now = pb___ObjLiveCount();
        if (now != atStart_)
            ADD_FAILURE() << "the test left " << now - atStart_ << " runtime objects alive";
    }

private:
    PB_INT atStart_ = 0;
};

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new ModuleEnvironment);
    // Before the printer, so that a leak shows on the test's own result line.
    testing::TestEventListeners &listeners = testing::UnitTest::GetInstance()->listeners();
    testing::TestEventListener *printer = listeners.Release(listeners.default_result_printer());
    listeners.Append(new LiveObjectCheck);
    if (printer)
        listeners.Append(printer);
    return RUN_ALL_TESTS();
}
