#include <pb/pb_charset.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_string.hpp>
#include <pb/pb_text.hpp>
#include <pb/pb_utf8.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <iconv.h>
#include <string_view>
#include <vector>

namespace {

enum class Native { None, Ascii, Latin1, Utf8 };

struct Charset {
    const char *ianaName; // preferred name
    const char *iconvName;
    Native native;
};

// Indexed by code. The codes are part of the interface: never renumber.
constexpr Charset kCharsets[] = {
    {"US-ASCII", "US-ASCII", Native::Ascii},
    {"ISO-8859-1", "ISO-8859-1", Native::Latin1},
    {"ISO-8859-2", "ISO-8859-2", Native::None},
    {"ISO-8859-3", "ISO-8859-3", Native::None},
    {"ISO-8859-4", "ISO-8859-4", Native::None},
    {"ISO-8859-5", "ISO-8859-5", Native::None},
    {"ISO-8859-6", "ISO-8859-6", Native::None},
    {"ISO-8859-7", "ISO-8859-7", Native::None},
    {"ISO-8859-8", "ISO-8859-8", Native::None},
    {"ISO-8859-9", "ISO-8859-9", Native::None},
    {"ISO-8859-10", "ISO-8859-10", Native::None},
    {"ISO-8859-13", "ISO-8859-13", Native::None},
    {"ISO-8859-14", "ISO-8859-14", Native::None},
    {"ISO-8859-15", "ISO-8859-15", Native::None},
    {"ISO-8859-16", "ISO-8859-16", Native::None},
    {"windows-1250", "WINDOWS-1250", Native::None},
    {"windows-1251", "WINDOWS-1251", Native::None},
    {"windows-1252", "WINDOWS-1252", Native::None},
    {"windows-1253", "WINDOWS-1253", Native::None},
    {"windows-1254", "WINDOWS-1254", Native::None},
    {"windows-1255", "WINDOWS-1255", Native::None},
    {"windows-1256", "WINDOWS-1256", Native::None},
    {"windows-1257", "WINDOWS-1257", Native::None},
    {"windows-1258", "WINDOWS-1258", Native::None},
    {"KOI8-R", "KOI8-R", Native::None},
    {"KOI8-U", "KOI8-U", Native::None},
    {"IBM437", "IBM437", Native::None},
    {"IBM850", "IBM850", Native::None},
    {"IBM852", "IBM852", Native::None},
    {"IBM866", "IBM866", Native::None},
    {"macintosh", "MACINTOSH", Native::None},
    {"TIS-620", "TIS-620", Native::None},
    {"Shift_JIS", "SHIFT_JIS", Native::None},
    {"EUC-JP", "EUC-JP", Native::None},
    {"ISO-2022-JP", "ISO-2022-JP", Native::None},
    {"GB2312", "GB2312", Native::None},
    {"GBK", "GBK", Native::None},
    {"GB18030", "GB18030", Native::None},
    {"Big5", "BIG5", Native::None},
    {"Big5-HKSCS", "BIG5-HKSCS", Native::None},
    {"EUC-KR", "EUC-KR", Native::None},
    {"ISO-2022-KR", "ISO-2022-KR", Native::None},
    {"windows-874", "WINDOWS-874", Native::None},
    {"UTF-7", "UTF-7", Native::None},
    {"UTF-8", "UTF-8", Native::Utf8},
    {"UTF-16", "UTF-16", Native::None},
    {"UTF-16BE", "UTF-16BE", Native::None},
    {"UTF-16LE", "UTF-16LE", Native::None},
    {"UTF-32", "UTF-32", Native::None},
    {"UTF-32BE", "UTF-32BE", Native::None},
    {"UTF-32LE", "UTF-32LE", Native::None},
};
static_assert(std::size(kCharsets) == 51);

struct Alias {
    std::string_view name;
    PB_CHARSET code;
};

// The preferred names and the registered aliases of the IANA character-set registry.
constexpr Alias kAliases[] = {
    {"US-ASCII", 0},
    {"iso-ir-6", 0},
    {"ANSI_X3.4-1968", 0},
    {"ANSI_X3.4-1986", 0},
    {"ISO_646.irv:1991", 0},
    {"ISO646-US", 0},
    {"us", 0},
    {"IBM367", 0},
    {"cp367", 0},
    {"csASCII", 0},
    {"ASCII", 0},
    {"ISO-8859-1", 1},
    {"ISO_8859-1:1987", 1},
    {"iso-ir-100", 1},
    {"ISO_8859-1", 1},
    {"latin1", 1},
    {"l1", 1},
    {"IBM819", 1},
    {"CP819", 1},
    {"csISOLatin1", 1},
    {"ISO-8859-2", 2},
    {"ISO_8859-2:1987", 2},
    {"iso-ir-101", 2},
    {"ISO_8859-2", 2},
    {"latin2", 2},
    {"l2", 2},
    {"csISOLatin2", 2},
    {"ISO-8859-3", 3},
    {"ISO_8859-3:1988", 3},
    {"iso-ir-109", 3},
    {"ISO_8859-3", 3},
    {"latin3", 3},
    {"l3", 3},
    {"csISOLatin3", 3},
    {"ISO-8859-4", 4},
    {"ISO_8859-4:1988", 4},
    {"iso-ir-110", 4},
    {"ISO_8859-4", 4},
    {"latin4", 4},
    {"l4", 4},
    {"csISOLatin4", 4},
    {"ISO-8859-5", 5},
    {"ISO_8859-5:1988", 5},
    {"iso-ir-144", 5},
    {"ISO_8859-5", 5},
    {"cyrillic", 5},
    {"csISOLatinCyrillic", 5},
    {"ISO-8859-6", 6},
    {"ISO_8859-6:1987", 6},
    {"iso-ir-127", 6},
    {"ISO_8859-6", 6},
    {"ECMA-114", 6},
    {"ASMO-708", 6},
    {"arabic", 6},
    {"csISOLatinArabic", 6},
    {"ISO-8859-7", 7},
    {"ISO_8859-7:1987", 7},
    {"iso-ir-126", 7},
    {"ISO_8859-7", 7},
    {"ELOT_928", 7},
    {"ECMA-118", 7},
    {"greek", 7},
    {"greek8", 7},
    {"csISOLatinGreek", 7},
    {"ISO-8859-8", 8},
    {"ISO_8859-8:1988", 8},
    {"iso-ir-138", 8},
    {"ISO_8859-8", 8},
    {"hebrew", 8},
    {"csISOLatinHebrew", 8},
    {"ISO-8859-9", 9},
    {"ISO_8859-9:1989", 9},
    {"iso-ir-148", 9},
    {"ISO_8859-9", 9},
    {"latin5", 9},
    {"l5", 9},
    {"csISOLatin5", 9},
    {"ISO-8859-10", 10},
    {"iso-ir-157", 10},
    {"l6", 10},
    {"ISO_8859-10:1992", 10},
    {"csISOLatin6", 10},
    {"latin6", 10},
    {"ISO-8859-13", 11},
    {"csISO885913", 11},
    {"ISO-8859-14", 12},
    {"iso-ir-199", 12},
    {"ISO_8859-14:1998", 12},
    {"ISO_8859-14", 12},
    {"latin8", 12},
    {"iso-celtic", 12},
    {"l8", 12},
    {"csISO885914", 12},
    {"ISO-8859-15", 13},
    {"ISO_8859-15", 13},
    {"Latin-9", 13},
    {"csISO885915", 13},
    {"ISO-8859-16", 14},
    {"iso-ir-226", 14},
    {"ISO_8859-16:2001", 14},
    {"ISO_8859-16", 14},
    {"latin10", 14},
    {"l10", 14},
    {"csISO885916", 14},
    {"windows-1250", 15},
    {"cswindows1250", 15},
    {"windows-1251", 16},
    {"cswindows1251", 16},
    {"windows-1252", 17},
    {"cswindows1252", 17},
    {"windows-1253", 18},
    {"cswindows1253", 18},
    {"windows-1254", 19},
    {"cswindows1254", 19},
    {"windows-1255", 20},
    {"cswindows1255", 20},
    {"windows-1256", 21},
    {"cswindows1256", 21},
    {"windows-1257", 22},
    {"cswindows1257", 22},
    {"windows-1258", 23},
    {"cswindows1258", 23},
    {"KOI8-R", 24},
    {"csKOI8R", 24},
    {"KOI8-U", 25},
    {"csKOI8U", 25},
    {"IBM437", 26},
    {"cp437", 26},
    {"437", 26},
    {"csPC8CodePage437", 26},
    {"IBM850", 27},
    {"cp850", 27},
    {"850", 27},
    {"csPC850Multilingual", 27},
    {"IBM852", 28},
    {"cp852", 28},
    {"852", 28},
    {"csPCp852", 28},
    {"IBM866", 29},
    {"cp866", 29},
    {"866", 29},
    {"csIBM866", 29},
    {"macintosh", 30},
    {"mac", 30},
    {"csMacintosh", 30},
    {"TIS-620", 31},
    {"csTIS620", 31},
    {"ISO-8859-11", 31},
    {"Shift_JIS", 32},
    {"MS_Kanji", 32},
    {"csShiftJIS", 32},
    {"EUC-JP", 33},
    {"Extended_UNIX_Code_Packed_Format_for_Japanese", 33},
    {"csEUCPkdFmtJapanese", 33},
    {"ISO-2022-JP", 34},
    {"csISO2022JP", 34},
    {"GB2312", 35},
    {"csGB2312", 35},
    {"GBK", 36},
    {"CP936", 36},
    {"MS936", 36},
    {"windows-936", 36},
    {"csGBK", 36},
    {"GB18030", 37},
    {"csGB18030", 37},
    {"Big5", 38},
    {"csBig5", 38},
    {"Big5-HKSCS", 39},
    {"csBig5HKSCS", 39},
    {"EUC-KR", 40},
    {"csEUCKR", 40},
    {"ISO-2022-KR", 41},
    {"csISO2022KR", 41},
    {"windows-874", 42},
    {"cswindows874", 42},
    {"UTF-7", 43},
    {"csUTF7", 43},
    {"UTF-8", 44},
    {"csUTF8", 44},
    {"UTF-16", 45},
    {"csUTF16", 45},
    {"UTF-16BE", 46},
    {"csUTF16BE", 46},
    {"UTF-16LE", 47},
    {"csUTF16LE", 47},
    {"UTF-32", 48},
    {"csUTF32", 48},
    {"UTF-32BE", 49},
    {"csUTF32BE", 49},
    {"UTF-32LE", 50},
    {"csUTF32LE", 50},
};

constexpr char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// An alias in lower case, for lookups that compare bytes.
struct LoweredAlias {
    char name[48];
    size_t length;
    PB_CHARSET code;
    constexpr std::string_view view() const { return {name, length}; }
};

constexpr uint32_t hashOf(std::string_view lowered)
{
    uint32_t h = 2166136261u; // FNV-1a
    for (char c : lowered)
        h = (h ^ static_cast<uint8_t>(c)) * 16777619u;
    return h;
}

// The aliases lowered into an open-addressing table built at compile time: a
// lookup hashes the name once and compares about one entry. Empty slots have
// length 0.
constexpr size_t kAliasSlots = 512;
constexpr auto kAliasTable = [] {
    std::array<LoweredAlias, kAliasSlots> table{};
    for (const Alias &a : kAliases) {
        LoweredAlias entry{};
        for (size_t k = 0; k < a.name.size(); ++k)
            entry.name[k] = lower(a.name[k]);
        entry.length = a.name.size();
        entry.code = a.code;
        size_t slot = hashOf(entry.view()) % kAliasSlots;
        while (table[slot].length != 0)
            slot = (slot + 1) % kAliasSlots;
        table[slot] = entry;
    }
    return table;
}();

constexpr bool aliasesUnique()
{
    static_assert(std::size(kAliases) < kAliasSlots / 2);
    for (const Alias &a : kAliases)
        if (a.name.empty() || a.name.size() >= sizeof(LoweredAlias::name))
            return false;
    for (size_t i = 0; i < kAliasSlots; ++i) {
        // An entry equal to this one sits in its probe run only when a name repeats.
        if (kAliasTable[i].length == 0)
            continue;
        for (size_t slot = hashOf(kAliasTable[i].view()) % kAliasSlots; kAliasTable[slot].length != 0;
             slot = (slot + 1) % kAliasSlots)
            if (slot != i && kAliasTable[slot].view() == kAliasTable[i].view())
                return false;
    }
    return true;
}
static_assert(aliasesUnique(), "an alias names two character sets, or is empty or too long");

// The code of the charset named chars[0, n) (any case), or -1.
PB_CHARSET lookup(const PB_CHAR *chars, PB_INT n)
{
    char text[sizeof(LoweredAlias::name)];
    if (n == 0 || n >= static_cast<PB_INT>(sizeof text))
        return -1;
    for (PB_INT i = 0; i < n; ++i) {
        if (chars[i] > 0x7E || chars[i] <= 0x20)
            return -1;
        text[i] = lower(static_cast<char>(chars[i]));
    }
    std::string_view key(text, static_cast<size_t>(n));
    for (size_t slot = hashOf(key) % kAliasSlots; kAliasTable[slot].length != 0; slot = (slot + 1) % kAliasSlots)
        if (kAliasTable[slot].view() == key)
            return kAliasTable[slot].code;
    return -1;
}

// Code points in the host's byte order, as iconv reads and writes them.
const char *const kCodePoints = std::endian::native == std::endian::little ? "UTF-32LE" : "UTF-32BE";

class Iconv {
public:
    Iconv(const char *to, const char *from) : cd_(iconv_open(to, from)) {}
    ~Iconv()
    {
        if (ok())
            iconv_close(cd_);
    }
    Iconv(const Iconv &) = delete;
    Iconv &operator=(const Iconv &) = delete;
    bool ok() const { return cd_ != reinterpret_cast<iconv_t>(-1); }
    size_t operator()(char **in, size_t *inLeft, char **out, size_t *outLeft)
    {
        return iconv(cd_, in, inLeft, out, outLeft);
    }

private:
    iconv_t cd_;
};

// Decodes with iconv straight into the string. No set here yields more code
// points than it has bytes, so n + 1 (for a U+FFFD at an incomplete end) is
// nearly always enough; should a converter want more, the string grows.
PB_STRING *decodeIconv(const Charset &cs, const PB_BYTE *bytes, PB_INT n, bool strict)
{
    Iconv cd(kCodePoints, cs.iconvName);
    if (!cd.ok()) {
        // No converter on this system: nothing can be read, so nothing is valid.
        if (strict)
            return nullptr;
        PB_STRING *s = pb::string::createWithCapacity(n);
        std::fill_n(pb::string::appendSpace(&s, n), n, pb::utf8::kReplacement);
        return s;
    }
    pb::Ref<PB_STRING> s = pb::adopt(pb::string::createWithCapacity(n + 1));
    PB_INT written = 0, room = 0;
    char *out = nullptr;
    size_t outLeft = 0;
    auto grow = [&](PB_INT more) {
        written = room - static_cast<PB_INT>(outLeft / sizeof(PB_CHAR));
        pb::string::appendSpace(s.addr(), more);
        room += more;
        out = reinterpret_cast<char *>(const_cast<PB_CHAR *>(pbStringBacking(s.get())) + written);
        outLeft = static_cast<size_t>(room - written) * sizeof(PB_CHAR);
    };
    grow(n + 1);
    auto *in = reinterpret_cast<char *>(const_cast<PB_BYTE *>(bytes));
    size_t inLeft = static_cast<size_t>(n);
    while (inLeft > 0) {
        if (cd(&in, &inLeft, &out, &outLeft) != static_cast<size_t>(-1))
            break;
        int error = errno; // before anything that may allocate
        if (error == E2BIG) {
            grow(static_cast<PB_INT>(inLeft) + 16);
            continue;
        }
        if (strict)
            return nullptr;
        if (outLeft < sizeof(PB_CHAR))
            grow(16);
        *reinterpret_cast<PB_CHAR *>(out) = pb::utf8::kReplacement;
        out += sizeof(PB_CHAR);
        outLeft -= sizeof(PB_CHAR);
        if (error != EILSEQ)
            break; // EINVAL: an incomplete sequence at the end
        ++in;
        --inLeft;
    }
    cd(nullptr, nullptr, &out, &outLeft);
    pb::string::truncate(s.addr(), room - static_cast<PB_INT>(outLeft / sizeof(PB_CHAR)));
    return s.release();
}

PB_BUFFER *encodeIconv(const Charset &cs, PB_STRING *s)
{
    Iconv cd(cs.iconvName, kCodePoints);
    if (!cd.ok())
        return nullptr;
    PB_INT n = pbStringLength(s);
    auto *in = reinterpret_cast<char *>(const_cast<PB_CHAR *>(pbStringBacking(s)));
    size_t inLeft = static_cast<size_t>(n) * sizeof(PB_CHAR);
    std::vector<char> out(static_cast<size_t>(n) * 4 + 16);
    size_t written = 0;
    for (bool flushing = false;;) {
        char *o = out.data() + written;
        size_t outLeft = out.size() - written;
        size_t r = flushing ? cd(nullptr, nullptr, &o, &outLeft) : cd(&in, &inLeft, &o, &outLeft);
        written = static_cast<size_t>(o - out.data());
        if (r != static_cast<size_t>(-1)) {
            if (flushing)
                break;
            flushing = true; // return a stateful encoding to its initial state
            continue;
        }
        if (errno != E2BIG)
            return nullptr; // a code point without an encoding here
        out.resize(out.size() * 2);
    }
    return pbBufferCreateFromBytesCopy(out.data(), static_cast<PB_INT>(written));
}

PB_BUFFER *encodeNative(Native native, PB_STRING *s)
{
    const PB_CHAR *chars = pbStringBacking(s);
    PB_INT n = pbStringLength(s);
    PB_CHAR limit = native == Native::Ascii ? 0x7F : native == Native::Latin1 ? 0xFF : 0x10FFFF;
    PB_INT bytes = 0;
    for (PB_INT i = 0; i < n; ++i) {
        if (chars[i] > limit || !pb::utf8::isScalar(chars[i]))
            return nullptr;
        bytes += native == Native::Utf8 ? pb::utf8::encodedLength(chars[i]) : 1;
    }
    PB_BUFFER *buf = pbBufferCreate();
    PB_BYTE *out = pbBufferAppendSpace(&buf, bytes);
    for (PB_INT i = 0; i < n; ++i) {
        if (native == Native::Utf8)
            out += pb::utf8::encode(chars[i], out);
        else
            *out++ = static_cast<PB_BYTE>(chars[i]);
    }
    return buf;
}

PB_STRING *decodeNative(Native native, const PB_BYTE *bytes, PB_INT n, bool strict)
{
    pb::Ref<PB_STRING> s = pb::adopt(pb::string::createWithCapacity(n + 1));
    PB_CHAR *out = pb::string::appendSpace(s.addr(), n);
    if (native == Native::Utf8) {
        PB_INT written = pb::utf8::decode(bytes, static_cast<size_t>(n), out, strict);
        if (written < 0)
            return nullptr;
        pb::string::truncate(s.addr(), written);
        return s.release();
    }
    for (PB_INT i = 0; i < n; ++i) {
        PB_BYTE b = bytes[i];
        if (native == Native::Ascii && b > 0x7F) {
            if (strict)
                return nullptr;
            out[i] = pb::utf8::kReplacement;
        } else {
            out[i] = b;
        }
    }
    return s.release();
}

// The text of bytes[0, n) in the charset; null when strict and they are not valid.
PB_STRING *decoded(const Charset &cs, const PB_BYTE *bytes, PB_INT n, bool strict)
{
    return cs.native != Native::None ? decodeNative(cs.native, bytes, n, strict) : decodeIconv(cs, bytes, n, strict);
}

} // namespace

