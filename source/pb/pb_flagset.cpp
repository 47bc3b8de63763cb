#include <pb/pb_flagset.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_sort.hpp>
#include <pb/pb_string.h>
#include <pb/pb_text.hpp>

#include <algorithm>
#include <cstdlib>

namespace {

struct Flag {
    PB_STRING *name;
    uint64_t value;
};

} // namespace

// Few flags per set: a small array kept in ascending order of value.
struct PB_FLAGSET {
    PB_OBJ_HEADER header;
    Flag *flags;
    PB_INT length;
};

namespace {

extern "C" {
static void pb___FlagsetFreeFunc(PB_OBJ *obj) noexcept;
static PB_INT pb___FlagsetCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept;
static PB_STRING *pb___FlagsetToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

PB___SORT_DEFINE(pb, Flagset, PB_FLAGSET, nullptr, pb___FlagsetFreeFunc, pb___FlagsetCompareFunc,
                 pb___FlagsetToStringFunc)

namespace {

void pb___FlagsetFreeFunc(PB_OBJ *obj) noexcept
{
    PB_FLAGSET *set = pbFlagsetFrom(obj);
    for (PB_INT i = 0; i < set->length; ++i)
        pbStringRelease(set->flags[i].name);
    std::free(set->flags);
    set->flags = pb::poison<Flag>();
}

PB_INT pb___FlagsetCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept
{
    PB_FLAGSET *x = pbFlagsetFrom(a);
    PB_FLAGSET *y = pbFlagsetFrom(b);
    for (PB_INT i = 0; i < x->length && i < y->length; ++i) {
        if (x->flags[i].value != y->flags[i].value)
            return x->flags[i].value < y->flags[i].value ? -1 : 1;
        if (PB_INT order = pbObjCompare(pbStringObj(x->flags[i].name), pbStringObj(y->flags[i].name)))
            return order;
    }
    return x->length < y->length ? -1 : x->length > y->length ? 1 : 0;
}

// Every name with its value: "A=1, B=2".
PB_STRING *pb___FlagsetToStringFunc(PB_OBJ *obj) noexcept
{
    PB_FLAGSET *set = pbFlagsetFrom(obj);
    PB_STRING *s = pbStringCreate();
    for (PB_INT i = 0; i < set->length; ++i)
        pbStringAppendFormatCstr(&s, "%lc%s=%i", -1, i ? ", " : "", set->flags[i].name,
                                 static_cast<PB_INT>(set->flags[i].value));
    return s;
}

bool isSeparator(PB_CHAR c)
{
    return c == ',' || c == '|' || c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

PB_CHAR fold(PB_CHAR c)
{
    return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}

bool sameName(PB_STRING *name, const PB_CHAR *chars, PB_INT n)
{
    return pbStringLength(name) == n &&
           std::equal(chars, chars + n, pbStringBacking(name), [](PB_CHAR a, PB_CHAR b) { return fold(a) == fold(b); });
}

PB_INT indexOf(PB_FLAGSET *set, const PB_CHAR *chars, PB_INT n)
{
    for (PB_INT i = 0; i < set->length; ++i)
        if (sameName(set->flags[i].name, chars, n))
            return i;
    return -1;
}

PB_FLAGSET *createFrom(PB_FLAGSET *source)
{
    PB_FLAGSET *set = pbFlagsetCreate();
    set->flags = static_cast<Flag *>(std::malloc(sizeof(Flag) * static_cast<size_t>(source->length + 1)));
    PB_ASSERT_MSG("out of memory", set->flags);
    for (PB_INT i = 0; i < source->length; ++i)
        set->flags[i] = Flag{pbStringRetain(source->flags[i].name), source->flags[i].value};
    set->length = source->length;
    return set;
}

} // namespace

PB_FLAGSET *pbFlagsetCreate(void) noexcept
{
    return pb::create<PB_FLAGSET>(&pb___sort_PB_FLAGSET);
}

void pbFlagsetSetFlag(PB_FLAGSET **set, PB_STRING *name, uint64_t value) noexcept
{
    PB_ASSERT( set );
    PB_ASSERT( *set );
    PB_ASSERT( name );
    const PB_CHAR *chars = pbStringBacking(name);
    PB_INT n = pbStringLength(name);
    PB_ASSERT( n > 0 && std::none_of(chars, chars + n, isSeparator) );
    pb::unshare(set, createFrom);
    PB_FLAGSET *s = *set;
    PB_INT at = indexOf(s, chars, n);
    if (at >= 0) {
        pbStringRelease(s->flags[at].name);
        std::copy(s->flags + at + 1, s->flags + s->length, s->flags + at);
        --s->length;
    }
    auto *flags = static_cast<Flag *>(std::realloc(s->flags, sizeof(Flag) * static_cast<size_t>(s->length + 1)));
    PB_ASSERT_MSG("out of memory", flags);
    s->flags = flags;
    Flag *pos =
        std::upper_bound(flags, flags + s->length, value, [](uint64_t v, const Flag &f) { return v < f.value; });
    std::copy_backward(pos, flags + s->length, flags + s->length + 1);
    *pos = Flag{pbStringRetain(name), value};
    ++s->length;
}

PB_BOOL pbFlagsetHasFlag(PB_FLAGSET *set, PB_STRING *name) noexcept
{
    PB_ASSERT( set );
    PB_ASSERT( name );
    return indexOf(set, pbStringBacking(name), pbStringLength(name)) >= 0;
}

uint64_t pbFlagsetParse(PB_FLAGSET *set, PB_STRING *text) noexcept
{
    PB_ASSERT( set );
    PB_ASSERT( text );
    const PB_CHAR *chars = pbStringBacking(text);
    PB_INT n = pbStringLength(text);
    uint64_t bits = 0;
    for (PB_INT i = 0; i < n;) {
        if (isSeparator(chars[i])) {
            ++i;
            continue;
        }
        PB_INT start = i;
        while (i < n && !isSeparator(chars[i]))
            ++i;
        PB_INT at = indexOf(set, chars + start, i - start);
        if (at >= 0)
            bits |= set->flags[at].value;
    }
    return bits;
}

PB_STRING *pbFlagsetGenerate(PB_FLAGSET *set, uint64_t bits) noexcept
{
    PB_ASSERT( set );
    PB_STRING *s = pbStringCreate();
    for (PB_INT i = 0; i < set->length; ++i) {
        uint64_t value = set->flags[i].value;
        if (value && (bits & value) == value)
            pbStringAppendFormatCstr(&s, "%lc%s", -1, pbStringLength(s) ? ", " : "", set->flags[i].name);
    }
    return s;
}

void pbFlagsetSetFlagCstr(PB_FLAGSET **set, const char *name, PB_INT length, uint64_t value) noexcept
{
    pbFlagsetSetFlag(set, pb::Text(name, length), value);
}

void pbFlagsetSetFlagWcstr(PB_FLAGSET **set, const wchar_t *name, PB_INT length, uint64_t value) noexcept
{
    pbFlagsetSetFlag(set, pb::Text(name, length), value);
}

PB_BOOL pbFlagsetHasFlagCstr(PB_FLAGSET *set, const char *name, PB_INT length) noexcept
{
    return pbFlagsetHasFlag(set, pb::Text(name, length));
}

PB_BOOL pbFlagsetHasFlagWcstr(PB_FLAGSET *set, const wchar_t *name, PB_INT length) noexcept
{
    return pbFlagsetHasFlag(set, pb::Text(name, length));
}

uint64_t pbFlagsetParseCstr(PB_FLAGSET *set, const char *text, PB_INT length) noexcept
{
    return pbFlagsetParse(set, pb::Text(text, length));
}

uint64_t pbFlagsetParseWcstr(PB_FLAGSET *set, const wchar_t *text, PB_INT length) noexcept
{
    return pbFlagsetParse(set, pb::Text(text, length));
}
