#include <mime/mime_charset_labels.hpp>
#include <pb/pb_string.h>

#include <algorithm>
#include <string_view>

namespace mime {

namespace {

struct Label {
    std::string_view label;
    PB_CHARSET charset;
};

// Sorted by label. Where the Encoding Standard maps a label to an encoding that
// the runtime lacks a twin of, the nearest one stands in: ISO-8859-8-I reads as
// ISO-8859-8, Big5 as Big5-HKSCS, UTF-16 without a byte order mark as UTF-16LE.
constexpr Label kLabels[] = {
    {"866", PB_CHARSET_IBM866},
    {"ansi_x3.4-1968", PB_CHARSET_WINDOWS_1252},
    {"arabic", PB_CHARSET_ISO_8859_6},
    {"ascii", PB_CHARSET_WINDOWS_1252},
    {"asmo-708", PB_CHARSET_ISO_8859_6},
    {"big5", PB_CHARSET_BIG5_HKSCS},
    {"big5-hkscs", PB_CHARSET_BIG5_HKSCS},
    {"chinese", PB_CHARSET_GBK},
    {"cn-big5", PB_CHARSET_BIG5_HKSCS},
    {"cp1250", PB_CHARSET_WINDOWS_1250},
    {"cp1251", PB_CHARSET_WINDOWS_1251},
    {"cp1252", PB_CHARSET_WINDOWS_1252},
    {"cp1253", PB_CHARSET_WINDOWS_1253},
    {"cp1254", PB_CHARSET_WINDOWS_1254},
    {"cp1255", PB_CHARSET_WINDOWS_1255},
    {"cp1256", PB_CHARSET_WINDOWS_1256},
    {"cp1257", PB_CHARSET_WINDOWS_1257},
    {"cp1258", PB_CHARSET_WINDOWS_1258},
    {"cp819", PB_CHARSET_WINDOWS_1252},
    {"cp866", PB_CHARSET_IBM866},
    {"csbig5", PB_CHARSET_BIG5_HKSCS},
    {"cseuckr", PB_CHARSET_EUC_KR},
    {"cseucpkdfmtjapanese", PB_CHARSET_EUC_JP},
    {"csgb2312", PB_CHARSET_GBK},
    {"csibm866", PB_CHARSET_IBM866},
    {"csiso2022jp", PB_CHARSET_ISO_2022_JP},
    {"csiso58gb231280", PB_CHARSET_GBK},
    {"csiso88596e", PB_CHARSET_ISO_8859_6},
    {"csiso88596i", PB_CHARSET_ISO_8859_6},
    {"csiso88598e", PB_CHARSET_ISO_8859_8},
    {"csiso88598i", PB_CHARSET_ISO_8859_8},
    {"csisolatin1", PB_CHARSET_WINDOWS_1252},
    {"csisolatin2", PB_CHARSET_ISO_8859_2},
    {"csisolatin3", PB_CHARSET_ISO_8859_3},
    {"csisolatin4", PB_CHARSET_ISO_8859_4},
    {"csisolatin5", PB_CHARSET_WINDOWS_1254},
    {"csisolatin6", PB_CHARSET_ISO_8859_10},
    {"csisolatin9", PB_CHARSET_ISO_8859_15},
    {"csisolatinarabic", PB_CHARSET_ISO_8859_6},
    {"csisolatincyrillic", PB_CHARSET_ISO_8859_5},
    {"csisolatingreek", PB_CHARSET_ISO_8859_7},
    {"csisolatinhebrew", PB_CHARSET_ISO_8859_8},
    {"cskoi8r", PB_CHARSET_KOI8_R},
    {"csksc56011987", PB_CHARSET_EUC_KR},
    {"csmacintosh", PB_CHARSET_MACINTOSH},
    {"csshiftjis", PB_CHARSET_SHIFT_JIS},
    {"csunicode", PB_CHARSET_UTF_16LE},
    {"cyrillic", PB_CHARSET_ISO_8859_5},
    {"dos-874", PB_CHARSET_WINDOWS_874},
    {"ecma-114", PB_CHARSET_ISO_8859_6},
    {"ecma-118", PB_CHARSET_ISO_8859_7},
    {"elot_928", PB_CHARSET_ISO_8859_7},
    {"euc-jp", PB_CHARSET_EUC_JP},
    {"euc-kr", PB_CHARSET_EUC_KR},
    {"gb18030", PB_CHARSET_GB18030},
    {"gb2312", PB_CHARSET_GBK},
    {"gb_2312", PB_CHARSET_GBK},
    {"gb_2312-80", PB_CHARSET_GBK},
    {"gbk", PB_CHARSET_GBK},
    {"greek", PB_CHARSET_ISO_8859_7},
    {"greek8", PB_CHARSET_ISO_8859_7},
    {"hebrew", PB_CHARSET_ISO_8859_8},
    {"ibm819", PB_CHARSET_WINDOWS_1252},
    {"ibm866", PB_CHARSET_IBM866},
    {"iso-10646-ucs-2", PB_CHARSET_UTF_16LE},
    {"iso-2022-jp", PB_CHARSET_ISO_2022_JP},
    {"iso-8859-1", PB_CHARSET_WINDOWS_1252},
    {"iso-8859-10", PB_CHARSET_ISO_8859_10},
    {"iso-8859-11", PB_CHARSET_WINDOWS_874},
    {"iso-8859-13", PB_CHARSET_ISO_8859_13},
    {"iso-8859-14", PB_CHARSET_ISO_8859_14},
    {"iso-8859-15", PB_CHARSET_ISO_8859_15},
    {"iso-8859-16", PB_CHARSET_ISO_8859_16},
    {"iso-8859-2", PB_CHARSET_ISO_8859_2},
    {"iso-8859-3", PB_CHARSET_ISO_8859_3},
    {"iso-8859-4", PB_CHARSET_ISO_8859_4},
    {"iso-8859-5", PB_CHARSET_ISO_8859_5},
    {"iso-8859-6", PB_CHARSET_ISO_8859_6},
    {"iso-8859-6-e", PB_CHARSET_ISO_8859_6},
    {"iso-8859-6-i", PB_CHARSET_ISO_8859_6},
    {"iso-8859-7", PB_CHARSET_ISO_8859_7},
    {"iso-8859-8", PB_CHARSET_ISO_8859_8},
    {"iso-8859-8-e", PB_CHARSET_ISO_8859_8},
    {"iso-8859-8-i", PB_CHARSET_ISO_8859_8},
    {"iso-8859-9", PB_CHARSET_WINDOWS_1254},
    {"iso-ir-100", PB_CHARSET_WINDOWS_1252},
    {"iso-ir-101", PB_CHARSET_ISO_8859_2},
    {"iso-ir-109", PB_CHARSET_ISO_8859_3},
    {"iso-ir-110", PB_CHARSET_ISO_8859_4},
    {"iso-ir-126", PB_CHARSET_ISO_8859_7},
    {"iso-ir-127", PB_CHARSET_ISO_8859_6},
    {"iso-ir-138", PB_CHARSET_ISO_8859_8},
    {"iso-ir-144", PB_CHARSET_ISO_8859_5},
    {"iso-ir-148", PB_CHARSET_WINDOWS_1254},
    {"iso-ir-149", PB_CHARSET_EUC_KR},
    {"iso-ir-157", PB_CHARSET_ISO_8859_10},
    {"iso-ir-58", PB_CHARSET_GBK},
    {"iso8859-1", PB_CHARSET_WINDOWS_1252},
    {"iso8859-10", PB_CHARSET_ISO_8859_10},
    {"iso8859-11", PB_CHARSET_WINDOWS_874},
    {"iso8859-13", PB_CHARSET_ISO_8859_13},
    {"iso8859-14", PB_CHARSET_ISO_8859_14},
    {"iso8859-15", PB_CHARSET_ISO_8859_15},
    {"iso8859-2", PB_CHARSET_ISO_8859_2},
    {"iso8859-3", PB_CHARSET_ISO_8859_3},
    {"iso8859-4", PB_CHARSET_ISO_8859_4},
    {"iso8859-5", PB_CHARSET_ISO_8859_5},
    {"iso8859-6", PB_CHARSET_ISO_8859_6},
    {"iso8859-7", PB_CHARSET_ISO_8859_7},
    {"iso8859-8", PB_CHARSET_ISO_8859_8},
    {"iso8859-9", PB_CHARSET_WINDOWS_1254},
    {"iso88591", PB_CHARSET_WINDOWS_1252},
    {"iso885910", PB_CHARSET_ISO_8859_10},
    {"iso885911", PB_CHARSET_WINDOWS_874},
    {"iso885913", PB_CHARSET_ISO_8859_13},
    {"iso885914", PB_CHARSET_ISO_8859_14},
    {"iso885915", PB_CHARSET_ISO_8859_15},
    {"iso88592", PB_CHARSET_ISO_8859_2},
    {"iso88593", PB_CHARSET_ISO_8859_3},
    {"iso88594", PB_CHARSET_ISO_8859_4},
    {"iso88595", PB_CHARSET_ISO_8859_5},
    {"iso88596", PB_CHARSET_ISO_8859_6},
    {"iso88597", PB_CHARSET_ISO_8859_7},
    {"iso88598", PB_CHARSET_ISO_8859_8},
    {"iso88599", PB_CHARSET_WINDOWS_1254},
    {"iso_8859-1", PB_CHARSET_WINDOWS_1252},
    {"iso_8859-15", PB_CHARSET_ISO_8859_15},
    {"iso_8859-1:1987", PB_CHARSET_WINDOWS_1252},
    {"iso_8859-2", PB_CHARSET_ISO_8859_2},
    {"iso_8859-2:1987", PB_CHARSET_ISO_8859_2},
    {"iso_8859-3", PB_CHARSET_ISO_8859_3},
    {"iso_8859-3:1988", PB_CHARSET_ISO_8859_3},
    {"iso_8859-4", PB_CHARSET_ISO_8859_4},
    {"iso_8859-4:1988", PB_CHARSET_ISO_8859_4},
    {"iso_8859-5", PB_CHARSET_ISO_8859_5},
    {"iso_8859-5:1988", PB_CHARSET_ISO_8859_5},
    {"iso_8859-6", PB_CHARSET_ISO_8859_6},
    {"iso_8859-6:1987", PB_CHARSET_ISO_8859_6},
    {"iso_8859-7", PB_CHARSET_ISO_8859_7},
    {"iso_8859-7:1987", PB_CHARSET_ISO_8859_7},
    {"iso_8859-8", PB_CHARSET_ISO_8859_8},
    {"iso_8859-8:1988", PB_CHARSET_ISO_8859_8},
    {"iso_8859-9", PB_CHARSET_WINDOWS_1254},
    {"iso_8859-9:1989", PB_CHARSET_WINDOWS_1254},
    {"koi", PB_CHARSET_KOI8_R},
    {"koi8", PB_CHARSET_KOI8_R},
    {"koi8-r", PB_CHARSET_KOI8_R},
    {"koi8-ru", PB_CHARSET_KOI8_U},
    {"koi8-u", PB_CHARSET_KOI8_U},
    {"koi8_r", PB_CHARSET_KOI8_R},
    {"korean", PB_CHARSET_EUC_KR},
    {"ks_c_5601-1987", PB_CHARSET_EUC_KR},
    {"ks_c_5601-1989", PB_CHARSET_EUC_KR},
    {"ksc5601", PB_CHARSET_EUC_KR},
    {"ksc_5601", PB_CHARSET_EUC_KR},
    {"l1", PB_CHARSET_WINDOWS_1252},
    {"l2", PB_CHARSET_ISO_8859_2},
    {"l3", PB_CHARSET_ISO_8859_3},
    {"l4", PB_CHARSET_ISO_8859_4},
    {"l5", PB_CHARSET_WINDOWS_1254},
    {"l6", PB_CHARSET_ISO_8859_10},
    {"l9", PB_CHARSET_ISO_8859_15},
    {"latin1", PB_CHARSET_WINDOWS_1252},
    {"latin2", PB_CHARSET_ISO_8859_2},
    {"latin3", PB_CHARSET_ISO_8859_3},
    {"latin4", PB_CHARSET_ISO_8859_4},
    {"latin5", PB_CHARSET_WINDOWS_1254},
    {"latin6", PB_CHARSET_ISO_8859_10},
    {"logical", PB_CHARSET_ISO_8859_8},
    {"mac", PB_CHARSET_MACINTOSH},
    {"macintosh", PB_CHARSET_MACINTOSH},
    {"ms932", PB_CHARSET_SHIFT_JIS},
    {"ms_kanji", PB_CHARSET_SHIFT_JIS},
    {"shift-jis", PB_CHARSET_SHIFT_JIS},
    {"shift_jis", PB_CHARSET_SHIFT_JIS},
    {"sjis", PB_CHARSET_SHIFT_JIS},
    {"sun_eu_greek", PB_CHARSET_ISO_8859_7},
    {"tis-620", PB_CHARSET_WINDOWS_874},
    {"ucs-2", PB_CHARSET_UTF_16LE},
    {"unicode", PB_CHARSET_UTF_16LE},
    {"unicode-1-1-utf-8", PB_CHARSET_UTF_8},
    {"unicode11utf8", PB_CHARSET_UTF_8},
    {"unicode20utf8", PB_CHARSET_UTF_8},
    {"unicodefeff", PB_CHARSET_UTF_16LE},
    {"unicodefffe", PB_CHARSET_UTF_16BE},
    {"us-ascii", PB_CHARSET_WINDOWS_1252},
    {"utf-16", PB_CHARSET_UTF_16LE},
    {"utf-16be", PB_CHARSET_UTF_16BE},
    {"utf-16le", PB_CHARSET_UTF_16LE},
    {"utf-8", PB_CHARSET_UTF_8},
    {"utf8", PB_CHARSET_UTF_8},
    {"visual", PB_CHARSET_ISO_8859_8},
    {"windows-1250", PB_CHARSET_WINDOWS_1250},
    {"windows-1251", PB_CHARSET_WINDOWS_1251},
    {"windows-1252", PB_CHARSET_WINDOWS_1252},
    {"windows-1253", PB_CHARSET_WINDOWS_1253},
    {"windows-1254", PB_CHARSET_WINDOWS_1254},
    {"windows-1255", PB_CHARSET_WINDOWS_1255},
    {"windows-1256", PB_CHARSET_WINDOWS_1256},
    {"windows-1257", PB_CHARSET_WINDOWS_1257},
    {"windows-1258", PB_CHARSET_WINDOWS_1258},
    {"windows-31j", PB_CHARSET_SHIFT_JIS},
    {"windows-874", PB_CHARSET_WINDOWS_874},
    {"windows-949", PB_CHARSET_EUC_KR},
    {"x-cp1250", PB_CHARSET_WINDOWS_1250},
    {"x-cp1251", PB_CHARSET_WINDOWS_1251},
    {"x-cp1252", PB_CHARSET_WINDOWS_1252},
    {"x-cp1253", PB_CHARSET_WINDOWS_1253},
    {"x-cp1254", PB_CHARSET_WINDOWS_1254},
    {"x-cp1255", PB_CHARSET_WINDOWS_1255},
    {"x-cp1256", PB_CHARSET_WINDOWS_1256},
    {"x-cp1257", PB_CHARSET_WINDOWS_1257},
    {"x-cp1258", PB_CHARSET_WINDOWS_1258},
    {"x-euc-jp", PB_CHARSET_EUC_JP},
    {"x-gbk", PB_CHARSET_GBK},
    {"x-mac-roman", PB_CHARSET_MACINTOSH},
    {"x-sjis", PB_CHARSET_SHIFT_JIS},
    {"x-unicode20utf8", PB_CHARSET_UTF_8},
    {"x-x-big5", PB_CHARSET_BIG5_HKSCS},
};

bool isSpace(PB_CHAR c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

} // namespace

PB_CHARSET charsetFromLabel(const PB_CHAR *chars, PB_INT length) noexcept
{
    while (length > 0 && isSpace(chars[0]))
        ++chars, --length;
    while (length > 0 && isSpace(chars[length - 1]))
        --length;
    constexpr size_t kLongest = 24;
    if (length <= 0 || static_cast<size_t>(length) > kLongest)
        return -1;
    char lowered[kLongest];
    for (PB_INT i = 0; i < length; ++i) {
        PB_CHAR c = chars[i];
        if (c >= 128)
            return -1;
        lowered[i] = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    }
    std::string_view label(lowered, static_cast<size_t>(length));
    const Label *end = std::end(kLabels);
    const Label *at = std::lower_bound(std::begin(kLabels), end, label,
                                       [](const Label &l, std::string_view key) { return l.label < key; });
    return at != end && at->label == label ? at->charset : -1;
}

PB_CHARSET charsetFromNameOrLabel(const PB_CHAR *chars, PB_INT length, bool &registered) noexcept
{
    PB_CHARSET charset = pb___CharsetFromIanaNameChars(chars, length);
    registered = PB_CHARSET_OK(charset);
    return registered ? charset : charsetFromLabel(chars, length);
}

} // namespace mime
