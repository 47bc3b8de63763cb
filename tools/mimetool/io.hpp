// Reading the tool's input and writing its output.
#pragma once

#include "library.hpp"

#include <string>
#include <string_view>

namespace mimetool {

// The bytes of the file at path ("-": standard input).
Ref<PB_BUFFER> readFile(const std::string &path);
// Message files are often stored with the line ends of the system: content
// that holds no CR at all is read as if each LF were CR LF. Content with any CR
// is taken as it is.
Ref<PB_BUFFER> withWireLineEnds(Ref<PB_BUFFER> content);
// The embedded sample: the body of an emergency-call INVITE.
Ref<PB_BUFFER> sampleMessage();

// Standard output; a failed write is an input error (status 1).
void writeOut(std::string_view text);
void writeOut(PB_BUFFER *bytes);

} // namespace mimetool
