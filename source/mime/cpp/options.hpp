// mime::Options: the settings of decoding and encoding (flags, line length,
// RFC 2231 charset and segment length), a value that copies when shared.
#ifndef MIME_CPP_OPTIONS_HPP
#define MIME_CPP_OPTIONS_HPP

#include <mime/cpp/text.hpp>

#include <utility>

namespace mime {

class Options {
public:
    // The defaults (see mime_options.h).
    Options() noexcept : ref_(mime::adopt(mimeOptionsCreate())) {}
    // Takes over a reference the caller owns / adds one to options it keeps.
    static Options adopt(MIME_OPTIONS *options) noexcept { return Options(Ref<MIME_OPTIONS>::adopt(options)); }
    static Options retain(MIME_OPTIONS *options) noexcept { return Options(Ref<MIME_OPTIONS>::retain(options)); }
    // The options a store holds (mimeOptionsRestore: what it does not hold
    // stays at the default).
    static Options restore(PB_STORE *store) noexcept { return adopt(mimeOptionsRestore(store)); }
    MIME_OPTIONS *get() const noexcept { return ref_.get(); }

    MIME_FLAGS flags() const noexcept { return mimeOptionsFlags(get()); }
    void setFlags(MIME_FLAGS flags) noexcept { mimeOptionsSetFlags(ref_.address(), flags); }
    PB_INT wrapLineLength() const noexcept { return mimeOptionsWrapLineLength(get()); }
    void setWrapLineLength(PB_INT length) noexcept { mimeOptionsSetWrapLineLength(ref_.address(), length); }
    PB_CHARSET rfc2231Charset() const noexcept { return mimeOptionsRfc2231Charset(get()); }
    void setRfc2231Charset(PB_CHARSET charset) noexcept { mimeOptionsSetRfc2231Charset(ref_.address(), charset); }
    PB_INT rfc2231MaxSegmentLength() const noexcept { return mimeOptionsRfc2231MaxSegmentLength(get()); }
    void setRfc2231MaxSegmentLength(PB_INT length) noexcept
    {
        mimeOptionsSetRfc2231MaxSegmentLength(ref_.address(), length);
    }
    // The settings as a store (full: the defaults too).
    Ref<PB_STORE> store(bool full = false) const noexcept { return mime::adopt(mimeOptionsStore(get(), full)); }

    std::string to_string() const { return takeUtf8(mimeOptionsToString(get())); }
    friend bool operator==(const Options &a, const Options &b) noexcept { return mimeOptionsEquals(a.get(), b.get()); }
    friend bool operator!=(const Options &a, const Options &b) noexcept { return !(a == b); }
    friend bool operator<(const Options &a, const Options &b) noexcept
    {
        return mimeOptionsCompare(a.get(), b.get()) < 0;
    }

private:
    explicit Options(Ref<MIME_OPTIONS> ref) noexcept : ref_(std::move(ref)) {}
    Ref<MIME_OPTIONS> ref_;
};

} // namespace mime

#endif
