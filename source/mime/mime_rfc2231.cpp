#include <mime/mime_char.h>
#include <mime/mime_char.hpp>
#include <mime/mime_charset_labels.hpp>
#include <mime/mime_rfc2231.h>
#include <mime/mime_rfc2231.hpp>
#include <mime/mime_small_vector.hpp>
#include <mime/mime_vector.hpp>
#include <pb/pb_buffer.h>
#include <pb/pb_charset.h>
#include <pb/pb_int.h>
#include <pb/pb_random.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_vector.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

using pb::adopt;
using pb::Ref;

// Name part of a key: valid when not empty, ASCII, and free of space, controls,
// tspecials, "*", "'" and "%".
PB_BOOL mime___Rfc2231IsAttribute(const PB_CHAR *c, PB_INT n)
{
    return n > 0 && mime::chars::all(c, n, mime::chars::kAttributeChar);
}

using mime::rfc2231::Entry;
using mime::rfc2231::Span;
using Bytes = mime::SmallVector<PB_BYTE, 256>;

Span spanOf(PB_STRING *s)
{
    return {pbStringBacking(s), pbStringLength(s)};
}

// Code-point order, a prefix first: the order of dictionary keys.
int order(Span a, Span b)
{
    PB_INT n = a.length < b.length ? a.length : b.length;
    for (PB_INT i = 0; i < n; ++i)
        if (a.chars[i] != b.chars[i])
            return a.chars[i] < b.chars[i] ? -1 : 1;
    return a.length < b.length ? -1 : a.length > b.length ? 1 : 0;
}

using mime::rfc2231::Tolerance;

// The charset a name stands for, as lookup finds it; -1 for none.
PB_CHARSET charsetNamed(Span name, const Tolerance &lookup)
{
    bool registered = false;
    PB_CHARSET charset = mime::charsetFromNameOrLabel(name.chars, name.length, registered);
    if (registered || !lookup.tolerant)
        return registered ? charset : -1;
    if (lookup.note)
        lookup.note(lookup.context, MIME_DEFECT_CHARSET_UNKNOWN, name);
    return PB_CHARSET_OK(charset) ? charset : PB_CHARSET_US_ASCII;
}

// charset'language'value: the charset's code, and *value narrowed to the value
// part; -1 (and *value unchanged) when there are not three parts.
PB_CHARSET mime___Rfc2231DecodeCharset(Span *value, const Tolerance &lookup)
{
    PB_INT first = 0;
    while (first < value->length && value->chars[first] != '\'')
        ++first;
    PB_INT second = first + 1;
    while (second < value->length && value->chars[second] != '\'')
        ++second;
    if (second >= value->length)
        return -1;
    PB_CHARSET charset = charsetNamed({value->chars, first}, lookup);
    if (PB_CHARSET_OK(charset))
        *value = {value->chars + second + 1, value->length - second - 1};
    return charset;
}

// Percent-decoded bytes appended to bytes; false for a character above 255 or
// when the bytes would outgrow a buffer.
bool mime___Rfc2231DecodeValue(Span value, Bytes &bytes)
{
    const PB_CHAR *c = value.chars;
    PB_INT n = value.length;
    size_t base = bytes.size();
    PB_BYTE *to = bytes.extend(static_cast<size_t>(n)), *start = to; // at most a byte per character
    for (PB_INT i = 0; i < n;) {
        if (c[i] > 255) {
            bytes.truncate(base);
            return false;
        }
        PB_INT high = -1, low = -1;
        if (c[i] == '%' && i < n - 2 && (high = mime::chars::hexValue(c[i + 1])) >= 0 &&
            (low = mime::chars::hexValue(c[i + 2])) >= 0) {
            *to++ = static_cast<PB_BYTE>(high * 16 + low);
            i += 3;
        } else {
            *to++ = static_cast<PB_BYTE>(c[i]);
            i += 1;
        }
    }
    const size_t length = base + static_cast<size_t>(to - start);
    bytes.truncate(length > PB_BUFFER_MAX_LENGTH ? base : length);
    return length <= PB_BUFFER_MAX_LENGTH;
}

