/** @file
 * Scalar types of the runtime's interface.
 */
#ifndef PB_TYPES_H
#define PB_TYPES_H

#include <stddef.h>
#include <stdint.h>

typedef int64_t PB_INT;   /* lengths, counts, indices; -1 often means "none" or "no limit" */
typedef int PB_BOOL;      /* a boolean: 0 is false, anything else true */
typedef uint32_t PB_CHAR; /* one Unicode code point */
typedef uint8_t PB_BYTE;
typedef PB_INT PB_CHARSET; /* a character-set code 0..50 (pb_charset.h) */

#define PB_TRUE 1
#define PB_FALSE 0
#define PB_INT_MAX INT64_MAX
#define PB_INT_MIN INT64_MIN

#endif
