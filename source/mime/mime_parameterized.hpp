// Internal: the implementation behind MIME___PARAMETERIZED_DECL. A type with a
// label and parameters defines itself with
//
//   MIME___PARAMETERIZED_DEFINE(ContentType, MIME_CONTENT_TYPE, type, Name, name, name,
//                               mime___ContentTypeNameWireFormatDict, PB_ASSERT( name ))
//
// given a struct NAME { PB_OBJ_HEADER header; PB_STRING *field; PB_DICT *parameters; },
// its rule mime<Name><Label>Ok written by hand, and the table of registered
// spellings. obj and label are the argument names that the abort conditions
// show ("type", "*type", "((*type))", "mimeContentTypeNameOk( name )"); the
// last argument is what SetLabel checks before the rule (may be empty).
#pragma once

#include <mime/mime_object.hpp>
#include <mime/mime_parameterized.h>
#include <pb/pb_dict.h>

namespace mime::parameterized {

// RFC 2045 token: printable ASCII without space and tspecials, not empty.
bool keyOk(PB_STRING *key) noexcept;
// A new string: s in lower case.
PB_STRING *lowered(PB_STRING *s) noexcept;
// The registered spelling of a normalised label, or a new reference to it.
PB_STRING *wireFormat(PB_DICT *table, PB_STRING *normalized) noexcept;
// A table of registered spellings, keyed by their lower-case forms.
PB_DICT *wireFormatTable(const char *const *spellings, size_t count) noexcept;
// Order: label, then parameters; absent before present.
PB_INT compare(PB_STRING *labelA, PB_DICT *parametersA, PB_STRING *labelB, PB_DICT *parametersB) noexcept;
// "label {k=v, ...}", or the label alone without parameters.
PB_STRING *text(PB_STRING *label, PB_DICT *parameters) noexcept;

} // namespace mime::parameterized

