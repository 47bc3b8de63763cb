// Internal: each options sort of the codec library holds one integer setting
// with a default and a valid range. The sort, its compare and text, and its
// create, copy, get, set, store and restore functions come from one pattern:
//
//   RFC___SETTING_OPTIONS_DEFINE(BaseOptions, RFC_BASE_OPTIONS, OutputLineLength,
//                                outputLineLengthSetting)
//
// defines rfcBaseOptionsCreate, ...CreateFrom, ...OutputLineLength,
// ...SetOutputLineLength, ...Store and ...Restore over a struct RFC_BASE_OPTIONS
// { PB_OBJ_HEADER header; PB_INT value; }. The setter asserts
// "setting.valid( value )" on the value it is given.
#pragma once

#include <pb/pb_sort.hpp>
#include <pb/pb_store.h>
#include <pb/pb_string.h>

namespace rfc {

struct Setting {
    const char *key;
    PB_INT defaultValue;
    PB_INT min;
    PB_INT max;

    constexpr bool valid(PB_INT value) const noexcept { return value >= min && value <= max; }
};

// A new store holding the setting when full is nonzero or it is not the default.
PB_STORE *settingStore(const Setting &setting, PB_INT value, PB_BOOL full) noexcept;
// The stored value when the store holds a valid integer under the key, else the default.
PB_INT settingRestore(const Setting &setting, PB_STORE *store) noexcept;
// "key=value".
PB_STRING *settingText(const Setting &setting, PB_INT value) noexcept;

inline PB_INT compareInts(PB_INT a, PB_INT b) noexcept
{
    return a < b ? -1 : a > b ? 1 : 0;
}

} // namespace rfc

#define RFC___SETTING_OPTIONS_DEFINE(Name, NAME, Value, setting) \
    struct NAME { \
        PB_OBJ_HEADER header; \
        PB_INT value; \
    }; \
    namespace { \
    extern "C" { \
    static PB_INT rfc___##Name##CompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept; \
    static PB_STRING *rfc___##Name##ToStringFunc(PB_OBJ *obj) noexcept; \
    } \
    } \
    PB___SORT_DEFINE(rfc, Name, NAME, nullptr, nullptr, rfc___##Name##CompareFunc, rfc___##Name##ToStringFunc) \
    namespace { \
    PB_INT rfc___##Name##CompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept \
    { \
        return rfc::compareInts(rfc##Name##From(a)->value, rfc##Name##From(b)->value); \
    } \
    PB_STRING *rfc___##Name##ToStringFunc(PB_OBJ *obj) noexcept \
    { \
        return rfc::settingText(setting, rfc##Name##From(obj)->value); \
    } \
    NAME *rfc___##Name##CreateWith(PB_INT value) noexcept \
    { \
        auto *options = pb::create<NAME>(&rfc___sort_##NAME); \
        options->value = value; \
        return options; \
    } \
    } \
    NAME *rfc##Name##Create(void) noexcept \
    { \
        return rfc___##Name##CreateWith(setting.defaultValue); \
    } \
    NAME *rfc##Name##CreateFrom(NAME *source) noexcept \
    { \
        PB_ASSERT( source ); \
        return rfc___##Name##CreateWith(source->value); \
    } \
    PB_INT rfc##Name##Value(NAME *options) noexcept \
    { \
        PB_ASSERT( options ); \
        return options->value; \
    } \
    void rfc##Name##Set##Value(NAME **options, PB_INT value) noexcept \
    { \
        PB_ASSERT_REF(options); \
        PB_ASSERT( setting.valid( value ) ); \
        PB_OBJ_UNSHARE((*options), rfc##Name##CreateFrom); \
        (*options)->value = value; \
    } \
    PB_STORE *rfc##Name##Store(NAME *options, PB_BOOL full) noexcept \
    { \
        PB_ASSERT( options ); \
        return rfc::settingStore(setting, options->value, full); \
    } \
    NAME *rfc##Name##Restore(PB_STORE *store) noexcept \
    { \
        PB_ASSERT( store ); \
        return rfc___##Name##CreateWith(rfc::settingRestore(setting, store)); \
    }
