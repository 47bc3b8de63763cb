/** @file
 * Stores: hierarchical key/value settings. Each entry has a text key and holds
 * a string, a signed 64-bit integer or a sub-store; setting a key replaces its
 * entry whatever it held. Entries are listed in ascending key order. A store is a
 * value (copy before change); stores compare entry by entry. */
#ifndef PB_STORE_H
#define PB_STORE_H

#include <pb/pb_api.h>
#include <pb/pb_obj.h>
#include <pb/pb_sort.h>
#include <pb/pb_types.h>

#include <wchar.h>

PB_BEGIN_DECLS

typedef struct PB_STORE PB_STORE;

/** The sort record of PB_STORE. */
PB_API const PB_SORT *pbStoreSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
PB_API PB_STORE *pbStoreRetain(PB_STORE *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
PB_API void pbStoreRelease(PB_STORE *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
PB_API PB_OBJ *pbStoreObj(PB_STORE *obj) PB_NOEXCEPT;
/** obj as a PB_STORE: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
PB_API PB_STORE *pbStoreFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
PB_API PB_STRING *pbStoreToString(PB_STORE *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
PB_API PB_INT pbStoreCompare(PB_STORE *objA, PB_STORE *objB) PB_NOEXCEPT;
/** Whether pbStoreCompare gives 0. */
PB_API PB_BOOL pbStoreEquals(PB_STORE *objA, PB_STORE *objB) PB_NOEXCEPT;

/** Returns a new empty store. */
PB_API PB_STORE *pbStoreCreate(void) PB_NOEXCEPT;

/** Number of entries, and a new reference to the key at index (in key order). */
PB_API PB_INT pbStoreLength(PB_STORE *store) PB_NOEXCEPT;
/** A new reference to the key at index (0 <= index < length, in key order). */
PB_API PB_STRING *pbStoreKeyAt(PB_STORE *store, PB_INT index) PB_NOEXCEPT;

/** Set an entry: a string (not null), an integer or a sub-store (not null). */
PB_API void pbStoreSetValue(PB_STORE **store, PB_STRING *key, PB_STRING *value) PB_NOEXCEPT;
/** pbStoreSetValue for key in UTF-8 (length -1: up to the NUL). */
PB_API void pbStoreSetValueCstr(PB_STORE **store, const char *key, PB_INT length, PB_STRING *value) PB_NOEXCEPT;
/** pbStoreSetValue for key in wide characters (length -1: up to the NUL). */
PB_API void pbStoreSetValueWcstr(PB_STORE **store, const wchar_t *key, PB_INT length, PB_STRING *value) PB_NOEXCEPT;
/** Stores an integer value under key, replacing any entry there (a private copy when *store is shared). */
PB_API void pbStoreSetValueInt(PB_STORE **store, PB_STRING *key, PB_INT value) PB_NOEXCEPT;
/** pbStoreSetValueInt for key in UTF-8 (length -1: up to the NUL). */
PB_API void pbStoreSetValueIntCstr(PB_STORE **store, const char *key, PB_INT length, PB_INT value) PB_NOEXCEPT;
/** pbStoreSetValueInt for key in wide characters (length -1: up to the NUL). */
PB_API void pbStoreSetValueIntWcstr(PB_STORE **store, const wchar_t *key, PB_INT length, PB_INT value) PB_NOEXCEPT;
/** Stores sub as a sub-store under key, replacing any entry there (a private copy when *store is shared). */
PB_API void pbStoreSetStore(PB_STORE **store, PB_STRING *key, PB_STORE *sub) PB_NOEXCEPT;
/** pbStoreSetStore for key in UTF-8 (length -1: up to the NUL). */
PB_API void pbStoreSetStoreCstr(PB_STORE **store, const char *key, PB_INT length, PB_STORE *sub) PB_NOEXCEPT;
/** pbStoreSetStore for key in wide characters (length -1: up to the NUL). */
PB_API void pbStoreSetStoreWcstr(PB_STORE **store, const wchar_t *key, PB_INT length, PB_STORE *sub) PB_NOEXCEPT;

/** A new reference to the string under key, or null when absent or not a string. */
PB_API PB_STRING *pbStoreValue(PB_STORE *store, PB_STRING *key) PB_NOEXCEPT;
/** pbStoreValue for key in UTF-8 (length -1: up to the NUL). */
PB_API PB_STRING *pbStoreValueCstr(PB_STORE *store, const char *key, PB_INT length) PB_NOEXCEPT;
/** pbStoreValue for key in wide characters (length -1: up to the NUL). */
PB_API PB_STRING *pbStoreValueWcstr(PB_STORE *store, const wchar_t *key, PB_INT length) PB_NOEXCEPT;

/** True, with the integer written to *value, when an integer is stored under key;
 * otherwise false and *value is left alone. */
PB_API PB_BOOL pbStoreValueInt(PB_STORE *store, PB_INT *value, PB_STRING *key) PB_NOEXCEPT;
/** pbStoreValueInt for key in UTF-8 (length -1: up to the NUL). */
PB_API PB_BOOL pbStoreValueIntCstr(PB_STORE *store, PB_INT *value, const char *key, PB_INT length) PB_NOEXCEPT;
/** pbStoreValueInt for key in wide characters (length -1: up to the NUL). */
PB_API PB_BOOL pbStoreValueIntWcstr(PB_STORE *store, PB_INT *value, const wchar_t *key, PB_INT length) PB_NOEXCEPT;

/** A new reference to the sub-store under key, or null when absent or no store. */
PB_API PB_STORE *pbStoreStore(PB_STORE *store, PB_STRING *key) PB_NOEXCEPT;
/** pbStoreStore for key in UTF-8 (length -1: up to the NUL). */
PB_API PB_STORE *pbStoreStoreCstr(PB_STORE *store, const char *key, PB_INT length) PB_NOEXCEPT;
/** pbStoreStore for key in wide characters (length -1: up to the NUL). */
PB_API PB_STORE *pbStoreStoreWcstr(PB_STORE *store, const wchar_t *key, PB_INT length) PB_NOEXCEPT;

PB_END_DECLS

#endif