// The text of bytes in charset, as a new string. Empties bytes.
PB_STRING *converted(Bytes &bytes, PB_CHARSET charset)
{
    PB_STRING *text = pb___CharsetConvertBytesToString(charset, bytes.data(), static_cast<PB_INT>(bytes.size()));
    bytes.clear();
    return text;
}

// The text of bytes in charset, appended to *joined; false when the length
// would overflow. Empties bytes.
bool appendConverted(PB_STRING **joined, Bytes &bytes, PB_CHARSET charset)
{
    if (bytes.size() == 0)
        return true;
    Ref<PB_STRING> text = adopt(converted(bytes, charset));
    if (!PB_INT_ADD_OK(pbStringLength(*joined), pbStringLength(text.get())))
        return false;
    pbStringAppend(joined, text.get());
    return true;
}

bool appendPlain(PB_STRING **joined, Span text)
{
    if (!PB_INT_ADD_OK(pbStringLength(*joined), text.length))
        return false;
    pbStringAppendChars(joined, text.chars, text.length);
    return true;
}

// Entry indices in visiting order.
using Visits = mime::SmallVector<size_t, 16>;

// A later segment's key, "name*N" or "name*N*" with N from 1 written as "%i"
// writes it.
struct SegmentKey {
    Span name;
    PB_INT number;
    bool encoded;
};

// Whether key is a later segment's, and which.
bool segmentKey(Span key, SegmentKey &segment)
{
    PB_INT end = key.length;
    bool encoded = end > 0 && key.chars[end - 1] == '*';
    end -= encoded;
    PB_INT star = end - 1;
    while (star >= 0 && key.chars[star] >= '0' && key.chars[star] <= '9')
        --star;
    if (star < 0 || key.chars[star] != '*' || star + 1 == end || key.chars[star + 1] == '0')
        return false;
    PB_INT number = 0;
    for (PB_INT i = star + 1; i < end; ++i) {
        PB_INT digit = static_cast<PB_INT>(key.chars[i] - '0');
        if (number > (PB_INT_MAX - digit) / 10)
            return false;
        number = number * 10 + digit;
    }
    segment = {{key.chars, star}, number, encoded};
    return true;
}

// The later segments of all continuations, found by name, number and form in
// constant time: each name that has segments gets a row of cells, one per
// number and form, numbers from 1 to its count of segments (a continuation stops
// at its first gap, so a larger number is never reached); a cell holds the
// last entry given for its key. Rows are found through a table of the names
// (open addressing, at most half full), hashed with a seed chosen once per
// process, so that no header value can be written to make its names collide.
// A walk through one continuation then reads its row in order.
class Segments {
public:
    Segments(const Entry *entries, size_t count)
    {
        places_.assign(count, Place{kNone, kNone});
        SegmentKey key;
        for (size_t i = 0; i < count; ++i) {
            if (!segmentKey(entries[i].key, key))
                continue;
            size_t row = rowAdded(key.name);
            ++rows_[row].count;
            const size_t n = static_cast<size_t>(key.number);
            places_[i] = {row, n <= count ? 2 * (n - 1) + key.encoded : kNone};
        }
        size_t cells = 0;
        for (Row &row : rows_) {
            row.start = cells;
            cells += 2 * row.count;
        }
        cells_.assign(cells, kNone);
        for (size_t i = 0; i < count; ++i)
            if (const Place &p = places_[i]; p.row != kNone && p.cell < 2 * rows_[p.row].count)
                cells_[rows_[p.row].start + p.cell] = i;
    }

    // Whether entry i is a later segment's.
    bool isSegment(size_t i) const { return places_[i].row != kNone; }

    // Lookups for one name.
    class Walk {
    public:
        Walk(const Segments &s, Span name) : s_(s), row_(s.rows_.empty() ? kNone : s.rowNamed(name, hashOf(name))) {}
        // The entry of name*n (with "*" when encoded), or -1.
        PB_INT find(PB_INT n, bool encoded) const
        {
            if (row_ == kNone || static_cast<size_t>(n) > s_.rows_[row_].count)
                return -1;
            size_t entry = s_.cells_[s_.rows_[row_].start + 2 * static_cast<size_t>(n - 1) + encoded];
            return entry == kNone ? -1 : static_cast<PB_INT>(entry);
        }

