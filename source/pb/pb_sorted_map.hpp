// Internal: the ordered map behind dictionaries and stores.
//
// A treap (a binary search tree whose nodes also form a heap on random
// priorities) with subtree sizes: lookup, insertion and removal take expected
// O(log n) whatever the order of the keys, and so does reaching the entry at an
// index. Priorities come from the runtime's random source, so hostile keys
// cannot shape the tree. Nodes live in one array and refer to each other by
// index, so copying a map is one copy of that array.
#pragma once

#include <pb/pb_obj.h>
#include <pb/pb_types.h>

#include <cstdint>
#include <vector>

namespace pb {

struct MapNode {
    PB_OBJ *key;   // null while the node is on the free list
    PB_OBJ *value; // null for an integer entry of a store
    PB_INT number; // integer value of a store entry
    uint64_t priority;
    int32_t left, right;
    int32_t kind; // store: kind of value; dictionary: 0
    int32_t size; // nodes in the subtree rooted here
};

// A plain aggregate, so that it can live inside a runtime object.
struct Map {
    MapNode *nodes;
    int32_t used; // nodes handed out so far (live or free)
    int32_t capacity;
    int32_t root;     // -1: empty
    int32_t freeList; // -1: none; linked through left
    bool roomNodes;   // nodes is room inside the owner's allocation, not freed
};

void mapInit(Map &m) noexcept;
// An empty map whose first capacity nodes go into room (owned by the caller and
// living as long as the map); more move to storage of their own.
void mapInitWithRoom(Map &m, MapNode *room, int32_t capacity) noexcept;
void mapCopy(Map &to, const Map &from) noexcept; // retains every key and value
void mapDestroy(Map &m) noexcept;                // releases every key and value
PB_INT mapLength(const Map &m) noexcept;
int32_t mapFind(const Map &m, PB_OBJ *key) noexcept; // -1 when absent
int32_t mapAt(const Map &m, PB_INT index) noexcept;  // 0 <= index < length
// Returns the node for key, inserting an empty node (value null, number 0, kind 0)
// with a new reference to key when absent. The value fields are the caller's to set.
int32_t mapInsert(Map &m, PB_OBJ *key) noexcept;
void mapErase(Map &m, PB_OBJ *key) noexcept;
void mapClear(Map &m) noexcept;
// Calls f(node) for the nodes in key order.
template <class F> void mapForEach(const Map &m, F &&f);
// Orders two maps entry by entry (key, then entryOrder), a prefix first.
PB_INT mapCompare(const Map &a, const Map &b, PB_INT (*entryOrder)(const MapNode &, const MapNode &)) noexcept;

template <class F> void mapForEach(const Map &m, F &&f)
{
    // In-order walk with an explicit stack; its depth is O(log n) expected.
    std::vector<int32_t> stack;
    int32_t t = m.root;
    while (t >= 0 || !stack.empty()) {
        while (t >= 0) {
            stack.push_back(t);
            t = m.nodes[t].left;
        }
        t = stack.back();
        stack.pop_back();
        f(m.nodes[t]);
        t = m.nodes[t].right;
    }
}

} // namespace pb
