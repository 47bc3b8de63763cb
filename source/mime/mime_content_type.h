/** @file
 * MIME_CONTENT_TYPE: the value of a Content-Type header field, a media type name
 * (type "/" subtype) in lower case and parameters under lower-case keys with
 * their values exactly as given.
 *
 * A name is accepted (mimeContentTypeNameOk) when it is not empty, holds only
 * ASCII letters, digits, "+", "-", ".", "_" and exactly one "/", which is neither
 * first nor last. A parameter key is accepted (mimeContentTypeParameterKeyOk)
 * when it is an RFC 2045 token. Names and keys are stored in lower case, so
 * lookups ignore case; values keep theirs.
 *
 * Values are shared by reference: the changing operations take the address of
 * the caller's reference and change a private copy when the value is shared, so
 * no other holder sees the change. Every returned object is a new reference that
 * the caller releases. Misuse (a null argument, a name or key that its rule
 * refuses) aborts with the failed condition; nothing here fails otherwise.
 *
 * Each operation that takes a PB_STRING has Cstr (UTF-8) and Wcstr (wide) forms
 * taking the text and its length (-1: up to the terminating NUL). */
#ifndef MIME_CONTENT_TYPE_H
#define MIME_CONTENT_TYPE_H

#include <mime/mime_api.h>
#include <mime/mime_defect.h>
#include <mime/mime_options.h>
#include <pb/pb_dict.h>
#include <pb/pb_sort.h>
#include <pb/pb_string.h>

#include <wchar.h>

PB_BEGIN_DECLS

typedef struct MIME_CONTENT_TYPE MIME_CONTENT_TYPE;

