#include <pb/pb_mem.h>
#include <pb/pb_mem.hpp>
#include <pb/pb_module.h>
#include <pb/pb_obj.hpp>
#include <pb/pb_string.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <mutex>

namespace {

// Heap objects created minus heap objects freed, read by the tests' leak check
// as a sum: each thread counts into a counter of its own, with a plain load and
// store (one writer: no locked instruction, which would also wait for the
// object's zeroing to reach memory), and what an exited thread counted is kept
// in one total. An object freed by another thread than its creator moves the
// count between counters; the sum stays right.
struct alignas(64) LiveCounter {
    std::atomic<int64_t> count{0};
    LiveCounter *next = nullptr;
};
constinit std::mutex countersMutex;
constinit LiveCounter *livingCounters = nullptr; // of the living threads
constinit std::atomic<int64_t> exitedCount{0};   // what exited threads counted

// The thread's counter in the list while the thread lives.
struct ThreadCounter {
    LiveCounter counter;
    ThreadCounter() noexcept
    {
        std::lock_guard<std::mutex> lock(countersMutex);
        counter.next = livingCounters;
        livingCounters = &counter;
    }
    ~ThreadCounter();
};

// 0: no counter yet, 1: counting into threadCounter, 2: the thread is ending
// (its counter is gone: count into the total). Initial-exec: a plain offset
// from the thread pointer, not a call, inside a shared library.
constinit thread_local int threadState __attribute__((tls_model("initial-exec"))) = 0;
constinit thread_local LiveCounter *threadCounter __attribute__((tls_model("initial-exec"))) = nullptr;

ThreadCounter::~ThreadCounter()
{
    std::lock_guard<std::mutex> lock(countersMutex);
    exitedCount.fetch_add(counter.count.load(std::memory_order_relaxed), std::memory_order_relaxed);
    LiveCounter **at = &livingCounters;
    while (*at != &counter)
        at = &(*at)->next;
    *at = counter.next;
    threadState = 2;
}

inline void countLive(int64_t delta) noexcept;

// A count before the thread's counter exists (made here), or after it is gone.
[[gnu::noinline]] void countLiveFirstOrLast(int64_t delta) noexcept
{
    if (threadState == 0) {
        thread_local ThreadCounter owned;
        threadCounter = &owned.counter;
        threadState = 1;
        countLive(delta);
        return;
    }
    exitedCount.fetch_add(delta, std::memory_order_relaxed);
}

inline void countLive(int64_t delta) noexcept
{
    if (PB_LIKELY(threadState == 1)) {
        std::atomic<int64_t> &count = threadCounter->count;
        count.store(count.load(std::memory_order_relaxed) + delta, std::memory_order_relaxed);
        return;
    }
    countLiveFirstOrLast(delta);
}

extern "C" {
static PB_STRING *pb___SortToStringFunc(PB_OBJ *obj) noexcept;
static PB_STRING *pb___ModuleToStringFunc(PB_OBJ *obj) noexcept;
}

// Static records are objects too: their sort is one of these two.
constinit const PB_SORT sortOfSorts = {
    PB_OBJ_HEADER_STATIC(PB_OBJ_KIND_SORT), nullptr, "PB_SORT", nullptr, nullptr, pb___SortToStringFunc, {}};
constinit const PB_SORT sortOfModules = {
    PB_OBJ_HEADER_STATIC(PB_OBJ_KIND_SORT), nullptr, "PB_MODULE", nullptr, nullptr, pb___ModuleToStringFunc, {}};

PB_STRING *pb___SortToStringFunc(PB_OBJ *obj) noexcept
{
    return pbStringCreateFromCstr(reinterpret_cast<const PB_SORT *>(obj)->name, -1);
}

PB_STRING *pb___ModuleToStringFunc(PB_OBJ *obj) noexcept
{
    const PB_MODULE_RECORD *record = reinterpret_cast<const PB_MODULE *>(obj)->record;
    return pbStringCreateFromCstr(record ? record->moduleName : "", -1);
}

PB_INT identityOrder(const void *a, const void *b)
{
    if (a == b)
        return 0;
    return std::less<const void *>()(a, b) ? -1 : 1;
}

} // namespace

const PB_SORT *pbObjSort(PB_OBJ *obj) noexcept
{
    PB_ASSERT( obj );
    switch (pb::header(obj)->kind) {
    case PB_OBJ_KIND_SORT:
        return &sortOfSorts;
    case PB_OBJ_KIND_MODULE:
        return &sortOfModules;
    default:
        return pb::header(obj)->sort;
    }
}

