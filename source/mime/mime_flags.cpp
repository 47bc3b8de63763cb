#include <mime/mime_flags.h>
#include <mime/mime_flagset_table.hpp>
#include <pb/pb_text.hpp>

namespace {

PB_FLAGSET *mime___FlagsFlagset = nullptr;

} // namespace

MIME_FLAGS mimeFlagsNormalize(MIME_FLAGS flags) noexcept
{
    MIME_FLAGS kept = flags & (MIME_FLAG_PARSE_RFC2231_HEADERS | MIME_FLAG_GENERATE_RFC2231_HEADERS |
                               MIME_FLAG_GENERATE_EIGHT_BIT_BODY | MIME_FLAG_GENERATE_DISABLE_QUOTED_PRINTABLE);
    if (!(flags & MIME_FLAG_GENERATE_RFC2231_HEADERS))
        kept |= flags & MIME_FLAG_GENERATE_UNICODE_HEADERS;
    return kept;
}

MIME_FLAGS mimeFlagsFromString(PB_STRING *pbs) noexcept
{
    PB_ASSERT( pbs );
    return mimeFlagsNormalize(pbFlagsetParse(mime___FlagsFlagset, pbs));
}

MIME_FLAGS mimeFlagsFromStringCstr(const char *pbs, PB_INT length) noexcept
{
    return mimeFlagsFromString(pb::Text(pbs, length));
}

MIME_FLAGS mimeFlagsFromStringWcstr(const wchar_t *pbs, PB_INT length) noexcept
{
    return mimeFlagsFromString(pb::Text(pbs, length));
}

PB_STRING *mimeFlagsToString(MIME_FLAGS flags) noexcept
{
    return pbFlagsetGenerate(mime___FlagsFlagset, mimeFlagsNormalize(flags));
}

void mime___FlagsStartup(void) noexcept
{
    mime___FlagsFlagset = pbFlagsetCreate();
    MIME___FLAGSET_ADD(mime___FlagsFlagset, MIME_FLAG_PARSE_RFC2231_HEADERS);
    MIME___FLAGSET_ADD(mime___FlagsFlagset, MIME_FLAG_GENERATE_RFC2231_HEADERS);
    MIME___FLAGSET_ADD(mime___FlagsFlagset, MIME_FLAG_GENERATE_UNICODE_HEADERS);
    MIME___FLAGSET_ADD(mime___FlagsFlagset, MIME_FLAG_GENERATE_EIGHT_BIT_BODY);
    MIME___FLAGSET_ADD(mime___FlagsFlagset, MIME_FLAG_GENERATE_DISABLE_QUOTED_PRINTABLE);
}

void mime___FlagsShutdown(void) noexcept
{
    mime::flagsetShutdown(mime___FlagsFlagset);
}
