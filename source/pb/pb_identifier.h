/** @file
 * Identifiers: 128 random bits from the operating system's random source, unique
 * in practice among all ever created. Text form: 32 lower-case hexadecimal digits
 * in the groups 8-4-4-4-12, as a version 4 UUID is written (no control characters). */
#ifndef PB_IDENTIFIER_H
#define PB_IDENTIFIER_H

#include <pb/pb_api.h>
#include <pb/pb_obj.h>
#include <pb/pb_sort.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

typedef struct PB_IDENTIFIER PB_IDENTIFIER;

PB_SORT_STDFUNCS_DECL(PB_API, pb, Identifier, PB_IDENTIFIER)

/** Returns a new identifier. */
PB_API PB_IDENTIFIER *pbIdentifierCreate(void) PB_NOEXCEPT;

PB_END_DECLS

#endif
