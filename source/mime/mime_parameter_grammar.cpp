#include <mime/mime_char.hpp>
#include <mime/mime_common_words.hpp>
#include <mime/mime_parameter_grammar.hpp>
#include <mime/mime_rfc2231.h>
#include <mime/mime_rfc2231.hpp>
#include <mime/mime_shf_token.h>
#include <mime/mime_shf_token.hpp>
#include <pb/pb_ref.hpp>

#include <algorithm>
#include <cstring>

namespace mime::parameters {

using pb::adopt;
using pb::Ref;

using namespace chars;

bool Pieces::scanned(ShfPiece &piece) noexcept
{
    if (finished_)
        return false;
    switch (scanner_.next(piece)) {
    case ShfScanner::Step::Piece:
        return true;
    case ShfScanner::Step::Invalid:
        failedAt_ = scanner_.at();
        break;
    case ShfScanner::Step::End:
        break;
    }
    finished_ = true;
    return false;
}

bool Pieces::readUpTo(PB_INT i) noexcept
{
    for (ShfPiece piece{}; read_ <= i && scanned(piece);)
        if (piece.type != MIME_SHF_TOKEN_TYPE_COMMENT)
            kept_[read_++ % kKept] = piece;
    return i < read_;
}

bool Pieces::finish() noexcept
{
    ShfPiece piece{};
    while (scanned(piece))
        continue;
    return failedAt_ < 0;
}

void Pieces::appendWord(PB_INT i, bool lower, Chars &out) const noexcept
{
    const ShfPiece &piece = at(i);
    const PB_CHAR *c = chars_ + piece.start;
    PB_INT n = piece.length;
    size_t from = out.size();
    if (piece.escaped) {
        PB_CHAR *to = out.extend(static_cast<size_t>(n - 2));
        out.truncate(from + static_cast<size_t>(shfUnescaped(c, n, to) - to));
        c = out.data() + from; // lowered in place below
        n = static_cast<PB_INT>(out.size() - from);
        out.truncate(from);
    } else if (piece.type == MIME_SHF_TOKEN_TYPE_QUOTED_STRING) {
        c += 1;
        n -= 2;
    }
    PB_CHAR *to = out.extend(static_cast<size_t>(n));
    if (lower)
        for (PB_INT k = 0; k < n; ++k)
            to[k] = c[k] + (c[k] - 'A' < 26u ? 32 : 0);
    else if (to != c)
        std::memcpy(to, c, static_cast<size_t>(n) * sizeof(PB_CHAR));
}

bool Pieces::plainAt(PB_INT i, PB_INT &start, PB_INT &length) const noexcept
{
    const ShfPiece &piece = at(i);
    if (piece.type == MIME_SHF_TOKEN_TYPE_QUOTED_STRING && piece.escaped)
        return false;
    const bool quoted = piece.type == MIME_SHF_TOKEN_TYPE_QUOTED_STRING;
    start = piece.start + quoted;
    length = piece.length - 2 * quoted;
    return true;
}

PB_STRING *Pieces::word(PB_INT i, bool lower) const noexcept
{
    // An escaped quoted string is written straight into the string (one copy).
    if (const ShfPiece &piece = at(i); piece.type == MIME_SHF_TOKEN_TYPE_QUOTED_STRING && piece.escaped && !lower) {
        PB_CHAR *to = nullptr;
        PB_STRING *s = pb___StringCreateUnfilled(piece.length - 2, &to);
        pbStringDelTrailing(&s, to + piece.length - 2 - shfUnescaped(chars_ + piece.start, piece.length, to));
        return s;
    }
    Chars chars;
    appendWord(i, lower, chars);
    return commonWords::string(chars.data(), chars.size());
}

namespace {

// The parameters as read: keys (in lower case) in one character store, values
// there too or, when they stand in the header value as they are, in the
// value's own text (which is then not copied).
struct Collected {
    // Where a value's characters are: chars[value] on, text[value] on, or the
    // pair's string (an escaped quoted string's, made at once).
    enum class Home : uint8_t { Chars, Text, String };
    struct Pair {
        size_t key, keyLength, value, valueLength;
        Home home;
        PB_STRING *string; // Home::String only
    };
    Pieces::Chars chars;
    const PB_CHAR *text = nullptr;
    mime::SmallVector<Pair, 16> pairs;
    bool rfc2231 = false; // a key has a form that RFC 2231 decoding changes

    Collected() = default;
    Collected(const Collected &) = delete;
    Collected &operator=(const Collected &) = delete;
    ~Collected() { clear(); }

    void add(const Pieces &pieces, PB_INT keyIndex, PB_INT valueIndex)
    {
        size_t key = chars.size();
        pieces.appendWord(keyIndex, true, chars);
        if (!keptKey(key))
            return;
        const size_t keyLength = chars.size() - key;
        PB_INT start = 0, length = 0;
        if (valueIndex < 0) {
            pairs.push_back({key, keyLength, 0, 0, Home::Chars, nullptr});
        } else if (pieces.plainAt(valueIndex, start, length)) {
            text = pieces.chars();
            pairs.push_back(
                {key, keyLength, static_cast<size_t>(start), static_cast<size_t>(length), Home::Text, nullptr});
        } else {
            PB_STRING *string = pieces.word(valueIndex, false);
            pairs.push_back({key, keyLength, 0, static_cast<size_t>(pbStringLength(string)), Home::String, string});
        }
    }

