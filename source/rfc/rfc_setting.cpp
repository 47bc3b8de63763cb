#include <rfc/rfc_setting.hpp>

namespace rfc {

PB_STORE *settingStore(const Setting &setting, PB_INT value, PB_BOOL full) noexcept
{
    PB_STORE *store = pbStoreCreate();
    if (full || value != setting.defaultValue)
        pbStoreSetValueIntCstr(&store, setting.key, -1, value);
    return store;
}

PB_INT settingRestore(const Setting &setting, PB_STORE *store) noexcept
{
    PB_INT value = 0;
    if (pbStoreValueIntCstr(store, &value, setting.key, -1) && setting.valid(value))
        return value;
    return setting.defaultValue;
}

PB_STRING *settingText(const Setting &setting, PB_INT value) noexcept
{
    return pbStringCreateFromFormatCstr("%lc=%i", -1, setting.key, value);
}

} // namespace rfc
