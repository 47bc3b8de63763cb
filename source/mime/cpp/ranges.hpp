// The ranges of the C++ interface: a count of items, each made from its index
// when an iterator reaches it (parameters, fields, defects, child parts).
#ifndef MIME_CPP_RANGES_HPP
#define MIME_CPP_RANGES_HPP

#include <pb/pb.h>

#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

namespace mime {

// A parameter of a Content-Type or Content-Disposition, a field of a part's
// header: a name (key) and its value, as UTF-8.
struct Parameter {
    std::string key, value;
};
struct Field {
    std::string name, value;
};

namespace detail {

// count items, item i being at(i); at holds what it needs (the owner's reference).
template <class Item, class At> class IndexedRange {
public:
    IndexedRange(PB_INT count, At at) : count_(count), at_(std::move(at)) {}

    class iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Item;
        using difference_type = std::ptrdiff_t;
        using pointer = const Item *;
        using reference = const Item &;

        iterator(const IndexedRange *range, PB_INT index) : range_(range), index_(index) { load(); }
        const Item &operator*() const noexcept { return *item_; }
        const Item *operator->() const noexcept { return &*item_; }
        iterator &operator++()
        {
            ++index_;
            load();
            return *this;
        }
        friend bool operator==(const iterator &a, const iterator &b) noexcept { return a.index_ == b.index_; }
        friend bool operator!=(const iterator &a, const iterator &b) noexcept { return a.index_ != b.index_; }

    private:
        void load()
        {
            if (index_ < range_->count_)
                item_ = range_->at_(index_);
            else
                item_.reset();
        }
        const IndexedRange *range_;
        PB_INT index_;
        std::optional<Item> item_;
    };

    iterator begin() const { return iterator(this, 0); }
    iterator end() const { return iterator(this, count_); }
    size_t size() const noexcept { return static_cast<size_t>(count_); }
    bool empty() const noexcept { return count_ == 0; }
    Item operator[](size_t index) const { return at_(static_cast<PB_INT>(index)); }

private:
    PB_INT count_;
    At at_;
};

template <class Item, class At> IndexedRange<Item, At> indexedRange(PB_INT count, At at)
{
    return IndexedRange<Item, At>(count, std::move(at));
}

} // namespace detail
} // namespace mime

#endif
