/** @file
 * Token vectors: structured header-field values split into MIME_SHF_TOKEN
 * objects (a pbVector of them, in wire order), and written back as folded text. */
#ifndef MIME_SHF_TOKEN_VECTOR_H
#define MIME_SHF_TOKEN_VECTOR_H

#include <mime/mime_api.h>
#include <mime/mime_options.h>
#include <mime/mime_shf_token.h>
#include <pb/pb_string.h>
#include <pb/pb_vector.h>

PB_BEGIN_DECLS

/** Splits a header-field value into tokens: quoted strings, domain literals,
 * comments (nested), single tspecials and plain tokens, each keeping its exact
 * text. Spaces, tabs, line breaks and other control characters between pieces
 * are skipped. Returns a new vector (empty for a value of only white space), or
 * null when a quoted string, domain literal or comment is not closed, ends in a
 * backslash, holds a CR that does not start a fold (CR LF and a space or tab), or
 * (a domain literal) holds an unescaped "[". Linear in the length of the value. */
MIME_API PB_VECTOR *mimeShfTokenVectorTryDecode(PB_STRING *value) PB_NOEXCEPT;
/** mimeShfTokenVectorTryDecode for text in UTF-8 (length -1: up to the NUL). */
MIME_API PB_VECTOR *mimeShfTokenVectorTryDecodeCstr(const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeShfTokenVectorTryDecode for text in wide characters (length -1: up to the NUL). */
MIME_API PB_VECTOR *mimeShfTokenVectorTryDecodeWcstr(const wchar_t *text, PB_INT length) PB_NOEXCEPT;

/** Removes the comments from *vec, keeping the other tokens in their order; other
 * holders of a shared vector keep theirs. Linear in the length of the vector. */
MIME_API void mimeShfTokenVectorDelComments(PB_VECTOR **vec) PB_NOEXCEPT;

/** Writes the tokens' raw values joined by single spaces, except that a word
 * (token or quoted string), a joining separator (@ , ; : \ " / ? =) and a word
 * follow each other without spaces. With a wrap line length other than -1, a
 * piece is put on a new line (CR LF and one space before it, instead of the
 * joining space) when the line before it is already longer than the wrap line
 * length; firstLineOffset is the length of what precedes the value on its first
 * line (such as "Content-Type: "). Returns a new string without a final line break. */
MIME_API PB_STRING *mimeShfTokenVectorEncode(PB_VECTOR *vec, MIME_OPTIONS *mo, PB_INT firstLineOffset) PB_NOEXCEPT;

PB_END_DECLS

#endif
