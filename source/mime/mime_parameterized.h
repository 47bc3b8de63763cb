/** @file
 * The operations that Content-Type and Content-Disposition values share: a
 * label (the media type name, or the disposition type) kept in lower case, and
 * parameters kept in a dictionary under lower-case keys (RFC 2045 tokens) with
 * their values exactly as given. Each header declares its operations with
 *
 *   MIME___PARAMETERIZED_DECL(ContentType, MIME_CONTENT_TYPE, Name)
 *
 * which declares, for the label:
 *   PB_BOOL     mimeContentTypeNameOk(PB_STRING *name)            the label's rule
 *   PB_STRING  *mimeContentTypeNameNormalize(PB_STRING *name)     lower case; must be Ok
 *   PB_STRING  *mimeContentTypeNameToWireFormat(PB_STRING *name)  registered spelling, else lower case
 *   NAME       *mimeContentTypeCreate(PB_STRING *name)  (+ Cstr, Wcstr)
 *   NAME       *mimeContentTypeCreateFrom(NAME *source)           shares name and parameters
 *   PB_STRING  *mimeContentTypeName(NAME *type)
 *   void        mimeContentTypeSetName(NAME **type, PB_STRING *name)  (+ Cstr, Wcstr)
 * and for the parameters (keys normalised first, so case never matters):
 *   PB_BOOL     mimeContentTypeParameterKeyOk(PB_STRING *key)     an RFC 2045 token
 *   PB_STRING  *mimeContentTypeParameterKeyNormalize(PB_STRING *key)
 *   PB_STRING  *mimeContentTypeParameter(NAME *type, PB_STRING *key)     null when absent
 *   PB_BOOL     mimeContentTypeHasParameter(NAME *type, PB_STRING *key)
 *   void        mimeContentTypeSetParameter(NAME **type, PB_STRING *key, PB_STRING *value)
 *   void        mimeContentTypeDelParameter(NAME **type, PB_STRING *key)
 *   void        mimeContentTypeClearParameters(NAME **type)
 *   PB_DICT    *mimeContentTypeParametersDict(NAME *type)         the dictionary itself
 *   PB_INT      mimeContentTypeParametersLength(NAME *type)
 *   PB_STRING  *mimeContentTypeParameterKeyAt(NAME *type, PB_INT index)   in key order
 *   PB_STRING  *mimeContentTypeParameterValueAt(NAME *type, PB_INT index)
 * with Cstr and Wcstr forms of the key-taking ones (text, length; -1: up to the
 * NUL), and SetParameterCstrCstrValue, ...CstrWcstrValue, ...WcstrCstrValue,
 * ...WcstrWcstrValue taking key and value as text. Changing operations take the
 * address of the caller's reference and change a private copy when the value is
 * shared. Every returned object is a new reference. */
#ifndef MIME_PARAMETERIZED_H
#define MIME_PARAMETERIZED_H

#include <mime/mime_api.h>
#include <pb/pb_dict.h>
#include <pb/pb_sort.h>
#include <pb/pb_string.h>

#include <wchar.h>

#define MIME___PARAMETERIZED_TEXT_DECL(Ret, Op, Before, After) \
    MIME_API Ret Op##Cstr(Before const char *text, PB_INT length After) PB_NOEXCEPT; \
    MIME_API Ret Op##Wcstr(Before const wchar_t *text, PB_INT length After) PB_NOEXCEPT;

#define MIME___PARAMETERIZED_COMMA ,

