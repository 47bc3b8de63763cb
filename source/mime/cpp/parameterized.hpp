// mime::ContentType and mime::ContentDisposition: a name and parameters, values
// that copy when shared (as the C functions do: a change to one holder is never
// seen by another). Names and keys that their rule refuses abort, as in C;
// what comes from the wire is read by decode(), which says why it fails.
#ifndef MIME_CPP_PARAMETERIZED_HPP
#define MIME_CPP_PARAMETERIZED_HPP

#include <mime/cpp/defect.hpp>
#include <mime/cpp/options.hpp>
#include <mime/cpp/ranges.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace mime {
namespace detail {

// The C functions of the two parameterized values.
struct ContentTypeApi {
    using C = MIME_CONTENT_TYPE;
    static constexpr PB_INT kFirstLineOffset = MIME_FIRST_LINE_OFFSET_CONTENT_TYPE;
    static constexpr auto nameOk = mimeContentTypeNameOk;
    static constexpr auto create = mimeContentTypeCreateCstr;
    static constexpr auto name = mimeContentTypeName;
    static constexpr auto setName = mimeContentTypeSetNameCstr;
    static constexpr auto keyOk = mimeContentTypeParameterKeyOk;
    static constexpr auto parameter = mimeContentTypeParameterCstr;
    static constexpr auto hasParameter = mimeContentTypeHasParameterCstr;
    static constexpr auto setParameter = mimeContentTypeSetParameterCstrCstrValue;
    static constexpr auto delParameter = mimeContentTypeDelParameterCstr;
    static constexpr auto clearParameters = mimeContentTypeClearParameters;
    static constexpr auto count = mimeContentTypeParametersLength;
    static constexpr auto keyAt = mimeContentTypeParameterKeyAt;
    static constexpr auto valueAt = mimeContentTypeParameterValueAt;
    static constexpr auto tryDecode = mimeContentTypeTryDecodeWithDefect;
    static constexpr auto encode = mimeContentTypeEncode;
    static constexpr auto toString = mimeContentTypeToString;
    static constexpr auto compare = mimeContentTypeCompare;
};
struct ContentDispositionApi {
    using C = MIME_CONTENT_DISPOSITION;
    static constexpr PB_INT kFirstLineOffset = MIME_FIRST_LINE_OFFSET_CONTENT_DISPOSITION;
    static constexpr auto nameOk = mimeContentDispositionTypeOk;
    static constexpr auto create = mimeContentDispositionCreateCstr;
    static constexpr auto name = mimeContentDispositionType;
    static constexpr auto setName = mimeContentDispositionSetTypeCstr;
    static constexpr auto keyOk = mimeContentDispositionParameterKeyOk;
    static constexpr auto parameter = mimeContentDispositionParameterCstr;
    static constexpr auto hasParameter = mimeContentDispositionHasParameterCstr;
    static constexpr auto setParameter = mimeContentDispositionSetParameterCstrCstrValue;
    static constexpr auto delParameter = mimeContentDispositionDelParameterCstr;
    static constexpr auto clearParameters = mimeContentDispositionClearParameters;
    static constexpr auto count = mimeContentDispositionParametersLength;
    static constexpr auto keyAt = mimeContentDispositionParameterKeyAt;
    static constexpr auto valueAt = mimeContentDispositionParameterValueAt;
    static constexpr auto tryDecode = mimeContentDispositionTryDecodeWithDefect;
    static constexpr auto encode = mimeContentDispositionEncode;
    static constexpr auto toString = mimeContentDispositionToString;
    static constexpr auto compare = mimeContentDispositionCompare;
};

// What the two share: Self is the value's own class, Api its C functions.
template <class Self, class Api> class Parameterized {
public:
    using C = typename Api::C;

    // Takes over a reference the caller owns / adds one to a value it keeps.
    static Self adopt(C *value) noexcept { return Self(Ref<C>::adopt(value)); }
    static Self retain(C *value) noexcept { return Self(Ref<C>::retain(value)); }
    C *get() const noexcept { return ref_.get(); }

    // Whether a name (a media type for Content-Type, a disposition type for
    // Content-Disposition) or a parameter key is acceptable.
    static bool nameOk(std::string_view name) noexcept { return Api::nameOk(makeString(name).get()); }
    static bool parameterKeyOk(std::string_view key) noexcept { return Api::keyOk(makeString(key).get()); }

    // The value a header field holds, or why it cannot be read (the offset
    // counts characters of the value).
    static Result<Self> decode(std::string_view value, const Options &options = Options())
    {
        MIME_DEFECT *defect = nullptr;
        C *decoded = Api::tryDecode(makeString(value).get(), options.get(), &defect);
        return resultOf<Self>(decoded, defect, [](C *obj) { return adopt(obj); });
    }

    // The value under key, of any case (empty when there is none).
    std::optional<std::string> parameter(std::string_view key) const
    {
        PB_STRING *value = Api::parameter(get(), chars(key), length(key));
        return value ? std::optional<std::string>(takeUtf8(value)) : std::nullopt;
    }
    bool hasParameter(std::string_view key) const noexcept { return Api::hasParameter(get(), chars(key), length(key)); }
    // Stores value (written as given) under key in lower case, replacing an
    // earlier value under the key in any case.
    void setParameter(std::string_view key, std::string_view value) noexcept
    {
        Api::setParameter(ref_.address(), chars(key), length(key), chars(value), length(value));
    }
    void delParameter(std::string_view key) noexcept { Api::delParameter(ref_.address(), chars(key), length(key)); }
    void clearParameters() noexcept { Api::clearParameters(ref_.address()); }
    // The parameters in key order: for (const auto &[key, value] : type.parameters()).
    auto parameters() const
    {
        return detail::indexedRange<Parameter>(Api::count(get()), [ref = ref_](PB_INT i) {
            return Parameter{takeUtf8(Api::keyAt(ref.get(), i)), takeUtf8(Api::valueAt(ref.get(), i))};
        });
    }

    // The header value (see the C function for the options it follows);
    // firstLineOffset: what precedes the value on its line.
    std::string encode(const Options &options = Options(), PB_INT firstLineOffset = Api::kFirstLineOffset) const
    {
        return takeUtf8(Api::encode(get(), options.get(), firstLineOffset));
    }
    std::string to_string() const { return takeUtf8(Api::toString(get())); }

    friend bool operator==(const Self &a, const Self &b) noexcept { return Api::compare(a.get(), b.get()) == 0; }
    friend bool operator!=(const Self &a, const Self &b) noexcept { return Api::compare(a.get(), b.get()) != 0; }
    friend bool operator<(const Self &a, const Self &b) noexcept { return Api::compare(a.get(), b.get()) < 0; }

protected:
    explicit Parameterized(Ref<C> ref) noexcept : ref_(std::move(ref)) {}
    static Ref<C> created(std::string_view name) noexcept
    {
        return Ref<C>::adopt(Api::create(chars(name), length(name)));
    }
    std::string nameOf() const { return takeUtf8(Api::name(get())); }
    void setNameOf(std::string_view name) noexcept { Api::setName(ref_.address(), chars(name), length(name)); }

    Ref<C> ref_;
};

} // namespace detail

// A Content-Type value: a media type name in lower case and parameters.
class ContentType : public detail::Parameterized<ContentType, detail::ContentTypeApi> {
public:
    // A new value with no parameters; aborts unless nameOk(name).
    explicit ContentType(std::string_view name) noexcept : Parameterized(created(name)) {}
    std::string name() const { return nameOf(); }
    void setName(std::string_view name) noexcept { setNameOf(name); }

private:
    friend Parameterized;
    explicit ContentType(Ref<MIME_CONTENT_TYPE> ref) noexcept : Parameterized(std::move(ref)) {}
};

// A Content-Disposition value: a disposition type in lower case and parameters.
class ContentDisposition : public detail::Parameterized<ContentDisposition, detail::ContentDispositionApi> {
public:
    // A new value with no parameters; aborts unless nameOk(type).
    explicit ContentDisposition(std::string_view type) noexcept : Parameterized(created(type)) {}
    std::string type() const { return nameOf(); }
    void setType(std::string_view type) noexcept { setNameOf(type); }

private:
    friend Parameterized;
    explicit ContentDisposition(Ref<MIME_CONTENT_DISPOSITION> ref) noexcept : Parameterized(std::move(ref)) {}
};

} // namespace mime

#endif
