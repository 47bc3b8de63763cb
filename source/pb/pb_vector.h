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

/** The sort record of PB_VECTOR. */
PB_API const PB_SORT *pbVectorSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
PB_API PB_VECTOR *pbVectorRetain(PB_VECTOR *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
PB_API void pbVectorRelease(PB_VECTOR *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
PB_API PB_OBJ *pbVectorObj(PB_VECTOR *obj) PB_NOEXCEPT;
/** obj as a PB_VECTOR: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
PB_API PB_VECTOR *pbVectorFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
PB_API PB_STRING *pbVectorToString(PB_VECTOR *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
PB_API PB_INT pbVectorCompare(PB_VECTOR *objA, PB_VECTOR *objB) PB_NOEXCEPT;
/** Whether pbVectorCompare gives 0. */
PB_API PB_BOOL pbVectorEquals(PB_VECTOR *objA, PB_VECTOR *objB) PB_NOEXCEPT;

/** Returns a new empty vector. */
PB_API PB_VECTOR *pbVectorCreate(void) PB_NOEXCEPT;
/** The number of elements. */
PB_API PB_INT pbVectorLength(PB_VECTOR *vec) PB_NOEXCEPT;

/** A new reference to the element at index (0 <= index < length). */
PB_API PB_OBJ *pbVectorObjAt(PB_VECTOR *vec, PB_INT index) PB_NOEXCEPT;

/** Append an element (not null); the vector takes its own reference. */
PB_API void pbVectorAppendObj(PB_VECTOR **vec, PB_OBJ *obj) PB_NOEXCEPT;
/** Appends a reference to the string s at the end of *vec. */
PB_API void pbVectorAppendString(PB_VECTOR **vec, PB_STRING *s) PB_NOEXCEPT;

/** Replaces the element at index (0 <= index < length) by obj (not null). */
PB_API void pbVectorSetObjAt(PB_VECTOR **vec, PB_INT index, PB_OBJ *obj) PB_NOEXCEPT;

/** Removes the element at index; later elements move down by one. */
PB_API void pbVectorDelAt(PB_VECTOR **vec, PB_INT index) PB_NOEXCEPT;

/** True when every element has that sort (also for an empty vector). */
PB_API PB_BOOL pbVectorContainsOnly(PB_VECTOR *vec, const PB_SORT *sort) PB_NOEXCEPT;

PB_END_DECLS

#endif
