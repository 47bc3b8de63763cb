#include <mime/mime_char.hpp>
#include <mime/mime_shf_scanner.hpp>

namespace mime {

using namespace chars;

PB_INT ShfScanner::delimitedEnd(PB_INT from, PB_CHAR close, bool comment, bool &escaped) const noexcept
{
    PB_INT depth = 1;
    for (PB_INT k = from + 1; k < length_; ++k) {
        PB_CHAR c = chars_[k];
        if (c > ']') // above every character that matters here
            continue;
        if (c == '\\') {
            if (k == length_ - 1)
                return -1;
            escaped = true;
            ++k; // the escaped character, whatever it is
        } else if (c == '\r') {
            if (k + 2 >= length_ || chars_[k + 1] != '\n' || !is(chars_[k + 2], kLwsp))
                return -1;
            k += 2; // a fold stays in the piece
        } else if (c == close) {
            if (--depth == 0)
                return k + 1;
        } else if (c == '(' && comment) {
            ++depth;
        } else if (c == '[' && close == ']') {
            return -1;
        }
    }
    return -1;
}

} // namespace mime
