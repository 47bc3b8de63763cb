/** @file
 * Dictionaries: objects under keys, one value per key.
 *
 * Entries are listed by index, 0 to length - 1, in ascending order of their keys
 * (pbObjCompare: code-point order for strings); keys and values at one index
 * belong together, and the order stays while the dictionary is unchanged.
 * Lookups, insertions and removals take expected O(log n) in any key order, and
 * so does reaching an index. A dictionary is a value (copy before change). */
#ifndef PB_DICT_H
#define PB_DICT_H

#include <pb/pb_api.h>
#include <pb/pb_obj.h>
#include <pb/pb_sort.h>
#include <pb/pb_types.h>

#include <wchar.h>

PB_BEGIN_DECLS

typedef struct PB_DICT PB_DICT;

/** The sort record of PB_DICT. */
PB_API const PB_SORT *pbDictSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
PB_API PB_DICT *pbDictRetain(PB_DICT *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
PB_API void pbDictRelease(PB_DICT *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
PB_API PB_OBJ *pbDictObj(PB_DICT *obj) PB_NOEXCEPT;
/** obj as a PB_DICT: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
PB_API PB_DICT *pbDictFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
PB_API PB_STRING *pbDictToString(PB_DICT *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
PB_API PB_INT pbDictCompare(PB_DICT *objA, PB_DICT *objB) PB_NOEXCEPT;
/** Whether pbDictCompare gives 0. */
PB_API PB_BOOL pbDictEquals(PB_DICT *objA, PB_DICT *objB) PB_NOEXCEPT;

/** Returns a new empty dictionary. */
PB_API PB_DICT *pbDictCreate(void) PB_NOEXCEPT;
/** Internal, for the runtime's modules: a new empty dictionary with room for
 * entries entries in its own allocation, for a dictionary whose size is known
 * when it is made. More entries move to storage of their own, as usual. */
PB_API PB_DICT *pb___DictCreateWithRoom(PB_INT entries) PB_NOEXCEPT;
/** The number of entries. */
PB_API PB_INT pbDictLength(PB_DICT *dict) PB_NOEXCEPT;

/** New references to the key and the value at index (0 <= index < length). */
PB_API PB_OBJ *pbDictKeyAt(PB_DICT *dict, PB_INT index) PB_NOEXCEPT;
/** A new reference to the value at index (0 <= index < length), which belongs to the key at index. */
PB_API PB_OBJ *pbDictValueAt(PB_DICT *dict, PB_INT index) PB_NOEXCEPT;

/** A new reference to the value under key, or null. */
PB_API PB_OBJ *pbDictStringKey(PB_DICT *dict, PB_STRING *key) PB_NOEXCEPT;
/** pbDictStringKey for key in UTF-8 (length -1: up to the NUL). */
PB_API PB_OBJ *pbDictStringKeyCstr(PB_DICT *dict, const char *key, PB_INT length) PB_NOEXCEPT;
/** pbDictStringKey for key in wide characters (length -1: up to the NUL). */
PB_API PB_OBJ *pbDictStringKeyWcstr(PB_DICT *dict, const wchar_t *key, PB_INT length) PB_NOEXCEPT;

/** Whether a value is stored under key. */
PB_API PB_BOOL pbDictHasStringKey(PB_DICT *dict, PB_STRING *key) PB_NOEXCEPT;
/** pbDictHasStringKey for key in UTF-8 (length -1: up to the NUL). */
PB_API PB_BOOL pbDictHasStringKeyCstr(PB_DICT *dict, const char *key, PB_INT length) PB_NOEXCEPT;
/** pbDictHasStringKey for key in wide characters (length -1: up to the NUL). */
PB_API PB_BOOL pbDictHasStringKeyWcstr(PB_DICT *dict, const wchar_t *key, PB_INT length) PB_NOEXCEPT;

/** Stores value (not null) under key, replacing an earlier value. The dictionary
 * takes its own references. */
PB_API void pbDictSetStringKey(PB_DICT **dict, PB_STRING *key, PB_OBJ *value) PB_NOEXCEPT;
/** pbDictSetStringKey for key in UTF-8 (length -1: up to the NUL). */
PB_API void pbDictSetStringKeyCstr(PB_DICT **dict, const char *key, PB_INT length, PB_OBJ *value) PB_NOEXCEPT;
/** pbDictSetStringKey for key in wide characters (length -1: up to the NUL). */
PB_API void pbDictSetStringKeyWcstr(PB_DICT **dict, const wchar_t *key, PB_INT length, PB_OBJ *value) PB_NOEXCEPT;

/** Removes the entry under key, if any. */
PB_API void pbDictDelStringKey(PB_DICT **dict, PB_STRING *key) PB_NOEXCEPT;
/** pbDictDelStringKey for key in UTF-8 (length -1: up to the NUL). */
PB_API void pbDictDelStringKeyCstr(PB_DICT **dict, const char *key, PB_INT length) PB_NOEXCEPT;
/** pbDictDelStringKey for key in wide characters (length -1: up to the NUL). */
PB_API void pbDictDelStringKeyWcstr(PB_DICT **dict, const wchar_t *key, PB_INT length) PB_NOEXCEPT;

/** Removes every entry. */
PB_API void pbDictClear(PB_DICT **dict) PB_NOEXCEPT;

PB_END_DECLS

#endif
