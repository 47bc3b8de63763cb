/** @file
 * MIME_ENTITY: one MIME entity in wire form, the currency between entity
 * decoding and encoding and multipart packing and unpacking.
 *
 * Five optional fields, each absent (null) or holding one reference:
 *
 *   contentType              PB_STRING  wire-form value of Content-Type
 *   contentDisposition       PB_STRING  wire-form value of Content-Disposition
 *   contentTransferEncoding  PB_STRING  wire-form value of Content-Transfer-Encoding
 *   contentId                PB_STRING  wire-form value of Content-Id, brackets included
 *   body                     PB_BUFFER  body bytes, still transfer-encoded
 *
 * A wire-form value is the text after the field name, the colon and the white
 * space; it may be folded. The entity parses and checks nothing: the setters
 * refuse only null. An absent body and an empty body are different states.
 *
 * Entities are values: setters and deleters take the address of the caller's
 * reference and change a private copy when the entity is shared. Getters return
 * new references, or null for an absent field. The sort has no compare and no
 * to-string function of its own: the runtime's defaults apply. */
#ifndef MIME_ENTITY_H
#define MIME_ENTITY_H

#include <mime/mime_api.h>
#include <pb/pb_buffer.h>
#include <pb/pb_sort.h>
#include <pb/pb_string.h>

PB_BEGIN_DECLS

typedef struct MIME_ENTITY MIME_ENTITY;

/** The sort record of MIME_ENTITY. */
MIME_API const PB_SORT *mimeEntitySort(void) PB_NOEXCEPT;
/** Adds a reference to obj and returns it. Aborts when obj is null. */
MIME_API MIME_ENTITY *mimeEntityRetain(MIME_ENTITY *obj) PB_NOEXCEPT;
/** Drops a reference to obj, freeing it with the last. Aborts when obj is null. */
MIME_API void mimeEntityRelease(MIME_ENTITY *obj) PB_NOEXCEPT;
/** obj as a base object: the same pointer, no reference added. */
MIME_API PB_OBJ *mimeEntityObj(MIME_ENTITY *obj) PB_NOEXCEPT;
/** obj as a MIME_ENTITY: the same pointer, no reference added; null passes. Aborts when obj is of another sort. */
MIME_API MIME_ENTITY *mimeEntityFrom(PB_OBJ *obj) PB_NOEXCEPT;
/** A new string describing obj (pbObjToString). Aborts when obj is null. */
MIME_API PB_STRING *mimeEntityToString(MIME_ENTITY *obj) PB_NOEXCEPT;
/** -1, 0 or 1 as objA orders before, with or after objB, in the sort's order. Aborts when either is null. */
MIME_API PB_INT mimeEntityCompare(MIME_ENTITY *objA, MIME_ENTITY *objB) PB_NOEXCEPT;
/** Whether mimeEntityCompare gives 0. */
MIME_API PB_BOOL mimeEntityEquals(MIME_ENTITY *objA, MIME_ENTITY *objB) PB_NOEXCEPT;

/** The number of header fields an entity holds. */
#define MIME_ENTITY_FIELD_COUNT 4

/** The name of header field index as it is written (static text): 0
 * "Content-Type", 1 "Content-Disposition", 2 "Content-Transfer-Encoding", 3
 * "Content-Id", the order in which a packed part writes them. Aborts unless
 * 0 <= index < MIME_ENTITY_FIELD_COUNT. */
MIME_API const char *mimeEntityFieldName(PB_INT index) PB_NOEXCEPT;

/** Where each field's value starts on its line: the length of the name, the
 * colon and one space, as the encoders take it for firstLineOffset. */
#define MIME_FIRST_LINE_OFFSET_CONTENT_TYPE 14              /* "Content-Type: " */
#define MIME_FIRST_LINE_OFFSET_CONTENT_DISPOSITION 21       /* "Content-Disposition: " */
#define MIME_FIRST_LINE_OFFSET_CONTENT_TRANSFER_ENCODING 27 /* "Content-Transfer-Encoding: " */

/** A new entity with every field absent. */
MIME_API MIME_ENTITY *mimeEntityCreate(void) PB_NOEXCEPT;
/** A new entity holding the same five objects as source. */
MIME_API MIME_ENTITY *mimeEntityCreateFrom(MIME_ENTITY *source) PB_NOEXCEPT;

/** The Content-Type value: a new reference, or null when absent; whether it is
 * present; set it (the value must not be null; the entity takes its own
 * reference, or copies the text); delete it (absent stays absent). */
