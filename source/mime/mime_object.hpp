// Internal: the conventions every value type of the library follows, so that a
// type declares itself in a few lines.
//
//   MIME___SORT_DEFINE(ContentType, MIME_CONTENT_TYPE, mime___ContentTypeFreeFunc,
//                      mime___ContentTypeCompareFunc, mime___ContentTypeToStringFunc)
//
// defines the static sort record mime___sort_MIME_CONTENT_TYPE (owned by the
// module object) and the eight standard functions mimeContentTypeSort, ...Retain,
// ...Release, ...Obj, ...From, ...ToString, ...Compare, ...Equals, with the abort
// texts "stdfunc retain" and so on. A changing operation checks its reference
// with PB_ASSERT_REF(type) (conditions "type", "*type"), then its value
// arguments, then unshares with PB_OBJ_UNSHARE((*type), mimeContentTypeCreateFrom)
// (condition "((*type))"), then changes fields with pb::setField. Cstr/Wcstr
// variants wrap their text in pb::Text (pb_text.hpp).
#pragma once

#include <mime/mime_module.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_sort.hpp>
#include <pb/pb_text.hpp>

#define MIME___SORT_DEFINE(Name, NAME, freeFunc, compareFunc, toStringFunc) \
    PB___SORT_DEFINE(mime, Name, NAME, &mime___module, freeFunc, compareFunc, toStringFunc)
