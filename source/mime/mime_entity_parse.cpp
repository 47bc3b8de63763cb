#include <mime/mime_byte_search.hpp>
#include <mime/mime_char.hpp>
#include <mime/mime_defect.hpp>
#include <mime/mime_entity_fields.hpp>
#include <mime/mime_entity_parse.h>
#include <mime/mime_small_vector.hpp>
#include <pb/pb_ref.hpp>
#include <pb/pb_utf8.hpp>

#include <cstring>
#include <string_view>

namespace {

using pb::adopt;
using pb::Ref;

bool isLwsp(PB_BYTE c)
{
    return c == ' ' || c == '\t';
}

bool isTrimmed(PB_BYTE c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

constexpr int kFieldCount = MIME_ENTITY_FIELD_COUNT;

// The fields of a header block of well-formed UTF-8, read line by line into the
// entity. Every character that the syntax looks at is ASCII, so the lines are
// read as bytes and only the values become text.
class HeaderBlock {
public:
    HeaderBlock(const PB_BYTE *bytes, PB_INT length) : c_(bytes), n_(length) {}

    // Why reading failed: a code, where, and the field name it concerns.
    struct Failure {
        MIME_DEFECT_CODE code = 0;
        PB_INT offset = 0;
        std::string_view field;
    };

    bool readInto(MIME_ENTITY **ent, Failure &failure)
    {
        failure_ = &failure;
        if (n_ > 0 && isLwsp(c_[0]))
            return fail(MIME_DEFECT_HEADER_CONTINUATION_FIRST, 0); // nothing to continue
        // A joined line runs from its start to the CR LF that a non-continuation
        // line follows (or the end); each physical line is looked at once.
        for (PB_INT start = 0; start < n_;) {
            PB_INT end = lineEnd(start);
            bool folded = false;
            while (end + 2 < n_ && isLwsp(c_[end + 2])) {
                end = lineEnd(end + 2);
                folded = true;
            }
            if (!readLine(start, end, folded, ent))
                return false;
            start = end + 2;
        }
        return true;
    }

private:
    // The CR of the CR LF that ends the physical line from start, or the end.
    PB_INT lineEnd(PB_INT from) const
    {
        for (PB_INT i = from; i + 1 < n_; ++i)
            if (c_[i] == '\r' && c_[i + 1] == '\n')
                return i;
        return n_;
    }

    bool fail(MIME_DEFECT_CODE code, PB_INT offset, std::string_view field = {})
    {
        *failure_ = {code, offset, field};
        return false;
    }

    bool readLine(PB_INT start, PB_INT end, bool folded, MIME_ENTITY **ent)
    {
        PB_INT colon = start;
        while (colon < end && c_[colon] != ':')
            ++colon;
        if (colon == end || colon == start)
            return fail(MIME_DEFECT_HEADER_LINE_MALFORMED, start);
        for (PB_INT i = start; i < colon; ++i)
            if (c_[i] == ' ' || mime::chars::is(c_[i], mime::chars::kCtl))
                return fail(MIME_DEFECT_HEADER_LINE_MALFORMED, start); // a line break is a control character too
        int field = mime::entityFieldOf(c_ + start, colon - start);
        if (field < 0)
            return true;
        if (seen_[field])
            return fail(MIME_DEFECT_HEADER_FIELD_REPEATED, start, mime::kEntityFieldNames[field]);
        seen_[field] = true;
        static void (*const setters[kFieldCount])(MIME_ENTITY **, PB_STRING *) = {
            mimeEntitySetContentType, mimeEntitySetContentDisposition, mimeEntitySetContentTransferEncoding,
            mimeEntitySetContentId};
        Ref<PB_STRING> value = adopt(joinedValue(colon + 1, end, folded));
        setters[field](ent, value.get());
        return true;
    }

    // The text of [from, end) trimmed, without the CR LF of each continuation
    // (every CR LF inside a joined line is one).
    PB_STRING *joinedValue(PB_INT from, PB_INT end, bool folded) const
    {
        while (from < end && isTrimmed(c_[from]))
            ++from;
        while (end > from && isTrimmed(c_[end - 1]))
            --end;
        if (!folded)
            return text(c_ + from, end - from);
        mime::SmallVector<PB_BYTE, 256> chars;
        PB_INT run = from;
        for (PB_INT i = from; i + 1 < end; ++i) {
            if (c_[i] != '\r' || c_[i + 1] != '\n')
                continue;
            chars.append(c_ + run, static_cast<size_t>(i - run));
            run = ++i + 1;
        }
        if (run == from)
            return text(c_ + from, end - from);
        chars.append(c_ + run, static_cast<size_t>(end - run));
        return text(chars.data(), static_cast<PB_INT>(chars.size()));
    }

    static PB_STRING *text(const PB_BYTE *utf8, PB_INT n)
    {
        return pbStringCreateFromCstr(reinterpret_cast<const char *>(utf8), n);
    }

    const PB_BYTE *c_;
    PB_INT n_;
    bool seen_[kFieldCount] = {};
    Failure *failure_ = nullptr;
};

const PB_BYTE kCrLf[] = {'\r', '\n'};
const PB_BYTE kEmptyLine[] = {'\r', '\n', '\r', '\n'};

} // namespace

MIME_ENTITY *mime___EntityTryParse(PB_BUFFER *content, PB_INT offset, PB_INT length, MIME_DEFECT **defect) noexcept
{
    PB_ASSERT( content );
    PB_ASSERT( offset >= 0 && length >= 0 && offset <= pbBufferLength( content ) - length );
    mime::clearDefect(defect);
    const PB_BYTE *b = pbBufferBacking(content) + offset;
    Ref<MIME_ENTITY> ent = adopt(mimeEntityCreate());
    PB_INT headerLength = 0, bodyStart = length;
    if (length >= 2 && std::memcmp(b, kCrLf, 2) == 0) {
        bodyStart = 2;
    } else if (PB_INT k = mime::bytes::find(b, length, 0, kEmptyLine, 4); k >= 0) {
        headerLength = k;
        bodyStart = k + 4;
    } else {
        // No empty line: all header lines, the last one perhaps ended by CR LF.
        headerLength = length >= 2 && std::memcmp(b + length - 2, kCrLf, 2) == 0 ? length - 2 : length;
    }
    if (headerLength > 0) {
        HeaderBlock::Failure failure;
        if (PB_INT valid = static_cast<PB_INT>(pb::utf8::wellFormedLength(b, static_cast<size_t>(headerLength)));
            valid < headerLength)
            failure = {MIME_DEFECT_HEADER_NOT_UTF8, valid, {}};
        else if (HeaderBlock(b, headerLength).readInto(ent.addr(), failure))
            failure.code = -1;
        if (failure.code >= 0) {
            mime::report(defect, failure.code, offset + failure.offset, failure.field);
            return nullptr;
        }
    }
    if (bodyStart < length) {
        Ref<PB_BUFFER> body = adopt(pbBufferRead(content, offset + bodyStart, length - bodyStart));
        mimeEntitySetBody(ent.addr(), body.get());
    }
    return ent.release();
}

MIME_ENTITY *mimeEntityTryParse(PB_BUFFER *content, MIME_OPTIONS *opt) noexcept
{
    PB_ASSERT( content );
    PB_ASSERT( opt );
    return mime___EntityTryParse(content, 0, pbBufferLength(content), nullptr);
}

MIME_ENTITY *mimeEntityTryParseWithDefect(PB_BUFFER *content, MIME_OPTIONS *opt, MIME_DEFECT **defect) noexcept
{
    PB_ASSERT( content );
    PB_ASSERT( opt );
    return mime___EntityTryParse(content, 0, pbBufferLength(content), defect);
}
