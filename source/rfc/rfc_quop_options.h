/** @file
 * Options of quoted-printable coding.
 *
 * One setting: the maximum line length of encoded text, CR LF not counted, from
 * 4 (the shortest line that holds an escape and a soft line break) to 76 (the
 * limit of RFC 2045, and the default).
 *
 * Options objects are values: compared setting by setting (two new objects are
 * equal), changed only through the address of the caller's reference (a shared
 * object is copied first), and kept in a pbStore as
 *   "maxLineLength"  integer, 4 to 76
 * Restore starts from the defaults and never fails: a missing entry, an entry of
 * the wrong kind or a length outside 4 to 76 leaves the default. */
#ifndef RFC_QUOP_OPTIONS_H
#define RFC_QUOP_OPTIONS_H

#include <pb/pb_sort.h>
#include <pb/pb_store.h>
#include <pb/pb_types.h>
#include <rfc/rfc_api.h>

PB_BEGIN_DECLS

typedef struct RFC_QUOP_OPTIONS RFC_QUOP_OPTIONS;

/** The sort record of RFC_QUOP_OPTIONS. */
RFC_API const PB_SORT *rfcQuopOptionsSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
RFC_API RFC_QUOP_OPTIONS *rfcQuopOptionsRetain(RFC_QUOP_OPTIONS *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
RFC_API void rfcQuopOptionsRelease(RFC_QUOP_OPTIONS *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
RFC_API PB_OBJ *rfcQuopOptionsObj(RFC_QUOP_OPTIONS *obj) PB_NOEXCEPT;
/** obj as a RFC_QUOP_OPTIONS: the same pointer, no reference added; null passes. Aborts when obj is of another
 * sort. */
RFC_API RFC_QUOP_OPTIONS *rfcQuopOptionsFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
RFC_API PB_STRING *rfcQuopOptionsToString(RFC_QUOP_OPTIONS *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
RFC_API PB_INT rfcQuopOptionsCompare(RFC_QUOP_OPTIONS *objA, RFC_QUOP_OPTIONS *objB) PB_NOEXCEPT;
/** Whether rfcQuopOptionsCompare gives 0. */
RFC_API PB_BOOL rfcQuopOptionsEquals(RFC_QUOP_OPTIONS *objA, RFC_QUOP_OPTIONS *objB) PB_NOEXCEPT;

#define RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_MIN ((PB_INT)4)
#define RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_MAX ((PB_INT)76)
#define RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_DEFAULT ((PB_INT)76)

/** Returns new options with the defaults. */
RFC_API RFC_QUOP_OPTIONS *rfcQuopOptionsCreate(void) PB_NOEXCEPT;
/** Returns new options with the settings of source. */
RFC_API RFC_QUOP_OPTIONS *rfcQuopOptionsCreateFrom(RFC_QUOP_OPTIONS *source) PB_NOEXCEPT;

/** The longest encoded line, its soft line break "=" included, CR LF not counted. */
RFC_API PB_INT rfcQuopOptionsMaxLineLength(RFC_QUOP_OPTIONS *options) PB_NOEXCEPT;
/** length is from RFC_QUOP_OPTIONS_MAX_LINE_LENGTH_MIN to ..._MAX. */
RFC_API void rfcQuopOptionsSetMaxLineLength(RFC_QUOP_OPTIONS **options, PB_INT length) PB_NOEXCEPT;

/** Returns a new store of the settings: all of them when full is nonzero, else
 * those that differ from the defaults. */
RFC_API PB_STORE *rfcQuopOptionsStore(RFC_QUOP_OPTIONS *options, PB_BOOL full) PB_NOEXCEPT;
/** Returns new options from a store written by rfcQuopOptionsStore; never null. */
RFC_API RFC_QUOP_OPTIONS *rfcQuopOptionsRestore(PB_STORE *store) PB_NOEXCEPT;

PB_END_DECLS

#endif
