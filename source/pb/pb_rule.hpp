// Internal: a rule that a value must pass, written once and used twice: a setter
// aborts on a value the rule refuses, with the rule's text as the condition
// (stringified where it is written, as PB_ASSERT does), and a reader of stored
// settings skips such a value.
//
//   constexpr pb::Rule kWrapRule = PB_RULE(wrapLineLength, wrapLineLength >= -1);
//   PB_ASSERT_RULE(kWrapRule, wrapLineLength);   // condition "wrapLineLength >= -1"
//   if (kWrapRule(stored)) ...
#pragma once

#include <pb/pb_abort.h>
#include <pb/pb_types.h>

namespace pb {

struct Rule {
    bool (*test)(PB_INT value);
    const char *text;

    constexpr bool operator()(PB_INT value) const noexcept { return test(value); }
};

} // namespace pb

#define PB_RULE(name, expr) \
    pb::Rule \
    { \
        [](PB_INT name) { return static_cast<bool>(expr); }, #expr \
    }
#define PB_ASSERT_RULE(rule, value) ((rule)(value) ? (void)0 : pb___Abort(NULL, __FILE__, __LINE__, (rule).text))
