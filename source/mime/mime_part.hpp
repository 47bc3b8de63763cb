// Internal: how the tolerant reader builds a part.
#pragma once

#include <mime/mime_part.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_vector.h>

#include <string>
#include <vector>

namespace mime {

// One header field in the input: its name, and its value from after the colon
// to the end of its last line (folded, untrimmed). Offsets in the input.
struct FieldSpan {
    PB_INT name;
    PB_INT nameLength;
    PB_INT value;
    PB_INT end;
};

// The value text of a field: unfolded, trimmed, UTF-8 or else Latin-1.
PB_STRING *fieldValue(const PB_BYTE *input, const FieldSpan &field) noexcept;

// Everything a part holds, gathered by the reader; createPart takes it over.
// What is a view of the input (field values, the entity, a body that needs no
// decoding) is made when asked for, so that a part costs little memory.
struct PartContents {
    std::string number;
    PB_BUFFER *input = nullptr; // the outermost input, which field spans point into
    std::vector<FieldSpan> fields;
    PB_INT contentFields[MIME_ENTITY_FIELD_COUNT] = {-1, -1, -1, -1}; // the field read for each, or -1
    pb::Ref<MIME_CONTENT_TYPE> contentType;
    bool contentTypeImplied = false;
    pb::Ref<MIME_CONTENT_DISPOSITION> contentDisposition;
    pb::Ref<PB_STRING> contentId;
    MIME_CONTENT_TRANSFER_ENCODING transferEncoding = -1;
    bool hasBody = false;
    pb::Ref<PB_BUFFER> decodedBody; // null for a body that needs no decoding
    PB_INT offset = 0, length = 0, bodyOffset = 0, bodyLength = 0;
    pb::Ref<PB_VECTOR> children; // of MIME_PART, or null
    pb::Ref<PB_VECTOR> defects;  // of MIME_DEFECT, or null
};

MIME_PART *createPart(PartContents &contents) noexcept;

} // namespace mime
