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

PB_SORT_STDFUNCS_DECL(PB_API, pb, Store, PB_STORE)

/** Returns a new empty store. */
PB_API PB_STORE *pbStoreCreate(void) PB_NOEXCEPT;

/** Number of entries, and a new reference to the key at index (in key order). */
PB_API PB_INT pbStoreLength(PB_STORE *store) PB_NOEXCEPT;
PB_API PB_STRING *pbStoreKeyAt(PB_STORE *store, PB_INT index) PB_NOEXCEPT;

/** Set an entry: a string (not null), an integer or a sub-store (not null). */
PB_API void pbStoreSetValue(PB_STORE **store, PB_STRING *key, PB_STRING *value) PB_NOEXCEPT;
PB_API void pbStoreSetValueCstr(PB_STORE **store, const char *key, PB_INT length, PB_STRING *value) PB_NOEXCEPT;
PB_API void pbStoreSetValueWcstr(PB_STORE **store, const wchar_t *key, PB_INT length, PB_STRING *value) PB_NOEXCEPT;
PB_API void pbStoreSetValueInt(PB_STORE **store, PB_STRING *key, PB_INT value) PB_NOEXCEPT;
PB_API void pbStoreSetValueIntCstr(PB_STORE **store, const char *key, PB_INT length, PB_INT value) PB_NOEXCEPT;
PB_API void pbStoreSetValueIntWcstr(PB_STORE **store, const wchar_t *key, PB_INT length, PB_INT value) PB_NOEXCEPT;
PB_API void pbStoreSetStore(PB_STORE **store, PB_STRING *key, PB_STORE *sub) PB_NOEXCEPT;
PB_API void pbStoreSetStoreCstr(PB_STORE **store, const char *key, PB_INT length, PB_STORE *sub) PB_NOEXCEPT;
PB_API void pbStoreSetStoreWcstr(PB_STORE **store, const wchar_t *key, PB_INT length, PB_STORE *sub) PB_NOEXCEPT;

/** A new reference to the string under key, or null when absent or not a string. */
PB_API PB_STRING *pbStoreValue(PB_STORE *store, PB_STRING *key) PB_NOEXCEPT;
PB_API PB_STRING *pbStoreValueCstr(PB_STORE *store, const char *key, PB_INT length) PB_NOEXCEPT;
PB_API PB_STRING *pbStoreValueWcstr(PB_STORE *store, const wchar_t *key, PB_INT length) PB_NOEXCEPT;

/** True, with the integer written to *value, when an integer is stored under key;
 * otherwise false and *value is left alone. */
PB_API PB_BOOL pbStoreValueInt(PB_STORE *store, PB_INT *value, PB_STRING *key) PB_NOEXCEPT;
PB_API PB_BOOL pbStoreValueIntCstr(PB_STORE *store, PB_INT *value, const char *key, PB_INT length) PB_NOEXCEPT;
PB_API PB_BOOL pbStoreValueIntWcstr(PB_STORE *store, PB_INT *value, const wchar_t *key, PB_INT length) PB_NOEXCEPT;

/** A new reference to the sub-store under key, or null when absent or no store. */
PB_API PB_STORE *pbStoreStore(PB_STORE *store, PB_STRING *key) PB_NOEXCEPT;
PB_API PB_STORE *pbStoreStoreCstr(PB_STORE *store, const char *key, PB_INT length) PB_NOEXCEPT;
PB_API PB_STORE *pbStoreStoreWcstr(PB_STORE *store, const wchar_t *key, PB_INT length) PB_NOEXCEPT;

PB_END_DECLS

#endif
