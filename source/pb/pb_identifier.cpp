#include <pb/pb_identifier.h>
#include <pb/pb_random.hpp>
#include <pb/pb_sort.hpp>
#include <pb/pb_string.h>

#include <cstdio>
#include <cstring>

struct PB_IDENTIFIER {
    PB_OBJ_HEADER header;
    uint8_t bytes[16];
};

namespace {

extern "C" {
static PB_INT pb___IdentifierCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept;
static PB_STRING *pb___IdentifierToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

PB___SORT_DEFINE(pb, Identifier, PB_IDENTIFIER, nullptr, nullptr, pb___IdentifierCompareFunc,
                 pb___IdentifierToStringFunc)

namespace {

PB_INT pb___IdentifierCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept
{
    int order = std::memcmp(pbIdentifierFrom(a)->bytes, pbIdentifierFrom(b)->bytes, 16);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

PB_STRING *pb___IdentifierToStringFunc(PB_OBJ *obj) noexcept
{
    const uint8_t *b = pbIdentifierFrom(obj)->bytes;
    char text[40];
    std::snprintf(text, sizeof text, "%02x%02x%02x%02x-%02x%02x-%02x%02x-%02x%02x-%02x%02x%02x%02x%02x%02x", b[0], b[1],
                  b[2], b[3], b[4], b[5], b[6], b[7], b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]);
    return pbStringCreateFromCstr(text, -1);
}

} // namespace

PB_IDENTIFIER *pbIdentifierCreate(void) noexcept
{
    PB_IDENTIFIER *id = pb::create<PB_IDENTIFIER>(&pb___sort_PB_IDENTIFIER);
    pb::random::osBytes(id->bytes, sizeof id->bytes);
    id->bytes[6] = static_cast<uint8_t>((id->bytes[6] & 0x0F) | 0x40); // version 4
    id->bytes[8] = static_cast<uint8_t>((id->bytes[8] & 0x3F) | 0x80); // RFC 4122 variant
    return id;
}
