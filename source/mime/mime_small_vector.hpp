// Internal: a sequence that keeps its first N elements inline, for the short
// texts and piece lists of header values, which then need no heap.
#pragma once

#include <cstddef>
#include <vector>

namespace mime {

template <class T, size_t N> class SmallVector {
public:
    void push_back(const T &x)
    {
        if (heap_.empty() && size_ < N) {
            inline_[size_++] = x;
            return;
        }
        if (heap_.empty())
            heap_.assign(inline_, inline_ + size_);
        heap_.push_back(x);
        ++size_;
    }
    void append(const T *items, size_t count)
    {
        if (heap_.empty() && size_ + count <= N) {
            for (size_t i = 0; i < count; ++i)
                inline_[size_ + i] = items[i];
            size_ += count;
            return;
        }
        if (heap_.empty())
            heap_.assign(inline_, inline_ + size_);
        heap_.insert(heap_.end(), items, items + count);
        size_ += count;
    }
    T *data() { return heap_.empty() ? inline_ : heap_.data(); }
    const T *data() const { return heap_.empty() ? inline_ : heap_.data(); }
    size_t size() const { return size_; }
    void clear()
    {
        heap_.clear();
        size_ = 0;
    }

private:
    T inline_[N];
    std::vector<T> heap_;
    size_t size_ = 0;
};

} // namespace mime