MIME_API PB_STRING *mimeEntityContentType(MIME_ENTITY *ent) PB_NOEXCEPT;
/** Whether the Content-Type value is present. Aborts when ent is null. */
MIME_API PB_BOOL mimeEntityHasContentType(MIME_ENTITY *ent) PB_NOEXCEPT;
/** Sets the Content-Type value (the entity takes its own reference). Aborts when ent, *ent or contentType is null. */
MIME_API void mimeEntitySetContentType(MIME_ENTITY **ent, PB_STRING *contentType) PB_NOEXCEPT;
/** mimeEntitySetContentType for text in UTF-8 (length -1: up to the NUL). */
MIME_API void mimeEntitySetContentTypeCstr(MIME_ENTITY **ent, const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeEntitySetContentType for text in wide characters (length -1: up to the NUL). */
MIME_API void mimeEntitySetContentTypeWcstr(MIME_ENTITY **ent, const wchar_t *text, PB_INT length) PB_NOEXCEPT;
/** Removes the Content-Type value; absent stays absent. Aborts when ent or *ent is null. */
MIME_API void mimeEntityDelContentType(MIME_ENTITY **ent) PB_NOEXCEPT;

/** The Content-Disposition value: a new reference, or null when absent; whether it is
 * present; set it (the value must not be null; the entity takes its own
 * reference, or copies the text); delete it (absent stays absent). */
MIME_API PB_STRING *mimeEntityContentDisposition(MIME_ENTITY *ent) PB_NOEXCEPT;
/** Whether the Content-Disposition value is present. Aborts when ent is null. */
MIME_API PB_BOOL mimeEntityHasContentDisposition(MIME_ENTITY *ent) PB_NOEXCEPT;
/** Sets the Content-Disposition value (the entity takes its own reference). Aborts when ent, *ent or
 * contentDisposition is null. */
MIME_API void mimeEntitySetContentDisposition(MIME_ENTITY **ent, PB_STRING *contentDisposition) PB_NOEXCEPT;
/** mimeEntitySetContentDisposition for text in UTF-8 (length -1: up to the NUL). */
MIME_API void mimeEntitySetContentDispositionCstr(MIME_ENTITY **ent, const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeEntitySetContentDisposition for text in wide characters (length -1: up to the NUL). */
MIME_API void mimeEntitySetContentDispositionWcstr(MIME_ENTITY **ent, const wchar_t *text, PB_INT length) PB_NOEXCEPT;
/** Removes the Content-Disposition value; absent stays absent. Aborts when ent or *ent is null. */
MIME_API void mimeEntityDelContentDisposition(MIME_ENTITY **ent) PB_NOEXCEPT;

/** The Content-Transfer-Encoding value: a new reference, or null when absent; whether it is
 * present; set it (the value must not be null; the entity takes its own
 * reference, or copies the text); delete it (absent stays absent). */
MIME_API PB_STRING *mimeEntityContentTransferEncoding(MIME_ENTITY *ent) PB_NOEXCEPT;
/** Whether the Content-Transfer-Encoding value is present. Aborts when ent is null. */
MIME_API PB_BOOL mimeEntityHasContentTransferEncoding(MIME_ENTITY *ent) PB_NOEXCEPT;
/** Sets the Content-Transfer-Encoding value (the entity takes its own reference). Aborts when ent, *ent or
 * contentTransferEncoding is null. */
MIME_API void mimeEntitySetContentTransferEncoding(MIME_ENTITY **ent, PB_STRING *contentTransferEncoding) PB_NOEXCEPT;
/** mimeEntitySetContentTransferEncoding for text in UTF-8 (length -1: up to the NUL). */
MIME_API void mimeEntitySetContentTransferEncodingCstr(MIME_ENTITY **ent, const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeEntitySetContentTransferEncoding for text in wide characters (length -1: up to the NUL). */
MIME_API void mimeEntitySetContentTransferEncodingWcstr(MIME_ENTITY **ent, const wchar_t *text,
                                                        PB_INT length) PB_NOEXCEPT;
/** Removes the Content-Transfer-Encoding value; absent stays absent. Aborts when ent or *ent is null. */
MIME_API void mimeEntityDelContentTransferEncoding(MIME_ENTITY **ent) PB_NOEXCEPT;

/** The Content-Id value: a new reference, or null when absent; whether it is
 * present; set it (the value must not be null; the entity takes its own
 * reference, or copies the text); delete it (absent stays absent). */
MIME_API PB_STRING *mimeEntityContentId(MIME_ENTITY *ent) PB_NOEXCEPT;
/** Whether the Content-Id value is present. Aborts when ent is null. */
MIME_API PB_BOOL mimeEntityHasContentId(MIME_ENTITY *ent) PB_NOEXCEPT;
/** Sets the Content-Id value (the entity takes its own reference). Aborts when ent, *ent or contentId is null. */
MIME_API void mimeEntitySetContentId(MIME_ENTITY **ent, PB_STRING *contentId) PB_NOEXCEPT;
/** mimeEntitySetContentId for text in UTF-8 (length -1: up to the NUL). */
MIME_API void mimeEntitySetContentIdCstr(MIME_ENTITY **ent, const char *text, PB_INT length) PB_NOEXCEPT;
/** mimeEntitySetContentId for text in wide characters (length -1: up to the NUL). */
MIME_API void mimeEntitySetContentIdWcstr(MIME_ENTITY **ent, const wchar_t *text, PB_INT length) PB_NOEXCEPT;
/** Removes the Content-Id value; absent stays absent. Aborts when ent or *ent is null. */
MIME_API void mimeEntityDelContentId(MIME_ENTITY **ent) PB_NOEXCEPT;

/** The body bytes, still transfer-encoded: a new reference, or null when absent;
 * whether it is present; set it (not null; the buffer is shared, not copied);
 * delete it. */
MIME_API PB_BUFFER *mimeEntityBody(MIME_ENTITY *ent) PB_NOEXCEPT;
/** Whether a body is present (an empty body is present). Aborts when ent is null. */
MIME_API PB_BOOL mimeEntityHasBody(MIME_ENTITY *ent) PB_NOEXCEPT;
/** Sets the body (the buffer is shared, not copied). Aborts when ent, *ent or body is null. */
MIME_API void mimeEntitySetBody(MIME_ENTITY **ent, PB_BUFFER *body) PB_NOEXCEPT;
/** Removes the body; absent stays absent. Aborts when ent or *ent is null. */
MIME_API void mimeEntityDelBody(MIME_ENTITY **ent) PB_NOEXCEPT;

PB_END_DECLS

#endif
