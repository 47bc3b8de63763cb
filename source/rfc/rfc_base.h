/** @file
 * Base-N coding of byte buffers. Variant RFC_BASE_VARIANT_BASE64 (3) is base64
 * with the alphabet and padding of RFC 2045 / RFC 4648 section 4; it is the only
 * variant, and any other is a programming error.
 *
 * Encoding writes every whole byte of the buffer (the bits of an incomplete
 * last byte are not encoded), four characters for every three bytes with "="
 * padding, in lines of the options' output line length ended by CR LF, without
 * a line break after the last line. It never fails.
 *
 * Decoding accepts the text as mail and SIP carry it: CR, LF, space and tab are
 * skipped wherever they stand. It fails (null) on any other character outside
 * the alphabet, on "=" anywhere but as the padding of the last quantum (one "="
 * after three characters, two after two), on padding that is incomplete, and on
 * text whose characters leave a lone sextet. Missing padding is accepted, and the
 * unused low bits of the last character are ignored. Decoding ignores the
 * options; they are taken for symmetry with encoding.
 *
 * Both run in time linear in the buffer, with vector code where the processor
 * offers it. */
#ifndef RFC_BASE_H
#define RFC_BASE_H

#include <pb/pb_buffer.h>
#include <pb/pb_types.h>
#include <rfc/rfc_api.h>
#include <rfc/rfc_base_options.h>

PB_BEGIN_DECLS

#define RFC_BASE_VARIANT_BASE64 ((PB_INT)3)

/** Returns a new buffer with the encoded text; never null. */
RFC_API PB_BUFFER *rfcBaseEncodeWithOptions(PB_BUFFER *buffer, PB_INT variant, RFC_BASE_OPTIONS *options) PB_NOEXCEPT;
/** Returns a new buffer with the decoded bytes, or null when the text is invalid. */
RFC_API PB_BUFFER *rfcBaseTryDecodeWithOptions(PB_BUFFER *buffer, PB_INT variant,
                                               RFC_BASE_OPTIONS *options) PB_NOEXCEPT;
/** Decodes as mail readers do; never null. Text that rfcBaseTryDecodeWithOptions
 * takes gives the same bytes and *fault -1 (when fault is not null). Other text
 * sets *fault to the offset of the first character refused (the length of the
 * text for a lone last sextet) and is decoded over what is base64: characters
 * outside the alphabet and a "=" before two sextets are skipped, padding after
 * two or three sextets ends the text, a lone last sextet is dropped. */
RFC_API PB_BUFFER *rfcBaseDecodeTolerant(PB_BUFFER *buffer, PB_INT variant, PB_INT *fault) PB_NOEXCEPT;

PB_END_DECLS

#endif
