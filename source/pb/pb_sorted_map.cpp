#include <pb/pb_abort.h>
#include <pb/pb_mem.h>
#include <pb/pb_obj.hpp>
#include <pb/pb_random.hpp>
#include <pb/pb_sorted_map.hpp>
#include <pb/pb_string.hpp>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace pb {

namespace {

// Keys are nearly always strings: compare those without the generic dispatch.
PB_INT keyOrder(PB_OBJ *a, PB_OBJ *b)
{
    if (PB_LIKELY(string::is(a) && string::is(b)))
        return string::order(reinterpret_cast<PB_STRING *>(a), reinterpret_cast<PB_STRING *>(b));
    return pbObjCompare(a, b);
}

int32_t sizeOf(const Map &m, int32_t t)
{
    return t < 0 ? 0 : m.nodes[t].size;
}

void update(Map &m, int32_t t)
{
    m.nodes[t].size = 1 + sizeOf(m, m.nodes[t].left) + sizeOf(m, m.nodes[t].right);
}

// Splits t into the keys below key (l) and the others (r).
void split(Map &m, int32_t t, PB_OBJ *key, int32_t &l, int32_t &r)
{
    if (t < 0) {
        l = r = -1;
        return;
    }
    if (keyOrder(m.nodes[t].key, key) < 0) {
        split(m, m.nodes[t].right, key, m.nodes[t].right, r);
        l = t;
    } else {
        split(m, m.nodes[t].left, key, l, m.nodes[t].left);
        r = t;
    }
    update(m, t);
}

int32_t merge(Map &m, int32_t a, int32_t b)
{
    if (a < 0)
        return b;
    if (b < 0)
        return a;
    if (m.nodes[a].priority > m.nodes[b].priority) {
        m.nodes[a].right = merge(m, m.nodes[a].right, b);
        update(m, a);
        return a;
    }
    m.nodes[b].left = merge(m, a, m.nodes[b].left);
    update(m, b);
    return b;
}

int32_t insertNode(Map &m, int32_t t, int32_t n)
{
    if (t < 0)
        return n;
    if (m.nodes[n].priority > m.nodes[t].priority) {
        split(m, t, m.nodes[n].key, m.nodes[n].left, m.nodes[n].right);
        update(m, n);
        return n;
    }
    if (keyOrder(m.nodes[n].key, m.nodes[t].key) < 0)
        m.nodes[t].left = insertNode(m, m.nodes[t].left, n);
    else
        m.nodes[t].right = insertNode(m, m.nodes[t].right, n);
    update(m, t);
    return t;
}

int32_t eraseNode(Map &m, int32_t t, PB_OBJ *key, int32_t &erased)
{
    if (t < 0)
        return t;
    PB_INT order = keyOrder(key, m.nodes[t].key);
    if (order == 0) {
        erased = t;
        return merge(m, m.nodes[t].left, m.nodes[t].right);
    }
    if (order < 0)
        m.nodes[t].left = eraseNode(m, m.nodes[t].left, key, erased);
    else
        m.nodes[t].right = eraseNode(m, m.nodes[t].right, key, erased);
    update(m, t);
    return t;
}

PB_INT nodeBytes(int32_t count)
{
    return static_cast<PB_INT>(sizeof(MapNode)) * count;
}

int32_t allocateNode(Map &m)
{
    if (m.freeList >= 0) {
        int32_t n = m.freeList;
        m.freeList = m.nodes[n].left;
        return n;
    }
    if (m.used == m.capacity) {
        PB_ASSERT_MSG("dictionary too large", m.capacity < INT32_MAX / 2);
        int32_t capacity = std::max(8, m.capacity * 2);
        PB_INT bytes = static_cast<PB_INT>(sizeof(MapNode)) * capacity;
        auto *nodes = static_cast<MapNode *>(m.roomNodes ? pb___MemAlloc(bytes)
                                                         : pb___MemResize(m.nodes, nodeBytes(m.capacity), bytes));
        if (m.roomNodes)
            std::memcpy(nodes, m.nodes, sizeof(MapNode) * static_cast<size_t>(m.used));
        m.nodes = nodes;
        m.capacity = capacity;
        m.roomNodes = false;
    }
    return m.used++;
}

void releaseEntry(MapNode &n)
{
    pbObjRelease(n.key);
    pbObjRelease(n.value);
    n.key = nullptr;
    n.value = nullptr;
}

} // namespace

