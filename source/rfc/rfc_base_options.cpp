#include <rfc/rfc_base_options.h>
#include <rfc/rfc_setting.hpp>

namespace {
constexpr rfc::Setting setting{"outputLineLength", RFC_BASE_OPTIONS_OUTPUT_LINE_LENGTH_DEFAULT, -1, PB_INT_MAX};
}

RFC___SETTING_OPTIONS_DEFINE(BaseOptions, RFC_BASE_OPTIONS, OutputLineLength, setting)
