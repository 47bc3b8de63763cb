#include <mime/mime_common_words.hpp>

#include <pb/pb_abort.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace mime::commonWords {

namespace {

// In lower case where the wire's case does not matter (labels and keys are kept
// in lower case); charset names also as they are usually spelt, since values
// keep their case.
constexpr std::string_view kWords[] = {
    // media types
    "text/plain", "text/html", "text/enriched", "text/calendar", "text/csv", "text/xml", "text/rfc822-headers",
    "multipart/mixed", "multipart/alternative", "multipart/related", "multipart/signed", "multipart/encrypted",
    "multipart/report", "multipart/digest", "multipart/parallel", "multipart/form-data", "message/rfc822",
    "message/global", "message/delivery-status", "message/disposition-notification", "message/sipfrag",
    "message/partial", "message/external-body", "application/octet-stream", "application/pdf", "application/json",
    "application/xml", "application/zip", "application/sdp", "application/isup", "application/pidf+xml",
    "application/pkcs7-mime", "application/pkcs7-signature", "application/pgp-signature", "application/pgp-encrypted",
    "application/ms-tnef", "image/jpeg", "image/png", "image/gif", "audio/mpeg", "video/mp4",
    // disposition types
    "inline", "attachment", "form-data", "session", "render", "icon", "alert", "early-session",
    // parameter names
    "charset", "boundary", "name", "filename", "format", "delsp", "type", "start", "start-info", "protocol", "micalg",
    "report-type", "method", "size", "creation-date", "modification-date", "read-date", "access-type", "handling", "id",
    "number", "total", "reply-type",
    // values
    "utf-8", "UTF-8", "us-ascii", "US-ASCII", "iso-8859-1", "ISO-8859-1", "iso-8859-15", "ISO-8859-15", "windows-1252",
    "flowed", "fixed", "yes", "no", "required", "optional"};

constexpr size_t kSlots = 256; // a power of two, at least twice the words

size_t hashOf(const PB_CHAR *c, size_t n)
{
    uint64_t h = n * 0x9E3779B97F4A7C15u;
    if (n) {
        h ^= c[0] * 0x100000001B3u;
        h ^= uint64_t(c[n - 1]) << 17;
        h ^= uint64_t(c[n / 2]) << 29;
    }
    h *= 0xBF58476D1CE4E5B9u;
    return static_cast<size_t>(h >> 56) & (kSlots - 1);
}

// Open addressing with linear probing; the words are made on first use.
struct Table {
    struct Slot {
        PB_STRING *string; // null: empty
        const PB_CHAR *chars;
        size_t length;
    };
    std::array<Slot, kSlots> slots{};

    Table()
    {
        static_assert(std::size(kWords) * 2 <= kSlots);
        for (std::string_view w : kWords) {
            PB_CHAR chars[64];
            PB_ASSERT( w.size() <= std::size(chars) );
            for (size_t i = 0; i < w.size(); ++i)
                chars[i] = static_cast<unsigned char>(w[i]);
            size_t at = hashOf(chars, w.size());
            while (slots[at].string)
                at = (at + 1) & (kSlots - 1);
            PB_STRING *word = pb___StringCreateConstant(chars, static_cast<PB_INT>(w.size()));
            slots[at] = {word, pbStringBacking(word), w.size()};
        }
    }

    PB_STRING *find(const PB_CHAR *c, size_t n) const
    {
        for (size_t at = hashOf(c, n); slots[at].string; at = (at + 1) & (kSlots - 1))
            if (slots[at].length == n && std::memcmp(slots[at].chars, c, n * sizeof(PB_CHAR)) == 0)
                return slots[at].string;
        return nullptr;
    }
};

} // namespace

PB_STRING *string(const PB_CHAR *chars, size_t length) noexcept
{
    static const Table table;
    if (PB_STRING *word = table.find(chars, length))
        return word; // retaining a kept string changes nothing
    return pbStringCreateFromCharsCopy(chars, static_cast<PB_INT>(length));
}

} // namespace mime::commonWords
