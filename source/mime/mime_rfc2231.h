/** @file
 * RFC 2231 parameter values: continuations ("title*0", "title*1", ...) and
 * extended values ("title*" = charset'language'percent-encoded bytes).
 * Library-internal (prefix mime___), used by the Content-Type and
 * Content-Disposition codecs, exported for tests.
 *
 * Decoding joins each parameter's segments (from number 1 up to the first gap;
 * for one number the encoded form "*N*" wins over the plain "*N"; bytes of
 * consecutive encoded segments are converted together, so a character may be
 * split across segments) and decodes extended values with their charset. Keys
 * whose name part is not an RFC 2231 attribute name, extended values without
 * exactly three apostrophe-separated parts or with an unknown charset, and
 * values that cannot be taken as bytes are left out. The work is linear in the
 * size of the parameters, also for segment numbers up to the largest 64-bit value.
 *
 * Encoding writes every value beyond ASCII as an extended value in the options'
 * charset, and splits values longer than the options' segment length into
 * numbered segments (an escape is never split; a first segment may hold only the
 * charset prefix). An empty value is kept as one empty plain segment. Parameters
 * whose name is not an attribute name, or whose value the charset cannot hold,
 * are left out. */
#ifndef MIME_RFC2231_H
#define MIME_RFC2231_H

#include <mime/mime_api.h>
#include <mime/mime_options.h>
#include <pb/pb_dict.h>

PB_BEGIN_DECLS

/** A new dictionary of the parameters of source with RFC 2231 forms decoded; never null. */
MIME_API PB_DICT *mime___Rfc2231Decode(PB_DICT *source, MIME_OPTIONS *mo) PB_NOEXCEPT;
/** A new dictionary of the parameters of source in RFC 2231 form where needed; never null. */
MIME_API PB_DICT *mime___Rfc2231Encode(PB_DICT *source, MIME_OPTIONS *mo) PB_NOEXCEPT;

PB_END_DECLS

#endif
