#include <rfc/rfc_kernels.hpp>

namespace rfc {
namespace tables {

namespace {

constexpr const char *kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<uint8_t, 64> makeBase64Alphabet()
{
    std::array<uint8_t, 64> t{};
    for (int i = 0; i < 64; ++i)
        t[i] = static_cast<uint8_t>(kAlphabet[i]);
    return t;
}

constexpr std::array<uint8_t, 256> makeBase64Values()
{
    std::array<uint8_t, 256> t{};
    t.fill(kBase64Invalid);
    for (int i = 0; i < 64; ++i)
        t[static_cast<uint8_t>(kAlphabet[i])] = static_cast<uint8_t>(i);
    for (uint8_t c : {'\r', '\n', ' ', '\t'})
        t[c] = kBase64Space;
    t['='] = kBase64Pad;
    return t;
}

constexpr std::array<bool, 256> makeQuopLiteral()
{
    std::array<bool, 256> t{};
    for (int c = 33; c <= 126; ++c)
        t[c] = c != '=';
    t[' '] = t['\t'] = true;
    return t;
}

constexpr std::array<int8_t, 256> makeHexValues()
{
    std::array<int8_t, 256> t{};
    t.fill(-1);
    for (int i = 0; i < 10; ++i)
        t['0' + i] = static_cast<int8_t>(i);
    for (int i = 0; i < 6; ++i)
        t['A' + i] = t['a' + i] = static_cast<int8_t>(10 + i);
    return t;
}

} // namespace

constinit const std::array<uint8_t, 64> base64Alphabet = makeBase64Alphabet();
constinit const std::array<uint8_t, 256> base64Values = makeBase64Values();
constinit const std::array<bool, 256> quopLiteral = makeQuopLiteral();
constinit const std::array<uint8_t, 16> hexUpper = {'0', '1', '2', '3', '4', '5', '6', '7',
                                                    '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};
constinit const std::array<int8_t, 256> hexValues = makeHexValues();

} // namespace tables

} // namespace rfc