    private:
        const Segments &s_;
        size_t row_;
    };

private:
    static constexpr size_t kNone = SIZE_MAX;

    struct Row {
        Span name;
        uint64_t hash;
        size_t count; // segments given for the name
        size_t start; // its first cell
    };

    static uint64_t hashOf(Span name)
    {
        static const uint64_t seed = static_cast<uint64_t>(pbRandomNonNegativeIntRange(0, PB_INT_MAX));
        uint64_t h = seed;
        for (PB_INT i = 0; i < name.length; ++i) {
            h = (h ^ name.chars[i]) * 0x9E3779B97F4A7C15u;
            h ^= h >> 29;
        }
        return h;
    }

    // The row of name, or kNone; *slot becomes its place in the table (or the
    // empty place where it would go).
    size_t rowNamed(Span name, uint64_t hash, size_t *slot = nullptr) const
    {
        const size_t mask = table_.size() - 1;
        for (size_t at = hash & mask;; at = (at + 1) & mask) {
            size_t row = table_[at];
            if (row == kNone || (rows_[row].hash == hash && order(rows_[row].name, name) == 0)) {
                if (slot)
                    *slot = at;
                return row;
            }
        }
    }

    // The row of name, made when there is none.
    size_t rowAdded(Span name)
    {
        if (2 * (rows_.size() + 1) > table_.size())
            growTable();
        const uint64_t hash = hashOf(name);
        size_t slot = 0;
        if (size_t row = rowNamed(name, hash, &slot); row != kNone)
            return row;
        table_[slot] = rows_.size();
        rows_.push_back({name, hash, 0, 0});
        return rows_.size() - 1;
    }

    // Twice the table, the rows placed again.
    void growTable()
    {
        table_.assign(table_.empty() ? 16 : 2 * table_.size(), kNone);
        const size_t mask = table_.size() - 1;
        for (size_t row = 0; row < rows_.size(); ++row) {
            size_t at = rows_[row].hash & mask;
            while (table_[at] != kNone)
                at = (at + 1) & mask;
            table_[at] = row;
        }
    }

    struct Place {
        size_t row;  // kNone: not a later segment's entry
        size_t cell; // in the row; kNone: a number past every continuation's end
    };

    // Inline room for the parameters of an ordinary header value.
    mime::SmallVector<Place, 16> places_; // per entry
    mime::SmallVector<size_t, 16> table_; // rows by name hash; kNone where empty
    mime::SmallVector<Row, 4> rows_;
    mime::SmallVector<size_t, 16> cells_; // per row: (1, plain), (1, encoded), (2, plain), ...
};

// One index per key but the later segments', in key order: for equal keys the
// last entry given, as setting them into a dictionary one after another would
// leave it. A run of one key given again and again is cut to its last before
// the sort.
void visitingOrder(const Entry *entries, size_t count, const Segments &segments, Visits &visits)
{
    auto keyOrder = [&](size_t a, size_t b) { return order(entries[a].key, entries[b].key); };
    for (size_t i = 0; i < count; ++i) {
        if (segments.isSegment(i))
            continue;
        if (visits.size() > 0 && keyOrder(visits.data()[visits.size() - 1], i) == 0)
            visits.data()[visits.size() - 1] = i;
        else
            visits.push_back(i);
    }
    size_t *v = visits.data();
    const size_t n = visits.size();
    bool strictlySorted = true;
    for (size_t i = 1; i < n && strictlySorted; ++i)
        strictlySorted = keyOrder(v[i - 1], v[i]) < 0;
    if (strictlySorted)
        return;
    std::stable_sort(v, v + n, [&](size_t a, size_t b) { return keyOrder(a, b) < 0; });
    size_t kept = 0;
    for (size_t i = 0; i < n; ++i) {
        if (i + 1 < n && keyOrder(v[i], v[i + 1]) == 0)
            continue;
        v[kept++] = v[i];
    }
    visits.truncate(kept);
}

