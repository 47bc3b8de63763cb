/** @file
 * Reference-counted objects: the operations every object supports.
 *
 * Every object starts with the runtime's ten-word header (pb_sort.h) and has a
 * sort, its class descriptor. A function that returns an object returns a new
 * reference that the caller releases, unless its comment says otherwise.
 * Reference counts change atomically, so objects may be retained, released and
 * read from several threads; a changing operation takes the address of the
 * caller's reference and works on a private copy when the object is shared. */
#ifndef PB_OBJ_H
#define PB_OBJ_H

#include <pb/pb_api.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

typedef struct PB_OBJ PB_OBJ;
typedef struct PB_SORT PB_SORT;
typedef struct PB_MODULE PB_MODULE;
typedef struct PB_STRING PB_STRING;

/** Returns the object's sort record (no reference). obj must not be null. */
PB_API const PB_SORT *pbObjSort(PB_OBJ *obj) PB_NOEXCEPT;

/** Adds a reference and returns obj; null passes through. */
PB_API PB_OBJ *pbObjRetain(PB_OBJ *obj) PB_NOEXCEPT;

/** Drops a reference; the last one frees the object. Null is ignored. */
PB_API void pbObjRelease(PB_OBJ *obj) PB_NOEXCEPT;

/** Total order over all objects: objects of one sort are ordered by the sort's
 * compare function, or by identity when the sort has none (an object then equals
 * only itself); objects of different sorts are ordered by sort name, then by sort
 * identity. Returns negative, zero or positive. Neither may be null. */
PB_API PB_INT pbObjCompare(PB_OBJ *a, PB_OBJ *b) PB_NOEXCEPT;

/** True when pbObjCompare(a, b) is zero. */
PB_API PB_BOOL pbObjEquals(PB_OBJ *a, PB_OBJ *b) PB_NOEXCEPT;

/** Returns a new string, the object's text: the sort's to-string function, or,
 * for a sort without one, the sort's name, "@" and the object's address. For a
 * string the text is the string itself. obj must not be null. */
PB_API PB_STRING *pbObjToString(PB_OBJ *obj) PB_NOEXCEPT;

/** Creates an object of size bytes (header included, at least the header's size)
 * with reference count 1, the header filled in and every other byte zero.
 * Never returns null: running out of memory aborts. */
PB_API PB_OBJ *pb___ObjCreate(PB_INT size, const PB_SORT *sort) PB_NOEXCEPT;

/** The same, but for its last tail bytes (0 <= tail <= size minus the
 * header's size), which are left as they come: storage that the creator fills
 * before it reads it, such as a string's characters. */
PB_API PB_OBJ *pb___ObjCreateWithTail(PB_INT size, PB_INT tail, const PB_SORT *sort) PB_NOEXCEPT;

/** Runs the sort's free function, then releases the storage. Called when a
 * release took the count from 1 to 0; never on a static object. */
PB_API void pb___ObjFree(PB_OBJ *obj) PB_NOEXCEPT;

/** Number of heap objects created and not yet freed, over the whole process. */
PB_API PB_INT pb___ObjLiveCount(void) PB_NOEXCEPT;

PB_END_DECLS

#endif
