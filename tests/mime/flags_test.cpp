// MIME flags and encode flags: normalisation and the text round trip.
#include "pb_text.hpp"

#include <gtest/gtest.h>
#include <mime/mime.h>

using namespace test;

namespace {

TEST(Flags, Normalize)
{
    struct Row {
        MIME_FLAGS in, out;
    } rows[] = {{0, 0}, {4, 4}, {6, 2}, {31, 27}, {32, 0}, {~MIME_FLAGS{0}, 27}, {1 | 4 | 8 | 16, 29}};
    for (const Row &row : rows)
        EXPECT_EQ(mimeFlagsNormalize(row.in), row.out) << row.in;
    struct EncodeRow {
        MIME_ENCODE_FLAGS in, out;
    } encodeRows[] = {{0, 0}, {1, 1}, {2, 2}, {3, 1}, {4, 0}, {~MIME_ENCODE_FLAGS{0}, 1}};
    for (const EncodeRow &row : encodeRows)
        EXPECT_EQ(mimeEncodeFlagsNormalize(row.in), row.out) << row.in;
}

// Every combination of the known bits and one unknown bit, through text and back.
TEST(Flags, TextRoundTripNormalizes)
{
    for (MIME_FLAGS bits = 0; bits < 64; ++bits) {
        for (MIME_FLAGS extra : {MIME_FLAGS{0}, MIME_FLAGS{1} << 40}) {
            Ref<PB_STRING> s = adopt(mimeFlagsToString(bits | extra));
            EXPECT_EQ(mimeFlagsFromString(s.get()), mimeFlagsNormalize(bits)) << utf8(s.get());
        }
    }
    for (MIME_ENCODE_FLAGS bits = 0; bits < 8; ++bits) {
        Ref<PB_STRING> s = adopt(mimeEncodeFlagsToString(bits));
        EXPECT_EQ(mimeEncodeFlagsFromString(s.get()), mimeEncodeFlagsNormalize(bits)) << utf8(s.get());
    }
}

TEST(Flags, TextNamesTheFlags)
{
    EXPECT_EQ(take(mimeFlagsToString(MIME_FLAG_GENERATE_RFC2231_HEADERS | MIME_FLAG_GENERATE_UNICODE_HEADERS)),
              "MIME_FLAG_GENERATE_RFC2231_HEADERS");
    EXPECT_EQ(take(mimeFlagsToString(3)), "MIME_FLAG_PARSE_RFC2231_HEADERS, MIME_FLAG_GENERATE_RFC2231_HEADERS");
    EXPECT_EQ(mimeFlagsFromStringCstr("mime_flag_generate_eight_bit_body, bogus", -1),
              MIME_FLAG_GENERATE_EIGHT_BIT_BODY);
    EXPECT_EQ(mimeFlagsFromStringWcstr(L"MIME_FLAG_GENERATE_UNICODE_HEADERS MIME_FLAG_GENERATE_RFC2231_HEADERS", -1),
              MIME_FLAG_GENERATE_RFC2231_HEADERS);
}

} // namespace
