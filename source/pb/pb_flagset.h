/** @file
 * Flag sets: a table of flag names, each with a 64-bit value, that reads a text
 * of names as a bit set and writes a bit set as a text of names.
 *
 * Text form: names separated by a comma and a space ("A, B"), in ascending order
 * of value; a name is written when all its bits are set, and bits no name covers
 * are not written. Reading accepts names in any letter case separated by any run
 * of commas, '|', spaces, tabs, CR and LF; names the set does not know are
 * ignored. So parsing a generated text gives back the bits the names cover.
 * A flag set is a value (copy before change). */
#ifndef PB_FLAGSET_H
#define PB_FLAGSET_H

#include <pb/pb_api.h>
#include <pb/pb_obj.h>
#include <pb/pb_sort.h>
#include <pb/pb_types.h>

#include <wchar.h>

PB_BEGIN_DECLS

typedef struct PB_FLAGSET PB_FLAGSET;

/** The sort record of PB_FLAGSET. */
PB_API const PB_SORT *pbFlagsetSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
PB_API PB_FLAGSET *pbFlagsetRetain(PB_FLAGSET *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
PB_API void pbFlagsetRelease(PB_FLAGSET *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
PB_API PB_OBJ *pbFlagsetObj(PB_FLAGSET *obj) PB_NOEXCEPT;
/** obj as a PB_FLAGSET: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
PB_API PB_FLAGSET *pbFlagsetFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
PB_API PB_STRING *pbFlagsetToString(PB_FLAGSET *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
PB_API PB_INT pbFlagsetCompare(PB_FLAGSET *objA, PB_FLAGSET *objB) PB_NOEXCEPT;
/** Whether pbFlagsetCompare gives 0. */
PB_API PB_BOOL pbFlagsetEquals(PB_FLAGSET *objA, PB_FLAGSET *objB) PB_NOEXCEPT;

/** Returns a new empty flag set. */
PB_API PB_FLAGSET *pbFlagsetCreate(void) PB_NOEXCEPT;

/** Adds a name with its value, replacing the value of a name already there (names
 * compared without regard to case). A name is non-empty and holds no separator. */
PB_API void pbFlagsetSetFlag(PB_FLAGSET **set, PB_STRING *name, uint64_t value) PB_NOEXCEPT;
/** pbFlagsetSetFlag for name in UTF-8 (length -1: up to the NUL). */
PB_API void pbFlagsetSetFlagCstr(PB_FLAGSET **set, const char *name, PB_INT length, uint64_t value) PB_NOEXCEPT;
/** pbFlagsetSetFlag for name in wide characters (length -1: up to the NUL). */
PB_API void pbFlagsetSetFlagWcstr(PB_FLAGSET **set, const wchar_t *name, PB_INT length, uint64_t value) PB_NOEXCEPT;

/** True when the set has the name (without regard to case). */
PB_API PB_BOOL pbFlagsetHasFlag(PB_FLAGSET *set, PB_STRING *name) PB_NOEXCEPT;
/** pbFlagsetHasFlag for name in UTF-8 (length -1: up to the NUL). */
PB_API PB_BOOL pbFlagsetHasFlagCstr(PB_FLAGSET *set, const char *name, PB_INT length) PB_NOEXCEPT;
/** pbFlagsetHasFlag for name in wide characters (length -1: up to the NUL). */
PB_API PB_BOOL pbFlagsetHasFlagWcstr(PB_FLAGSET *set, const wchar_t *name, PB_INT length) PB_NOEXCEPT;

/** The bits of the names in the text (see above). */
PB_API uint64_t pbFlagsetParse(PB_FLAGSET *set, PB_STRING *text) PB_NOEXCEPT;
/** pbFlagsetParse for text in UTF-8 (length -1: up to the NUL). */
PB_API uint64_t pbFlagsetParseCstr(PB_FLAGSET *set, const char *text, PB_INT length) PB_NOEXCEPT;
/** pbFlagsetParse for text in wide characters (length -1: up to the NUL). */
PB_API uint64_t pbFlagsetParseWcstr(PB_FLAGSET *set, const wchar_t *text, PB_INT length) PB_NOEXCEPT;

/** A new string naming the set bits (see above). */
PB_API PB_STRING *pbFlagsetGenerate(PB_FLAGSET *set, uint64_t bits) PB_NOEXCEPT;

PB_END_DECLS

#endif