// The characters of segment 0 (value) and of the segments after it up to the
// first gap, in either form: room enough for their joined text (decoding
// percent escapes and charsets never makes text longer).
PB_INT joinedRoom(const Entry *entries, const Segments::Walk &walk, Span value)
{
    PB_INT room = value.length;
    for (PB_INT n = 1; n < PB_INT_MAX; ++n) {
        PB_INT encoded = walk.find(n, true), plain = walk.find(n, false);
        if (encoded < 0 && plain < 0)
            break;
        room += (encoded < 0 ? 0 : entries[encoded].value.length) + (plain < 0 ? 0 : entries[plain].value.length);
    }
    return room;
}

// Joins the segments of the continuation whose segment 0 holds value; null when
// the entry is dropped.
PB_STRING *joinContinuation(const Entry *entries, const Segments &segments, Span name, Span value, bool extended,
                            const Tolerance &lookup)
{
    Segments::Walk walk(segments, name);
    Ref<PB_STRING> joined = adopt(pb___StringCreateWithRoom(joinedRoom(entries, walk, value)));
    Bytes pending;
    PB_CHARSET charset = -1;
    if (extended) {
        charset = mime___Rfc2231DecodeCharset(&value, lookup);
        if (!PB_CHARSET_OK(charset) || !mime___Rfc2231DecodeValue(value, pending))
            return nullptr;
    } else {
        appendPlain(joined.addr(), value);
    }
    for (PB_INT n = 0; n < PB_INT_MAX;) { // stops at a gap, or at the largest number
        ++n;
        if (PB_CHARSET_OK(charset)) {
            if (PB_INT encoded = walk.find(n, true); encoded >= 0) {
                if (!mime___Rfc2231DecodeValue(entries[encoded].value, pending))
                    return nullptr;
                continue;
            }
            if (!appendConverted(joined.addr(), pending, charset))
                return nullptr;
        }
        PB_INT plain = walk.find(n, false);
        if (plain < 0)
            break;
        if (!appendPlain(joined.addr(), entries[plain].value))
            return nullptr;
    }
    if (PB_CHARSET_OK(charset) && !appendConverted(joined.addr(), pending, charset))
        return nullptr;
    return joined.release();
}

// The decoded text of a single extended value, or null.
PB_STRING *decodeExtended(Span value, const Tolerance &lookup)
{
    PB_CHARSET charset = mime___Rfc2231DecodeCharset(&value, lookup);
    Bytes bytes;
    if (!PB_CHARSET_OK(charset) || !mime___Rfc2231DecodeValue(value, bytes))
        return nullptr;
    return converted(bytes, charset);
}

// The text form of an object handed out as a new reference.
Ref<PB_STRING> textOf(PB_OBJ *taken)
{
    Ref<PB_OBJ> held = adopt(taken);
    return adopt(pbObjToString(held.get()));
}

} // namespace

void mime::rfc2231::decode(const Entry *entries, size_t count, Put put, void *context, const Tolerance &lookup) noexcept
{
    static const PB_CHAR ends[] = {'*', '0', '*'};
    Segments segments(entries, count);
    Visits visits;
    visitingOrder(entries, count, segments, visits);
    for (size_t v = 0; v < visits.size(); ++v) {
        size_t i = visits.data()[v];
        Span key = entries[i].key;
        auto endsWith = [&](PB_INT n) {
            return key.length >= n && std::equal(ends, ends + n, key.chars + key.length - n);
        };
        PB_INT suffix = endsWith(3) ? 3 : endsWith(2) ? 2 : endsWith(1) ? 1 : 0;
        Span name = {key.chars, key.length - suffix};
        if (!mime___Rfc2231IsAttribute(name.chars, name.length))
            continue;
        if (suffix == 0) {
            put(context, i, name, nullptr);
            continue;
        }
        Ref<PB_STRING> text =
            adopt(suffix == 1 ? decodeExtended(entries[i].value, lookup)
                              : joinContinuation(entries, segments, name, entries[i].value, suffix == 3, lookup));
        if (text)
            put(context, i, name, text.get());
    }
}