#define MIME___PARAMETERIZED_DECL(Name, NAME, Label) \
    PB_SORT_STDFUNCS_DECL(MIME_API, mime, Name, NAME) \
    MIME_API PB_BOOL mime##Name##Label##Ok(PB_STRING *label) PB_NOEXCEPT; \
    MIME_API PB_STRING *mime##Name##Label##Normalize(PB_STRING *label) PB_NOEXCEPT; \
    MIME_API PB_STRING *mime##Name##Label##ToWireFormat(PB_STRING *label) PB_NOEXCEPT; \
    MIME_API NAME *mime##Name##Create(PB_STRING *label) PB_NOEXCEPT; \
    MIME___PARAMETERIZED_TEXT_DECL(NAME *, mime##Name##Create, , ) \
    MIME_API NAME *mime##Name##CreateFrom(NAME *source) PB_NOEXCEPT; \
    MIME_API PB_STRING *mime##Name##Label(NAME *obj) PB_NOEXCEPT; \
    MIME_API void mime##Name##Set##Label(NAME **obj, PB_STRING *label) PB_NOEXCEPT; \
    MIME___PARAMETERIZED_TEXT_DECL(void, mime##Name##Set##Label, NAME **obj MIME___PARAMETERIZED_COMMA, ) \
    MIME_API PB_BOOL mime##Name##ParameterKeyOk(PB_STRING *key) PB_NOEXCEPT; \
    MIME_API PB_STRING *mime##Name##ParameterKeyNormalize(PB_STRING *key) PB_NOEXCEPT; \
    MIME_API PB_STRING *mime##Name##Parameter(NAME *obj, PB_STRING *key) PB_NOEXCEPT; \
    MIME___PARAMETERIZED_TEXT_DECL(PB_STRING *, mime##Name##Parameter, NAME *obj MIME___PARAMETERIZED_COMMA, ) \
    MIME_API PB_BOOL mime##Name##HasParameter(NAME *obj, PB_STRING *key) PB_NOEXCEPT; \
    MIME___PARAMETERIZED_TEXT_DECL(PB_BOOL, mime##Name##HasParameter, NAME *obj MIME___PARAMETERIZED_COMMA, ) \
    MIME_API void mime##Name##SetParameter(NAME **obj, PB_STRING *key, PB_STRING *value) PB_NOEXCEPT; \
    MIME___PARAMETERIZED_TEXT_DECL(void, mime##Name##SetParameter, NAME **obj MIME___PARAMETERIZED_COMMA, \
                                   MIME___PARAMETERIZED_COMMA PB_STRING *value) \
    MIME_API void mime##Name##SetParameterCstrCstrValue(NAME **obj, const char *key, PB_INT keyLength, \
                                                        const char *value, PB_INT valueLength) PB_NOEXCEPT; \
    MIME_API void mime##Name##SetParameterCstrWcstrValue(NAME **obj, const char *key, PB_INT keyLength, \
                                                         const wchar_t *value, PB_INT valueLength) PB_NOEXCEPT; \
    MIME_API void mime##Name##SetParameterWcstrCstrValue(NAME **obj, const wchar_t *key, PB_INT keyLength, \
                                                         const char *value, PB_INT valueLength) PB_NOEXCEPT; \
    MIME_API void mime##Name##SetParameterWcstrWcstrValue(NAME **obj, const wchar_t *key, PB_INT keyLength, \
                                                          const wchar_t *value, PB_INT valueLength) PB_NOEXCEPT; \
    MIME_API void mime##Name##DelParameter(NAME **obj, PB_STRING *key) PB_NOEXCEPT; \
    MIME___PARAMETERIZED_TEXT_DECL(void, mime##Name##DelParameter, NAME **obj MIME___PARAMETERIZED_COMMA, ) \
    MIME_API void mime##Name##ClearParameters(NAME **obj) PB_NOEXCEPT; \
    MIME_API PB_DICT *mime##Name##ParametersDict(NAME *obj) PB_NOEXCEPT; \
    MIME_API PB_INT mime##Name##ParametersLength(NAME *obj) PB_NOEXCEPT; \
    MIME_API PB_STRING *mime##Name##ParameterKeyAt(NAME *obj, PB_INT index) PB_NOEXCEPT; \
    MIME_API PB_STRING *mime##Name##ParameterValueAt(NAME *obj, PB_INT index) PB_NOEXCEPT; \
    MIME_API void mime___##Name##Startup(void) PB_NOEXCEPT; \
    MIME_API void mime___##Name##Shutdown(void) PB_NOEXCEPT;

#endif
