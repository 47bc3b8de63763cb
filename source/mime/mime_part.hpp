// Internal: how the tolerant reader builds a part.
#pragma once

#include <mime/mime_part.h>
#include <pb/pb_abort.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_vector.h>

#include <cstdlib>
#include <string>
#include <utility>

namespace mime {

// One header field in the input: its name, and its value from after the colon
// to the end of its last line (folded, untrimmed). Offsets in the input.
struct FieldSpan {
    PB_INT name;
    PB_INT nameLength;
    PB_INT value;
    PB_INT end;
};

// Header fields as read: an array that grows in place where the allocator can
// (large blocks are remapped, not copied) and that a part takes over whole.
class FieldList {
public:
    FieldList() = default;
    FieldList(FieldList &&other) noexcept { swap(other); }
    FieldList &operator=(FieldList &&other) noexcept
    {
        swap(other);
        return *this;
    }
    ~FieldList() { std::free(data_); }

    void push_back(const FieldSpan &field) noexcept
    {
        if (size_ == capacity_) {
            capacity_ = capacity_ ? 2 * capacity_ : 8;
            data_ = static_cast<FieldSpan *>(std::realloc(data_, capacity_ * sizeof(FieldSpan)));
            PB_ASSERT_MSG("out of memory", data_);
        }
        data_[size_++] = field;
    }
    size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    FieldSpan &back() noexcept { return data_[size_ - 1]; }
    const FieldSpan &operator[](size_t i) const noexcept { return data_[i]; }
    const FieldSpan *begin() const noexcept { return data_; }
    const FieldSpan *end() const noexcept { return data_ + size_; }
    // The array cut to its size, for std::free by its new owner (null when empty).
    FieldSpan *release() noexcept
    {
        if (size_ == 0) {
            std::free(data_);
            data_ = nullptr;
        } else if (size_ < capacity_) {
            void *cut = std::realloc(data_, size_ * sizeof(FieldSpan)); // in place: a part keeps no slack
            data_ = cut ? static_cast<FieldSpan *>(cut) : data_;
        }
        size_ = capacity_ = 0;
        return std::exchange(data_, nullptr);
    }

private:
    void swap(FieldList &other) noexcept
    {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

    FieldSpan *data_ = nullptr;
    size_t size_ = 0, capacity_ = 0;
};

// The value text of a field: unfolded, trimmed, UTF-8 or else Latin-1.
PB_STRING *fieldValue(const PB_BYTE *input, const FieldSpan &field) noexcept;

// Everything a part holds, gathered by the reader; createPart takes it over.
// What is a view of the input (field values, the entity, a body that needs no
// decoding) is made when asked for, so that a part costs little memory.
struct PartContents {
    std::string number;
    PB_BUFFER *input = nullptr; // the outermost input, which field spans point into
    FieldList fields;
    PB_INT contentFields[MIME_ENTITY_FIELD_COUNT] = {-1, -1, -1, -1}; // the field read for each, or -1
    pb::Ref<MIME_CONTENT_TYPE> contentType;
    bool contentTypeImplied = false;
    pb::Ref<MIME_CONTENT_DISPOSITION> contentDisposition;
    pb::Ref<PB_STRING> contentId;
    MIME_CONTENT_TRANSFER_ENCODING transferEncoding = -1;
    bool hasBody = false;
    pb::Ref<PB_BUFFER> decodedBody; // null for a body that needs no decoding
    PB_INT offset = 0, length = 0, bodyOffset = 0, bodyLength = 0;
    pb::Ref<PB_VECTOR> children; // of MIME_PART, or null
    pb::Ref<PB_VECTOR> defects;  // of MIME_DEFECT, or null
};

MIME_PART *createPart(PartContents &contents) noexcept;

} // namespace mime