PB_DICT *mime___Rfc2231Decode(PB_DICT *source, MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( source );
    PB_ASSERT( mo );
    // The text forms of keys and values; a string is its own.
    PB_INT count = pbDictLength(source);
    std::vector<Ref<PB_STRING>> keys, values;
    std::vector<Entry> entries;
    for (PB_INT i = 0; i < count; ++i) {
        keys.push_back(textOf(pbDictKeyAt(source, i)));
        values.push_back(textOf(pbDictValueAt(source, i)));
        entries.push_back({spanOf(keys.back().get()), spanOf(values.back().get())});
    }
    struct Context {
        std::vector<Ref<PB_STRING>> &keys, &values;
        Ref<PB_DICT> result;
    } context{keys, values, adopt(pbDictCreate())};
    mime::rfc2231::decode(
        entries.data(), entries.size(),
        [](void *c, size_t entry, Span name, PB_STRING *decoded) {
            auto *ctx = static_cast<Context *>(c);
            if (!decoded) {
                pbDictSetStringKey(ctx->result.addr(), ctx->keys[entry].get(), pbStringObj(ctx->values[entry].get()));
                return;
            }
            Ref<PB_STRING> key = adopt(pbStringCreateFromCharsCopy(name.chars, name.length));
            pbDictSetStringKey(ctx->result.addr(), key.get(), pbStringObj(decoded));
        },
        &context);
    return context.result.release();
}

namespace {

// One parameter as written: its text (the value, or charset'' and percent
// escapes) cut into segments, segment k being text[cuts[k], cuts[k + 1]).
struct Block {
    Ref<PB_STRING> name;
    Ref<PB_STRING> text;
    mime::Vector<PB_INT> cuts;
    bool encoded = false;
    mime::Vector<PB_CHAR> firstKey; // the key of segment 0: where the block goes in key order

    PB_INT count() const { return static_cast<PB_INT>(cuts.size()) - 1; }
};

// The cuts of an ASCII value into segments of at most maxLength characters each
// (-1: one segment); an empty value is one empty segment.
void cutPlain(Block &block, PB_INT maxLength)
{
    PB_INT n = pbStringLength(block.text.get());
    block.cuts.push_back(0);
    if (maxLength != -1)
        for (PB_INT at = maxLength; at < n; at += maxLength)
            block.cuts.push_back(at);
    block.cuts.push_back(n);
}

// The value as charset'' and percent escapes, cut before a segment would pass
// maxLength (-1: one segment); an escape is never split. False when the
// charset cannot hold the value.
bool cutExtended(Block &block, PB_STRING *value, PB_CHARSET charset, PB_INT maxLength)
{
    Ref<PB_BUFFER> bytes = adopt(pbCharsetConvertStringToBuffer(charset, value));
    if (!bytes)
        return false;
    Ref<PB_STRING> name = adopt(pbCharsetToIanaName(charset));
    mime::SmallVector<PB_CHAR, 256> text;
    text.append(pbStringBacking(name.get()), static_cast<size_t>(pbStringLength(name.get())));
    text.push_back('\'');
    text.push_back('\'');
    block.cuts.push_back(0);
    PB_INT length = static_cast<PB_INT>(text.size()); // of the current segment
    auto startSegment = [&](PB_INT lengthAfter) {
        block.cuts.push_back(static_cast<PB_INT>(text.size()));
        length = lengthAfter;
    };
    static const char hex[] = "0123456789ABCDEF";
    const PB_BYTE *b = pbBufferBacking(bytes.get());
    for (PB_INT i = 0, n = pbBufferLength(bytes.get()); i < n; ++i) {
        if (mime::chars::is(b[i], mime::chars::kAttributeChar)) { // written as it is
            if (maxLength != -1 && length >= maxLength)
                startSegment(1);
            else
                length += 1;
            text.push_back(b[i]);
        } else {
            if (maxLength != -1 && length >= maxLength - 2)
                startSegment(3);
            else
                length += 3;
            const PB_CHAR escape[] = {'%', static_cast<PB_CHAR>(hex[b[i] >> 4]), static_cast<PB_CHAR>(hex[b[i] & 15])};
            text.append(escape, 3);
        }
    }
    block.cuts.push_back(static_cast<PB_INT>(text.size()));
    block.text = adopt(pbStringCreateFromCharsCopy(text.data(), static_cast<PB_INT>(text.size())));
    block.encoded = true;
    return true;
}

// The key of segment number of a block (number -1: the only one) into key: the
// name, "*" and the number, and "*" when the text is encoded.
void segmentKey(const Block &block, PB_INT number, mime::SmallVector<PB_CHAR, 64> &key)
{
    key.truncate(0);
    key.append(pbStringBacking(block.name.get()), static_cast<size_t>(pbStringLength(block.name.get())));
    if (number >= 0) {
        PB_CHAR digits[20];
        size_t count = 0;
        do
            digits[count++] = static_cast<PB_CHAR>('0' + number % 10);
        while ((number /= 10) > 0);
        key.push_back('*');
        while (count > 0)
            key.push_back(digits[--count]);
    }
    if (block.encoded)
        key.push_back('*');
}

// Calls f(k) for k = 0 .. count - 1 in the order of their decimal forms as
// text: 0, 1, 10, 100, 101, ..., 11, ..., 2, ...
template <class F> void inTextOrder(PB_INT count, F f)
{
    if (count > 0)
        f(PB_INT{0});
    const PB_INT last = count - 1;
    PB_INT k = 1;
    for (PB_INT emitted = 1; emitted < count; ++emitted) {
        f(k);
        if (k <= last / 10) { // k * 10 <= last
            k *= 10;
            continue;
        }
        if (k >= last)
            k /= 10;
        ++k;
        while (k % 10 == 0)
            k /= 10;
    }
}

} // namespace

