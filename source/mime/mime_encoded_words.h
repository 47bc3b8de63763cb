/** @file
 * RFC 2047 encoded words in header text: "=?" charset "?" B or Q "?" text "?=",
 * as mail programs write them in Subject and From lines, and also inside
 * "name" and "filename" parameter values. */
#ifndef MIME_ENCODED_WORDS_H
#define MIME_ENCODED_WORDS_H

#include <mime/mime_api.h>
#include <pb/pb_string.h>

PB_BEGIN_DECLS

/** A new string: text with each encoded word replaced by its text, and the
 * white space between two encoded words removed. The charset (an optional
 * "*language" after it is ignored) is a registered name or one of the labels
 * that mail and web software use (cp1252, utf8, ...); B text is base64 read as
 * rfcBaseDecodeTolerant reads it, Q text is quoted-printable with "_" for a
 * space. A word with an unknown charset, white space inside, or Q text that
 * holds a character beyond Latin-1 stays as it stands. Linear in the text.
 * Aborts when text is null. */
MIME_API PB_STRING *mimeEncodedWordsDecode(PB_STRING *text) PB_NOEXCEPT;

PB_END_DECLS

#endif
