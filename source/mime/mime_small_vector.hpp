// Internal: a sequence of trivially copyable elements that keeps its first N
// inline, for the short texts and piece lists of header values, which then need
// no heap.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include <pb/pb_abort.h>
#include <pb/pb_mem.h>

namespace mime {

template <class T, size_t N> class SmallVector {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    SmallVector() = default;
    SmallVector(const SmallVector &) = delete;
    SmallVector &operator=(const SmallVector &) = delete;
    ~SmallVector()
    {
        if (data_ != inline_)
            pb___MemRelease(data_, bytes(capacity_));
    }

    // Room for count more elements at the end, uninitialised; the pointer is
    // valid until the next change.
    T *extend(size_t count)
    {
        if (count > capacity_ - size_)
            grow(count);
        T *at = data_ + size_;
        size_ += count;
        return at;
    }
    void push_back(const T &x) { *extend(1) = x; }
    void append(const T *items, size_t count)
    {
        if (count)
            std::memcpy(extend(count), items, count * sizeof(T));
    }
    // count copies of value in place of the elements.
    void assign(size_t count, const T &value)
    {
        size_ = 0;
        for (T *at = extend(count), *end = at + count; at != end; ++at)
            *at = value;
    }
    T *data() { return data_; }
    const T *data() const { return data_; }
    T &operator[](size_t i) { return data_[i]; }
    const T &operator[](size_t i) const { return data_[i]; }
    T *begin() { return data_; }
    T *end() { return data_ + size_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    // Keeps the first count elements (count <= size()).
    void truncate(size_t count) { size_ = count; }
    void clear() { size_ = 0; }

private:
    void grow(size_t count)
    {
        size_t need = size_ + count;
        PB_ASSERT_MSG("out of memory", need >= size_ && need < SIZE_MAX / 2 / sizeof(T));
        size_t capacity = capacity_ * 2 > need ? capacity_ * 2 : need;
        // Heap storage is resized (a large block is remapped, not copied).
        T *fresh;
        if (data_ != inline_) {
            fresh = static_cast<T *>(pb___MemResize(data_, bytes(capacity_), bytes(capacity)));
        } else {
            fresh = static_cast<T *>(pb___MemAlloc(bytes(capacity)));
            std::memcpy(fresh, data_, size_ * sizeof(T));
        }
        data_ = fresh;
        capacity_ = capacity;
    }

    static PB_INT bytes(size_t count) { return static_cast<PB_INT>(count * sizeof(T)); }

    T inline_[N];
    T *data_ = inline_;
    size_t size_ = 0;
    size_t capacity_ = N;
};

} // namespace mime
