// Buffers: bit-exact appends, shared views, and copy before change.
#include "pb_text.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

using namespace test;

namespace {

std::vector<bool> bitsOf(PB_BUFFER *b)
{
    std::vector<bool> bits;
    const PB_BYTE *p = pbBufferBacking(b);
    for (PB_INT i = 0; i < pbBufferBitLength(b); ++i)
        bits.push_back((p[i / 8] >> (7 - i % 8)) & 1);
    return bits;
}

// Appends of random bit counts, checked against a plain bit vector.
TEST(Buffer, BitAppendsMatchABitVector)
{
    std::mt19937 rng(11);
    Ref<PB_BUFFER> b = adopt(pbBufferCreate());
    std::vector<bool> model;
    for (int step = 0; step < 400; ++step) {
        PB_BYTE chunk[8];
        for (PB_BYTE &c : chunk)
            c = static_cast<PB_BYTE>(rng());
        PB_INT bits = static_cast<PB_INT>(rng() % 65);
        switch (rng() % 3) {
        case 0:
            pbBufferAppendBits(b.addr(), chunk, bits);
            break;
        case 1:
            bits = 8 * (bits / 8);
            pbBufferAppendBytes(b.addr(), chunk, bits / 8);
            break;
        default: {
            Ref<PB_BUFFER> other = adopt(pbBufferCreate());
            pbBufferAppendBits(other.addr(), chunk, bits);
            pbBufferAppend(b.addr(), other.get());
        }
        }
        for (PB_INT i = 0; i < bits; ++i)
            model.push_back((chunk[i / 8] >> (7 - i % 8)) & 1);
        ASSERT_EQ(bitsOf(b.get()), model);
        ASSERT_EQ(pbBufferLength(b.get()), static_cast<PB_INT>(model.size() / 8));
    }
    // An incomplete last byte keeps its unused low bits zero.
    if (pbBufferBitLength(b.get()) % 8) {
        EXPECT_EQ(pbBufferBacking(b.get())[pbBufferLength(b.get())] & (0xFF >> (pbBufferBitLength(b.get()) % 8)), 0);
    }
}

TEST(Buffer, ReadSharesStorageAndChangesCopy)
{
    std::string body(1 << 20, 'x');
    Ref<PB_BUFFER> whole = bytes(body);
    Ref<PB_BUFFER> part = adopt(pbBufferRead(whole.get(), 1000, 5000));
    EXPECT_EQ(pbBufferBacking(part.get()), pbBufferBacking(whole.get()) + 1000) << "a read view copies nothing";
    EXPECT_EQ(pbBufferLength(part.get()), 5000);

    pbBufferAppendByte(part.addr(), 'y');
    EXPECT_NE(pbBufferBacking(part.get()), pbBufferBacking(whole.get()) + 1000);
    EXPECT_EQ(bytesOf(part.get()), std::string(5000, 'x') + "y");
    EXPECT_EQ(bytesOf(whole.get()), body) << "the source never sees a view's change";

    Ref<PB_BUFFER> tail = adopt(pbBufferRead(whole.get(), pbBufferLength(whole.get()), 0));
    EXPECT_EQ(pbBufferLength(tail.get()), 0);
    Ref<PB_BUFFER> all = adopt(pbBufferRead(whole.get(), 0, pbBufferLength(whole.get())));
    EXPECT_EQ(all.get(), whole.get());
}

TEST(Buffer, ChangingTheSourceLeavesViewsAlone)
{
    Ref<PB_BUFFER> whole = bytes("hello world");
    Ref<PB_BUFFER> view = adopt(pbBufferRead(whole.get(), 0, 5));
    pbBufferAppendBytes(whole.addr(), "!", 1);
    pbBufferDelTrailing(whole.addr(), 8);
    EXPECT_EQ(bytesOf(whole.get()), "hell");
    pbBufferAppendBytes(whole.addr(), "p", 1);
    EXPECT_EQ(bytesOf(view.get()), "hello");
    EXPECT_EQ(bytesOf(whole.get()), "hellp");
    pbBufferAppend(view.addr(), view.get()); // itself, while its storage is shared
    EXPECT_EQ(bytesOf(view.get()), "hellohello");
}

TEST(Buffer, ClearSpaceAndCompare)
{
    Ref<PB_BUFFER> b = bytes("abc");
    EXPECT_EQ(pbBufferSpace(b.get()), PB_BUFFER_MAX_LENGTH - 3);
    Ref<PB_BUFFER> shared = pb::retained(b.get());
    pbBufferClear(b.addr());
    EXPECT_EQ(pbBufferBitLength(b.get()), 0);
    EXPECT_EQ(bytesOf(shared.get()), "abc");
    EXPECT_LT(pbBufferCompare(b.get(), shared.get()), 0);
    EXPECT_EQ(text(pbBufferObj(shared.get())), "616263");
}

} // namespace

// Large storage is kept for reuse when freed: buffers made and dropped in
// turns, some alive at once, each filled to its end, keep their own bytes.
TEST(Buffer, LargeBuffersMadeAgainKeepTheirOwnBytes)
{
    constexpr PB_INT kMiB = PB_INT{1} << 20;
    const PB_INT sizes[] = {3 * kMiB, 2 * kMiB, 5 * kMiB, 3 * kMiB, 8 * kMiB, 2 * kMiB, 6 * kMiB, 3 * kMiB};
    std::vector<std::pair<Ref<PB_BUFFER>, PB_BYTE>> alive; // each with the byte it is filled with
    for (size_t i = 0; i < std::size(sizes); ++i) {
        Ref<PB_BUFFER> b = adopt(pbBufferCreate());
        const auto fill = static_cast<PB_BYTE>('a' + i);
        std::memset(pbBufferAppendSpace(b.addr(), sizes[i]), fill, static_cast<size_t>(sizes[i]));
        alive.emplace_back(std::move(b), fill);
        if (i % 3 == 2)
            alive.erase(alive.begin()); // freed: kept for the next large one
        for (const auto &[held, expected] : alive) {
            const PB_BYTE *p = pbBufferBacking(held.get());
            const PB_INT n = pbBufferLength(held.get());
            EXPECT_TRUE(p[0] == expected && p[n / 2] == expected && p[n - 1] == expected)
                << "a kept block was handed out while in use";
        }
    }
}
