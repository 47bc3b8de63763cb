// Text and bytes between C++ and the library: text in as std::string_view
// (UTF-8) and out as std::string; bytes in as a Bytes view and out as a Buffer
// that shows the library's bytes without copying them.
#ifndef MIME_CPP_TEXT_HPP
#define MIME_CPP_TEXT_HPP

#include <mime/cpp/ref.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#if __cplusplus >= 202002L
#include <span>
#endif

namespace mime {

namespace detail {

// The characters of text for a C function that takes a pointer and a length
// (never null, which the C functions refuse).
inline const char *chars(std::string_view text) noexcept
{
    return text.data() ? text.data() : "";
}
inline PB_INT length(std::string_view text) noexcept
{
    return static_cast<PB_INT>(text.size());
}

} // namespace detail

// A new library string of UTF-8 text (a malformed sequence becomes U+FFFD).
inline Ref<PB_STRING> makeString(std::string_view utf8) noexcept
{
    return adopt(pbStringCreateFromCstr(detail::chars(utf8), detail::length(utf8)));
}

// The UTF-8 form of s (a code point that is no Unicode scalar value becomes
// U+FFFD); "" for null.
inline std::string toUtf8(PB_STRING *s)
{
    std::string out;
    if (!s)
        return out;
    const PB_CHAR *chars = pbStringBacking(s);
    const PB_INT length = pbStringLength(s);
    out.reserve(static_cast<size_t>(length));
    for (PB_INT i = 0; i < length; ++i) {
        PB_CHAR c = chars[i];
        if (c < 0x80) {
            out += static_cast<char>(c);
            continue;
        }
        if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
            c = 0xFFFD;
        const int tail = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        out += static_cast<char>(((0xFF00 >> (tail + 1)) & 0xFF) | (c >> (6 * tail)));
        for (int k = tail - 1; k >= 0; --k)
            out += static_cast<char>(0x80 | ((c >> (6 * k)) & 0x3F));
    }
    return out;
}

// toUtf8 of a string the caller owns a reference to, released here: for the
// results of C functions.
inline std::string takeUtf8(PB_STRING *s)
{
    return toUtf8(adopt(s).get());
}

// A view of bytes that the caller keeps alive: pointer and size.
class Bytes {
public:
    constexpr Bytes() noexcept = default;
    constexpr Bytes(const void *data, size_t size) noexcept : data_(data), size_(size) {}
    constexpr Bytes(std::string_view text) noexcept : data_(text.data()), size_(text.size()) {}
    Bytes(const std::string &text) noexcept : data_(text.data()), size_(text.size()) {}
    Bytes(const char *text) = delete; // say the length: std::string_view
#if __cplusplus >= 202002L
    constexpr Bytes(std::span<const std::byte> bytes) noexcept : data_(bytes.data()), size_(bytes.size()) {}
    constexpr Bytes(std::span<const std::uint8_t> bytes) noexcept : data_(bytes.data()), size_(bytes.size()) {}
#endif
    constexpr const void *data() const noexcept
    {
        return data_;
    }
    constexpr size_t size() const noexcept
    {
        return size_;
    }

private:
    const void *data_ = nullptr;
    size_t size_ = 0;
};

// A library buffer (shared, never changed in place): its bytes are shown
// where they are. An empty Buffer holds no buffer and shows no bytes.
class Buffer {
public:
    Buffer() noexcept = default;
    // A new buffer with a copy of bytes.
    explicit Buffer(Bytes bytes) noexcept
        : ref_(mime::adopt(
              pbBufferCreateFromBytesCopy(bytes.size() ? bytes.data() : "", static_cast<PB_INT>(bytes.size()))))
    {
    }
    // Takes over a reference the caller owns / adds one to a buffer it keeps.
    static Buffer adopt(PB_BUFFER *buffer) noexcept { return Buffer(Ref<PB_BUFFER>::adopt(buffer)); }
    static Buffer retain(PB_BUFFER *buffer) noexcept { return Buffer(Ref<PB_BUFFER>::retain(buffer)); }

    PB_BUFFER *get() const noexcept { return ref_.get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(ref_); }

    const std::uint8_t *data() const noexcept { return ref_ ? pbBufferBacking(ref_.get()) : nullptr; }
    size_t size() const noexcept { return ref_ ? static_cast<size_t>(pbBufferLength(ref_.get())) : 0; }
    bool empty() const noexcept { return size() == 0; }
    const std::uint8_t *begin() const noexcept { return data(); }
    const std::uint8_t *end() const noexcept { return data() + size(); }
    // The bytes as characters, for text bodies.
    std::string_view view() const noexcept
    {
        return size() ? std::string_view(reinterpret_cast<const char *>(data()), size()) : std::string_view();
    }
    operator Bytes() const noexcept { return Bytes(data(), size()); }
#if __cplusplus >= 202002L
    std::span<const std::uint8_t> span() const noexcept
    {
        return {data(), size()};
    }
#endif
    // Same bytes (two empty Buffers are equal).
    friend bool operator==(const Buffer &a, const Buffer &b) noexcept
    {
        return a.view() == b.view();
    }
    friend bool operator!=(const Buffer &a, const Buffer &b) noexcept
    {
        return !(a == b);
    }

private:
    explicit Buffer(Ref<PB_BUFFER> ref) noexcept : ref_(std::move(ref)) {}
    Ref<PB_BUFFER> ref_;
};

} // namespace mime

#endif
