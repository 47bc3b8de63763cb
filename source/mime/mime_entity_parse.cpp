#include <mime/mime_byte_search.hpp>
#include <mime/mime_char.hpp>
#include <mime/mime_entity_parse.h>
#include <mime/mime_small_vector.hpp>
#include <pb/pb_charset.h>
#include <pb/pb_ref.hpp>

#include <cstring>
#include <string_view>

namespace {

using pb::adopt;
using pb::Ref;

bool isLwsp(PB_CHAR c)
{
    return c == ' ' || c == '\t';
}

bool isTrimmed(PB_CHAR c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The field a header name sets, compared as the runtime lowers text (ASCII
// letters only); -1 for any other name. The four names differ in length.
enum Field { kContentType, kContentDisposition, kContentTransferEncoding, kContentId, kFieldCount };

int fieldOf(const PB_CHAR *name, PB_INT n)
{
    static constexpr std::string_view names[kFieldCount] = {"content-type", "content-disposition",
                                                             "content-transfer-encoding", "content-id"};
    int f = -1;
    for (int g = 0; g < kFieldCount; ++g)
        if (static_cast<size_t>(n) == names[g].size())
            f = g;
    if (f < 0)
        return -1;
    for (PB_INT i = 0; i < n; ++i)
        if ((name[i] - 'A' < 26u ? name[i] + 32 : name[i]) != static_cast<PB_CHAR>(names[f][i]))
            return -1;
    return f;
}

// The fields of a header block, read line by line into the entity.
class HeaderBlock {
public:
    HeaderBlock(const PB_CHAR *text, PB_INT length) : c_(text), n_(length) {}

    bool readInto(MIME_ENTITY **ent)
    {
        if (n_ > 0 && isLwsp(c_[0]))
            return false; // a continuation with nothing to continue
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

    bool readLine(PB_INT start, PB_INT end, bool folded, MIME_ENTITY **ent)
    {
        PB_INT colon = start;
        while (colon < end && c_[colon] != ':')
            ++colon;
        if (colon == end || colon == start)
            return false;
        for (PB_INT i = start; i < colon; ++i)
            if (c_[i] == ' ' || mime::chars::is(c_[i], mime::chars::kCtl))
                return false; // a line break before the colon is a control character too
        int field = fieldOf(c_ + start, colon - start);
        if (field < 0)
            return true;
        if (seen_[field])
            return false;
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
            return pbStringCreateFromCharsCopy(c_ + from, end - from);
        mime::SmallVector<PB_CHAR, 256> chars;
        PB_INT run = from;
        for (PB_INT i = from; i + 1 < end; ++i) {
            if (c_[i] != '\r' || c_[i + 1] != '\n')
                continue;
            chars.append(c_ + run, static_cast<size_t>(i - run));
            run = ++i + 1;
        }
        if (run == from)
            return pbStringCreateFromCharsCopy(c_ + from, end - from);
        chars.append(c_ + run, static_cast<size_t>(end - run));
        return pbStringCreateFromCharsCopy(chars.data(), static_cast<PB_INT>(chars.size()));
    }

    const PB_CHAR *c_;
    PB_INT n_;
    bool seen_[kFieldCount] = {};
};

const PB_BYTE kCrLf[] = {'\r', '\n'};
const PB_BYTE kEmptyLine[] = {'\r', '\n', '\r', '\n'};

} // namespace

MIME_ENTITY *mime___EntityTryParse(PB_BUFFER *content, PB_INT offset, PB_INT length) noexcept
{
    PB_ASSERT( content );
    PB_ASSERT( offset >= 0 && length >= 0 && offset <= pbBufferLength( content ) - length );
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
        Ref<PB_BUFFER> block = adopt(pbBufferRead(content, offset, headerLength));
        Ref<PB_STRING> text = adopt(pbCharsetTryConvertBufferToStringWithFlags(PB_CHARSET_UTF_8, block.get(),
                                                                               PB_CHARSET_FLAG_STRICT));
        if (!text || !HeaderBlock(pbStringBacking(text.get()), pbStringLength(text.get())).readInto(ent.addr()))
            return nullptr;
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
    return mime___EntityTryParse(content, 0, pbBufferLength(content));
}
