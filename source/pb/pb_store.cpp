#include <pb/pb_ref.hpp>
#include <pb/pb_sort.hpp>
#include <pb/pb_sorted_map.hpp>
#include <pb/pb_store.h>
#include <pb/pb_string.h>
#include <pb/pb_text.hpp>

struct PB_STORE {
    PB_OBJ_HEADER header;
    pb::Map map;
};

namespace {

enum Kind : int32_t { kString = 0, kInt = 1, kStore = 2 };

extern "C" {
static void pb___StoreFreeFunc(PB_OBJ *obj) noexcept;
static PB_INT pb___StoreCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept;
static PB_STRING *pb___StoreToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

PB___SORT_DEFINE(pb, Store, PB_STORE, nullptr, pb___StoreFreeFunc, pb___StoreCompareFunc, pb___StoreToStringFunc)

namespace {

void pb___StoreFreeFunc(PB_OBJ *obj) noexcept
{
    pb::mapDestroy(pbStoreFrom(obj)->map);
}

// Kind first (string, integer, store), then the value.
PB_INT entryOrder(const pb::MapNode &a, const pb::MapNode &b)
{
    if (a.kind != b.kind)
        return a.kind < b.kind ? -1 : 1;
    if (a.kind == kInt)
        return a.number < b.number ? -1 : a.number > b.number ? 1 : 0;
    return pbObjCompare(a.value, b.value);
}

PB_INT pb___StoreCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept
{
    return pb::mapCompare(pbStoreFrom(a)->map, pbStoreFrom(b)->map, entryOrder);
}

// {key="text", key=5, key={...}}
PB_STRING *pb___StoreToStringFunc(PB_OBJ *obj) noexcept
{
    PB_STRING *s = pbStringCreateFromCstr("{", -1);
    const char *separator = "";
    pb::mapForEach(pbStoreFrom(obj)->map, [&](const pb::MapNode &n) {
        if (n.kind == kInt)
            pbStringAppendFormatCstr(&s, "%lc%o=%i", -1, separator, n.key, n.number);
        else if (n.kind == kString)
            pbStringAppendFormatCstr(&s, "%lc%o=\"%o\"", -1, separator, n.key, n.value);
        else
            pbStringAppendFormatCstr(&s, "%lc%o=%o", -1, separator, n.key, n.value);
        separator = ", ";
    });
    pbStringAppendChar(&s, '}');
    return s;
}

PB_STORE *createFrom(PB_STORE *source)
{
    PB_STORE *s = pb::create<PB_STORE>(&pb___sort_PB_STORE);
    pb::mapCopy(s->map, source->map);
    return s;
}

// The entry for key in the unshared *store, created when absent.
pb::MapNode &entry(PB_STORE **store, PB_STRING *key)
{
    PB_ASSERT( store );
    PB_ASSERT( *store );
    PB_ASSERT( key );
    pb::unshare(store, createFrom);
    pb::Map &m = (*store)->map;
    int32_t n = pb::mapInsert(m, pbStringObj(key)); // may move the nodes
    return m.nodes[n];
}

const pb::MapNode *find(PB_STORE *store, PB_STRING *key, Kind kind)
{
    PB_ASSERT( store );
    PB_ASSERT( key );
    int32_t n = pb::mapFind(store->map, pbStringObj(key));
    if (n < 0 || store->map.nodes[n].kind != kind)
        return nullptr;
    return &store->map.nodes[n];
}

} // namespace

PB_STORE *pbStoreCreate(void) noexcept
{
    PB_STORE *s = pb::create<PB_STORE>(&pb___sort_PB_STORE);
    pb::mapInit(s->map);
    return s;
}

PB_INT pbStoreLength(PB_STORE *store) noexcept
{
    PB_ASSERT( store );
    return pb::mapLength(store->map);
}

PB_STRING *pbStoreKeyAt(PB_STORE *store, PB_INT index) noexcept
{
    PB_ASSERT( store );
    return pbStringRetain(pbStringFrom(store->map.nodes[pb::mapAt(store->map, index)].key));
}

void pbStoreSetValue(PB_STORE **store, PB_STRING *key, PB_STRING *value) noexcept
{
    PB_ASSERT( value );
    pb::MapNode &n = entry(store, key);
    pb::setField(n.value, pbStringObj(value));
    n.kind = kString;
}

void pbStoreSetValueInt(PB_STORE **store, PB_STRING *key, PB_INT value) noexcept
{
    pb::MapNode &n = entry(store, key);
    pb::setField(n.value, static_cast<PB_OBJ *>(nullptr));
    n.number = value;
    n.kind = kInt;
}

void pbStoreSetStore(PB_STORE **store, PB_STRING *key, PB_STORE *sub) noexcept
{
    PB_ASSERT( sub );
    // Held first, so that a store set into itself is copied, never made a cycle.
    pb::Ref<PB_STORE> keep = pb::retained(sub);
    pb::MapNode &n = entry(store, key);
    pb::setField(n.value, pbStoreObj(sub));
    n.kind = kStore;
}

PB_STRING *pbStoreValue(PB_STORE *store, PB_STRING *key) noexcept
{
    const pb::MapNode *n = find(store, key, kString);
    return n ? pbStringRetain(pbStringFrom(n->value)) : nullptr;
}

PB_BOOL pbStoreValueInt(PB_STORE *store, PB_INT *value, PB_STRING *key) noexcept
{
    PB_ASSERT( value );
    const pb::MapNode *n = find(store, key, kInt);
    if (n)
        *value = n->number;
    return n != nullptr;
}

PB_STORE *pbStoreStore(PB_STORE *store, PB_STRING *key) noexcept
{
    const pb::MapNode *n = find(store, key, kStore);
    return n ? pbStoreRetain(pbStoreFrom(n->value)) : nullptr;
}

void pbStoreSetValueCstr(PB_STORE **store, const char *key, PB_INT length, PB_STRING *value) noexcept
{
    pbStoreSetValue(store, pb::Text(key, length), value);
}

void pbStoreSetValueWcstr(PB_STORE **store, const wchar_t *key, PB_INT length, PB_STRING *value) noexcept
{
    pbStoreSetValue(store, pb::Text(key, length), value);
}

void pbStoreSetValueIntCstr(PB_STORE **store, const char *key, PB_INT length, PB_INT value) noexcept
{
    pbStoreSetValueInt(store, pb::Text(key, length), value);
}

void pbStoreSetValueIntWcstr(PB_STORE **store, const wchar_t *key, PB_INT length, PB_INT value) noexcept
{
    pbStoreSetValueInt(store, pb::Text(key, length), value);
}

void pbStoreSetStoreCstr(PB_STORE **store, const char *key, PB_INT length, PB_STORE *sub) noexcept
{
    pbStoreSetStore(store, pb::Text(key, length), sub);
}

void pbStoreSetStoreWcstr(PB_STORE **store, const wchar_t *key, PB_INT length, PB_STORE *sub) noexcept
{
    pbStoreSetStore(store, pb::Text(key, length), sub);
}

PB_STRING *pbStoreValueCstr(PB_STORE *store, const char *key, PB_INT length) noexcept
{
    return pbStoreValue(store, pb::Text(key, length));
}

PB_STRING *pbStoreValueWcstr(PB_STORE *store, const wchar_t *key, PB_INT length) noexcept
{
    return pbStoreValue(store, pb::Text(key, length));
}

PB_BOOL pbStoreValueIntCstr(PB_STORE *store, PB_INT *value, const char *key, PB_INT length) noexcept
{
    return pbStoreValueInt(store, value, pb::Text(key, length));
}

PB_BOOL pbStoreValueIntWcstr(PB_STORE *store, PB_INT *value, const wchar_t *key, PB_INT length) noexcept
{
    return pbStoreValueInt(store, value, pb::Text(key, length));
}

PB_STORE *pbStoreStoreCstr(PB_STORE *store, const char *key, PB_INT length) noexcept
{
    return pbStoreStore(store, pb::Text(key, length));
}

PB_STORE *pbStoreStoreWcstr(PB_STORE *store, const wchar_t *key, PB_INT length) noexcept
{
    return pbStoreStore(store, pb::Text(key, length));
}
