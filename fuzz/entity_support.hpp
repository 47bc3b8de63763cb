// What the entity fuzz targets share: comparing entities field by field and
// byte by byte, and packing a vector to unpack it again.
#pragma once

#include <mime/mime.h>
#include <pb/pb_ref.hpp>

#include <cstring>

namespace fuzz {

inline bool sameText(PB_STRING *a, PB_STRING *b)
{
    return (!a && !b) || (a && b && pbStringCompare(a, b) == 0);
}

// Equal bytes; an empty buffer counts as none.
inline bool sameBytes(PB_BUFFER *x, PB_BUFFER *y)
{
    PB_INT nx = x ? pbBufferLength(x) : 0, ny = y ? pbBufferLength(y) : 0;
    return nx == ny && (nx == 0 || std::memcmp(pbBufferBacking(x), pbBufferBacking(y), static_cast<size_t>(nx)) == 0);
}

// Equal fields and body bytes; an empty body counts as none, as unpacking reads it.
inline bool sameEntity(MIME_ENTITY *a, MIME_ENTITY *b)
{
    using pb::adopt;
    PB_STRING *(*const getters[])(MIME_ENTITY *) = {mimeEntityContentType, mimeEntityContentDisposition,
                                                    mimeEntityContentTransferEncoding, mimeEntityContentId};
    for (auto get : getters)
        if (!sameText(adopt(get(a)).get(), adopt(get(b)).get()))
            return false;
    pb::Ref<PB_BUFFER> x = adopt(mimeEntityBody(a)), y = adopt(mimeEntityBody(b));
    return sameBytes(x.get(), y.get());
}

inline MIME_ENTITY *entityAt(PB_VECTOR *v, PB_INT i)
{
    pb::Ref<PB_OBJ> held = pb::adopt(pbVectorObjAt(v, i));
    return mimeEntityFrom(held.get()); // the vector keeps it alive
}

// Packs entities under a boundary that starts as B, unpacks the result and
// requires the same entities back.
inline void packUnpackRoundTrip(PB_VECTOR *entities, MIME_OPTIONS *mo)
{
    using pb::adopt;
    pb::Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("multipart/mixed", -1));
    mimeContentTypeSetParameterCstrCstrValue(type.addr(), "boundary", -1, "B", -1);
    pb::Ref<PB_BUFFER> packed = adopt(mimeMultipartTryPack(type.addr(), entities, mo));
    if (!packed)
        return; // ten boundaries collided: only possible by chance
    pb::Ref<PB_VECTOR> back = adopt(mimeMultipartTryUnpack(type.get(), packed.get(), mo));
    PB_ASSERT( back && pbVectorLength(back.get()) == pbVectorLength(entities) );
    for (PB_INT i = 0; i < pbVectorLength(entities); ++i)
        PB_ASSERT( sameEntity(entityAt(entities, i), entityAt(back.get(), i)) );
}

} // namespace fuzz
