// Internal: the header block of one part, read as mail readers read it.
#pragma once

#include <mime/mime_defect.hpp>
#include <mime/mime_part.hpp>

namespace mime::message {

struct Header {
    FieldList fields;
    PB_INT end = 0;       // where the header block ends (its empty line included)
    bool hasBody = false; // an empty line ended it, or a line that is no field
    bool limited = false; // it reached the size limit: the rest stays undecoded
};

// Reads the header block at b[from, end): fields up to the first empty line,
// or up to the first line that is no header field (which then starts the
// body), or up to maxBytes, noting each departure from the RFCs in defects.
// Offsets are those of b.
void readHeader(const PB_BYTE *b, PB_INT from, PB_INT end, PB_INT maxBytes, Header &header,
                DefectList &defects) noexcept;

} // namespace mime::message
