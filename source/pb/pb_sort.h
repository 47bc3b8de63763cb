/** @file
 * Layout of the runtime's static records: the object header, sort records and
 * module objects. These layouts are read by the runtime and by the product's
 * module loader, so every word is part of the interface. */
#ifndef PB_SORT_H
#define PB_SORT_H

#include <pb/pb_api.h>
#include <pb/pb_obj.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

/** The ten words that start every object. */
typedef struct PB_OBJ_HEADER {
    int64_t kind;        /* word 1: PB_OBJ_KIND_... */
    const PB_SORT *sort; /* word 2: sort of a heap object; 0 in static records */
    int64_t size;        /* word 3: allocation size in bytes; -1 for static objects */
    int64_t refCount;    /* word 4: reference count; changed atomically only */
    int64_t reserved[6]; /* words 5-10: 0 */
} PB_OBJ_HEADER;

#define PB_OBJ_KIND_HEAP 0     /* created by pb___ObjCreate, freed at count 0 */
#define PB_OBJ_KIND_SORT 1     /* a static sort record */
#define PB_OBJ_KIND_MODULE 2   /* a static module object */
#define PB_OBJ_KIND_CONSTANT 3 /* an object of a heap sort kept for the life of the process */

/** Header of a static record: never freed; retain and release leave its count at 1. */
#define PB_OBJ_HEADER_STATIC(kind) \
    { \
        (kind), 0, -1, 1, \
        { \
            0, 0, 0, 0, 0, 0 \
        } \
    }

typedef void (*PB_SORT_FREE_FUNC)(PB_OBJ *obj);
typedef PB_INT (*PB_SORT_COMPARE_FUNC)(PB_OBJ *a, PB_OBJ *b);
typedef PB_STRING *(*PB_SORT_TO_STRING_FUNC)(PB_OBJ *obj);

/** Sort record: twenty words. */
struct PB_SORT {
    PB_OBJ_HEADER header;                /* PB_OBJ_HEADER_STATIC(PB_OBJ_KIND_SORT) */
    const PB_MODULE *module;             /* owning module; null for the runtime's own sorts */
    const char *name;                    /* NUL-terminated sort name */
    PB_SORT_FREE_FUNC freeFunc;          /* releases the object's fields, or null */
    PB_SORT_COMPARE_FUNC compareFunc;    /* total order on two objects of this sort, or null */
    PB_SORT_TO_STRING_FUNC toStringFunc; /* new text of an object, or null */
    const void *reserved[5];             /* null */
};

/** Returns the sort's name (static text). */
PB_API const char *pbSortName(const PB_SORT *sort) PB_NOEXCEPT;

PB_END_DECLS

#endif