const char *pbSortName(const PB_SORT *sort) noexcept
{
    PB_ASSERT( sort );
    return sort->name;
}

PB_OBJ *pbObjRetain(PB_OBJ *obj) noexcept
{
    if (obj)
        pb::retain(obj);
    return obj;
}

void pbObjRelease(PB_OBJ *obj) noexcept
{
    if (obj)
        pb::release(obj);
}

PB_INT pbObjCompare(PB_OBJ *a, PB_OBJ *b) noexcept
{
    PB_ASSERT( a );
    PB_ASSERT( b );
    if (a == b)
        return 0;
    const PB_SORT *sortA = pbObjSort(a);
    const PB_SORT *sortB = pbObjSort(b);
    if (sortA != sortB) {
        int byName = std::strcmp(sortA->name, sortB->name);
        if (byName != 0)
            return byName < 0 ? -1 : 1;
        return identityOrder(sortA, sortB);
    }
    if (!sortA->compareFunc)
        return identityOrder(a, b);
    PB_INT result = sortA->compareFunc(a, b);
    return result < 0 ? -1 : result > 0 ? 1 : 0;
}

PB_BOOL pbObjEquals(PB_OBJ *a, PB_OBJ *b) noexcept
{
    return pbObjCompare(a, b) == 0;
}

PB_STRING *pbObjToString(PB_OBJ *obj) noexcept
{
    PB_ASSERT( obj );
    const PB_SORT *sort = pbObjSort(obj);
    if (sort->toStringFunc)
        return sort->toStringFunc(obj);
    char text[128];
    std::snprintf(text, sizeof text, "%s@%p", sort->name, static_cast<void *>(obj));
    return pbStringCreateFromCstr(text, -1);
}

PB_OBJ *pb___ObjCreate(PB_INT size, const PB_SORT *sort) noexcept
{
    return pb___ObjCreateWithTail(size, 0, sort);
}

PB_OBJ *pb___ObjCreateWithTail(PB_INT size, PB_INT tail, const PB_SORT *sort) noexcept
{
    PB_ASSERT( sort );
    PB_ASSERT( size >= (PB_INT)sizeof(PB_OBJ_HEADER) );
    PB_ASSERT( tail >= 0 && tail <= size - (PB_INT)sizeof(PB_OBJ_HEADER) );
    auto *header = static_cast<PB_OBJ_HEADER *>(pb___MemAlloc(size));
    std::memset(header, 0, static_cast<size_t>(size - tail));
    header->kind = PB_OBJ_KIND_HEAP;
    header->sort = sort;
    header->size = size;
    header->refCount = 1;
    countLive(1);
    return reinterpret_cast<PB_OBJ *>(header);
}

void pb___ObjFree(PB_OBJ *obj) noexcept
{
    PB_ASSERT( obj );
    PB_OBJ_HEADER *header = pb::header(obj);
    PB_ASSERT( header->kind == PB_OBJ_KIND_HEAP );
    if (header->sort->freeFunc)
        header->sort->freeFunc(obj);
    // The free function poisoned the fields; poison the sort too, so that a use
    // after free faults at its first look at the sort instead of reading on.
    header->sort = pb::poison<const PB_SORT>();
    pb___MemRelease(header, header->size);
    countLive(-1);
}

PB_INT pb___ObjLiveCount(void) noexcept
{
    std::lock_guard<std::mutex> lock(countersMutex);
    int64_t live = exitedCount.load(std::memory_order_relaxed);
    for (const LiveCounter *c = livingCounters; c; c = c->next)
        live += c->count.load(std::memory_order_relaxed);
    return live;
}

PB_BOOL pbModuleStartup(const PB_MODULE *module) noexcept
{
    PB_ASSERT( module );
    PB_ASSERT( module->header.kind == PB_OBJ_KIND_MODULE );
    return module->startup ? module->startup() : PB_TRUE;
}

void pbModuleShutdown(const PB_MODULE *module) noexcept
{
    PB_ASSERT( module );
    PB_ASSERT( module->header.kind == PB_OBJ_KIND_MODULE );
    if (module->shutdown)
        module->shutdown();
}

const PB_MODULE_RECORD *pbModuleRecord(const PB_MODULE *module) noexcept
{
    PB_ASSERT( module );
    return module->record;
}
