// The format language of pbStringCreateFromFormatCstr and pbStringAppendFormatCstr.
#include <pb/pb_ref.hpp>
#include <pb/pb_string.hpp>

#include <cstring>
#include <vector>

namespace {

struct Directive {
    bool takeOver = false;
    bool upper = false;
    bool left = false;
    bool zero = false;
    bool longForm = false;
    PB_INT width = 0;
    int base = 10;
    char conversion = 0;
};

// Reads the directive after a '%'; returns the position after it.
const char *parseDirective(const char *p, const char *end, Directive &d)
{
    for (; p < end; ++p) {
        if (*p == '~')
            d.takeOver = true;
        else if (*p == '^')
            d.upper = true;
        else if (*p == '-')
            d.left = true;
        else
            break;
    }
    if (p < end && *p == '0') {
        d.zero = true;
        ++p;
    }
    for (; p < end && *p >= '0' && *p <= '9'; ++p) {
        PB_ASSERT_MSG("format width too large", d.width < 1000000);
        d.width = d.width * 10 + (*p - '0');
    }
    if (p < end && *p == '!') {
        d.base = 0;
        for (++p; p < end && *p >= '0' && *p <= '9'; ++p)
            d.base = d.base * 10 + (*p - '0');
        PB_ASSERT_MSG("invalid format directive", d.base >= 2 && d.base <= 36);
    }
    if (p < end && *p == 'l') {
        d.longForm = true;
        ++p;
    }
    PB_ASSERT_MSG("invalid format directive", p < end);
    d.conversion = *p++;
    bool known = (d.conversion == 's' || d.conversion == 'o' || d.conversion == 'i') && !d.longForm;
    known = known || d.conversion == 'c';
    PB_ASSERT_MSG("invalid format directive", known);
    PB_ASSERT_MSG("invalid format directive", !d.takeOver || d.conversion == 's' || d.conversion == 'o');
    return p;
}

void pad(PB_STRING **s, PB_INT count, PB_CHAR c)
{
    if (count <= 0)
        return;
    PB_CHAR *out = pb::string::appendSpace(s, count);
    for (PB_INT i = 0; i < count; ++i)
        out[i] = c;
}

// Appends chars with the directive's width and alignment.
void appendPadded(PB_STRING **s, const Directive &d, const PB_CHAR *chars, PB_INT count)
{
    if (!d.left)
        pad(s, d.width - count, ' ');
    pbStringAppendChars(s, chars, count);
    if (d.left)
        pad(s, d.width - count, ' ');
}

void appendInteger(PB_STRING **s, const Directive &d, PB_INT value)
{
    const char *digits = d.upper ? "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ" : "0123456789abcdefghijklmnopqrstuvwxyz";
    PB_CHAR text[72];
    PB_CHAR *end = text + sizeof text / sizeof text[0];
    PB_CHAR *p = end;
    // Work on the magnitude as unsigned so that PB_INT_MIN has one too.
    uint64_t magnitude = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    do {
        *--p = static_cast<PB_CHAR>(digits[magnitude % static_cast<uint64_t>(d.base)]);
        magnitude /= static_cast<uint64_t>(d.base);
    } while (magnitude);
    if (d.zero && !d.left) {
        PB_INT sign = value < 0 ? 1 : 0;
        if (sign)
            pbStringAppendChar(s, '-');
        pad(s, d.width - sign - (end - p), '0');
        pbStringAppendChars(s, p, end - p);
        return;
    }
    if (value < 0)
        *--p = '-';
    appendPadded(s, d, p, end - p);
}

void appendObject(PB_STRING **s, const Directive &d, PB_OBJ *obj)
{
    if (!obj) {
        static const PB_CHAR null[] = {'(', 'n', 'u', 'l', 'l', ')'};
        appendPadded(s, d, null, 6);
        return;
    }
    pb::Ref<PB_STRING> text = pb::adopt(pbObjToString(obj));
    appendPadded(s, d, pbStringBacking(text.get()), pbStringLength(text.get()));
}

} // namespace

namespace pb::string {

void appendFormat(PB_STRING **s, const char *format, PB_INT formatLength, va_list args) noexcept
{
    PB_ASSERT( format );
    va_list ap;
    va_copy(ap, args);
    const char *p = format;
    const char *end = format + (formatLength < 0 ? std::strlen(format) : static_cast<size_t>(formatLength));
    // Objects handed over with '~' are released once the whole text is written,
    // so one object may appear under several directives.
    std::vector<PB_OBJ *> takenOver;
    while (p < end) {
        const char *percent = static_cast<const char *>(std::memchr(p, '%', static_cast<size_t>(end - p)));
        const char *literalEnd = percent ? percent : end;
        if (literalEnd > p)
            appendUtf8(s, p, static_cast<size_t>(literalEnd - p));
        if (!percent)
            break;
        p = percent + 1;
        if (p < end && *p == '%') {
            pbStringAppendChar(s, '%');
            ++p;
            continue;
        }
        Directive d;
        p = parseDirective(p, end, d);
        switch (d.conversion) {
        case 's':
        case 'o': {
            PB_OBJ *obj = d.conversion == 's' ? pbStringObj(va_arg(ap, PB_STRING *)) : va_arg(ap, PB_OBJ *);
            if (d.conversion == 's' && obj)
                obj = pbStringObj(pbStringFrom(obj)); // a %s argument must be a string
            appendObject(s, d, obj);
            if (d.takeOver && obj)
                takenOver.push_back(obj);
            break;
        }
        case 'i':
            appendInteger(s, d, va_arg(ap, PB_INT));
            break;
        case 'c':
            if (d.longForm) {
                const char *text = va_arg(ap, const char *);
                PB_ASSERT( text );
                pb::Ref<PB_STRING> t = pb::adopt(pbStringCreateFromCstr(text, -1));
                appendPadded(s, d, pbStringBacking(t.get()), pbStringLength(t.get()));
            } else {
                PB_CHAR c = va_arg(ap, PB_CHAR);
                appendPadded(s, d, &c, 1);
            }
            break;
        }
    }
    va_end(ap);
    for (PB_OBJ *obj : takenOver)
        pbObjRelease(obj);
}

} // namespace pb::string
