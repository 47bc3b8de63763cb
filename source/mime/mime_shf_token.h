/** @file
 * Tokens of structured header fields (RFC 822 / RFC 2045 lexical level): single
 * special characters, quoted strings, domain literals, comments and plain
 * tokens. A token keeps its raw value, the text exactly as on the wire with its
 * delimiters and backslash escapes, and never changes after creation.
 *
 * Plain values: a token or quoted string created from a value, and a comment
 * created from a value, read back (mimeShfTokenValue) as exactly that value. */
#ifndef MIME_SHF_TOKEN_H
#define MIME_SHF_TOKEN_H

#include <mime/mime_api.h>
#include <pb/pb_sort.h>
#include <pb/pb_string.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

typedef PB_INT MIME_SHF_TOKEN_TYPE;

#define MIME_SHF_TOKEN_TYPE_TSPECIAL ((MIME_SHF_TOKEN_TYPE)0)       /* one tspecial character */
#define MIME_SHF_TOKEN_TYPE_QUOTED_STRING ((MIME_SHF_TOKEN_TYPE)1)  /* "..." with \ escapes */
#define MIME_SHF_TOKEN_TYPE_DOMAIN_LITERAL ((MIME_SHF_TOKEN_TYPE)2) /* [...] with \ escapes */
#define MIME_SHF_TOKEN_TYPE_COMMENT ((MIME_SHF_TOKEN_TYPE)3)        /* (...) nested, with \ escapes */
#define MIME_SHF_TOKEN_TYPE_TOKEN ((MIME_SHF_TOKEN_TYPE)4)          /* no tspecial, space or control */

typedef struct MIME_SHF_TOKEN MIME_SHF_TOKEN;

/** The sort record of MIME_SHF_TOKEN. */
MIME_API const PB_SORT *mimeShfTokenSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
MIME_API MIME_SHF_TOKEN *mimeShfTokenRetain(MIME_SHF_TOKEN *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
MIME_API void mimeShfTokenRelease(MIME_SHF_TOKEN *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
MIME_API PB_OBJ *mimeShfTokenObj(MIME_SHF_TOKEN *obj) PB_NOEXCEPT;
/** obj as a MIME_SHF_TOKEN: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
MIME_API MIME_SHF_TOKEN *mimeShfTokenFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
MIME_API PB_STRING *mimeShfTokenToString(MIME_SHF_TOKEN *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
MIME_API PB_INT mimeShfTokenCompare(MIME_SHF_TOKEN *objA, MIME_SHF_TOKEN *objB) PB_NOEXCEPT;
/** Whether mimeShfTokenCompare gives 0. */
MIME_API PB_BOOL mimeShfTokenEquals(MIME_SHF_TOKEN *objA, MIME_SHF_TOKEN *objB) PB_NOEXCEPT;

/** A single tspecial character; anything else aborts. */
MIME_API MIME_SHF_TOKEN *mimeShfTokenCreateTspecial(PB_CHAR tspecial) PB_NOEXCEPT;
/** A token (type 4) when the value is not empty and holds no control character,
 * space or tspecial; otherwise a quoted string (type 1) in which CR, quotation
 * mark and backslash get a backslash before them. */
MIME_API MIME_SHF_TOKEN *mimeShfTokenCreateTokenOrQuotedString(PB_STRING *tokenOrQuotedString) PB_NOEXCEPT;
/** mimeShfTokenCreateTokenOrQuotedString for text in UTF-8 (length -1: up to the NUL). */
MIME_API MIME_SHF_TOKEN *mimeShfTokenCreateTokenOrQuotedStringCstr(const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeShfTokenCreateTokenOrQuotedString for text in wide characters (length -1: up to the NUL). */
MIME_API MIME_SHF_TOKEN *mimeShfTokenCreateTokenOrQuotedStringWcstr(const wchar_t *text, PB_INT length) PB_NOEXCEPT;
/** A comment; CR, LF and every tspecial of the value get a backslash before them. */
MIME_API MIME_SHF_TOKEN *mimeShfTokenCreateComment(PB_STRING *comment) PB_NOEXCEPT;
/** mimeShfTokenCreateComment for text in UTF-8 (length -1: up to the NUL). */
MIME_API MIME_SHF_TOKEN *mimeShfTokenCreateCommentCstr(const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeShfTokenCreateComment for text in wide characters (length -1: up to the NUL). */
MIME_API MIME_SHF_TOKEN *mimeShfTokenCreateCommentWcstr(const wchar_t *text, PB_INT length) PB_NOEXCEPT;
/** A token of the type that the wire text has: a single tspecial, a well-formed
 * quoted string, domain literal or comment, or a plain token, in this order of
 * trial. The token keeps rawValue itself. Text of none of these forms aborts. */
MIME_API MIME_SHF_TOKEN *mimeShfTokenCreateRawValue(PB_STRING *rawValue) PB_NOEXCEPT;
/** mimeShfTokenCreateRawValue for text in UTF-8 (length -1: up to the NUL). */
MIME_API MIME_SHF_TOKEN *mimeShfTokenCreateRawValueCstr(const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeShfTokenCreateRawValue for text in wide characters (length -1: up to the NUL). */
MIME_API MIME_SHF_TOKEN *mimeShfTokenCreateRawValueWcstr(const wchar_t *text, PB_INT length) PB_NOEXCEPT;

/** The token's type, MIME_SHF_TOKEN_TYPE_TSPECIAL (0) to MIME_SHF_TOKEN_TYPE_TOKEN (4). */
MIME_API MIME_SHF_TOKEN_TYPE mimeShfTokenType(MIME_SHF_TOKEN *tok) PB_NOEXCEPT;
/** The text as on the wire (new reference). */
MIME_API PB_STRING *mimeShfTokenRawValue(MIME_SHF_TOKEN *tok) PB_NOEXCEPT;
/** The plain value (new reference): for delimited types the inner text with each
 * backslash dropped and the character after it kept; folds stay as they are. */
MIME_API PB_STRING *mimeShfTokenValue(MIME_SHF_TOKEN *tok) PB_NOEXCEPT;

PB_END_DECLS

#endif
