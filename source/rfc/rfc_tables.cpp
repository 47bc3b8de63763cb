#include <rfc/rfc_kernels.hpp>

#include <initializer_list>

namespace rfc {
namespace tables {

namespace {

constexpr const char *kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr Table<uint8_t, 64> makeBase64Alphabet()
{
    Table<uint8_t, 64> t{};
    for (int i = 0; i < 64; ++i)
        t.at[i] = static_cast<uint8_t>(kAlphabet[i]);
    return t;
}

constexpr Table<uint8_t, 256> makeBase64Values()
{
    Table<uint8_t, 256> t{};
    for (auto &v : t.at)
        v = kBase64Invalid;
    for (int i = 0; i < 64; ++i)
        t.at[static_cast<uint8_t>(kAlphabet[i])] = static_cast<uint8_t>(i);
    for (uint8_t c : {'\r', '\n', ' ', '\t'})
        t.at[c] = kBase64Space;
    t.at[static_cast<uint8_t>('=')] = kBase64Pad;
    return t;
}

constexpr Table<bool, 256> makeQuopLiteral()
{
    Table<bool, 256> t{};
    for (int c = 33; c <= 126; ++c)
        t.at[c] = c != '=';
    t.at[static_cast<uint8_t>(' ')] = t.at[static_cast<uint8_t>('\t')] = true;
    return t;
}

constexpr Table<int8_t, 256> makeHexValues()
{
    Table<int8_t, 256> t{};
    for (auto &v : t.at)
        v = -1;
    for (int i = 0; i < 10; ++i)
        t.at['0' + i] = static_cast<int8_t>(i);
    for (int i = 0; i < 6; ++i)
        t.at['A' + i] = t.at['a' + i] = static_cast<int8_t>(10 + i);
    return t;
}

} // namespace

constinit const Table<uint8_t, 64> base64Alphabet = makeBase64Alphabet();
constinit const Table<uint8_t, 256> base64Values = makeBase64Values();
constinit const Table<bool, 256> quopLiteral = makeQuopLiteral();
constinit const Table<uint8_t, 16> hexUpper = {
    {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'}};
constinit const Table<int8_t, 256> hexValues = makeHexValues();

} // namespace tables

} // namespace rfc
