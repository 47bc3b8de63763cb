#include <mime/mime_char.hpp>
#include <mime/mime_content_disposition.h>
#include <mime/mime_parameterized.hpp>

struct MIME_CONTENT_DISPOSITION {
    PB_OBJ_HEADER header;
    PB_STRING *type;
    PB_DICT *parameters;
};

MIME___PARAMETERIZED_DEFINE(ContentDisposition, MIME_CONTENT_DISPOSITION, disp, Type, dispositionType, type,
                            mime___ContentDispositionTypeWireFormatDict, )

// Rule D: letters, digits, + - . _; nothing else.
PB_BOOL mimeContentDispositionTypeOk(PB_STRING *dispositionType) noexcept
{
    if (!dispositionType)
        return PB_FALSE;
    const PB_CHAR *c = pbStringBacking(dispositionType);
    PB_INT n = pbStringLength(dispositionType);
    for (PB_INT i = 0; i < n; ++i)
        if (!mime::chars::is(c[i], mime::chars::kAlpha | mime::chars::kDigit) && c[i] != '+' && c[i] != '-' &&
            c[i] != '.' && c[i] != '_')
            return PB_FALSE;
    return n > 0;
}

void mime___ContentDispositionStartup(void) noexcept
{
    static const char *const registered[] = {"Info-Package"};
    mime___ContentDispositionTypeWireFormatDict = mime::parameterized::wireFormatTable(registered, 1);
}
