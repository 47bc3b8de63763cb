/** @file
 * Vectors: ordered sequences of objects (never null). A vector is a value
 * (copy before change). Vectors compare element by element, a prefix first. */
#ifndef PB_VECTOR_H
#define PB_VECTOR_H

#include <pb/pb_api.h>
#include <pb/pb_obj.h>
#include <pb/pb_sort.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

typedef struct PB_VECTOR PB_VECTOR;

PB_SORT_STDFUNCS_DECL(PB_API, pb, Vector, PB_VECTOR)

/** Returns a new empty vector. */
PB_API PB_VECTOR *pbVectorCreate(void) PB_NOEXCEPT;
PB_API PB_INT pbVectorLength(PB_VECTOR *vec) PB_NOEXCEPT;

/** A new reference to the element at index (0 <= index < length). */
PB_API PB_OBJ *pbVectorObjAt(PB_VECTOR *vec, PB_INT index) PB_NOEXCEPT;

/** Append an element (not null); the vector takes its own reference. */
PB_API void pbVectorAppendObj(PB_VECTOR **vec, PB_OBJ *obj) PB_NOEXCEPT;
PB_API void pbVectorAppendString(PB_VECTOR **vec, PB_STRING *s) PB_NOEXCEPT;

/** Replaces the element at index (0 <= index < length) by obj (not null). */
PB_API void pbVectorSetObjAt(PB_VECTOR **vec, PB_INT index, PB_OBJ *obj) PB_NOEXCEPT;

/** Removes the element at index; later elements move down by one. */
PB_API void pbVectorDelAt(PB_VECTOR **vec, PB_INT index) PB_NOEXCEPT;

/** True when every element has that sort (also for an empty vector). */
PB_API PB_BOOL pbVectorContainsOnly(PB_VECTOR *vec, const PB_SORT *sort) PB_NOEXCEPT;

PB_END_DECLS

#endif
