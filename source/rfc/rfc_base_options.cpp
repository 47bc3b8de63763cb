#include <rfc/rfc_base_options.h>
#include <rfc/rfc_setting.hpp>

struct RFC_BASE_OPTIONS {
    PB_OBJ_HEADER header;
    PB_INT value;
};

namespace {

constexpr rfc::Setting setting{"outputLineLength", RFC_BASE_OPTIONS_OUTPUT_LINE_LENGTH_DEFAULT, -1, PB_INT_MAX};

extern "C" {
static PB_INT rfc___BaseOptionsCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept;
static PB_STRING *rfc___BaseOptionsToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

PB___SORT_DEFINE(rfc, BaseOptions, RFC_BASE_OPTIONS, nullptr, nullptr, rfc___BaseOptionsCompareFunc,
                 rfc___BaseOptionsToStringFunc)

namespace {

PB_INT rfc___BaseOptionsCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept
{
    return rfc::compareInts(rfcBaseOptionsFrom(a)->value, rfcBaseOptionsFrom(b)->value);
}

PB_STRING *rfc___BaseOptionsToStringFunc(PB_OBJ *obj) noexcept
{
    return rfc::settingText(setting, rfcBaseOptionsFrom(obj)->value);
}

} // namespace

RFC_BASE_OPTIONS *rfcBaseOptionsCreate(void) noexcept
{
    return rfc::createSetting<RFC_BASE_OPTIONS>(rfcBaseOptionsSort(), setting.defaultValue);
}

RFC_BASE_OPTIONS *rfcBaseOptionsCreateFrom(RFC_BASE_OPTIONS *source) noexcept
{
    PB_ASSERT( source );
    return rfc::createSetting<RFC_BASE_OPTIONS>(rfcBaseOptionsSort(), source->value);
}

PB_INT rfcBaseOptionsOutputLineLength(RFC_BASE_OPTIONS *options) noexcept
{
    PB_ASSERT( options );
    return options->value;
}

void rfcBaseOptionsSetOutputLineLength(RFC_BASE_OPTIONS **options, PB_INT value) noexcept
{
    PB_ASSERT_REF(options);
    PB_ASSERT( setting.valid( value ) );
    PB_OBJ_UNSHARE((*options), rfcBaseOptionsCreateFrom);
    (*options)->value = value;
}

PB_STORE *rfcBaseOptionsStore(RFC_BASE_OPTIONS *options, PB_BOOL full) noexcept
{
    PB_ASSERT( options );
    return rfc::settingStore(setting, options->value, full);
}

RFC_BASE_OPTIONS *rfcBaseOptionsRestore(PB_STORE *store) noexcept
{
    PB_ASSERT( store );
    return rfc::createSetting<RFC_BASE_OPTIONS>(rfcBaseOptionsSort(), rfc::settingRestore(setting, store));
}
