/* The memory system's limits, in the peer comparison's protocol:
 *     ref WORKLOAD DATADIR COUNT
 * ref-memcpy copies 32 MiB into a buffer used again and again; ref-memcpy-new
 * copies it into fresh memory each pass (mapped, copied, unmapped: the page
 * faults and the kernel's zeroing count), the limit of an operation that
 * returns a new buffer. */
#define _GNU_SOURCE
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <time.h>

static double now(void)
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec + (double)t.tv_nsec / 1e9;
}

int main(int argc, char **argv)
{
    if (argc != 4) {
        fprintf(stderr, "usage: ref WORKLOAD DATADIR COUNT\n");
        return 2;
    }
    const char *workload = argv[1];
    const int fresh = strcmp(workload, "ref-memcpy-new") == 0;
    if (!fresh && strcmp(workload, "ref-memcpy") != 0) {
        printf("SKIP %s not a reference workload\n", workload);
        return 0;
    }
    const size_t size = (size_t)32 << 20;
    char *source = malloc(size), *target = malloc(size);
    memset(source, 'x', size);
    memset(target, 0, size);
    const long count = atol(argv[3]);
    const char *minText = getenv("PEERS_MIN_TIME");
    const double minimum = minText ? atof(minText) : 0.3, start = now();
    double seconds;
    long passes = 0;
    do {
        char *out = target;
        if (fresh) {
            out = mmap(NULL, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
            madvise(out, size, MADV_HUGEPAGE);
        }
        memcpy(out, source, size);
        __asm__ volatile("" : : "r"(out) : "memory");
        if (fresh)
            munmap(out, size);
        ++passes;
        seconds = now() - start;
    } while (count > 0 ? passes < count : seconds < minimum);
    printf("RESULT %s bytes %.0f %.6f %s\n", workload, (double)size * (double)passes, seconds,
           fresh ? "into fresh memory" : "into one buffer");
    free(source);
    free(target);
    return 0;
}