// SetParameter<Key>Cstr/Wcstr<Value>Value: key and value as text.
#define MIME___PARAMETERIZED_SET_TEXT_VALUE(Name, NAME, obj, KeySuffix, KeyChar, ValueSuffix, ValueChar) \
    void mime##Name##SetParameter##KeySuffix##ValueSuffix##Value(NAME **obj, const KeyChar *key, PB_INT keyLength, \
                                                                 const ValueChar *value, PB_INT valueLength) noexcept \
    { \
        pb::withText(value, valueLength, [&](PB_STRING *v) { \
            pb::withText(key, keyLength, [&](PB_STRING *k) { mime##Name##SetParameter(obj, k, v); }); \
        }); \
    }

#define MIME___PARAMETERIZED_DEFINE(Name, NAME, obj, Label, label, field, table, setLabelCheck) \
    static PB_DICT *table = nullptr; \
    namespace { \
    extern "C" { \
    static void mime___##Name##FreeFunc(PB_OBJ *o) noexcept; \
    static PB_INT mime___##Name##CompareFunc(PB_OBJ *this##Name, PB_OBJ *that##Name) noexcept; \
    static PB_STRING *mime___##Name##ToStringFunc(PB_OBJ *o) noexcept; \
    } \
    } \
    MIME___SORT_DEFINE(Name, NAME, mime___##Name##FreeFunc, mime___##Name##CompareFunc, mime___##Name##ToStringFunc) \
    namespace { \
    void mime___##Name##FreeFunc(PB_OBJ *o) noexcept \
    { \
        NAME *obj = mime##Name##From(o); \
        pb::releaseField(obj->field); \
        pb::releaseField(obj->parameters); \
    } \
    PB_INT mime___##Name##CompareFunc(PB_OBJ *this##Name, PB_OBJ *that##Name) noexcept \
    { \
        PB_ASSERT( this##Name ); \
        PB_ASSERT( that##Name ); \
        NAME *a = mime##Name##From(this##Name), *b = mime##Name##From(that##Name); \
        return mime::parameterized::compare(a->field, a->parameters, b->field, b->parameters); \
    } \
    PB_STRING *mime___##Name##ToStringFunc(PB_OBJ *o) noexcept \
    { \
        NAME *obj = mime##Name##From(o); \
        return mime::parameterized::text(obj->field, obj->parameters); \
    } \
    /* The key normalised, for the parameter operations. */ \
    pb::Ref<PB_STRING> mime___##Name##Key(PB_STRING *key) noexcept \
    { \
        return pb::adopt(mime##Name##ParameterKeyNormalize(key)); \
    } \
    /* For the decoder: a new value from a label and parameters under keys */ \
    /* that are already normalised. */ \
    [[maybe_unused]] NAME *mime___##Name##CreateNormalized(PB_STRING *normalized, PB_DICT *parameters) noexcept \
    { \
        auto *obj = pb::create<NAME>(mime##Name##Sort()); \
        obj->field = nullptr; \
        obj->parameters = nullptr; \
        pb::setField(obj->field, normalized); \
        pb::setField(obj->parameters, parameters); \
        return obj; \
    } \
    } \
    PB_STRING *mime##Name##Label##Normalize(PB_STRING *label) noexcept \
    { \
        PB_ASSERT( mime##Name##Label##Ok( label ) ); \
        return mime::parameterized::lowered(label); \
    } \
    PB_STRING *mime##Name##Label##ToWireFormat(PB_STRING *label) noexcept \
    { \
        PB_ASSERT( label ); \
        pb::Ref<PB_STRING> normalized = pb::adopt(mime##Name##Label##Normalize(label)); \
        return mime::parameterized::wireFormat(table, normalized.get()); \
    } \
    NAME *mime##Name##Create(PB_STRING *label) noexcept \
    { \
        auto *obj = pb::create<NAME>(mime##Name##Sort()); \
        obj->field = mime##Name##Label##Normalize(label); \
        obj->parameters = pbDictCreate(); \
        return obj; \
    } \
    PB___TEXT_VARIANTS(NAME *, mime##Name##Create, (), (), (), ()) \
    NAME *mime##Name##CreateFrom(NAME *source) noexcept \
    { \
        PB_ASSERT( source ); \
        auto *obj = pb::create<NAME>(mime##Name##Sort()); \
        obj->field = nullptr; \
        obj->parameters = nullptr; \
        pb::setField(obj->field, source->field); \
        pb::setField(obj->parameters, source->parameters); \
        return obj; \
    } \
    PB_STRING *mime##Name##Label(NAME *obj) noexcept \
    { \
        PB_ASSERT( obj ); \
        pb::retain(obj->field); \
        return obj->field; \
    } \
    void mime##Name##Set##Label(NAME **obj, PB_STRING *label) noexcept \
    { \
        PB_ASSERT_REF(obj); \
        setLabelCheck; \
        PB_ASSERT( mime##Name##Label##Ok( label ) ); \
        PB_OBJ_UNSHARE((*obj), mime##Name##CreateFrom); \
        pb::Ref<PB_STRING> normalized = pb::adopt(mime##Name##Label##Normalize(label)); \
        pb::setField((*obj)->field, normalized.get()); \
    } \
    PB___TEXT_VARIANTS(void, mime##Name##Set##Label, (NAME * *obj, ), (obj, ), (), ()) \
    PB_BOOL mime##Name##ParameterKeyOk(PB_STRING *key) noexcept \
    { \
        return mime::parameterized::keyOk(key); \
    } \
    PB_STRING *mime##Name##ParameterKeyNormalize(PB_STRING *key) noexcept \
    { \
        PB_ASSERT( mime##Name##ParameterKeyOk( key ) ); \
        return mime::parameterized::lowered(key); \
    } \
    PB_STRING *mime##Name##Parameter(NAME *obj, PB_STRING *key) noexcept \
    { \
        PB_ASSERT( obj ); \
        return pbStringFrom(pbDictStringKey(obj->parameters, mime___##Name##Key(key).get())); \
    } \
    PB___TEXT_VARIANTS(PB_STRING *, mime##Name##Parameter, (NAME * obj, ), (obj, ), (), ()) \
    PB_BOOL mime##Name##HasParameter(NAME *obj, PB_STRING *key) noexcept \
    { \
        PB_ASSERT( obj ); \
        return pbDictHasStringKey(obj->parameters, mime___##Name##Key(key).get()); \
    } \
    PB___TEXT_VARIANTS(PB_BOOL, mime##Name##HasParameter, (NAME * obj, ), (obj, ), (), ()) \
    void mime##Name##SetParameter(NAME **obj, PB_STRING *key, PB_STRING *value) noexcept \
    { \
        PB_ASSERT_REF(obj); \
        PB_ASSERT( value ); \
        pb::Ref<PB_STRING> normalized = mime___##Name##Key(key); \
        PB_OBJ_UNSHARE((*obj), mime##Name##CreateFrom); \
        pbDictSetStringKey(&(*obj)->parameters, normalized.get(), pbStringObj(value)); \
    } \
    PB___TEXT_VARIANTS(void, mime##Name##SetParameter, (NAME * *obj, ), (obj, ), (, PB_STRING * value), (, value)) \
    MIME___PARAMETERIZED_SET_TEXT_VALUE(Name, NAME, obj, Cstr, char, Cstr, char) \
    MIME___PARAMETERIZED_SET_TEXT_VALUE(Name, NAME, obj, Cstr, char, Wcstr, wchar_t) \
    MIME___PARAMETERIZED_SET_TEXT_VALUE(Name, NAME, obj, Wcstr, wchar_t, Cstr, char) \
    MIME___PARAMETERIZED_SET_TEXT_VALUE(Name, NAME, obj, Wcstr, wchar_t, Wcstr, wchar_t) \
    void mime##Name##DelParameter(NAME **obj, PB_STRING *key) noexcept \
    { \
        PB_ASSERT_REF(obj); \
        pb::Ref<PB_STRING> normalized = mime___##Name##Key(key); \
        PB_OBJ_UNSHARE((*obj), mime##Name##CreateFrom); \
        pbDictDelStringKey(&(*obj)->parameters, normalized.get()); \
    } \
    PB___TEXT_VARIANTS(void, mime##Name##DelParameter, (NAME * *obj, ), (obj, ), (), ()) \
    void mime##Name##ClearParameters(NAME **obj) noexcept \
    { \
        PB_ASSERT_REF(obj); \
        PB_OBJ_UNSHARE((*obj), mime##Name##CreateFrom); \
        pbDictClear(&(*obj)->parameters); \
    } \
    PB_DICT *mime##Name##ParametersDict(NAME *obj) noexcept \
    { \
        PB_ASSERT( obj ); \
        pb::retain(obj->parameters); \
        return obj->parameters; \
    } \
    PB_INT mime##Name##ParametersLength(NAME *obj) noexcept \
    { \
        PB_ASSERT( obj ); \
        return pbDictLength(obj->parameters); \
    } \
    PB_STRING *mime##Name##ParameterKeyAt(NAME *obj, PB_INT index) noexcept \
    { \
        PB_ASSERT( obj ); \
        return pbStringFrom(pbDictKeyAt(obj->parameters, index)); \
    } \
    PB_STRING *mime##Name##ParameterValueAt(NAME *obj, PB_INT index) noexcept \
    { \
        PB_ASSERT( obj ); \
        return pbStringFrom(pbDictValueAt(obj->parameters, index)); \
    } \
    void mime___##Name##Shutdown(void) noexcept \
    { \
        pb::releaseField(table); \
    }
