#include <mime/mime_char.hpp>
#include <mime/mime_parameterized.hpp>

namespace mime::parameterized {

void release(Fields &f) noexcept
{
    pb::releaseField(f.label);
    pb::releaseField(f.parameters);
}

namespace {

PB_INT orderPresent(void *a, void *b)
{
    if (!a || !b)
        return a ? 1 : b ? -1 : 0;
    return pbObjCompare(static_cast<PB_OBJ *>(a), static_cast<PB_OBJ *>(b));
}

} // namespace

PB_INT compare(const Fields &a, const Fields &b) noexcept
{
    if (PB_INT byLabel = orderPresent(a.label, b.label))
        return byLabel;
    return orderPresent(a.parameters, b.parameters);
}

PB_STRING *text(const Fields &f) noexcept
{
    if (pbDictLength(f.parameters) == 0) {
        pb::retain(f.label);
        return f.label;
    }
    return pbStringCreateFromFormatCstr("%s %o", -1, f.label, pbDictObj(f.parameters));
}

bool keyOk(PB_STRING *key) noexcept
{
    PB_ASSERT( key );
    PB_INT n = pbStringLength(key);
    return n > 0 && chars::all(pbStringBacking(key), n, chars::kTokenChar);
}

PB_STRING *lowered(PB_STRING *s) noexcept
{
    pb::retain(s);
    pbStringToLower(&s);
    return s;
}

PB_DICT *wireFormatTable(const char *const *spellings, size_t count) noexcept
{
    PB_DICT *table = pbDictCreate();
    for (size_t i = 0; i < count; ++i) {
        pb::Ref<PB_STRING> spelling = pb::adopt(pbStringCreateFromCstr(spellings[i], -1));
        pb::Ref<PB_STRING> key = pb::adopt(lowered(spelling.get()));
        pbDictSetStringKey(&table, key.get(), pbStringObj(spelling.get()));
    }
    return table;
}

PB_STRING *wireFormat(PB_DICT *table, PB_STRING *normalized) noexcept
{
    if (PB_STRING *registered = pbStringFrom(pbDictStringKey(table, normalized)))
        return registered;
    pb::retain(normalized);
    return normalized;
}

PB_STRING *parameter(const Fields &f, PB_STRING *key) noexcept
{
    return pbStringFrom(pbDictStringKey(f.parameters, key));
}

PB_STRING *keyAt(const Fields &f, PB_INT index) noexcept
{
    return pbStringFrom(pbDictKeyAt(f.parameters, index));
}

PB_STRING *valueAt(const Fields &f, PB_INT index) noexcept
{
    return pbStringFrom(pbDictValueAt(f.parameters, index));
}

} // namespace mime::parameterized
