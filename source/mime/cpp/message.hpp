// mime::Part: the tree that the tolerant reader (mimeMessageRead) builds of a
// message, read as mail readers read it. A part is a value (shared, never
// changed); its children, fields and defects are ranges, and parts() walks
// the tree depth-first:
//
//     mime::Part message = mime::Part::read(bytes);
//     for (const mime::Part &part : message.parts())
//         for (const mime::Defect &defect : part.defects())
//             std::puts(defect.to_string().c_str());
#ifndef MIME_CPP_MESSAGE_HPP
#define MIME_CPP_MESSAGE_HPP

#include <mime/cpp/entity.hpp>
#include <mime/cpp/parameterized.hpp>
#include <mime/cpp/ranges.hpp>

#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace mime {

class Part;

namespace detail {

// The child of a part at an index, the defect of a part at an index, the field
// of a part at an index.
struct ChildAt {
    Ref<MIME_PART> part;
    Part operator()(PB_INT index) const;
};
struct DefectAt {
    Ref<MIME_PART> part;
    Defect operator()(PB_INT index) const { return Defect::adopt(mimePartDefectAt(part.get(), index)); }
};
struct FieldAt {
    Ref<MIME_PART> part;
    Field operator()(PB_INT index) const
    {
        return Field{takeUtf8(mimePartFieldNameAt(part.get(), index)),
                     takeUtf8(mimePartFieldValueAt(part.get(), index))};
    }
};

} // namespace detail

class Part {
public:
    // The tree of the message in bytes; never fails (what departs from the
    // RFCs is a defect of the part it is in). limits null: the defaults.
    static Part read(const Buffer &message, const Options &options = Options(),
                     const MIME_READ_LIMITS *limits = nullptr) noexcept
    {
        return adopt(mimeMessageRead(message.get(), options.get(), limits));
    }
    // Takes over a reference the caller owns / adds one to a part it keeps.
    static Part adopt(MIME_PART *part) noexcept { return Part(Ref<MIME_PART>::adopt(part)); }
    static Part retain(MIME_PART *part) noexcept { return Part(Ref<MIME_PART>::retain(part)); }
    MIME_PART *get() const noexcept { return ref_.get(); }

    // "1" for the message, "1.2" for its second part, and so on.
    std::string number() const { return takeUtf8(mimePartNumber(get())); }
    // The header fields as read (unfolded, RFC 2047 words kept), in order.
    auto fields() const { return detail::indexedRange<Field>(mimePartFieldCount(get()), detail::FieldAt{ref_}); }
    // The value of the first field of name, of any case (empty when absent).
    std::optional<std::string> field(std::string_view name) const
    {
        PB_STRING *value = mimePartFieldCstr(get(), detail::chars(name), detail::length(name));
        return value ? std::optional<std::string>(takeUtf8(value)) : std::nullopt;
    }
    // The entity: the Content-* fields as read and the body as it stands.
    Entity entity() const noexcept { return Entity::adopt(mimePartEntity(get())); }
    // The media type, given or implied (text/plain, or message/rfc822 in a digest).
    ContentType contentType() const noexcept { return ContentType::adopt(mimePartContentType(get())); }
    bool contentTypeImplied() const noexcept { return mimePartContentTypeImplied(get()); }
    std::optional<ContentDisposition> contentDisposition() const noexcept
    {
        MIME_CONTENT_DISPOSITION *disposition = mimePartContentDisposition(get());
        return disposition ? std::optional<ContentDisposition>(ContentDisposition::adopt(disposition)) : std::nullopt;
    }
    std::optional<std::string> contentId() const
    {
        PB_STRING *id = mimePartContentId(get());
        return id ? std::optional<std::string>(takeUtf8(id)) : std::nullopt;
    }
    MIME_CONTENT_TRANSFER_ENCODING transferEncoding() const noexcept { return mimePartTransferEncoding(get()); }
    // The decoded body (shown where it stands in the message when no decoding
    // is needed); an empty Buffer when there is none.
    Buffer body() const noexcept { return Buffer::adopt(mimePartBody(get())); }
    // Where the part and its body lie in the message's bytes.
    PB_INT offset() const noexcept { return mimePartOffset(get()); }
    PB_INT length() const noexcept { return mimePartLength(get()); }
    PB_INT bodyOffset() const noexcept { return mimePartBodyOffset(get()); }
    PB_INT bodyLength() const noexcept { return mimePartBodyLength(get()); }

    // The parts of a multipart body, the message of a message/* part.
    auto children() const { return detail::indexedRange<Part>(mimePartChildCount(get()), detail::ChildAt{ref_}); }
    // What departs from the RFCs in this part (not in its children).
    auto defects() const { return detail::indexedRange<Defect>(mimePartDefectCount(get()), detail::DefectAt{ref_}); }

    // This part and every part below it, depth-first: 1, 1.1, 1.1.1, 1.2, ...
    class Walk;
    Walk parts() const;

    std::string to_string() const { return takeUtf8(mimePartToString(get())); }
    friend bool operator==(const Part &a, const Part &b) noexcept { return mimePartEquals(a.get(), b.get()); }
    friend bool operator!=(const Part &a, const Part &b) noexcept { return !(a == b); }

private:
    explicit Part(Ref<MIME_PART> ref) noexcept : ref_(std::move(ref)) {}
    Ref<MIME_PART> ref_;
};

inline Part detail::ChildAt::operator()(PB_INT index) const
{
    return Part::adopt(mimePartChildAt(part.get(), index));
}

class Part::Walk {
public:
    class iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Part;
        using difference_type = std::ptrdiff_t;
        using pointer = const Part *;
        using reference = const Part &;

        iterator() = default; // the end
        explicit iterator(const Part &root) : current_(root) {}
        const Part &operator*() const noexcept { return *current_; }
        const Part *operator->() const noexcept { return &*current_; }
        // Into the first child, else on to the next sibling of this part or of
        // the nearest ancestor that has one.
        iterator &operator++()
        {
            if (mimePartChildCount(current_->get()) > 0) {
                above_.emplace_back(*current_, 0);
                current_ = Part::adopt(mimePartChildAt(current_->get(), 0));
                return *this;
            }
            while (!above_.empty()) {
                auto &[parent, index] = above_.back();
                if (++index < mimePartChildCount(parent.get())) {
                    current_ = Part::adopt(mimePartChildAt(parent.get(), index));
                    return *this;
                }
                above_.pop_back();
            }
            current_.reset();
            return *this;
        }
        friend bool operator==(const iterator &a, const iterator &b) noexcept
        {
            return a.current_.has_value() == b.current_.has_value() &&
                   (!a.current_ || a.current_->get() == b.current_->get());
        }
        friend bool operator!=(const iterator &a, const iterator &b) noexcept { return !(a == b); }

    private:
        std::optional<Part> current_;
        std::vector<std::pair<Part, PB_INT>> above_; // the ancestors, each with the index of the child walked
    };

    explicit Walk(Part root) noexcept : root_(std::move(root)) {}
    iterator begin() const { return iterator(root_); }
    iterator end() const { return iterator(); }

private:
    Part root_;
};

inline Part::Walk Part::parts() const
{
    return Walk(*this);
}

} // namespace mime

#endif
