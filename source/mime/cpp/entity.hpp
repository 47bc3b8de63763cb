// mime::Entity: the Content-* fields and the body of one MIME entity, a value
// that copies when shared. Its setters refuse a header value that would not
// stay in its field (mimeHeaderValueCheck) and say why; the C functions write
// values as given.
#ifndef MIME_CPP_ENTITY_HPP
#define MIME_CPP_ENTITY_HPP

#include <mime/cpp/defect.hpp>
#include <mime/cpp/options.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace mime {

// Whether value, written as a header field's value as it stands, stays in its
// field: every line break a fold, no other control character.
inline Result<void> checkHeaderValue(std::string_view value) noexcept
{
    MIME_DEFECT *defect = nullptr;
    if (mimeHeaderValueCheckCstr(detail::chars(value), detail::length(value), &defect))
        return {};
    return Defect::adopt(defect);
}

class Entity {
public:
    // An entity with no fields and no body.
    Entity() noexcept : ref_(mime::adopt(mimeEntityCreate())) {}
    // Takes over a reference the caller owns / adds one to an entity it keeps.
    static Entity adopt(MIME_ENTITY *entity) noexcept { return Entity(Ref<MIME_ENTITY>::adopt(entity)); }
    static Entity retain(MIME_ENTITY *entity) noexcept { return Entity(Ref<MIME_ENTITY>::retain(entity)); }
    MIME_ENTITY *get() const noexcept { return ref_.get(); }

    // The entity that content (Content-* header lines, an empty line, the body)
    // holds, or why it cannot be read (the offset counts bytes of content).
    static Result<Entity> parse(const Buffer &content, const Options &options = Options())
    {
        MIME_DEFECT *defect = nullptr;
        MIME_ENTITY *entity = mimeEntityTryParseWithDefect(content.get(), options.get(), &defect);
        return detail::resultOf<Entity>(entity, defect, [](MIME_ENTITY *e) { return adopt(e); });
    }

    // The fields' values as they stand in the entity (empty when absent).
    std::optional<std::string> contentType() const { return field(mimeEntityContentType(get())); }
    std::optional<std::string> contentDisposition() const { return field(mimeEntityContentDisposition(get())); }
    std::optional<std::string> contentTransferEncoding() const
    {
        return field(mimeEntityContentTransferEncoding(get()));
    }
    std::optional<std::string> contentId() const { return field(mimeEntityContentId(get())); }

    // Sets a field to value, written as it stands, or refuses a value that
    // would not stay in its field (and leaves the entity as it was).
    Result<void> setContentType(std::string_view value) noexcept { return set(mimeEntitySetContentTypeCstr, value); }
    Result<void> setContentDisposition(std::string_view value) noexcept
    {
        return set(mimeEntitySetContentDispositionCstr, value);
    }
    Result<void> setContentTransferEncoding(std::string_view value) noexcept
    {
        return set(mimeEntitySetContentTransferEncodingCstr, value);
    }
    Result<void> setContentId(std::string_view value) noexcept { return set(mimeEntitySetContentIdCstr, value); }
    void delContentType() noexcept { mimeEntityDelContentType(ref_.address()); }
    void delContentDisposition() noexcept { mimeEntityDelContentDisposition(ref_.address()); }
    void delContentTransferEncoding() noexcept { mimeEntityDelContentTransferEncoding(ref_.address()); }
    void delContentId() noexcept { mimeEntityDelContentId(ref_.address()); }

    // The body as it stands (encoded), or empty when there is none.
    std::optional<Buffer> body() const
    {
        PB_BUFFER *body = mimeEntityBody(get());
        return body ? std::optional<Buffer>(Buffer::adopt(body)) : std::nullopt;
    }
    void setBody(const Buffer &body) noexcept { mimeEntitySetBody(ref_.address(), body.get()); }
    void delBody() noexcept { mimeEntityDelBody(ref_.address()); }

    std::string to_string() const { return takeUtf8(mimeEntityToString(get())); }
    friend bool operator==(const Entity &a, const Entity &b) noexcept { return mimeEntityEquals(a.get(), b.get()); }
    friend bool operator!=(const Entity &a, const Entity &b) noexcept { return !(a == b); }
    friend bool operator<(const Entity &a, const Entity &b) noexcept { return mimeEntityCompare(a.get(), b.get()) < 0; }

private:
    explicit Entity(Ref<MIME_ENTITY> ref) noexcept : ref_(std::move(ref)) {}
    static std::optional<std::string> field(PB_STRING *value)
    {
        return value ? std::optional<std::string>(takeUtf8(value)) : std::nullopt;
    }
    Result<void> set(void (*setter)(MIME_ENTITY **, const char *, PB_INT), std::string_view value) noexcept
    {
        Result<void> check = checkHeaderValue(value);
        if (check)
            setter(ref_.address(), detail::chars(value), detail::length(value));
        return check;
    }

    Ref<MIME_ENTITY> ref_;
};

} // namespace mime

#endif
