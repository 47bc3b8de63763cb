// Internal: the pattern behind the Cstr and Wcstr variants of every operation that
// takes a PB_STRING. A variant turns its C text into a temporary string, calls the
// string operation and returns its result unchanged:
//
//   PB___TEXT_VARIANTS(PB_BOOL, pbFlagsetHasFlag, (PB_FLAGSET *set,), (set,), (), ())
//
// defines pbFlagsetHasFlagCstr(set, text, length) and pbFlagsetHasFlagWcstr(...).
// The second and third lists hold the parameters and arguments before the text
// (each followed by a comma), the last two those after it (each preceded by one).
#pragma once

#include <pb/pb_ref.hpp>
#include <pb/pb_string.h>

#include <cwchar>

namespace pb {

template <class F> inline auto withText(const char *text, PB_INT length, F &&f)
{
    Ref<PB_STRING> s = adopt(pbStringCreateFromCstr(text, length));
    return f(s.get());
}

template <class F> inline auto withText(const wchar_t *text, PB_INT length, F &&f)
{
    Ref<PB_STRING> s = adopt(pbStringCreateFromWcstr(text, length));
    return f(s.get());
}

} // namespace pb

#define PB___UNPAREN(...) __VA_ARGS__

#define PB___TEXT_VARIANT(Ret, Op, Suffix, CharT, Before, BeforeArgs, After, AfterArgs) \
    Ret Op##Suffix(PB___UNPAREN Before const CharT *text, PB_INT length PB___UNPAREN After) noexcept \
    { \
        return pb::withText(text, length, \
                            [&](PB_STRING *s___) { return Op(PB___UNPAREN BeforeArgs s___ PB___UNPAREN AfterArgs); }); \
    }

#define PB___TEXT_VARIANTS(Ret, Op, Before, BeforeArgs, After, AfterArgs) \
    PB___TEXT_VARIANT(Ret, Op, Cstr, char, Before, BeforeArgs, After, AfterArgs) \
    PB___TEXT_VARIANT(Ret, Op, Wcstr, wchar_t, Before, BeforeArgs, After, AfterArgs)