PB_CHARSET pbCharsetFromIanaName(PB_STRING *name) noexcept
{
    PB_ASSERT( name );
    return lookup(pbStringBacking(name), pbStringLength(name));
}

PB_STRING *pbCharsetToIanaName(PB_CHARSET charset) noexcept
{
    PB_ASSERT( PB_CHARSET_OK( charset ) );
    return pbStringCreateFromCstr(kCharsets[charset].ianaName, -1);
}

PB_STRING *pbCharsetToString(PB_CHARSET charset) noexcept
{
    return pbCharsetToIanaName(charset);
}

PB_CHARSET pbCharsetFromString(PB_STRING *text) noexcept
{
    PB_ASSERT( text );
    return pbCharsetFromIanaName(text);
}

PB_CHARSET pb___CharsetFromIanaNameChars(const PB_CHAR *chars, PB_INT count) noexcept
{
    PB_ASSERT( chars || count == 0 );
    PB_ASSERT( count >= 0 );
    return lookup(chars, count);
}

PB_CHARSET pbCharsetFromIanaNameCstr(const char *name, PB_INT length) noexcept
{
    return pbCharsetFromIanaName(pb::Text(name, length));
}

PB_CHARSET pbCharsetFromIanaNameWcstr(const wchar_t *name, PB_INT length) noexcept
{
    return pbCharsetFromIanaName(pb::Text(name, length));
}

