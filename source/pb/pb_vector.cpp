#include <pb/pb_mem.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_sort.hpp>
#include <pb/pb_string.h>
#include <pb/pb_vector.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

struct PB_VECTOR {
    PB_OBJ_HEADER header;
    PB_OBJ **items;
    PB_INT length;
    PB_INT capacity;
};

namespace {

extern "C" {
static void pb___VectorFreeFunc(PB_OBJ *obj) noexcept;
static PB_INT pb___VectorCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept;
static PB_STRING *pb___VectorToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

PB___SORT_DEFINE(pb, Vector, PB_VECTOR, nullptr, pb___VectorFreeFunc, pb___VectorCompareFunc, pb___VectorToStringFunc)

namespace {

void pb___VectorFreeFunc(PB_OBJ *obj) noexcept
{
    PB_VECTOR *v = pbVectorFrom(obj);
    for (PB_INT i = 0; i < v->length; ++i)
        pb::release(v->items[i]);
    pb___MemRelease(v->items, v->capacity * static_cast<PB_INT>(sizeof(PB_OBJ *)));
    v->items = pb::poison<PB_OBJ *>();
}

PB_INT pb___VectorCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept
{
    PB_VECTOR *x = pbVectorFrom(a);
    PB_VECTOR *y = pbVectorFrom(b);
    PB_INT n = std::min(x->length, y->length);
    for (PB_INT i = 0; i < n; ++i)
        if (PB_INT order = pbObjCompare(x->items[i], y->items[i]))
            return order;
    return x->length < y->length ? -1 : x->length > y->length ? 1 : 0;
}

// "[a, b, c]", each element by its text form.
PB_STRING *pb___VectorToStringFunc(PB_OBJ *obj) noexcept
{
    PB_VECTOR *v = pbVectorFrom(obj);
    PB_STRING *s = pbStringCreateFromCstr("[", -1);
    for (PB_INT i = 0; i < v->length; ++i)
        pbStringAppendFormatCstr(&s, "%lc%o", -1, i ? ", " : "", v->items[i]);
    pbStringAppendChar(&s, ']');
    return s;
}

void grow(PB_VECTOR *v, PB_INT need)
{
    if (need <= v->capacity)
        return;
    PB_ASSERT( need <= PB_INT_MAX / 16 );
    PB_INT capacity = std::max({need, v->capacity * 2, PB_INT{4}});
    auto *items = static_cast<PB_OBJ **>(pb___MemResize(v->items, v->capacity * static_cast<PB_INT>(sizeof(PB_OBJ *)),
                                                        capacity * static_cast<PB_INT>(sizeof(PB_OBJ *))));
    v->items = items;
    v->capacity = capacity;
}

PB_VECTOR *createFrom(PB_VECTOR *source)
{
    PB_VECTOR *v = pbVectorCreate();
    grow(v, source->length);
    for (PB_INT i = 0; i < source->length; ++i)
        v->items[i] = pbObjRetain(source->items[i]);
    v->length = source->length;
    return v;
}

PB_VECTOR *unshared(PB_VECTOR **vec)
{
    PB_ASSERT( vec );
    PB_ASSERT( *vec );
    pb::unshare(vec, createFrom);
    return *vec;
}

} // namespace

PB_VECTOR *pbVectorCreate(void) noexcept
{
    return pb::create<PB_VECTOR>(&pb___sort_PB_VECTOR);
}

PB_INT pbVectorLength(PB_VECTOR *vec) noexcept
{
    PB_ASSERT( vec );
    return vec->length;
}

PB_OBJ *pbVectorObjAt(PB_VECTOR *vec, PB_INT index) noexcept
{
    PB_ASSERT( vec );
    PB_ASSERT( index >= 0 && index < vec->length );
    return pbObjRetain(vec->items[index]);
}

void pbVectorAppendObj(PB_VECTOR **vec, PB_OBJ *obj) noexcept
{
    PB_ASSERT( obj );
    // Held first, so that a vector appended to itself is copied, never made a cycle.
    pb::Ref<PB_OBJ> keep = pb::retained(obj);
    PB_VECTOR *v = unshared(vec);
    grow(v, v->length + 1);
    v->items[v->length++] = pbObjRetain(obj);
}

void pbVectorAppendString(PB_VECTOR **vec, PB_STRING *s) noexcept
{
    pbVectorAppendObj(vec, pbStringObj(s));
}

void pbVectorSetObjAt(PB_VECTOR **vec, PB_INT index, PB_OBJ *obj) noexcept
{
    PB_ASSERT( obj );
    pb::Ref<PB_OBJ> keep = pb::retained(obj);
    PB_VECTOR *v = unshared(vec);
    PB_ASSERT( index >= 0 && index < v->length );
    pb::setField(v->items[index], obj);
}

void pbVectorDelAt(PB_VECTOR **vec, PB_INT index) noexcept
{
    PB_VECTOR *v = unshared(vec);
    PB_ASSERT( index >= 0 && index < v->length );
    PB_OBJ *gone = v->items[index];
    std::memmove(v->items + index, v->items + index + 1, sizeof(PB_OBJ *) * static_cast<size_t>(v->length - index - 1));
    --v->length;
    pb::release(gone);
}

PB_BOOL pbVectorContainsOnly(PB_VECTOR *vec, const PB_SORT *sort) noexcept
{
    PB_ASSERT( vec );
    PB_ASSERT( sort );
    return std::all_of(vec->items, vec->items + vec->length, [&](PB_OBJ *o) { return pbObjSort(o) == sort; });
}
