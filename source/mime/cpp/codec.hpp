// Decoding and encoding one entity, packing and unpacking multipart bodies: the
// C family's operations as free functions (mime::decode is mimeDecode,
// mime::encode mimeEncode, mime::pack and mime::unpack mimeMultipartTryPack
// and mimeMultipartTryUnpack).
#ifndef MIME_CPP_CODEC_HPP
#define MIME_CPP_CODEC_HPP

#include <mime/cpp/entity.hpp>
#include <mime/cpp/parameterized.hpp>
#include <mime/cpp/ranges.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mime {

// What decode gives: the decoded body (empty Buffer: the entity has none) and
// the header values it reads (empty where the field is absent).
struct Decoded {
    Buffer body;
    std::optional<ContentType> contentType;
    std::optional<ContentDisposition> contentDisposition;
    std::optional<std::string> contentId; // without its angle brackets
};

// The entity's body and values decoded, or why they cannot be.
inline Result<Decoded> decode(const Entity &entity, const Options &options = Options())
{
    PB_BUFFER *body = nullptr;
    MIME_CONTENT_TYPE *type = nullptr;
    MIME_CONTENT_DISPOSITION *disposition = nullptr;
    PB_STRING *contentId = nullptr;
    MIME_DEFECT *defect = nullptr;
    if (!mimeDecodeWithDefect(entity.get(), options.get(), &body, &type, &disposition, &contentId, &defect))
        return Defect::adopt(defect);
    Decoded decoded{Buffer::adopt(body), std::nullopt, std::nullopt, std::nullopt};
    if (type)
        decoded.contentType = ContentType::adopt(type);
    if (disposition)
        decoded.contentDisposition = ContentDisposition::adopt(disposition);
    if (contentId)
        decoded.contentId = takeUtf8(contentId);
    return decoded;
}

// A new entity of a body (an empty Buffer: none) and values, the body under
// the transfer encoding that mimeEncode chooses; a contentId must pass
// mimeContentIdOk (else this aborts, as in C). Refused, and said why, when a
// field as written would not stay in its field (a parameter value with a line
// break, say).
inline Result<Entity> encode(const Options &options, const Buffer &body, const std::optional<ContentType> &type,
                             const std::optional<ContentDisposition> &disposition = std::nullopt,
                             std::optional<std::string_view> contentId = std::nullopt)
{
    Entity entity = Entity::adopt(mimeEncodeCstr(
        options.get(), body.get(), type ? type->get() : nullptr, disposition ? disposition->get() : nullptr,
        contentId ? detail::chars(*contentId) : nullptr, contentId ? detail::length(*contentId) : 0));
    for (const std::optional<std::string> &field : {entity.contentType(), entity.contentDisposition()})
        if (field)
            if (Result<void> check = checkHeaderValue(*field); !check)
                return check.defect();
    return entity;
}

namespace detail {

// The entity at an index of a vector of them.
struct EntityAt {
    Ref<PB_VECTOR> vector;
    Entity operator()(PB_INT index) const { return Entity::adopt(mimeEntityFrom(pbVectorObjAt(vector.get(), index))); }
};

} // namespace detail

// The parts of a multipart body, in order: for (const Entity &part : parts).
using Entities = detail::IndexedRange<Entity, detail::EntityAt>;

// A multipart body of the entities, under a boundary that none of their bodies
// holds, which is recorded in type's "boundary" parameter; empty (type
// unchanged) when every boundary tried occurs in a body.
inline std::optional<Buffer> pack(ContentType &type, const std::vector<Entity> &entities,
                                  const Options &options = Options())
{
    Ref<PB_VECTOR> vector = adopt(pbVectorCreate());
    for (const Entity &entity : entities)
        pbVectorAppendObj(vector.address(), mimeEntityObj(entity.get()));
    Ref<MIME_CONTENT_TYPE> packed = Ref<MIME_CONTENT_TYPE>::retain(type.get()); // changed as a copy
    PB_BUFFER *body = mimeMultipartTryPack(packed.address(), vector.get(), options.get());
    if (!body)
        return std::nullopt;
    type = ContentType::adopt(packed.release());
    return Buffer::adopt(body);
}

// The parts of a multipart body whose boundary type's "boundary" parameter
// gives, or why it cannot be read (part "N": the Nth part).
inline Result<Entities> unpack(const ContentType &type, const Buffer &body, const Options &options = Options())
{
    MIME_DEFECT *defect = nullptr;
    PB_VECTOR *parts = mimeMultipartTryUnpackWithDefect(type.get(), body.get(), options.get(), &defect);
    return detail::resultOf<Entities>(parts, defect, [](PB_VECTOR *v) {
        Ref<PB_VECTOR> vector = adopt(v);
        const PB_INT count = pbVectorLength(vector.get());
        return Entities(count, detail::EntityAt{std::move(vector)});
    });
}

} // namespace mime

#endif
