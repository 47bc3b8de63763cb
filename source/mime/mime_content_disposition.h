/** @file
 * MIME_CONTENT_DISPOSITION: the value of a Content-Disposition header field
 * (RFC 2183), a disposition type in lower case and parameters under lower-case
 * keys with their values exactly as given; the twin of MIME_CONTENT_TYPE.
 *
 * A type is accepted (mimeContentDispositionTypeOk) when it is not empty and
 * holds only ASCII letters, digits, "+", "-", ".", "_"; a null type is refused.
 * A parameter key is accepted (mimeContentDispositionParameterKeyOk) when it is
 * an RFC 2045 token. Types and keys are stored in lower case, so lookups ignore
 * case; values keep theirs.
 *
 * Values are shared by reference: the changing operations take the address of
 * the caller's reference and change a private copy when the value is shared, so
 * no other holder sees the change. Every returned object is a new reference that
 * the caller releases. Misuse (a null argument, a type or key that its rule
 * refuses) aborts with the failed condition; nothing here fails otherwise.
 *
 * Each operation that takes a PB_STRING has Cstr (UTF-8) and Wcstr (wide) forms
 * taking the text and its length (-1: up to the terminating NUL). */
#ifndef MIME_CONTENT_DISPOSITION_H
#define MIME_CONTENT_DISPOSITION_H

#include <mime/mime_api.h>
#include <mime/mime_defect.h>
#include <mime/mime_options.h>
#include <pb/pb_dict.h>
#include <pb/pb_sort.h>
#include <pb/pb_string.h>

#include <wchar.h>

PB_BEGIN_DECLS

typedef struct MIME_CONTENT_DISPOSITION MIME_CONTENT_DISPOSITION;

