/** @file
 * Whether a header value can be written safely. The entity's fields and the
 * encoders write values as they are given, so a value with CR LF in it becomes
 * header lines of its own (header injection). A caller that writes values from
 * elsewhere (a user, a peer) checks them here first.
 *
 * A value stays in its header field when every line break in it is a fold: CR
 * LF followed by a space or a tab and then by a character that is neither (a
 * line of only blanks could end the header block for some readers), and it
 * holds no other control character: none of U+0000 to U+001F but the tab, and
 * no U+007F. Folds as the encoders write them (mimeContentTypeEncode) pass. */
#ifndef MIME_HEADER_VALUE_H
#define MIME_HEADER_VALUE_H

#include <mime/mime_api.h>
#include <mime/mime_defect.h>
#include <pb/pb_string.h>

#include <wchar.h>

PB_BEGIN_DECLS

/** Whether value, written as a header field's value as it stands, stays in its
 * field (see above). *defect (when defect is not null) is released and set to
 * null on entry, and when the value does not stay set to a new defect of code
 * MIME_DEFECT_HEADER_VALUE_UNSAFE whose offset is the character at fault.
 * Aborts when value is null. */
MIME_API PB_BOOL mimeHeaderValueCheck(PB_STRING *value, MIME_DEFECT **defect) PB_NOEXCEPT;
/** mimeHeaderValueCheck for value in UTF-8 (length -1: up to the NUL); the
 * offset counts characters. */
MIME_API PB_BOOL mimeHeaderValueCheckCstr(const char *value, PB_INT length, MIME_DEFECT **defect) PB_NOEXCEPT;
/** mimeHeaderValueCheck for value in wide characters (length -1: up to the NUL). */
MIME_API PB_BOOL mimeHeaderValueCheckWcstr(const wchar_t *value, PB_INT length, MIME_DEFECT **defect) PB_NOEXCEPT;

PB_END_DECLS

#endif
