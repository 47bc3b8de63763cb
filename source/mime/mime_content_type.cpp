#include <mime/mime_char.hpp>
#include <mime/mime_content_type.h>
#include <mime/mime_parameterized.hpp>

struct MIME_CONTENT_TYPE {
    PB_OBJ_HEADER header;
    PB_STRING *name;
    PB_DICT *parameters;
};

MIME___PARAMETERIZED_DEFINE(ContentType, MIME_CONTENT_TYPE, type, Name, name, name, mime___ContentTypeNameWireFormatDict,
                            PB_ASSERT( name ))

// Rule N: letters, digits, + - . _ and exactly one "/", neither first nor last.
PB_BOOL mimeContentTypeNameOk(PB_STRING *name) noexcept
{
    if (!name)
        return PB_FALSE;
    const PB_CHAR *c = pbStringBacking(name);
    PB_INT n = pbStringLength(name), slash = -1;
    for (PB_INT i = 0; i < n; ++i) {
        if (c[i] == '/') {
            if (slash != -1)
                return PB_FALSE;
            slash = i;
        } else if (!mime::chars::is(c[i], mime::chars::kAlpha | mime::chars::kDigit) && c[i] != '+' && c[i] != '-' &&
                   c[i] != '.' && c[i] != '_') {
            return PB_FALSE;
        }
    }
    return slash > 0 && slash < n - 1;
}

void mime___ContentTypeStartup(void) noexcept
{
    static const char *const registered[] = {
        "application/EmergencyCallData.Comment+xml",    "application/EmergencyCallData.DeviceInfo+xml",
        "application/EmergencyCallData.ProviderInfo+xml", "application/EmergencyCallData.ServiceInfo+xml",
        "application/EmergencyCallData.SubscriberInfo+xml", "application/EmergencyCallData.Control+xml",
        "application/EmergencyCallData.eCall.MSD",
    };
    mime___ContentTypeNameWireFormatDict = mime::parameterized::wireFormatTable(registered, std::size(registered));
}
