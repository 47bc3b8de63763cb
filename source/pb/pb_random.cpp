#include <pb/pb_abort.h>
#include <pb/pb_random.h>
#include <pb/pb_random.hpp>

#include <atomic>
#include <cerrno>
#include <pthread.h>
#include <sys/random.h>
#include <unistd.h>

namespace {

// Counts the forks this process image went through: a generator seeded before a
// fork seeds again in the child instead of repeating the parent's numbers. A
// fork handler keeps the count, so that drawing a number costs no system call.
std::atomic<uint64_t> forks{1};
[[maybe_unused]] const int kForkHandler = pthread_atfork(nullptr, nullptr, [] { forks.fetch_add(1); });

struct Generator {
    uint64_t s[4];
    uint64_t forks; // the fork count when it was seeded; 0: not seeded
};

thread_local Generator generator{{0, 0, 0, 0}, 0};

uint64_t rotl(uint64_t x, int k)
{
    return (x << k) | (x >> (64 - k));
}

// xoshiro256** step.
uint64_t step(uint64_t *s)
{
    uint64_t result = rotl(s[1] * 5, 7) * 9;
    uint64_t t = s[1] << 17;
    s[2] ^= s[0];
    s[3] ^= s[1];
    s[1] ^= s[2];
    s[0] ^= s[3];
    s[2] ^= t;
    s[3] = rotl(s[3], 45);
    return result;
}

Generator &seeded()
{
    uint64_t now = forks.load(std::memory_order_relaxed);
    if (generator.forks != now) {
        do
            pb::random::osBytes(generator.s, sizeof generator.s);
        while (!(generator.s[0] | generator.s[1] | generator.s[2] | generator.s[3]));
        generator.forks = now;
    }
    return generator;
}

} // namespace

namespace pb::random {

void osBytes(void *out, unsigned long n) noexcept
{
    auto *p = static_cast<unsigned char *>(out);
    while (n > 0) {
        ssize_t got = getrandom(p, n, 0);
        if (got < 0) {
            PB_ASSERT_MSG("no random source", errno == EINTR);
            continue;
        }
        p += got;
        n -= static_cast<unsigned long>(got);
    }
}

uint64_t next64() noexcept
{
    return step(seeded().s);
}

uint64_t priority() noexcept
{
    Generator &g = generator.forks ? generator : seeded();
    return step(g.s);
}

} // namespace pb::random

PB_INT pbRandomNonNegativeIntRange(PB_INT low, PB_INT high) noexcept
{
    PB_ASSERT( low >= 0 && low <= high );
    uint64_t span = static_cast<uint64_t>(high - low) + 1; // at most 2^63
    // Lemire's multiply-and-reject: unbiased, one multiplication nearly always.
    unsigned __int128 m = static_cast<unsigned __int128>(pb::random::next64()) * span;
    auto lowBits = static_cast<uint64_t>(m);
    if (lowBits < span) {
        uint64_t threshold = (0 - span) % span;
        while (lowBits < threshold) {
            m = static_cast<unsigned __int128>(pb::random::next64()) * span;
            lowBits = static_cast<uint64_t>(m);
        }
    }
    return low + static_cast<PB_INT>(m >> 64);
}
