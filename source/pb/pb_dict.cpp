#include <pb/pb_dict.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_sort.hpp>
#include <pb/pb_sorted_map.hpp>
#include <pb/pb_string.h>
#include <pb/pb_text.hpp>

struct PB_DICT {
    PB_OBJ_HEADER header;
    pb::Map map;
};

namespace {

extern "C" {
static void pb___DictFreeFunc(PB_OBJ *obj) noexcept;
static PB_INT pb___DictCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept;
static PB_STRING *pb___DictToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

PB___SORT_DEFINE(pb, Dict, PB_DICT, nullptr, pb___DictFreeFunc, pb___DictCompareFunc, pb___DictToStringFunc)

namespace {

void pb___DictFreeFunc(PB_OBJ *obj) noexcept
{
    pb::mapDestroy(pbDictFrom(obj)->map);
}

PB_INT valueOrder(const pb::MapNode &a, const pb::MapNode &b)
{
    return pbObjCompare(a.value, b.value);
}

PB_INT pb___DictCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept
{
    return pb::mapCompare(pbDictFrom(a)->map, pbDictFrom(b)->map, valueOrder);
}

// "{key=value, key=value}", each by its text form.
PB_STRING *pb___DictToStringFunc(PB_OBJ *obj) noexcept
{
    PB_STRING *s = pbStringCreateFromCstr("{", -1);
    bool first = true;
    pb::mapForEach(pbDictFrom(obj)->map, [&](const pb::MapNode &n) {
        pbStringAppendFormatCstr(&s, "%lc%o=%o", -1, first ? "" : ", ", n.key, n.value);
        first = false;
    });
    pbStringAppendChar(&s, '}');
    return s;
}

PB_DICT *createFrom(PB_DICT *source)
{
    PB_DICT *d = pb::create<PB_DICT>(&pb___sort_PB_DICT);
    pb::mapCopy(d->map, source->map);
    return d;
}

PB_DICT *unshared(PB_DICT **dict)
{
    PB_ASSERT( dict );
    PB_ASSERT( *dict );
    pb::unshare(dict, createFrom);
    return *dict;
}

} // namespace

PB_DICT *pbDictCreate(void) noexcept
{
    PB_DICT *d = pb::create<PB_DICT>(&pb___sort_PB_DICT);
    pb::mapInit(d->map);
    return d;
}

PB_DICT *pb___DictCreateWithRoom(PB_INT entries) noexcept
{
    PB_ASSERT( entries >= 0 && entries <= INT32_MAX / 2 );
    size_t room = sizeof(pb::MapNode) * static_cast<size_t>(entries);
    auto *d =
        reinterpret_cast<PB_DICT *>(pb___ObjCreate(static_cast<PB_INT>(sizeof(PB_DICT) + room), &pb___sort_PB_DICT));
    pb::mapInitWithRoom(d->map, reinterpret_cast<pb::MapNode *>(d + 1), static_cast<int32_t>(entries));
    return d;
}

PB_INT pbDictLength(PB_DICT *dict) noexcept
{
    PB_ASSERT( dict );
    return pb::mapLength(dict->map);
}

PB_OBJ *pbDictKeyAt(PB_DICT *dict, PB_INT index) noexcept
{
    PB_ASSERT( dict );
    return pbObjRetain(dict->map.nodes[pb::mapAt(dict->map, index)].key);
}

PB_OBJ *pbDictValueAt(PB_DICT *dict, PB_INT index) noexcept
{
    PB_ASSERT( dict );
    return pbObjRetain(dict->map.nodes[pb::mapAt(dict->map, index)].value);
}

PB_OBJ *pbDictStringKey(PB_DICT *dict, PB_STRING *key) noexcept
{
    PB_ASSERT( dict );
    PB_ASSERT( key );
    int32_t n = pb::mapFind(dict->map, pbStringObj(key));
    return n < 0 ? nullptr : pbObjRetain(dict->map.nodes[n].value);
}

PB_BOOL pbDictHasStringKey(PB_DICT *dict, PB_STRING *key) noexcept
{
    PB_ASSERT( dict );
    PB_ASSERT( key );
    return pb::mapFind(dict->map, pbStringObj(key)) >= 0;
}

void pbDictSetStringKey(PB_DICT **dict, PB_STRING *key, PB_OBJ *value) noexcept
{
    PB_ASSERT( key );
    PB_ASSERT( value );
    // Held first, so that a dictionary set into itself is copied, never made a cycle.
    pb::Ref<PB_OBJ> keep = pb::retained(value);
    PB_DICT *d = unshared(dict);
    int32_t n = pb::mapInsert(d->map, pbStringObj(key));
    pb::setField(d->map.nodes[n].value, value);
}

void pbDictDelStringKey(PB_DICT **dict, PB_STRING *key) noexcept
{
    PB_ASSERT( key );
    PB_ASSERT( dict );
    PB_ASSERT( *dict );
    if (pb::mapFind((*dict)->map, pbStringObj(key)) < 0)
        return; // nothing to remove: a shared dictionary stays shared
    pb::mapErase(unshared(dict)->map, pbStringObj(key));
}

void pbDictClear(PB_DICT **dict) noexcept
{
    PB_ASSERT( dict );
    PB_ASSERT( *dict );
    if (pb::isShared(*dict)) {
        pbDictRelease(*dict); // no copy of entries about to go
        *dict = pbDictCreate();
        return;
    }
    pb::mapClear((*dict)->map);
}

PB_OBJ *pbDictStringKeyCstr(PB_DICT *dict, const char *key, PB_INT length) noexcept
{
    return pbDictStringKey(dict, pb::Text(key, length));
}

PB_OBJ *pbDictStringKeyWcstr(PB_DICT *dict, const wchar_t *key, PB_INT length) noexcept
{
    return pbDictStringKey(dict, pb::Text(key, length));
}

PB_BOOL pbDictHasStringKeyCstr(PB_DICT *dict, const char *key, PB_INT length) noexcept
{
    return pbDictHasStringKey(dict, pb::Text(key, length));
}

PB_BOOL pbDictHasStringKeyWcstr(PB_DICT *dict, const wchar_t *key, PB_INT length) noexcept
{
    return pbDictHasStringKey(dict, pb::Text(key, length));
}

void pbDictSetStringKeyCstr(PB_DICT **dict, const char *key, PB_INT length, PB_OBJ *value) noexcept
{
    pbDictSetStringKey(dict, pb::Text(key, length), value);
}

void pbDictSetStringKeyWcstr(PB_DICT **dict, const wchar_t *key, PB_INT length, PB_OBJ *value) noexcept
{
    pbDictSetStringKey(dict, pb::Text(key, length), value);
}

void pbDictDelStringKeyCstr(PB_DICT **dict, const char *key, PB_INT length) noexcept
{
    pbDictDelStringKey(dict, pb::Text(key, length));
}

void pbDictDelStringKeyWcstr(PB_DICT **dict, const wchar_t *key, PB_INT length) noexcept
{
    pbDictDelStringKey(dict, pb::Text(key, length));
}
