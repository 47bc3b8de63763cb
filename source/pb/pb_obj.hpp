// Internal: the header operations shared by the runtime and the libraries built on
// it. Inline, so that retain, release and the unshare test cost no call.
#pragma once

#include <pb/pb_abort.h>
#include <pb/pb_obj.h>
#include <pb/pb_sort.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>

static_assert(sizeof(void *) == 8, "the object header assumes 64-bit words");
static_assert(sizeof(PB_OBJ_HEADER) == 10 * 8);
static_assert(offsetof(PB_OBJ_HEADER, refCount) == 3 * 8);
static_assert(sizeof(PB_SORT) == 20 * 8);
static_assert(std::is_standard_layout_v<PB_SORT>);
static_assert(std::atomic_ref<int64_t>::is_always_lock_free);

namespace pb {

inline PB_OBJ_HEADER *header(const void *obj) noexcept
{
    return static_cast<PB_OBJ_HEADER *>(const_cast<void *>(obj));
}

template <class T> inline PB_OBJ *obj(T *p) noexcept
{
    return reinterpret_cast<PB_OBJ *>(p);
}

inline std::atomic_ref<int64_t> refCount(const void *obj) noexcept
{
    return std::atomic_ref<int64_t>(header(obj)->refCount);
}

// Static records keep their count at 1 and are never freed.
inline void retain(const void *obj) noexcept
{
    if (PB_LIKELY(header(obj)->kind == PB_OBJ_KIND_HEAP))
        refCount(obj).fetch_add(1);
}

inline void release(const void *obj) noexcept
{
    if (PB_LIKELY(header(obj)->kind == PB_OBJ_KIND_HEAP) && refCount(obj).fetch_sub(1) == 1)
        pb___ObjFree(static_cast<PB_OBJ *>(const_cast<void *>(obj)));
}

// One atomic load: more than one owner means a change must go to a copy.
inline bool isShared(const void *obj) noexcept
{
    return header(obj)->kind != PB_OBJ_KIND_HEAP || refCount(obj).load() > 1;
}

template <class T> inline T *create(const PB_SORT *sort) noexcept
{
    return reinterpret_cast<T *>(pb___ObjCreate(static_cast<PB_INT>(sizeof(T)), sort));
}

// The value written into released fields and static variables: a use after
// release faults at once instead of reading freed memory.
template <class T> inline T *poison() noexcept
{
    return reinterpret_cast<T *>(~uintptr_t{0});
}

// Releases a field and overwrites it with the poison value.
template <class T> inline void releaseField(T *&field) noexcept
{
    if (field)
        release(field);
    field = poison<T>();
}

// Replaces a field: retain the new value, store it, then release the old one,
// so that setting a field to the object it already holds is harmless.
template <class T> inline void setField(T *&field, T *value) noexcept
{
    T *old = field;
    if (value)
        retain(value);
    field = value;
    if (old)
        release(old);
}

// Unshare before change: when *ref has other owners, replace the caller's
// reference by a private copy and drop the caller's reference to the shared one.
template <class T, class CreateFrom> inline void unshare(T **ref, CreateFrom createFrom) noexcept
{
    if (isShared(*ref)) {
        T *copy = createFrom(*ref);
        release(*ref);
        *ref = copy;
    }
}

} // namespace pb

// First step of a changing operation: the address and the reference behind it.
// Called as PB_ASSERT_REF(type), the conditions read "type" and "*type".
#define PB_ASSERT_REF(p) \
    do { \
        PB_ASSERT(p); \
        PB_ASSERT(*p); \
    } while (0)

// Checks the object behind a changing operation's reference and unshares it.
// Called as PB_OBJ_UNSHARE((*type), createFrom), the condition reads "((*type))".
#define PB_OBJ_UNSHARE(ref, createFrom) \
    do { \
        PB_ASSERT((ref)); \
        pb::unshare(&(ref), (createFrom)); \
    } while (0)
