#include <rfc/rfc_base64_codec.hpp>

namespace rfc::base64 {

size_t encodedLength(size_t n, int64_t lineLength) noexcept
{
    size_t chars = (n + 2) / 3 * 4;
    if (lineLength <= 0 || chars == 0)
        return chars;
    return chars + (chars - 1) / static_cast<size_t>(lineLength) * 2;
}

size_t decodeBound(size_t n) noexcept
{
    return n / 4 * 3 + 3 + kWriteSlack;
}

} // namespace rfc::base64
