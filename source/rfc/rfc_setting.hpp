// Internal: each options sort of the codec library holds one integer setting
// with a default and a valid range, described once by a Setting: the setter
// checks its value with setting.valid( value ), restore keeps a stored value
// only when it is valid, and store leaves out the default.
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

// A new options object of sort holding value; T is { PB_OBJ_HEADER header; PB_INT value; }.
template <class T> T *createSetting(const PB_SORT *sort, PB_INT value) noexcept
{
    auto *options = pb::create<T>(sort);
    options->value = value;
    return options;
}

} // namespace rfc