    const PB_CHAR *valueOf(const Pair &p) const
    {
        switch (p.home) {
        case Home::Chars:
            return chars.data() + p.value;
        case Home::Text:
            return text + p.value;
        case Home::String:
            break;
        }
        return pbStringBacking(p.string);
    }

    // A key and a value given as text: a value in quotes loses them and its escapes.
    void addText(const PB_CHAR *key, size_t keyLength, const PB_CHAR *value, size_t valueLength)
    {
        size_t at = chars.size();
        chars.append(key, keyLength);
        for (PB_CHAR *p = chars.data() + at, *end = chars.data() + chars.size(); p != end; ++p)
            *p += *p - 'A' < 26u ? 32 : 0;
        if (!keptKey(at))
            return;
        size_t start = chars.size();
        bool quoted = valueLength >= 2 && value[0] == '"' && value[valueLength - 1] == '"';
        for (size_t i = quoted; i < valueLength - quoted; ++i) {
            if (quoted && value[i] == '\\' && i + 1 < valueLength - 1)
                ++i; // a backslash takes the next character
            chars.push_back(value[i]);
        }
        pairs.push_back({at, start - at, start, chars.size() - start, Home::Chars, nullptr});
    }

    void clear()
    {
        for (size_t i = 0; i < pairs.size(); ++i)
            if (pairs[i].home == Home::String)
                pbStringRelease(pairs[i].string);
        chars.clear();
        pairs.clear();
        rfc2231 = false;
    }

    // Whether the key (lower case) from chars[key] on is kept: Rule K, an RFC
    // 2045 token; RFC 2231 decoding changes keys that are not attribute names
    // as they stand. A key that is not kept is taken back.
    bool keptKey(size_t key)
    {
        const PB_CHAR *c = chars.data() + key;
        size_t n = chars.size() - key;
        uint16_t classes = n ? kTokenChar | kAttributeChar : 0;
        for (size_t i = 0; i < n; ++i)
            classes &= c[i] < 128 ? kClassTable.at[c[i]] : 0;
        if (!(classes & kTokenChar)) {
            chars.truncate(key);
            return false;
        }
        rfc2231 |= !(classes & kAttributeChar);
        return true;
    }

    // A dictionary with room for the usual few parameters in its own
    // allocation; pairs of one key repeated make one entry, so a long list
    // grows the dictionary as it fills instead.
    PB_DICT *newDictionary() const
    {
        return pb___DictCreateWithRoom(static_cast<PB_INT>(std::min(pairs.size(), size_t{8})));
    }

