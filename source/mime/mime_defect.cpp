#include <mime/mime_defect.hpp>
#include <mime/mime_object.hpp>

#include <array>
#include <string>

struct MIME_DEFECT {
    PB_OBJ_HEADER header;
    MIME_DEFECT_CODE code;
    PB_INT offset;
    PB_STRING *part;
    PB_STRING *text;
};

namespace {
extern "C" {
static void mime___DefectFreeFunc(PB_OBJ *obj) noexcept;
static PB_INT mime___DefectCompareFunc(PB_OBJ *objA, PB_OBJ *objB) noexcept;
static PB_STRING *mime___DefectToStringFunc(PB_OBJ *obj) noexcept;
}
} // namespace

MIME___SORT_DEFINE(Defect, MIME_DEFECT, mime___DefectFreeFunc, mime___DefectCompareFunc, mime___DefectToStringFunc)

namespace {

struct CodeInfo {
    const char *name;
    const char *sentence; // "{}" stands for the detail
};

constexpr std::array<CodeInfo, MIME_DEFECT_CODE_COUNT> kCodes = {{
    {"line-end-bare", "a line ends in LF without CR"},
    {"mbox-from-line", "an mbox From line stands before the header"},
    {"header-not-utf8", "the header holds bytes that are not UTF-8 (read as Latin-1)"},
    {"header-continuation-first", "the header starts with a continuation line (ignored)"},
    {"header-line-malformed", "a header line has no colon or a bad field name"},
    {"header-no-empty-line", "no empty line ends the header (the body starts at the first line that is no field)"},
    {"header-field-repeated", "the {} field is given more than once (the first is read)"},
    {"content-type-invalid", "the Content-Type value is malformed"},
    {"content-disposition-invalid", "the Content-Disposition value is malformed"},
    {"content-id-invalid", "the Content-Id value is malformed"},
    {"transfer-encoding-invalid", "the Content-Transfer-Encoding value is unknown or malformed"},
    {"charset-unknown", "the RFC 2231 charset {} is no registered name"},
    {"encoded-word-in-parameter", "the {} parameter holds RFC 2047 encoded words"},
    {"body-invalid", "the {} body is malformed"},
    {"boundary-invalid", "the boundary parameter {}"},
    {"delimiter-missing", "the body holds no delimiter --{}"},
    {"delimiter-line-malformed", "a line starts with the delimiter --{} but carries more"},
    {"close-delimiter-missing", "the close delimiter --{}-- is missing"},
    {"container-encoded", "the {} body is under a transfer encoding"},
    {"limit-exceeded", "the {} limit is reached (the rest is kept undecoded)"},
    {"delimiter-repeated", "delimiter lines --{} follow each other (no part between them)"},
    {"parameters-malformed", "the parameters cannot be read to their end (read at each ; instead)"},
    {"header-value-unsafe", "the value holds {}: written as it stands, it would not stay in its header field"},
}};

PB_STRING *utf8String(std::string_view text)
{
    return pbStringCreateFromCstr(text.data(), static_cast<PB_INT>(text.size()));
}

void appendUtf8(PB_STRING **s, std::string_view text)
{
    pb::Ref<PB_STRING> tail = pb::adopt(utf8String(text));
    pbStringAppend(s, tail.get());
}

void mime___DefectFreeFunc(PB_OBJ *obj) noexcept
{
    MIME_DEFECT *defect = mimeDefectFrom(obj);
    pb::releaseField(defect->part);
    pb::releaseField(defect->text);
}

PB_INT mime___DefectCompareFunc(PB_OBJ *objA, PB_OBJ *objB) noexcept
{
    MIME_DEFECT *a = mimeDefectFrom(objA);
    MIME_DEFECT *b = mimeDefectFrom(objB);
    if (a->offset != b->offset)
        return a->offset < b->offset ? -1 : 1;
    if (PB_INT order = pbStringCompare(a->part, b->part))
        return order;
    if (a->code != b->code)
        return a->code < b->code ? -1 : 1;
    return pbStringCompare(a->text, b->text);
}

PB_STRING *mime___DefectToStringFunc(PB_OBJ *obj) noexcept
{
    MIME_DEFECT *defect = mimeDefectFrom(obj);
    PB_STRING *s = pbStringCreate();
    if (pbStringLength(defect->part) > 0) {
        appendUtf8(&s, "part ");
        pbStringAppend(&s, defect->part);
        appendUtf8(&s, ", ");
    }
    appendUtf8(&s, "byte " + std::to_string(defect->offset) + ": ");
    pbStringAppend(&s, defect->text);
    return s;
}

} // namespace

namespace mime {

MIME_DEFECT *createDefect(MIME_DEFECT_CODE code, PB_INT offset, std::string_view part, std::string_view detail) noexcept
{
    PB_ASSERT( code >= 0 && code < MIME_DEFECT_CODE_COUNT );
    std::string text = kCodes[static_cast<size_t>(code)].sentence;
    if (size_t at = text.find("{}"); at != std::string::npos)
        text.replace(at, 2, detail);
    pb::Ref<PB_STRING> partText = pb::adopt(utf8String(part));
    pb::Ref<PB_STRING> sentence = pb::adopt(utf8String(text));
    return mimeDefectCreate(code, offset, partText.get(), sentence.get());
}

void DefectList::add(MIME_DEFECT_CODE code, PB_INT offset, std::string_view detail) noexcept
{
    if (count_ > max_)
        return;
    bool last = count_++ == max_;
    pb::Ref<MIME_DEFECT> defect =
        pb::adopt(last ? createDefect(MIME_DEFECT_LIMIT_EXCEEDED, offset, part_, "defect count")
                       : createDefect(code, offset, part_, detail));
    if (!list_)
        list_ = pb::adopt(pbVectorCreate());
    pbVectorAppendObj(list_.addr(), mimeDefectObj(defect.get()));
}

} // namespace mime

MIME_DEFECT *mimeDefectCreate(MIME_DEFECT_CODE code, PB_INT offset, PB_STRING *part, PB_STRING *text) noexcept
{
    PB_ASSERT( code >= 0 && code < MIME_DEFECT_CODE_COUNT );
    PB_ASSERT( offset >= 0 );
    PB_ASSERT( part );
    PB_ASSERT( text );
    auto *defect = pb::create<MIME_DEFECT>(mimeDefectSort());
    defect->code = code;
    defect->offset = offset;
    pb::setField(defect->part, part);
    pb::setField(defect->text, text);
    return defect;
}

MIME_DEFECT_CODE mimeDefectCode(MIME_DEFECT *defect) noexcept
{
    PB_ASSERT( defect );
    return defect->code;
}

PB_INT mimeDefectOffset(MIME_DEFECT *defect) noexcept
{
    PB_ASSERT( defect );
    return defect->offset;
}

PB_STRING *mimeDefectPart(MIME_DEFECT *defect) noexcept
{
    PB_ASSERT( defect );
    return pb::retained(defect->part).release();
}

PB_STRING *mimeDefectText(MIME_DEFECT *defect) noexcept
{
    PB_ASSERT( defect );
    return pb::retained(defect->text).release();
}

const char *mimeDefectCodeName(MIME_DEFECT_CODE code) noexcept
{
    PB_ASSERT( code >= 0 && code < MIME_DEFECT_CODE_COUNT );
    return kCodes[static_cast<size_t>(code)].name;
}
