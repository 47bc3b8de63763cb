// Several threads retain, release, read and change shared objects through their
// own references. Run under ThreadSanitizer in CI.
#include "pb_text.hpp"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace test;

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 2000;

TEST(Concurrency, SharedValuesChangedThroughPrivateReferences)
{
    Ref<PB_STRING> text = str("shared");
    Ref<PB_DICT> dict = adopt(pbDictCreate());
    pbDictSetStringKeyCstr(dict.addr(), "k", -1, pbStringObj(text.get()));
    Ref<PB_BUFFER> body = bytes(std::string(4096, 'b'));

    std::vector<std::thread> threads;
    std::vector<int> failures(kThreads, 0);
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < kRounds; ++round) {
                // Each thread changes only its own references; the shared objects
                // underneath must never change.
                Ref<PB_STRING> s = pb::retained(text.get());
                pbStringAppendChar(s.addr(), static_cast<PB_CHAR>('0' + t));
                Ref<PB_DICT> d = pb::retained(dict.get());
                pbDictSetStringKeyCstr(d.addr(), "mine", -1, pbStringObj(s.get()));
                Ref<PB_BUFFER> view = adopt(pbBufferRead(body.get(), 100, 1000));
                pbBufferAppendByte(view.addr(), 'x');
                Ref<PB_OBJ> k = adopt(pbDictStringKeyCstr(dict.get(), "k", -1));
                if (pbStringLength(s.get()) != 7 || pbDictLength(d.get()) != 2 || pbDictLength(dict.get()) != 1 ||
                    pbBufferLength(view.get()) != 1001 || pbObjCompare(k.get(), pbStringObj(text.get())) != 0)
                    ++failures[static_cast<size_t>(t)];
            }
        });
    }
    for (std::thread &th : threads)
        th.join();
    for (int f : failures)
        EXPECT_EQ(f, 0);
    EXPECT_EQ(utf8(text.get()), "shared");
    EXPECT_EQ(bytesOf(body.get()), std::string(4096, 'b'));
}

TEST(Concurrency, LastReleaseOnAnyThreadFreesOnce)
{
    for (int round = 0; round < 200; ++round) {
        PB_STRING *s = pbStringCreateFromCstr("x", -1);
        for (int t = 1; t < kThreads; ++t)
            pbStringRetain(s);
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([s] { pbStringRelease(s); });
        for (std::thread &th : threads)
            th.join();
    }
}

} // namespace