/** The sort record of MIME_CONTENT_DISPOSITION. */
MIME_API const PB_SORT *mimeContentDispositionSort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionRetain(MIME_CONTENT_DISPOSITION *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
MIME_API void mimeContentDispositionRelease(MIME_CONTENT_DISPOSITION *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
MIME_API PB_OBJ *mimeContentDispositionObj(MIME_CONTENT_DISPOSITION *obj) PB_NOEXCEPT;
/** obj as a MIME_CONTENT_DISPOSITION: the same pointer, no reference added; null passes. Aborts when obj is of
 * another sort. */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
MIME_API PB_STRING *mimeContentDispositionToString(MIME_CONTENT_DISPOSITION *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
MIME_API PB_INT mimeContentDispositionCompare(MIME_CONTENT_DISPOSITION *objA,
                                              MIME_CONTENT_DISPOSITION *objB) PB_NOEXCEPT;
/** Whether mimeContentDispositionCompare gives 0. */
MIME_API PB_BOOL mimeContentDispositionEquals(MIME_CONTENT_DISPOSITION *objA,
                                              MIME_CONTENT_DISPOSITION *objB) PB_NOEXCEPT;

/** Whether dispositionType is an acceptable disposition type (see above); false for null. */
MIME_API PB_BOOL mimeContentDispositionTypeOk(PB_STRING *dispositionType) PB_NOEXCEPT;
/** A new string: dispositionType in lower case. Aborts unless mimeContentDispositionTypeOk(dispositionType). */
MIME_API PB_STRING *mimeContentDispositionTypeNormalize(PB_STRING *dispositionType) PB_NOEXCEPT;
/** A new string: "Info-Package" for that type in any case, else dispositionType
 * in lower case. Aborts when dispositionType is refused by the type rule. */
MIME_API PB_STRING *mimeContentDispositionTypeToWireFormat(PB_STRING *dispositionType) PB_NOEXCEPT;
/** Whether key is an acceptable parameter key: an RFC 2045 token (printable
 * ASCII, no space, none of ()<>@,;:\"/[]?=), not empty. Aborts when key is null. */
MIME_API PB_BOOL mimeContentDispositionParameterKeyOk(PB_STRING *key) PB_NOEXCEPT;
/** A new string: key in lower case. Aborts unless mimeContentDispositionParameterKeyOk(key). */
MIME_API PB_STRING *mimeContentDispositionParameterKeyNormalize(PB_STRING *key) PB_NOEXCEPT;

/** A new Content-Disposition with the type in lower case and no parameters.
 * Aborts unless mimeContentDispositionTypeOk(dispositionType). */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionCreate(PB_STRING *dispositionType) PB_NOEXCEPT;
/** mimeContentDispositionCreate for dispositionType in UTF-8 (length -1: up to the NUL). */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionCreateCstr(const char *dispositionType,
                                                                    PB_INT length) PB_NOEXCEPT;
/** mimeContentDispositionCreate for dispositionType in wide characters (length -1: up to the NUL). */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionCreateWcstr(const wchar_t *dispositionType,
                                                                     PB_INT length) PB_NOEXCEPT;
/** A new Content-Disposition sharing the type and the parameters of source (a later
 * change to either copies first). Aborts when source is null. */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionCreateFrom(MIME_CONTENT_DISPOSITION *source) PB_NOEXCEPT;

/** The type, in lower case (a new reference). Aborts when disp is null. */
MIME_API PB_STRING *mimeContentDispositionType(MIME_CONTENT_DISPOSITION *disp) PB_NOEXCEPT;
/** Replaces the type by dispositionType in lower case; the parameters stay.
 * Aborts when disp or *disp is null, or unless mimeContentDispositionTypeOk(dispositionType). */
MIME_API void mimeContentDispositionSetType(MIME_CONTENT_DISPOSITION **disp, PB_STRING *dispositionType) PB_NOEXCEPT;
/** mimeContentDispositionSetType for dispositionType in UTF-8 (length -1: up to the NUL). */
MIME_API void mimeContentDispositionSetTypeCstr(MIME_CONTENT_DISPOSITION **disp, const char *dispositionType,
                                                PB_INT length) PB_NOEXCEPT;
/** mimeContentDispositionSetType for dispositionType in wide characters (length -1: up to the NUL). */
MIME_API void mimeContentDispositionSetTypeWcstr(MIME_CONTENT_DISPOSITION **disp, const wchar_t *dispositionType,
                                                 PB_INT length) PB_NOEXCEPT;

/** The value under key, of any case (a new reference), or null when there is
 * none. Aborts when disp is null or the key is refused by the key rule. */
MIME_API PB_STRING *mimeContentDispositionParameter(MIME_CONTENT_DISPOSITION *disp, PB_STRING *key) PB_NOEXCEPT;
/** mimeContentDispositionParameter for key in UTF-8 (length -1: up to the NUL). */
MIME_API PB_STRING *mimeContentDispositionParameterCstr(MIME_CONTENT_DISPOSITION *disp, const char *key,
                                                        PB_INT length) PB_NOEXCEPT;
/** mimeContentDispositionParameter for key in wide characters (length -1: up to the NUL). */
MIME_API PB_STRING *mimeContentDispositionParameterWcstr(MIME_CONTENT_DISPOSITION *disp, const wchar_t *key,
                                                         PB_INT length) PB_NOEXCEPT;
/** Whether a value is stored under key, of any case. Aborts as mimeContentDispositionParameter. */
MIME_API PB_BOOL mimeContentDispositionHasParameter(MIME_CONTENT_DISPOSITION *disp, PB_STRING *key) PB_NOEXCEPT;
/** mimeContentDispositionHasParameter for key in UTF-8 (length -1: up to the NUL). */
MIME_API PB_BOOL mimeContentDispositionHasParameterCstr(MIME_CONTENT_DISPOSITION *disp, const char *key,
                                                        PB_INT length) PB_NOEXCEPT;
/** mimeContentDispositionHasParameter for key in wide characters (length -1: up to the NUL). */
MIME_API PB_BOOL mimeContentDispositionHasParameterWcstr(MIME_CONTENT_DISPOSITION *disp, const wchar_t *key,
                                                         PB_INT length) PB_NOEXCEPT;
/** Stores value, unchecked and unchanged, under key in lower case, replacing an
 * earlier value under the key in any case. Aborts when disp, *disp or value is
 * null, or the key is refused by the key rule. */
MIME_API void mimeContentDispositionSetParameter(MIME_CONTENT_DISPOSITION **disp, PB_STRING *key,
                                                 PB_STRING *value) PB_NOEXCEPT;
/** mimeContentDispositionSetParameter for key in UTF-8 (length -1: up to the NUL). */
MIME_API void mimeContentDispositionSetParameterCstr(MIME_CONTENT_DISPOSITION **disp, const char *key, PB_INT length,
                                                     PB_STRING *value) PB_NOEXCEPT;
/** mimeContentDispositionSetParameter for key in wide characters (length -1: up to the NUL). */
MIME_API void mimeContentDispositionSetParameterWcstr(MIME_CONTENT_DISPOSITION **disp, const wchar_t *key,
                                                      PB_INT length, PB_STRING *value) PB_NOEXCEPT;
/** mimeContentDispositionSetParameter for the key and the value in UTF-8 (lengths -1: up to the NUL). */
MIME_API void mimeContentDispositionSetParameterCstrCstrValue(MIME_CONTENT_DISPOSITION **disp, const char *key,
                                                              PB_INT keyLength, const char *value,
                                                              PB_INT valueLength) PB_NOEXCEPT;
/** mimeContentDispositionSetParameter for the key in UTF-8 and the value in wide characters
 * (lengths -1: up to the NUL). */
MIME_API void mimeContentDispositionSetParameterCstrWcstrValue(MIME_CONTENT_DISPOSITION **disp, const char *key,
                                                               PB_INT keyLength, const wchar_t *value,
                                                               PB_INT valueLength) PB_NOEXCEPT;
/** mimeContentDispositionSetParameter for the key in wide characters and the value in UTF-8
 * (lengths -1: up to the NUL). */
MIME_API void mimeContentDispositionSetParameterWcstrCstrValue(MIME_CONTENT_DISPOSITION **disp, const wchar_t *key,
                                                               PB_INT keyLength, const char *value,
                                                               PB_INT valueLength) PB_NOEXCEPT;
/** mimeContentDispositionSetParameter for the key and the value in wide characters
 * (lengths -1: up to the NUL). */
MIME_API void mimeContentDispositionSetParameterWcstrWcstrValue(MIME_CONTENT_DISPOSITION **disp, const wchar_t *key,
                                                                PB_INT keyLength, const wchar_t *value,
                                                                PB_INT valueLength) PB_NOEXCEPT;
/** Removes the value under key, of any case, if there is one (a shared value is
 * copied all the same). Aborts when disp or *disp is null, or the key is refused
 * by the key rule. */
MIME_API void mimeContentDispositionDelParameter(MIME_CONTENT_DISPOSITION **disp, PB_STRING *key) PB_NOEXCEPT;
/** mimeContentDispositionDelParameter for key in UTF-8 (length -1: up to the NUL). */
MIME_API void mimeContentDispositionDelParameterCstr(MIME_CONTENT_DISPOSITION **disp, const char *key,
                                                     PB_INT length) PB_NOEXCEPT;
/** mimeContentDispositionDelParameter for key in wide characters (length -1: up to the NUL). */
MIME_API void mimeContentDispositionDelParameterWcstr(MIME_CONTENT_DISPOSITION **disp, const wchar_t *key,
                                                      PB_INT length) PB_NOEXCEPT;
/** Removes every parameter. Aborts when disp or *disp is null. */
MIME_API void mimeContentDispositionClearParameters(MIME_CONTENT_DISPOSITION **disp) PB_NOEXCEPT;

/** The parameters dictionary itself (a new reference, not a copy): lower-case
 * keys to values, in key order. Aborts when disp is null. */
MIME_API PB_DICT *mimeContentDispositionParametersDict(MIME_CONTENT_DISPOSITION *disp) PB_NOEXCEPT;
/** The number of parameters. Aborts when disp is null. */
MIME_API PB_INT mimeContentDispositionParametersLength(MIME_CONTENT_DISPOSITION *disp) PB_NOEXCEPT;
/** The key at index, 0 <= index < mimeContentDispositionParametersLength, in key order
 * (a new reference). Aborts when disp is null or index is out of range. */
MIME_API PB_STRING *mimeContentDispositionParameterKeyAt(MIME_CONTENT_DISPOSITION *disp, PB_INT index) PB_NOEXCEPT;
/** The value that belongs to the key at index (a new reference). Aborts as
 * mimeContentDispositionParameterKeyAt. */
MIME_API PB_STRING *mimeContentDispositionParameterValueAt(MIME_CONTENT_DISPOSITION *disp, PB_INT index) PB_NOEXCEPT;

/** The Content-Disposition a header value holds (a new reference), or null: a
 * type (a token or quoted string accepted by the type rule), then parameters
 * read as by mimeContentTypeTryDecode, with the same RFC 2231 flag. Aborts when
 * value or mo is null. */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecode(PB_STRING *value, MIME_OPTIONS *mo) PB_NOEXCEPT;
/** mimeContentDispositionTryDecode that also says why it fails, as
 * mimeContentTypeTryDecodeWithDefect does (code
 * MIME_DEFECT_CONTENT_DISPOSITION_INVALID). */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecodeWithDefect(PB_STRING *value, MIME_OPTIONS *mo,
                                                                             MIME_DEFECT **defect) PB_NOEXCEPT;
/** mimeContentDispositionTryDecode for value in UTF-8 (length -1: up to the NUL). */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecodeCstr(const char *value, PB_INT length,
                                                                       MIME_OPTIONS *mo) PB_NOEXCEPT;
/** mimeContentDispositionTryDecode for value in wide characters (length -1: up to the NUL). */
MIME_API MIME_CONTENT_DISPOSITION *mimeContentDispositionTryDecodeWcstr(const wchar_t *value, PB_INT length,
                                                                        MIME_OPTIONS *mo) PB_NOEXCEPT;
/** The header value (a new string): the registered spelling of the type, then
 * the parameters as mimeContentTypeEncode writes them; firstLineOffset is 21 for
 * "Content-Disposition: ". Aborts when contentDisposition or mo is null or
 * firstLineOffset is negative. */
MIME_API PB_STRING *mimeContentDispositionEncode(MIME_CONTENT_DISPOSITION *contentDisposition, MIME_OPTIONS *mo,
                                                 PB_INT firstLineOffset) PB_NOEXCEPT;

/** Library-internal: the table of registered spellings, built and released by
 * the module's start-up and shut-down. */
MIME_API void mime___ContentDispositionStartup(void) PB_NOEXCEPT;
/** Library-internal: releases the table of registered spellings at module shut-down. */
MIME_API void mime___ContentDispositionShutdown(void) PB_NOEXCEPT;

PB_END_DECLS

#endif
