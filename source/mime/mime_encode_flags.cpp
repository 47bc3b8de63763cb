#include <mime/mime_encode_flags.h>
#include <mime/mime_flagset_table.hpp>
#include <pb/pb_text.hpp>

namespace {

PB_FLAGSET *mime___EncodeFlagsFlagset = nullptr;

} // namespace

MIME_ENCODE_FLAGS mimeEncodeFlagsNormalize(MIME_ENCODE_FLAGS flags) noexcept
{
    if (flags & MIME_ENCODE_FLAG_7BIT)
        return MIME_ENCODE_FLAG_7BIT;
    return flags & MIME_ENCODE_FLAG_8BIT;
}

MIME_ENCODE_FLAGS mimeEncodeFlagsFromString(PB_STRING *pbs) noexcept
{
    PB_ASSERT( pbs );
    return mimeEncodeFlagsNormalize(pbFlagsetParse(mime___EncodeFlagsFlagset, pbs));
}

MIME_ENCODE_FLAGS mimeEncodeFlagsFromStringCstr(const char *pbs, PB_INT length) noexcept
{
    return mimeEncodeFlagsFromString(pb::Text(pbs, length));
}

MIME_ENCODE_FLAGS mimeEncodeFlagsFromStringWcstr(const wchar_t *pbs, PB_INT length) noexcept
{
    return mimeEncodeFlagsFromString(pb::Text(pbs, length));
}

PB_STRING *mimeEncodeFlagsToString(MIME_ENCODE_FLAGS flags) noexcept
{
    return pbFlagsetGenerate(mime___EncodeFlagsFlagset, mimeEncodeFlagsNormalize(flags));
}

void mime___EncodeFlagsStartup(void) noexcept
{
    mime___EncodeFlagsFlagset = pbFlagsetCreate();
    MIME___FLAGSET_ADD(mime___EncodeFlagsFlagset, MIME_ENCODE_FLAG_7BIT);
    MIME___FLAGSET_ADD(mime___EncodeFlagsFlagset, MIME_ENCODE_FLAG_8BIT);
}

void mime___EncodeFlagsShutdown(void) noexcept
{
    mime::flagsetShutdown(mime___EncodeFlagsFlagset);
}
