#include <rfc/rfc_quop_options.h>
#include <rfc/rfc_setting.hpp>

namespace {
constexpr rfc::Setting setting{"maxLineLength", RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_DEFAULT,
                               RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_MIN, RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_MAX};
}

RFC___SETTING_OPTIONS_DEFINE(QuopOptions, RFC_QUOP_OPTIONS, MaxLineLength, setting)
