// Internal: a multipart body split at its delimiter lines, as mail readers
// split it.
#pragma once

#include <mime/mime_defect.hpp>

#include <string_view>
#include <vector>

namespace mime::message {

struct Range {
    PB_INT start;
    PB_INT end;
};

struct Delimited {
    std::vector<Range> parts;
    bool found = false; // a delimiter line was found
};

// Splits b[from, end) at the lines that start with "--" boundary and carry at
// most padding after it (or "--" boundary "--" and anything: the close
// delimiter), the line end before each belonging to the delimiter. Without a
// close delimiter the last part runs to the end. At most maxParts parts are
// taken. Departures from the RFCs go to defects.
void splitMultipart(const PB_BYTE *b, PB_INT from, PB_INT end, std::string_view boundary, PB_INT maxParts,
                    Delimited &out, DefectList &defects) noexcept;

} // namespace mime::message
