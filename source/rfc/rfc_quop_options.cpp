#include <rfc/rfc_quop_options.h>
#include <rfc/rfc_setting.hpp>

struct RFC_QUOP_OPTIONS {
    PB_OBJ_HEADER header;
    PB_INT value;
};

namespace {

constexpr rfc::Setting setting{"maxLineLength", RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_DEFAULT,
                               RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_MIN, RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_MAX};

extern "C" {
static PB_INT rfc___QuopOptionsCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept;
static PB_STRING *rfc___QuopOptionsToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

PB___SORT_DEFINE(rfc, QuopOptions, RFC_QUOP_OPTIONS, nullptr, nullptr, rfc___QuopOptionsCompareFunc,
                 rfc___QuopOptionsToStringFunc)

namespace {

PB_INT rfc___QuopOptionsCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept
{
    return rfc::compareInts(rfcQuopOptionsFrom(a)->value, rfcQuopOptionsFrom(b)->value);
}

PB_STRING *rfc___QuopOptionsToStringFunc(PB_OBJ *obj) noexcept
{
    return rfc::settingText(setting, rfcQuopOptionsFrom(obj)->value);
}

} // namespace

RFC_QUOP_OPTIONS *rfcQuopOptionsCreate(void) noexcept
{
    return rfc::createSetting<RFC_QUOP_OPTIONS>(rfcQuopOptionsSort(), setting.defaultValue);
}

RFC_QUOP_OPTIONS *rfcQuopOptionsCreateFrom(RFC_QUOP_OPTIONS *source) noexcept
{
    PB_ASSERT( source );
    return rfc::createSetting<RFC_QUOP_OPTIONS>(rfcQuopOptionsSort(), source->value);
}

PB_INT rfcQuopOptionsMaxLineLength(RFC_QUOP_OPTIONS *options) noexcept
{
    PB_ASSERT( options );
    return options->value;
}

void rfcQuopOptionsSetMaxLineLength(RFC_QUOP_OPTIONS **options, PB_INT value) noexcept
{
    PB_ASSERT_REF(options);
    PB_ASSERT( setting.valid( value ) );
    PB_OBJ_UNSHARE((*options), rfcQuopOptionsCreateFrom);
    (*options)->value = value;
}

PB_STORE *rfcQuopOptionsStore(RFC_QUOP_OPTIONS *options, PB_BOOL full) noexcept
{
    PB_ASSERT( options );
    return rfc::settingStore(setting, options->value, full);
}

RFC_QUOP_OPTIONS *rfcQuopOptionsRestore(PB_STORE *store) noexcept
{
    PB_ASSERT( store );
    return rfc::createSetting<RFC_QUOP_OPTIONS>(rfcQuopOptionsSort(), rfc::settingRestore(setting, store));
}