void mapInit(Map &m) noexcept
{
    m = Map{nullptr, 0, 0, -1, -1, false};
}

void mapInitWithRoom(Map &m, MapNode *room, int32_t capacity) noexcept
{
    m = capacity > 0 ? Map{room, 0, capacity, -1, -1, true} : Map{nullptr, 0, 0, -1, -1, false};
}

void mapCopy(Map &to, const Map &from) noexcept
{
    mapInit(to);
    if (from.used == 0)
        return;
    to.nodes = static_cast<MapNode *>(pb___MemAlloc(nodeBytes(from.used)));
    std::memcpy(to.nodes, from.nodes, sizeof(MapNode) * static_cast<size_t>(from.used));
    to.used = to.capacity = from.used;
    to.root = from.root;
    to.freeList = from.freeList;
    for (int32_t i = 0; i < to.used; ++i) {
        pbObjRetain(to.nodes[i].key);
        pbObjRetain(to.nodes[i].value);
    }
}

void mapDestroy(Map &m) noexcept
{
    for (int32_t i = 0; i < m.used; ++i)
        releaseEntry(m.nodes[i]);
    if (!m.roomNodes)
        pb___MemRelease(m.nodes, nodeBytes(m.capacity));
    m.nodes = poison<MapNode>();
}

PB_INT mapLength(const Map &m) noexcept
{
    return sizeOf(m, m.root);
}

int32_t mapFind(const Map &m, PB_OBJ *key) noexcept
{
    int32_t t = m.root;
    while (t >= 0) {
        PB_INT order = keyOrder(key, m.nodes[t].key);
        if (order == 0)
            return t;
        t = order < 0 ? m.nodes[t].left : m.nodes[t].right;
    }
    return -1;
}

int32_t mapAt(const Map &m, PB_INT index) noexcept
{
    PB_ASSERT( index >= 0 && index < mapLength( m ) );
    int32_t t = m.root;
    for (;;) {
        int32_t leftSize = sizeOf(m, m.nodes[t].left);
        if (index < leftSize) {
            t = m.nodes[t].left;
        } else if (index == leftSize) {
            return t;
        } else {
            index -= leftSize + 1;
            t = m.nodes[t].right;
        }
    }
}

int32_t mapInsert(Map &m, PB_OBJ *key) noexcept
{
    int32_t found = mapFind(m, key);
    if (found >= 0)
        return found;
    int32_t n = allocateNode(m);
    m.nodes[n] = MapNode{pbObjRetain(key), nullptr, 0, random::priority(), -1, -1, 0, 1};
    m.root = insertNode(m, m.root, n);
    return n;
}

void mapErase(Map &m, PB_OBJ *key) noexcept
{
    int32_t erased = -1;
    m.root = eraseNode(m, m.root, key, erased);
    if (erased < 0)
        return;
    releaseEntry(m.nodes[erased]);
    m.nodes[erased].left = m.freeList;
    m.freeList = erased;
}

void mapClear(Map &m) noexcept
{
    mapDestroy(m);
    mapInit(m);
}

PB_INT mapCompare(const Map &a, const Map &b, PB_INT (*entryOrder)(const MapNode &, const MapNode &)) noexcept
{
    std::vector<const MapNode *> x, y;
    x.reserve(static_cast<size_t>(mapLength(a)));
    y.reserve(static_cast<size_t>(mapLength(b)));
    mapForEach(a, [&](const MapNode &n) { x.push_back(&n); });
    mapForEach(b, [&](const MapNode &n) { y.push_back(&n); });
    size_t common = std::min(x.size(), y.size());
    for (size_t i = 0; i < common; ++i) {
        PB_INT order = keyOrder(x[i]->key, y[i]->key);
        if (order == 0)
            order = entryOrder(*x[i], *y[i]);
        if (order)
            return order;
    }
    return x.size() < y.size() ? -1 : x.size() > y.size() ? 1 : 0;
}

} // namespace pb