void mime::rfc2231::encode(PB_DICT *source, MIME_OPTIONS *mo, Write write, void *context) noexcept
{
    PB_CHARSET charset = mimeOptionsRfc2231Charset(mo);
    PB_INT maxLength = mimeOptionsRfc2231MaxSegmentLength(mo);
    mime::Vector<Block> blocks;
    for (PB_INT i = 0; i < pbDictLength(source); ++i) {
        Ref<PB_STRING> name = textOf(pbDictKeyAt(source, i)), value = textOf(pbDictValueAt(source, i));
        if (!mime___Rfc2231IsAttribute(pbStringBacking(name.get()), pbStringLength(name.get())))
            continue;
        Block block{std::move(name), {}, {}, false, {}};
        if (mime::chars::isAscii(pbStringBacking(value.get()), pbStringLength(value.get()))) {
            block.text = std::move(value);
            cutPlain(block, maxLength);
        } else if (!cutExtended(block, value.get(), charset, maxLength)) {
            continue;
        }
        mime::SmallVector<PB_CHAR, 64> key;
        segmentKey(block, block.count() == 1 ? -1 : 0, key);
        block.firstKey.assign(key.data(), key.data() + key.size());
        blocks.push_back(std::move(block));
    }
    // A name's keys are contiguous in key order (no name holds "*"), so the
    // blocks go in the order of their first keys.
    std::stable_sort(blocks.begin(), blocks.end(), [](const Block &x, const Block &y) {
        return std::lexicographical_compare(x.firstKey.begin(), x.firstKey.end(), y.firstKey.begin(), y.firstKey.end());
    });
    mime::SmallVector<PB_CHAR, 64> key;
    for (const Block &block : blocks) {
        const PB_CHAR *text = pbStringBacking(block.text.get());
        inTextOrder(block.count(), [&](PB_INT n) {
            segmentKey(block, block.count() == 1 ? -1 : n, key);
            const PB_INT from = block.cuts[static_cast<size_t>(n)], to = block.cuts[static_cast<size_t>(n) + 1];
            write(context, {key.data(), static_cast<PB_INT>(key.size())}, {text + from, to - from});
        });
    }
}

PB_DICT *mime___Rfc2231Encode(PB_DICT *source, MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( source );
    PB_ASSERT( mo );
    Ref<PB_DICT> result = adopt(pbDictCreate());
    mime::rfc2231::encode(
        source, mo,
        [](void *context, Span key, Span value) {
            Ref<PB_STRING> k = adopt(pbStringCreateFromCharsCopy(key.chars, key.length));
            Ref<PB_STRING> v = adopt(pbStringCreateFromCharsCopy(value.chars, value.length));
            pbDictSetStringKey(static_cast<Ref<PB_DICT> *>(context)->addr(), k.get(), pbStringObj(v.get()));
        },
        &result);
    return result.release();
}
