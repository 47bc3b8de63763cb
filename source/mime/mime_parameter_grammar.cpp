#include <mime/mime_char.hpp>
#include <mime/mime_parameter_grammar.hpp>
#include <mime/mime_shf_token.h>
#include <mime/mime_rfc2231.h>

namespace mime::parameters {

using pb::adopt;
using pb::Ref;

using namespace chars;

bool Pieces::scan(PB_STRING *value) noexcept
{
    chars_ = pbStringBacking(value);
    pieces_.clear();
    ShfScanner scanner(chars_, pbStringLength(value));
    for (ShfPiece piece{};;) {
        switch (scanner.next(piece)) {
        case ShfScanner::Step::Piece:
            if (piece.type != MIME_SHF_TOKEN_TYPE_COMMENT)
                pieces_.push_back(piece);
            break;
        case ShfScanner::Step::End:
            return true;
        case ShfScanner::Step::Invalid:
            return false;
        }
    }
}

bool Pieces::isWord(PB_INT i) const noexcept
{
    MIME_SHF_TOKEN_TYPE type = pieces_.data()[i].type;
    return type == MIME_SHF_TOKEN_TYPE_TOKEN || type == MIME_SHF_TOKEN_TYPE_QUOTED_STRING;
}

bool Pieces::isTspecial(PB_INT i, PB_CHAR c) const noexcept
{
    const ShfPiece &piece = pieces_.data()[i];
    return piece.type == MIME_SHF_TOKEN_TYPE_TSPECIAL && chars_[piece.start] == c;
}

void Pieces::appendWord(PB_INT i, bool lower, mime::SmallVector<PB_CHAR, 128> &out) const noexcept
{
    const ShfPiece &piece = pieces_.data()[i];
    const PB_CHAR *c = chars_ + piece.start;
    PB_INT n = piece.length;
    size_t from = out.size();
    if (piece.type != MIME_SHF_TOKEN_TYPE_QUOTED_STRING) {
        out.append(c, static_cast<size_t>(n));
    } else {
        // Runs between backslashes at once; the scanner saw to it that a
        // character follows each backslash.
        PB_INT run = 1;
        for (PB_INT k = 1; k < n - 1; ++k) {
            if (c[k] != '\\')
                continue;
            out.append(c + run, static_cast<size_t>(k - run));
            run = ++k;
        }
        out.append(c + run, static_cast<size_t>(n - 1 - run));
    }
    if (lower)
        for (PB_CHAR *p = out.data() + from, *end = out.data() + out.size(); p != end; ++p)
            *p += (*p >= 'A' && *p <= 'Z') ? 32 : 0;
}

PB_STRING *Pieces::word(PB_INT i, bool lower) const noexcept
{
    // Most words are their own text: no escape to undo, nothing to lower.
    const ShfPiece &piece = pieces_.data()[i];
    bool quoted = piece.type == MIME_SHF_TOKEN_TYPE_QUOTED_STRING;
    const PB_CHAR *c = chars_ + piece.start + quoted;
    PB_INT n = piece.length - 2 * quoted;
    bool plain = true;
    for (PB_INT k = 0; k < n && plain; ++k)
        plain = !(quoted && c[k] == '\\') && !(lower && c[k] >= 'A' && c[k] <= 'Z');
    if (plain)
        return pbStringCreateFromCharsCopy(c, n);
    mime::SmallVector<PB_CHAR, 128> chars;
    appendWord(i, lower, chars);
    return pbStringCreateFromCharsCopy(chars.data(), static_cast<PB_INT>(chars.size()));
}

namespace {

// Rule K: printable ASCII without space and tspecials; and whether the key is an
// RFC 2231 attribute name as it stands (no "*", "'" or "%").
bool keyOk(PB_STRING *key, bool &attribute)
{
    const PB_CHAR *c = pbStringBacking(key);
    PB_INT n = pbStringLength(key);
    attribute = true;
    for (PB_INT i = 0; i < n; ++i) {
        if (c[i] < 33 || c[i] > 126 || is(c[i], kTspecial))
            return false;
        if (c[i] == '*' || c[i] == '\'' || c[i] == '%')
            attribute = false;
    }
    return n > 0;
}

} // namespace

bool read(const Pieces &pieces, PB_INT start, void (*store)(void *context, PB_STRING *key, PB_STRING *value),
          void *context) noexcept
{
    PB_INT n = pieces.length();
    bool rfc2231 = false;
    pb::Ref<PB_STRING> empty;
    auto put = [&](PB_INT keyIndex, PB_INT valueIndex) {
        pb::Ref<PB_STRING> key = pb::adopt(pieces.word(keyIndex, true));
        bool attribute = true;
        if (!keyOk(key.get(), attribute))
            return;
        rfc2231 |= !attribute;
        if (valueIndex >= 0) {
            store(context, key.get(), pb::adopt(pieces.word(valueIndex, false)).get());
            return;
        }
        if (!empty)
            empty = pb::adopt(pbStringCreate());
        store(context, key.get(), empty.get());
    };
    for (PB_INT i = start; i < n;) {
        if (!pieces.isTspecial(i, ';') || i == n - 1 || !pieces.isWord(i + 1))
            break;
        if (i + 1 == n - 1 || !pieces.isTspecial(i + 2, '=')) {
            put(i + 1, -1); // a key alone
            if (i + 1 == n - 1)
                break;
            i += 2;
        } else if (i + 2 == n - 1) {
            put(i + 1, -1); // "=" at the end
            break;
        } else if (pieces.isWord(i + 3)) {
            put(i + 1, i + 3);
            i += 4;
        } else {
            put(i + 1, -1); // "=" without a value
            i += 3;
        }
    }
    return rfc2231;
}

PB_DICT *decodeRfc2231(PB_DICT *parameters, MIME_OPTIONS *mo) noexcept
{
    return mime___Rfc2231Decode(parameters, mo);
}

namespace {

void appendToken(PB_VECTOR **tokens, MIME_SHF_TOKEN *tok)
{
    Ref<MIME_SHF_TOKEN> held = adopt(tok);
    pbVectorAppendObj(tokens, mimeShfTokenObj(held.get()));
}

} // namespace

void write(PB_VECTOR **tokens, PB_DICT *parameters, MIME_OPTIONS *mo) noexcept
{
    MIME_FLAGS flags = mimeOptionsFlags(mo);
    Ref<PB_DICT> written = pb::retained(parameters);
    if (flags & MIME_FLAG_GENERATE_RFC2231_HEADERS)
        written = adopt(mime___Rfc2231Encode(parameters, mo));
    for (PB_INT i = 0; i < pbDictLength(written.get()); ++i) {
        Ref<PB_STRING> key = adopt(pbStringFrom(pbDictKeyAt(written.get(), i)));
        Ref<PB_STRING> value = adopt(pbStringFrom(pbDictValueAt(written.get(), i)));
        if (!(flags & MIME_FLAG_GENERATE_UNICODE_HEADERS) && !chars::isAscii(pbStringBacking(value.get()), pbStringLength(value.get())))
            continue;
        appendToken(tokens, mimeShfTokenCreateTspecial(';'));
        appendToken(tokens, mimeShfTokenCreateRawValue(key.get()));
        appendToken(tokens, mimeShfTokenCreateTspecial('='));
        appendToken(tokens, mimeShfTokenCreateTokenOrQuotedString(value.get()));
    }
}

} // namespace mime::parameters
