// Internal: the pattern every sort of the runtime and of the libraries built on it
// follows. One static sort record and eight standard functions per sort:
//
//   PB___SORT_DEFINE(mime, ContentType, MIME_CONTENT_TYPE, &mime___module,
//                    mime___ContentTypeFreeFunc, mime___ContentTypeCompareFunc,
//                    mime___ContentTypeToStringFunc)
//
// defines the record mime___sort_MIME_CONTENT_TYPE and mimeContentTypeSort,
// ...Retain, ...Release, ...Obj, ...From, ...ToString, ...Compare and ...Equals.
// The callbacks must be declared before, inside extern "C" { static ... }.
#pragma once

#include <pb/pb_obj.hpp>

#define PB___SORT_RECORD(module, NAME, freeFunc, compareFunc, toStringFunc) \
    { \
        PB_OBJ_HEADER_STATIC(PB_OBJ_KIND_SORT), (module), #NAME, (freeFunc), (compareFunc), (toStringFunc), {} \
    }

#define PB___SORT_DEFINE(prefix, Name, NAME, module, freeFunc, compareFunc, toStringFunc) \
    static constinit const PB_SORT prefix##___sort_##NAME = \
        PB___SORT_RECORD(module, NAME, freeFunc, compareFunc, toStringFunc); \
    PB___SORT_STDFUNCS(prefix, Name, NAME, NAME)

#define PB___SORT_STDFUNCS(prefix, Name, NAME, TYPE) \
    const PB_SORT *prefix##Name##Sort(void) noexcept \
    { \
        return &prefix##___sort_##NAME; \
    } \
    TYPE *prefix##Name##Retain(TYPE *obj) noexcept \
    { \
        if (!obj) \
            pb___Abort("stdfunc retain", __FILE__, __LINE__, "obj"); \
        pb::retain(obj); \
        return obj; \
    } \
    void prefix##Name##Release(TYPE *obj) noexcept \
    { \
        if (!obj) \
            pb___Abort("stdfunc release", __FILE__, __LINE__, "obj"); \
        pb::release(obj); \
    } \
    PB_OBJ *prefix##Name##Obj(TYPE *obj) noexcept \
    { \
        return reinterpret_cast<PB_OBJ *>(obj); \
    } \
    TYPE *prefix##Name##From(PB_OBJ *obj) noexcept \
    { \
        if (obj && pbObjSort(obj) != &prefix##___sort_##NAME) \
            pb___Abort("stdfunc from", __FILE__, __LINE__, "!obj || pbObjSort(obj)==&" #prefix "___sort_" #NAME); \
        return reinterpret_cast<TYPE *>(obj); \
    } \
    PB_STRING *prefix##Name##ToString(TYPE *obj) noexcept \
    { \
        if (!obj) \
            pb___Abort("stdfunc tostring", __FILE__, __LINE__, "obj"); \
        return pbObjToString(reinterpret_cast<PB_OBJ *>(obj)); \
    } \
    PB_INT prefix##Name##Compare(TYPE *objA, TYPE *objB) noexcept \
    { \
        if (!objA) \
            pb___Abort("stdfunc compare a", __FILE__, __LINE__, "objA"); \
        if (!objB) \
            pb___Abort("stdfunc compare b", __FILE__, __LINE__, "objB"); \
        return pbObjCompare(reinterpret_cast<PB_OBJ *>(objA), reinterpret_cast<PB_OBJ *>(objB)); \
    } \
    PB_BOOL prefix##Name##Equals(TYPE *objA, TYPE *objB) noexcept \
    { \
        return pbObjCompare(reinterpret_cast<PB_OBJ *>(objA), reinterpret_cast<PB_OBJ *>(objB)) == 0; \
    }
