// The library as the tool uses it: the C interface, and the C++ interface
// over it (mime::Ref holds each reference the tool takes).
#pragma once

#include <mime/mime.hpp>

namespace mimetool {

using mime::adopt;
using mime::Ref;

} // namespace mimetool
