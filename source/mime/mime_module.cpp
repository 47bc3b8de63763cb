#include <mime/mime_content_disposition.h>
#include <mime/mime_content_type.h>
#include <mime/mime_encode_flags.h>
#include <mime/mime_flags.h>
#include <mime/mime_module.h>
#include <pb/pb_obj.hpp>

#include <corvane_build_info.h>

namespace {

extern "C" {
static PB_BOOL mime___ModuleStartup(void) noexcept;
static void mime___ModuleShutdown(void) noexcept;
}

// Start-up builds the read-only tables; shut-down releases them in reverse.
PB_BOOL mime___ModuleStartup(void) noexcept
{
    mime___ContentDispositionStartup();
    mime___ContentTypeStartup();
    mime___EncodeFlagsStartup();
    mime___FlagsStartup();
    return PB_TRUE;
}

void mime___ModuleShutdown(void) noexcept
{
    mime___FlagsShutdown();
    mime___EncodeFlagsShutdown();
    mime___ContentTypeShutdown();
    mime___ContentDispositionShutdown();
}

} // namespace

constinit const PB_MODULE_RECORD mime___module_record = {
    PB_MODULE_RECORD_FORMAT,
    CORVANE_PRODUCT_NAME,
    CORVANE_PRODUCT_NAME,
    CORVANE_VERSION_MAJOR,
    CORVANE_VERSION_MINOR,
    CORVANE_VERSION_PATCH,
    CORVANE_BUILD_TIME,
    CORVANE_COMPANY,
    CORVANE_COPYRIGHT,
    "mime",
    "Multipurpose Internet Mail Extensions",
    "0.0",
    "pb rfc tr",
    "",
};

constinit const PB_MODULE mime___module = {PB_OBJ_HEADER_STATIC(PB_OBJ_KIND_MODULE),
                                           &mime___module_record,
                                           mime___ModuleStartup,
                                           nullptr,
                                           mime___ModuleShutdown,
                                           {}};

constinit const char *const mime___module_version_string =
    CORVANE_VERSION_MARKER " " CORVANE_PRODUCT_NAME "-" CORVANE_VERSION_TEXT " (" CORVANE_BUILD_PLATFORM
                           ", " CORVANE_BUILD_ARCH ", " CORVANE_BUILD_TYPE "), mime 0.0";

static_assert(sizeof(PB_MODULE) == 19 * 8);
static_assert(sizeof(PB_MODULE_RECORD) == 14 * 8);
static_assert(offsetof(PB_MODULE, shutdown) == 13 * 8);

const PB_MODULE *mimeModule(void) noexcept
{
    return &mime___module;
}