    PB_STRING *keyString(const Pair &p) const { return commonWords::string(chars.data() + p.key, p.keyLength); }
    PB_STRING *valueString(const Pair &p) const
    {
        return p.home == Home::String ? pbStringRetain(p.string) : commonWords::string(valueOf(p), p.valueLength);
    }
};

void set(PB_DICT **dict, Ref<PB_STRING> key, Ref<PB_STRING> value)
{
    pbDictSetStringKey(dict, key.get(), pbStringObj(value.get()));
}

PB_DICT *decodedRfc2231(const Collected &collected, const rfc2231::Tolerance &lookup)
{
    using mime::rfc2231::Entry;
    using mime::rfc2231::Span;
    mime::SmallVector<Entry, 16> entries;
    for (size_t i = 0; i < collected.pairs.size(); ++i) {
        const Collected::Pair &p = collected.pairs.data()[i];
        const PB_CHAR *c = collected.chars.data();
        entries.push_back({{c + p.key, static_cast<PB_INT>(p.keyLength)},
                           {collected.valueOf(p), static_cast<PB_INT>(p.valueLength)}});
    }
    struct Context {
        const Collected &collected;
        PB_DICT *result;
    } context{collected, collected.newDictionary()};
    mime::rfc2231::decode(
        entries.data(), entries.size(),
        [](void *c, size_t entry, Span name, PB_STRING *decoded) {
            auto *ctx = static_cast<Context *>(c);
            const Collected::Pair &p = ctx->collected.pairs.data()[entry];
            set(&ctx->result, adopt(commonWords::string(name.chars, static_cast<size_t>(name.length))),
                decoded ? pb::retained(decoded) : adopt(ctx->collected.valueString(p)));
        },
        &context, lookup);
    return context.result;
}

} // namespace

namespace {

bool isTrimmed(PB_CHAR c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The parameters of c[at, n), split as mail readers split them.
void readLoosely(const PB_CHAR *c, PB_INT at, PB_INT n, Collected &collected)
{
    while (at < n && c[at] == ';') {
        PB_INT end = ++at;
        for (bool quoted = false; end < n && (quoted || c[end] != ';'); ++end) {
            if (c[end] == '"')
                quoted = !quoted;
            else if (quoted && c[end] == '\\' && end + 1 < n)
                ++end;
        }
        PB_INT equals = at;
        while (equals < end && c[equals] != '=')
            ++equals;
        auto trimmed = [&](PB_INT from, PB_INT to) {
            while (from < to && isTrimmed(c[from]))
                ++from;
            while (to > from && isTrimmed(c[to - 1]))
                --to;
            return std::pair<const PB_CHAR *, size_t>(c + from, static_cast<size_t>(to - from));
        };
        // A control character (a stray CR, say) ends a value: what follows it
        // is no part of any parameter.
        PB_INT valueEnd = equals < end ? equals + 1 : end;
        for (bool quoted = false; valueEnd < end && (quoted || c[valueEnd] >= 0x20 || c[valueEnd] == '\t'); ++valueEnd)
            quoted ^= c[valueEnd] == '"';
        auto [key, keyLength] = trimmed(at, equals);
        auto [value, valueLength] = equals < end ? trimmed(equals + 1, valueEnd) : trimmed(end, end);
        if (keyLength > 0)
            collected.addText(key, keyLength, value, valueLength);
        at = end;
    }
}

} // namespace

PB_DICT *read(Pieces &pieces, PB_INT start, MIME_OPTIONS *mo, const rfc2231::Tolerance &lookup, bool toFault) noexcept
{
    Collected collected;
    // Where the list starts, for reading it again as mail readers split it.
    const bool list = pieces.has(start) && pieces.isTspecial(start, ';');
    const PB_INT listAt = pieces.offsetOf(start);
    bool loose = false; // the grammar stopped before the end
    for (PB_INT i = start; pieces.has(i);) {
        const bool last = !pieces.has(i + 1);
        if (!pieces.isTspecial(i, ';') || last || !pieces.isWord(i + 1)) {
            // Stopped before the end, but for a ";" that ends the list.
            loose = lookup.tolerant && !(last && pieces.isTspecial(i, ';')) && list;
            break;
        }
        if (!pieces.has(i + 2) || !pieces.isTspecial(i + 2, '=')) {
            collected.add(pieces, i + 1, -1); // a key alone
            i += 2;
        } else if (!pieces.has(i + 3)) {
            collected.add(pieces, i + 1, -1); // "=" at the end
            break;
        } else if (pieces.isWord(i + 3)) {
            collected.add(pieces, i + 1, i + 3);
            i += 4;
        } else {
            collected.add(pieces, i + 1, -1); // "=" without a value
            i += 3;
        }
    }
    if (!pieces.finish() && !toFault)
        return nullptr;
    if (loose) {
        collected.clear();
        readLoosely(pieces.chars(), listAt, pieces.valueLength(), collected);
        if (lookup.note)
            lookup.note(lookup.context, MIME_DEFECT_PARAMETERS_MALFORMED, {});
    }
    // Without a key of an RFC 2231 form the decoding would give the same parameters.
    if (collected.rfc2231 && (mimeOptionsFlags(mo) & MIME_FLAG_PARSE_RFC2231_HEADERS))
        return decodedRfc2231(collected, lookup);
    PB_DICT *result = collected.newDictionary();
    for (size_t i = 0; i < collected.pairs.size(); ++i) {
        const Collected::Pair &p = collected.pairs.data()[i];
        set(&result, adopt(collected.keyString(p)), adopt(collected.valueString(p)));
    }
    return result;
}

void write(HeaderWriter &writer, PB_DICT *parameters, MIME_OPTIONS *mo) noexcept
{
    struct Context {
        HeaderWriter &writer;
        bool unicode; // values beyond ASCII are written
    } context{writer, (mimeOptionsFlags(mo) & MIME_FLAG_GENERATE_UNICODE_HEADERS) != 0};
    rfc2231::Write append = [](void *c, rfc2231::Span key, rfc2231::Span value) {
        auto *ctx = static_cast<Context *>(c);
        if (!ctx->unicode && !chars::isAscii(value.chars, value.length))
            return;
        static const PB_CHAR semicolon = ';', equals = '=';
        ctx->writer.piece(MIME_SHF_TOKEN_TYPE_TSPECIAL, &semicolon, 1);
        ctx->writer.wireText(key.chars, key.length);
        ctx->writer.piece(MIME_SHF_TOKEN_TYPE_TSPECIAL, &equals, 1);
        ctx->writer.tokenOrQuotedString(value.chars, value.length);
    };
    if (mimeOptionsFlags(mo) & MIME_FLAG_GENERATE_RFC2231_HEADERS) {
        rfc2231::encode(parameters, mo, append, &context);
        return;
    }
    for (PB_INT i = 0; i < pbDictLength(parameters); ++i) {
        Ref<PB_STRING> key = adopt(pbStringFrom(pbDictKeyAt(parameters, i)));
        Ref<PB_STRING> value = adopt(pbStringFrom(pbDictValueAt(parameters, i)));
        append(&context, {pbStringBacking(key.get()), pbStringLength(key.get())},
               {pbStringBacking(value.get()), pbStringLength(value.get())});
    }
}

} // namespace mime::parameters
