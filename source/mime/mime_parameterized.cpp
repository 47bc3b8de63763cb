#include <mime/mime_char.hpp>
#include <mime/mime_parameterized.hpp>

namespace mime::parameterized {

using namespace chars;

bool keyOk(PB_STRING *key) noexcept
{
    PB_ASSERT( key );
    PB_INT n = pbStringLength(key);
    return n > 0 && all(pbStringBacking(key), n, kTokenChar);
}

PB_STRING *lowered(PB_STRING *s) noexcept
{
    pb::retain(s);
    pbStringToLower(&s);
    return s;
}

PB_STRING *wireFormat(PB_DICT *table, PB_STRING *normalized) noexcept
{
    if (PB_STRING *registered = pbStringFrom(pbDictStringKey(table, normalized)))
        return registered;
    pb::retain(normalized);
    return normalized;
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

namespace {

PB_INT orderPresent(void *a, void *b)
{
    if (!a || !b)
        return a ? 1 : b ? -1 : 0;
    return pbObjCompare(static_cast<PB_OBJ *>(a), static_cast<PB_OBJ *>(b));
}

} // namespace

PB_INT compare(PB_STRING *labelA, PB_DICT *parametersA, PB_STRING *labelB, PB_DICT *parametersB) noexcept
{
    if (PB_INT byLabel = orderPresent(labelA, labelB))
        return byLabel;
    return orderPresent(parametersA, parametersB);
}

PB_STRING *text(PB_STRING *label, PB_DICT *parameters) noexcept
{
    if (pbDictLength(parameters) == 0) {
        pb::retain(label);
        return label;
    }
    return pbStringCreateFromFormatCstr("%s %o", -1, label, pbDictObj(parameters));
}

} // namespace mime::parameterized
