/** @file
 * Integer helpers: overflow tests used in assertions, and small arithmetic.
 */
#ifndef PB_INT_H
#define PB_INT_H

#include <pb/pb_api.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

static inline PB_BOOL pb___IntAddOk(PB_INT a, PB_INT b)
{
    PB_INT sum;
    return !__builtin_add_overflow(a, b, &sum);
}

static inline PB_BOOL pb___IntMulOk(PB_INT a, PB_INT b)
{
    PB_INT product;
    return !__builtin_mul_overflow(a, b, &product);
}

/** True when a + b (a * b) fits a PB_INT. */
#define PB_INT_ADD_OK(a, b) pb___IntAddOk((a), (b))
#define PB_INT_MUL_OK(a, b) pb___IntMulOk((a), (b))

/** Returns the smaller of a and b. */
PB_API PB_INT pbIntMin(PB_INT a, PB_INT b) PB_NOEXCEPT;
/** Returns the larger of a and b. */
PB_API PB_INT pbIntMax(PB_INT a, PB_INT b) PB_NOEXCEPT;

PB_END_DECLS

#endif
