// The part tree as `show` prints it: indented text, or JSON.
#pragma once

#include "tree.hpp"

#include <string>

namespace mimetool {

// One block per part: number and media type with parameters, then indented the
// disposition, Content-Id, transfer encoding and size, and the first line of a
// text part. Values are escaped for a terminal.
std::string treeText(const Part &message);
// One JSON object per part, with "parts" for the parts of a multipart entity.
std::string treeJson(const Part &message);

} // namespace mimetool