/** The sort record of MIME_CONTENT_TYPE. */
MIME_API const PB_SORT *mimeContentTypeSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeRetain(MIME_CONTENT_TYPE *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
MIME_API void mimeContentTypeRelease(MIME_CONTENT_TYPE *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
MIME_API PB_OBJ *mimeContentTypeObj(MIME_CONTENT_TYPE *obj) PB_NOEXCEPT;
/** obj as a MIME_CONTENT_TYPE: the same pointer, no reference added; null passes. Aborts when obj is of another
 * sort. */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
MIME_API PB_STRING *mimeContentTypeToString(MIME_CONTENT_TYPE *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
MIME_API PB_INT mimeContentTypeCompare(MIME_CONTENT_TYPE *objA, MIME_CONTENT_TYPE *objB) PB_NOEXCEPT;
/** Whether mimeContentTypeCompare gives 0. */
MIME_API PB_BOOL mimeContentTypeEquals(MIME_CONTENT_TYPE *objA, MIME_CONTENT_TYPE *objB) PB_NOEXCEPT;

/** Whether name is an acceptable media type name (see above); false for null. */
MIME_API PB_BOOL mimeContentTypeNameOk(PB_STRING *name) PB_NOEXCEPT;
/** A new string: name in lower case. Aborts unless mimeContentTypeNameOk(name). */
MIME_API PB_STRING *mimeContentTypeNameNormalize(PB_STRING *name) PB_NOEXCEPT;
/** A new string: the registered spelling of name where it has a mixed-case one
 * (the emergency-call data types, such as "application/EmergencyCallData.Control+xml"),
 * else name in lower case. Aborts when name is null or refused by the name rule. */
MIME_API PB_STRING *mimeContentTypeNameToWireFormat(PB_STRING *name) PB_NOEXCEPT;
/** Whether key is an acceptable parameter key: an RFC 2045 token (printable
 * ASCII, no space, none of ()<>@,;:\"/[]?=), not empty. Aborts when key is null. */
MIME_API PB_BOOL mimeContentTypeParameterKeyOk(PB_STRING *key) PB_NOEXCEPT;
/** A new string: key in lower case. Aborts unless mimeContentTypeParameterKeyOk(key). */
MIME_API PB_STRING *mimeContentTypeParameterKeyNormalize(PB_STRING *key) PB_NOEXCEPT;

/** A new Content-Type with the name in lower case and no parameters. Aborts
 * unless mimeContentTypeNameOk(name). */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeCreate(PB_STRING *name) PB_NOEXCEPT;
/** mimeContentTypeCreate for name in UTF-8 (length -1: up to the NUL). */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeCreateCstr(const char *name, PB_INT length) PB_NOEXCEPT;
/** mimeContentTypeCreate for name in wide characters (length -1: up to the NUL). */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeCreateWcstr(const wchar_t *name, PB_INT length) PB_NOEXCEPT;
/** A new Content-Type sharing the name and the parameters of source (a later
 * change to either copies first). Aborts when source is null. */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeCreateFrom(MIME_CONTENT_TYPE *source) PB_NOEXCEPT;

/** The name, in lower case (a new reference). Aborts when type is null. */
MIME_API PB_STRING *mimeContentTypeName(MIME_CONTENT_TYPE *type) PB_NOEXCEPT;
/** Replaces the name by name in lower case; the parameters stay. Aborts when
 * type or *type is null, or unless mimeContentTypeNameOk(name). */
MIME_API void mimeContentTypeSetName(MIME_CONTENT_TYPE **type, PB_STRING *name) PB_NOEXCEPT;
/** mimeContentTypeSetName for name in UTF-8 (length -1: up to the NUL). */
MIME_API void mimeContentTypeSetNameCstr(MIME_CONTENT_TYPE **type, const char *name, PB_INT length) PB_NOEXCEPT;
/** mimeContentTypeSetName for name in wide characters (length -1: up to the NUL). */
MIME_API void mimeContentTypeSetNameWcstr(MIME_CONTENT_TYPE **type, const wchar_t *name, PB_INT length) PB_NOEXCEPT;

/** The value under key, of any case (a new reference), or null when there is
 * none. Aborts when type is null or the key is refused by the key rule. */
MIME_API PB_STRING *mimeContentTypeParameter(MIME_CONTENT_TYPE *type, PB_STRING *key) PB_NOEXCEPT;
/** mimeContentTypeParameter for key in UTF-8 (length -1: up to the NUL). */
MIME_API PB_STRING *mimeContentTypeParameterCstr(MIME_CONTENT_TYPE *type, const char *key, PB_INT length) PB_NOEXCEPT;
/** mimeContentTypeParameter for key in wide characters (length -1: up to the NUL). */
MIME_API PB_STRING *mimeContentTypeParameterWcstr(MIME_CONTENT_TYPE *type, const wchar_t *key,
                                                  PB_INT length) PB_NOEXCEPT;
/** Whether a value is stored under key, of any case. Aborts as mimeContentTypeParameter. */
MIME_API PB_BOOL mimeContentTypeHasParameter(MIME_CONTENT_TYPE *type, PB_STRING *key) PB_NOEXCEPT;
/** mimeContentTypeHasParameter for key in UTF-8 (length -1: up to the NUL). */
MIME_API PB_BOOL mimeContentTypeHasParameterCstr(MIME_CONTENT_TYPE *type, const char *key, PB_INT length) PB_NOEXCEPT;
/** mimeContentTypeHasParameter for key in wide characters (length -1: up to the NUL). */
MIME_API PB_BOOL mimeContentTypeHasParameterWcstr(MIME_CONTENT_TYPE *type, const wchar_t *key,
                                                  PB_INT length) PB_NOEXCEPT;
/** Stores value, unchecked and unchanged, under key in lower case, replacing an
 * earlier value under the key in any case. Aborts when type, *type or value is
 * null, or the key is refused by the key rule. */
MIME_API void mimeContentTypeSetParameter(MIME_CONTENT_TYPE **type, PB_STRING *key, PB_STRING *value) PB_NOEXCEPT;
/** mimeContentTypeSetParameter for key in UTF-8 (length -1: up to the NUL). */
MIME_API void mimeContentTypeSetParameterCstr(MIME_CONTENT_TYPE **type, const char *key, PB_INT length,
                                              PB_STRING *value) PB_NOEXCEPT;
/** mimeContentTypeSetParameter for key in wide characters (length -1: up to the NUL). */
MIME_API void mimeContentTypeSetParameterWcstr(MIME_CONTENT_TYPE **type, const wchar_t *key, PB_INT length,
                                               PB_STRING *value) PB_NOEXCEPT;
/** mimeContentTypeSetParameter for the key and the value in UTF-8 (lengths -1: up to the NUL). */
MIME_API void mimeContentTypeSetParameterCstrCstrValue(MIME_CONTENT_TYPE **type, const char *key, PB_INT keyLength,
                                                       const char *value, PB_INT valueLength) PB_NOEXCEPT;
/** mimeContentTypeSetParameter for the key in UTF-8 and the value in wide characters (lengths -1:
 * up to the NUL). */
MIME_API void mimeContentTypeSetParameterCstrWcstrValue(MIME_CONTENT_TYPE **type, const char *key, PB_INT keyLength,
                                                        const wchar_t *value, PB_INT valueLength) PB_NOEXCEPT;
/** mimeContentTypeSetParameter for the key in wide characters and the value in UTF-8 (lengths -1:
 * up to the NUL). */
MIME_API void mimeContentTypeSetParameterWcstrCstrValue(MIME_CONTENT_TYPE **type, const wchar_t *key, PB_INT keyLength,
                                                        const char *value, PB_INT valueLength) PB_NOEXCEPT;
/** mimeContentTypeSetParameter for the key and the value in wide characters (lengths -1:
 * up to the NUL). */
MIME_API void mimeContentTypeSetParameterWcstrWcstrValue(MIME_CONTENT_TYPE **type, const wchar_t *key, PB_INT keyLength,
                                                         const wchar_t *value, PB_INT valueLength) PB_NOEXCEPT;
/** Removes the value under key, of any case, if there is one (a shared value is
 * copied all the same). Aborts when type or *type is null, or the key is refused
 * by the key rule. */
MIME_API void mimeContentTypeDelParameter(MIME_CONTENT_TYPE **type, PB_STRING *key) PB_NOEXCEPT;
/** mimeContentTypeDelParameter for key in UTF-8 (length -1: up to the NUL). */
MIME_API void mimeContentTypeDelParameterCstr(MIME_CONTENT_TYPE **type, const char *key, PB_INT length) PB_NOEXCEPT;
/** mimeContentTypeDelParameter for key in wide characters (length -1: up to the NUL). */
MIME_API void mimeContentTypeDelParameterWcstr(MIME_CONTENT_TYPE **type, const wchar_t *key, PB_INT length) PB_NOEXCEPT;
/** Removes every parameter. Aborts when type or *type is null. */
MIME_API void mimeContentTypeClearParameters(MIME_CONTENT_TYPE **type) PB_NOEXCEPT;

/** The parameters dictionary itself (a new reference, not a copy): lower-case
 * keys to values, in key order. Aborts when type is null. */
MIME_API PB_DICT *mimeContentTypeParametersDict(MIME_CONTENT_TYPE *type) PB_NOEXCEPT;
/** The number of parameters. Aborts when type is null. */
MIME_API PB_INT mimeContentTypeParametersLength(MIME_CONTENT_TYPE *type) PB_NOEXCEPT;
/** The key at index, 0 <= index < mimeContentTypeParametersLength, in key order
 * (a new reference). Aborts when type is null or index is out of range. */
MIME_API PB_STRING *mimeContentTypeParameterKeyAt(MIME_CONTENT_TYPE *type, PB_INT index) PB_NOEXCEPT;
/** The value that belongs to the key at index (a new reference). Aborts as
 * mimeContentTypeParameterKeyAt. */
MIME_API PB_STRING *mimeContentTypeParameterValueAt(MIME_CONTENT_TYPE *type, PB_INT index) PB_NOEXCEPT;

/** The Content-Type a header value holds (a new reference), or null. The value
 * must start with a media type (word "/" word, each a token or quoted string,
 * accepted by the name rule); comments anywhere are ignored. Parameters follow
 * as "; key = value" and are read leniently: a key without a value gets the
 * empty value, a key that is not an RFC 2045 token is skipped, a later key
 * replaces an earlier one of any case, and the first element that does not fit
 * ends the list without failing. With MIME_FLAG_PARSE_RFC2231_HEADERS the
 * parameters are then decoded by RFC 2231. Aborts when contentType or mo is null. */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeTryDecode(PB_STRING *contentType, MIME_OPTIONS *mo) PB_NOEXCEPT;
/** mimeContentTypeTryDecode that also says why it fails: *defect (when defect
 * is not null) is released and set to null on entry, and on failure set to a
 * new defect of code MIME_DEFECT_CONTENT_TYPE_INVALID whose offset is the
 * character of the value where reading stopped. */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeTryDecodeWithDefect(PB_STRING *contentType, MIME_OPTIONS *mo,
                                                               MIME_DEFECT **defect) PB_NOEXCEPT;
/** mimeContentTypeTryDecode for contentType in UTF-8 (length -1: up to the NUL). */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeTryDecodeCstr(const char *contentType, PB_INT length,
                                                         MIME_OPTIONS *mo) PB_NOEXCEPT;
/** mimeContentTypeTryDecode for contentType in wide characters (length -1: up to the NUL). */
MIME_API MIME_CONTENT_TYPE *mimeContentTypeTryDecodeWcstr(const wchar_t *contentType, PB_INT length,
                                                          MIME_OPTIONS *mo) PB_NOEXCEPT;
/** The header value of contentType (a new string): the registered spelling of
 * the name, then ";key=value" for each parameter in key order (values as tokens
 * or quoted strings), folded by the options' wrap line length; firstLineOffset
 * is the length of what precedes the value on its line (14 for
 * "Content-Type: "). With MIME_FLAG_GENERATE_RFC2231_HEADERS the parameters are
 * written in RFC 2231 form; otherwise values beyond ASCII are written as they
 * are with MIME_FLAG_GENERATE_UNICODE_HEADERS, and left out without it. Aborts
 * when contentType or mo is null or firstLineOffset is negative. */
MIME_API PB_STRING *mimeContentTypeEncode(MIME_CONTENT_TYPE *contentType, MIME_OPTIONS *mo,
                                          PB_INT firstLineOffset) PB_NOEXCEPT;

/** Library-internal: the table of registered spellings, built and released by
 * the module's start-up and shut-down. */
MIME_API void mime___ContentTypeStartup(void) PB_NOEXCEPT;
/** Library-internal: releases the table of registered spellings at module shut-down. */
MIME_API void mime___ContentTypeShutdown(void) PB_NOEXCEPT;

PB_END_DECLS

#endif
