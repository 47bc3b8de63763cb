/** @file
 * Identifiers: 128 random bits from the operating system's random source, unique
 * in practice among all ever created. Text form: 32 lower-case hexadecimal digits
 * in the groups 8-4-4-4-12, as a version 4 UUID is written (no control characters). */
#ifndef PB_IDENTIFIER_H
#define PB_IDENTIFIER_H

#include <pb/pb_api.h>
#include <pb/pb_obj.h>
#include <pb/pb_sort.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

typedef struct PB_IDENTIFIER PB_IDENTIFIER;

/** The sort record of PB_IDENTIFIER. */
PB_API const PB_SORT *pbIdentifierSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
PB_API PB_IDENTIFIER *pbIdentifierRetain(PB_IDENTIFIER *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
PB_API void pbIdentifierRelease(PB_IDENTIFIER *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
PB_API PB_OBJ *pbIdentifierObj(PB_IDENTIFIER *obj) PB_NOEXCEPT;
/** obj as a PB_IDENTIFIER: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
PB_API PB_IDENTIFIER *pbIdentifierFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
PB_API PB_STRING *pbIdentifierToString(PB_IDENTIFIER *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
PB_API PB_INT pbIdentifierCompare(PB_IDENTIFIER *objA, PB_IDENTIFIER *objB) PB_NOEXCEPT;
/** Whether pbIdentifierCompare gives 0. */
PB_API PB_BOOL pbIdentifierEquals(PB_IDENTIFIER *objA, PB_IDENTIFIER *objB) PB_NOEXCEPT;

/** Returns a new identifier. */
PB_API PB_IDENTIFIER *pbIdentifierCreate(void) PB_NOEXCEPT;

PB_END_DECLS

#endif