PB_CHARSET pbCharsetFromStringCstr(const char *text, PB_INT length) noexcept
{
    return pbCharsetFromString(pb::Text(text, length));
}

PB_CHARSET pbCharsetFromStringWcstr(const wchar_t *text, PB_INT length) noexcept
{
    return pbCharsetFromString(pb::Text(text, length));
}

PB_BUFFER *pbCharsetConvertStringToBuffer(PB_CHARSET charset, PB_STRING *s) noexcept
{
    PB_ASSERT( PB_CHARSET_OK( charset ) );
    PB_ASSERT( s );
    const Charset &cs = kCharsets[charset];
    return cs.native != Native::None ? encodeNative(cs.native, s) : encodeIconv(cs, s);
}

PB_STRING *pbCharsetConvertBufferToString(PB_CHARSET charset, PB_BUFFER *buf) noexcept
{
    return pbCharsetTryConvertBufferToStringWithFlags(charset, buf, 0);
}

PB_STRING *pbCharsetTryConvertBufferToStringWithFlags(PB_CHARSET charset, PB_BUFFER *buf, PB_INT flags) noexcept
{
    PB_ASSERT( PB_CHARSET_OK( charset ) );
    PB_ASSERT( buf );
    bool strict = (flags & PB_CHARSET_FLAG_STRICT) != 0;
    bool incomplete = pbBufferBitLength(buf) % 8 != 0;
    if (incomplete && strict)
        return nullptr;
    const Charset &cs = kCharsets[charset];
    const PB_BYTE *bytes = pbBufferBacking(buf);
    PB_INT n = pbBufferLength(buf);
    PB_STRING *s = decoded(cs, bytes, n, strict);
    if (s && incomplete)
        pbStringAppendChar(&s, pb::utf8::kReplacement);
    return s;
}

PB_STRING *pb___CharsetConvertBytesToString(PB_CHARSET charset, const PB_BYTE *bytes, PB_INT count) noexcept
{
    PB_ASSERT( PB_CHARSET_OK( charset ) );
    PB_ASSERT( bytes || count == 0 );
    PB_ASSERT( count >= 0 );
    return decoded(kCharsets[charset], bytes, count, false);
}
