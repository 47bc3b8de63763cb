/** @file
 * Options of base-N coding (base64).
 *
 * One setting: the output line length, the number of characters on every line
 * of encoded text but the last, lines being ended by CR LF. 0 and -1 both mean
 * one unbroken line; -1 is the codec's default (MIME callers set 76).
 *
 * Options objects are values: compared setting by setting (two new objects are
 * equal), changed only through the address of the caller's reference (a shared
 * object is copied first), and kept in a pbStore as
 *   "outputLineLength"  integer, -1 or greater
 * Restore starts from the defaults and never fails: a missing entry, an entry of
 * the wrong kind or a length below -1 leaves the default. */
#ifndef RFC_BASE_OPTIONS_H
#define RFC_BASE_OPTIONS_H

#include <pb/pb_sort.h>
#include <pb/pb_store.h>
#include <pb/pb_types.h>
#include <rfc/rfc_api.h>

PB_BEGIN_DECLS

typedef struct RFC_BASE_OPTIONS RFC_BASE_OPTIONS;

/** The sort record of RFC_BASE_OPTIONS. */
RFC_API const PB_SORT *rfcBaseOptionsSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
RFC_API RFC_BASE_OPTIONS *rfcBaseOptionsRetain(RFC_BASE_OPTIONS *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
RFC_API void rfcBaseOptionsRelease(RFC_BASE_OPTIONS *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
RFC_API PB_OBJ *rfcBaseOptionsObj(RFC_BASE_OPTIONS *obj) PB_NOEXCEPT;
/** obj as a RFC_BASE_OPTIONS: the same pointer, no reference added; null passes. Aborts when obj is of another
 * sort. */
RFC_API RFC_BASE_OPTIONS *rfcBaseOptionsFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
RFC_API PB_STRING *rfcBaseOptionsToString(RFC_BASE_OPTIONS *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
RFC_API PB_INT rfcBaseOptionsCompare(RFC_BASE_OPTIONS *objA, RFC_BASE_OPTIONS *objB) PB_NOEXCEPT;
/** Whether rfcBaseOptionsCompare gives 0. */
RFC_API PB_BOOL rfcBaseOptionsEquals(RFC_BASE_OPTIONS *objA, RFC_BASE_OPTIONS *objB) PB_NOEXCEPT;

#define RFC_BASE_OPTIONS_OUTPUT_LINE_LENGTH_DEFAULT ((PB_INT)-1)

/** Returns new options with the defaults. */
RFC_API RFC_BASE_OPTIONS *rfcBaseOptionsCreate(void) PB_NOEXCEPT;
/** Returns new options with the settings of source. */
RFC_API RFC_BASE_OPTIONS *rfcBaseOptionsCreateFrom(RFC_BASE_OPTIONS *source) PB_NOEXCEPT;

/** The length of the encoded lines, each ended by CR LF; 0 and -1 (the default): one line. */
RFC_API PB_INT rfcBaseOptionsOutputLineLength(RFC_BASE_OPTIONS *options) PB_NOEXCEPT;
/** length is -1 or greater (0 and -1: one unbroken line). */
RFC_API void rfcBaseOptionsSetOutputLineLength(RFC_BASE_OPTIONS **options, PB_INT length) PB_NOEXCEPT;

/** Returns a new store of the settings: all of them when full is nonzero, else
 * those that differ from the defaults. */
RFC_API PB_STORE *rfcBaseOptionsStore(RFC_BASE_OPTIONS *options, PB_BOOL full) PB_NOEXCEPT;
/** Returns new options from a store written by rfcBaseOptionsStore; never null. */
RFC_API RFC_BASE_OPTIONS *rfcBaseOptionsRestore(PB_STORE *store) PB_NOEXCEPT;

PB_END_DECLS

#endif
