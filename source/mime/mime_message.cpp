#include <mime/mime_content_id.h>
#include <mime/mime_encoded_words.h>
#include <mime/mime_entity_fields.hpp>
#include <mime/mime_message.h>
#include <mime/mime_message_header.hpp>
#include <mime/mime_message_lines.hpp>
#include <mime/mime_message_multipart.hpp>
#include <mime/mime_multipart.h>
#include <mime/mime_part.hpp>
#include <mime/mime_value_readers.hpp>
#include <pb/pb_utf8.hpp>
#include <rfc/rfc_base.h>
#include <rfc/rfc_quop.h>

#include <algorithm>
#include <cstring>
#include <string>

using pb::adopt;
using pb::Ref;

void mimeReadLimitsSetDefaults(MIME_READ_LIMITS *limits) noexcept
{
    PB_ASSERT( limits );
    limits->maxDepth = MIME_READ_LIMITS_DEFAULT_MAX_DEPTH;
    limits->maxParts = MIME_READ_LIMITS_DEFAULT_MAX_PARTS;
    limits->maxHeaderBytes = MIME_READ_LIMITS_DEFAULT_MAX_HEADER_BYTES;
    limits->maxDefectsPerPart = MIME_READ_LIMITS_DEFAULT_MAX_DEFECTS_PER_PART;
}

namespace {

using namespace mime::message;

// The UTF-8 form of a string (for boundaries and details of defects).
std::string utf8(PB_STRING *s)
{
    std::string out;
    const PB_CHAR *c = pbStringBacking(s);
    for (PB_INT i = 0, n = pbStringLength(s); i < n; ++i) {
        PB_BYTE bytes[4];
        out.append(reinterpret_cast<const char *>(bytes), static_cast<size_t>(pb::utf8::encode(c[i], bytes)));
    }
    return out;
}

bool contains(PB_STRING *s, PB_CHAR first, PB_CHAR second)
{
    const PB_CHAR *c = pbStringBacking(s);
    for (PB_INT i = 0, n = pbStringLength(s); i + 1 < n; ++i)
        if (c[i] == first && c[i + 1] == second)
            return true;
    return false;
}

// RFC 2047 words inside parameter key of value, decoded (the getter and setter
// of the value's type given).
template <class T> void decodeWords(Ref<T> &value, const char *key, PB_INT offset, mime::DefectList &defects,
                                    PB_STRING *(*get)(T *, const char *, PB_INT),
                                    void (*set)(T **, const char *, PB_INT, PB_STRING *))
{
    Ref<PB_STRING> text = adopt(get(value.get(), key, -1));
    if (!text || !contains(text.get(), '=', '?'))
        return;
    Ref<PB_STRING> decoded = adopt(mimeEncodedWordsDecode(text.get()));
    if (pbStringEquals(decoded.get(), text.get()))
        return;
    set(value.addr(), key, -1, decoded.get());
    defects.add(MIME_DEFECT_ENCODED_WORD_IN_PARAMETER, offset, key);
}

bool isIdentity(MIME_CONTENT_TRANSFER_ENCODING cte)
{
    return cte != MIME_CONTENT_TRANSFER_ENCODING_BASE64 && cte != MIME_CONTENT_TRANSFER_ENCODING_QUOTED_PRINTABLE;
}

// The Content-* fields of a header block: the first of each, its value and
// where it is.
struct ContentFields {
    Ref<PB_STRING> values[MIME_ENTITY_FIELD_COUNT];
    PB_INT offsets[MIME_ENTITY_FIELD_COUNT] = {};
    PB_INT indices[MIME_ENTITY_FIELD_COUNT] = {-1, -1, -1, -1};
};

// Content-Type values decoded without a defect, by their text as read: the
// parts of one message mostly repeat a few, and a value is immutable, so they
// share one object (a few of them: the rest is decoded each time).
class TypeCache {
public:
    Ref<MIME_CONTENT_TYPE> find(std::string_view raw) const
    {
        for (const Entry &e : entries_)
            if (e.raw == raw)
                return pb::retained(e.type.get());
        return {};
    }

    // Keeps type for raw once settle confirms that decoding it added no defect.
    void offer(std::string_view raw, MIME_CONTENT_TYPE *type, PB_INT defectsBefore)
    {
        if (entries_.size() < kSize)
            pending_ = {raw, pb::retained(type), defectsBefore};
    }

    void settle(PB_INT defectsNow)
    {
        if (pending_.type && pending_.defects == defectsNow)
            entries_.push_back({pending_.raw, std::move(pending_.type), 0});
        pending_ = {};
    }

private:
    static constexpr size_t kSize = 16;
    struct Entry {
        std::string_view raw;
        Ref<MIME_CONTENT_TYPE> type;
        PB_INT defects;
    };
    std::vector<Entry> entries_;
    Entry pending_;
};

class Reader {
public:
    Reader(PB_BUFFER *input, MIME_OPTIONS *opt, const MIME_READ_LIMITS &limits)
        : input_(input), b_(pbBufferBacking(input)), opt_(opt),
          limits_(limits), implied_{impliedType(false, nullptr), impliedType(true, nullptr)}
    {
    }

    MIME_PART *read() { return readPart(0, pbBufferLength(input_), "1", 0, false); }

private:
    struct Context {
        mime::PartContents &part;
        mime::DefectList &defects;
        PB_INT depth;
    };

    MIME_PART *readPart(PB_INT from, PB_INT end, std::string number, PB_INT depth, bool inDigest)
    {
        ++parts_;
        mime::PartContents part;
        part.number = std::move(number);
        part.input = input_;
        part.offset = from;
        part.length = end - from;
        mime::DefectList defects(part.number, limits_.maxDefectsPerPart);
        PB_INT at = from;
        if (from == 0 && end - from >= 5 && std::memcmp(b_, "From ", 5) == 0) {
            defects.add(MIME_DEFECT_MBOX_FROM_LINE, 0);
            at = lineAt(b_, 0, end).next;
        }
        Header header;
        mime::message::readHeader(b_, at, end, limits_.maxHeaderBytes, header, defects);
        ContentFields fields = contentFields(header, defects);
        part.fields = std::move(header.fields);
        std::copy(std::begin(fields.indices), std::end(fields.indices), part.contentFields);
        part.hasBody = header.hasBody;
        part.bodyOffset = header.hasBody ? header.end : end;
        part.bodyLength = end - part.bodyOffset;
        Context context{part, defects, depth};
        decodeValues(fields, inDigest, context);
        if (header.hasBody && !header.limited)
            readBody(context);
        part.defects = defects.take();
        return mime::createPart(part);
    }

    ContentFields contentFields(const Header &header, mime::DefectList &defects)
    {
        ContentFields fields;
        for (size_t i = 0; i < header.fields.size(); ++i) {
            const mime::FieldSpan &f = header.fields[i];
            int index = mime::entityFieldOf(b_ + f.name, f.nameLength);
            if (index < 0)
                continue;
            if (fields.values[index]) {
                defects.add(MIME_DEFECT_HEADER_FIELD_REPEATED, f.name, mime::kEntityFieldNames[index]);
                continue;
            }
            fields.values[index] = adopt(mime::fieldValue(b_, f));
            fields.offsets[index] = f.name;
            fields.indices[index] = static_cast<PB_INT>(i);
        }
        return fields;
    }

    // The four values, read as mail readers read them.
    void decodeValues(const ContentFields &fields, bool inDigest, Context &c)
    {
        struct Notes {
            mime::DefectList &defects;
            PB_INT offset;
        } notes{c.defects, 0};
        mime::rfc2231::Tolerance lookup{true,
                                        [](void *context, MIME_DEFECT_CODE code, mime::rfc2231::Span detail) {
                                            auto *n = static_cast<Notes *>(context);
                                            Ref<PB_STRING> text =
                                                adopt(pbStringCreateFromCharsCopy(detail.chars, detail.length));
                                            n->defects.add(code, n->offset, utf8(text.get()));
                                        },
                                        &notes};
        if (PB_STRING *text = fields.values[0].get()) {
            notes.offset = fields.offsets[0];
            std::string_view raw = rawValue(c.part.fields[static_cast<size_t>(fields.indices[0])]);
            PB_INT defectsBefore = c.defects.count();
            if ((c.part.contentType = typeCache_.find(raw)))
                ; // read before in this message, without a defect
            else if ((c.part.contentType = adopt(mime::readContentType(text, opt_, nullptr, lookup))))
                typeCache_.offer(raw, c.part.contentType.get(), defectsBefore);
            if (!c.part.contentType) {
                c.defects.add(MIME_DEFECT_CONTENT_TYPE_INVALID, fields.offsets[0]);
                Ref<PB_DICT> parameters = adopt(mime::readParametersOnly(text, opt_, lookup));
                c.part.contentType = impliedType(false, parameters.get());
                c.part.contentTypeImplied = true;
            }
            decodeWords(c.part.contentType, "name", fields.offsets[0], c.defects, mimeContentTypeParameterCstr,
                        mimeContentTypeSetParameterCstr);
            typeCache_.settle(c.defects.count());
        } else {
            c.part.contentType = pb::retained(implied_[inDigest].get());
            c.part.contentTypeImplied = true;
        }
        if (PB_STRING *text = fields.values[1].get()) {
            notes.offset = fields.offsets[1];
            c.part.contentDisposition = adopt(mime::readContentDisposition(text, opt_, nullptr, lookup));
            if (!c.part.contentDisposition)
                c.defects.add(MIME_DEFECT_CONTENT_DISPOSITION_INVALID, fields.offsets[1]);
            else
                decodeWords(c.part.contentDisposition, "filename", fields.offsets[1], c.defects,
                            mimeContentDispositionParameterCstr, mimeContentDispositionSetParameterCstr);
        }
        if (PB_STRING *text = fields.values[2].get()) {
            c.part.transferEncoding = mimeContentTransferEncodingTryDecode(text, opt_);
            if (c.part.transferEncoding < 0)
                c.defects.add(MIME_DEFECT_TRANSFER_ENCODING_INVALID, fields.offsets[2]);
        }
        if (PB_STRING *text = fields.values[3].get()) {
            c.part.contentId = adopt(mimeContentIdTryDecode(text));
            if (!c.part.contentId)
                c.defects.add(MIME_DEFECT_CONTENT_ID_INVALID, fields.offsets[3]);
        }
    }

    // The type RFC 2045 and RFC 2046 imply, with the parameters that could be read.
    static Ref<MIME_CONTENT_TYPE> impliedType(bool inDigest, PB_DICT *parameters)
    {
        Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr(inDigest ? "message/rfc822" : "text/plain", -1));
        for (PB_INT i = 0; parameters && i < pbDictLength(parameters); ++i) {
            Ref<PB_STRING> key = adopt(pbStringFrom(pbDictKeyAt(parameters, i)));
            Ref<PB_STRING> value = adopt(pbStringFrom(pbDictValueAt(parameters, i)));
            if (mimeContentTypeParameterKeyOk(key.get()))
                mimeContentTypeSetParameter(type.addr(), key.get(), value.get());
        }
        Ref<PB_STRING> charset = adopt(mimeContentTypeParameterCstr(type.get(), "charset", -1));
        if (!inDigest && !charset)
            mimeContentTypeSetParameterCstrCstrValue(type.addr(), "charset", -1, "us-ascii", -1);
        return type;
    }

    void readBody(Context &c)
    {
        Ref<PB_STRING> nameText = adopt(mimeContentTypeName(c.part.contentType.get()));
        std::string name = utf8(nameText.get());
        bool multipart = name.starts_with("multipart/");
        bool blocks = name == "message/delivery-status";
        bool message = name.starts_with("message/") && !blocks;
        MIME_CONTENT_TRANSFER_ENCODING cte = c.part.transferEncoding;
        if ((multipart || message || blocks) && !isIdentity(cte)) {
            c.defects.add(MIME_DEFECT_CONTAINER_ENCODED, c.part.bodyOffset, name);
            message = blocks = false;
        }
        if ((multipart || message || blocks) && c.depth >= limits_.maxDepth) {
            c.defects.add(MIME_DEFECT_LIMIT_EXCEEDED, c.part.bodyOffset, "nesting depth");
            return;
        }
        if (multipart && c.part.bodyLength > 0) // an empty body has nothing to split, nor a boundary to need
            readMultipart(name == "multipart/digest", c);
        else if (message)
            readEnclosedMessage(c);
        else if (blocks)
            readFieldBlocks(c);
        else
            decodeLeaf(c);
    }

    void readMultipart(bool digest, Context &c)
    {
        Ref<PB_STRING> boundary = adopt(mimeContentTypeParameterCstr(c.part.contentType.get(), "boundary", -1));
        if (!boundary || pbStringLength(boundary.get()) == 0) {
            c.defects.add(MIME_DEFECT_BOUNDARY_INVALID, c.part.bodyOffset, "is missing (the part stays a leaf)");
            return;
        }
        if (!mimeMultipartBoundaryOk(boundary.get()))
            c.defects.add(MIME_DEFECT_BOUNDARY_INVALID, c.part.bodyOffset,
                          "is not one RFC 2046 allows (used as mail readers take it)");
        Delimited delimited;
        PB_INT begin = c.part.bodyOffset, end = begin + c.part.bodyLength;
        std::string dashed = utf8(boundary.get());
        while (!dashed.empty() && (dashed.back() == ' ' || dashed.back() == '\t'))
            dashed.pop_back(); // as mail readers take it: RFC 2046 allows no space at the end
        splitMultipart(b_, begin, end, dashed, limits_.maxParts - parts_, delimited, c.defects);
        PB_INT k = 0;
        for (const Range &range : delimited.parts)
            addChild(c,
                     readPart(range.start, range.end, c.part.number + "." + std::to_string(++k), c.depth + 1, digest));
    }

    void readEnclosedMessage(Context &c)
    {
        if (parts_ >= limits_.maxParts) {
            c.defects.add(MIME_DEFECT_LIMIT_EXCEEDED, c.part.bodyOffset, "part count");
            return;
        }
        PB_INT begin = c.part.bodyOffset;
        addChild(c, readPart(begin, begin + c.part.bodyLength, c.part.number + ".1", c.depth + 1, false));
    }

    // A delivery status (RFC 3464): blocks of header fields, each ended by an
    // empty line, read as parts without bodies.
    void readFieldBlocks(Context &c)
    {
        PB_INT at = c.part.bodyOffset, end = at + c.part.bodyLength;
        for (PB_INT k = 1, start = at; start < end; ++k) {
            if (parts_ >= limits_.maxParts) {
                c.defects.add(MIME_DEFECT_LIMIT_EXCEEDED, start, "part count");
                return;
            }
            Line line = lineAt(b_, start, end);
            while (line.start != line.end && line.next < end)
                line = lineAt(b_, line.next, end);
            addChild(c, readPart(start, line.next, c.part.number + "." + std::to_string(k), c.depth + 1, false));
            start = line.next;
        }
    }

    static void addChild(Context &c, MIME_PART *child)
    {
        Ref<MIME_PART> held = adopt(child);
        if (!c.part.children)
            c.part.children = adopt(pbVectorCreate());
        pbVectorAppendObj(c.part.children.addr(), mimePartObj(held.get()));
    }

    void decodeLeaf(Context &c)
    {
        MIME_CONTENT_TRANSFER_ENCODING cte = c.part.transferEncoding;
        if (isIdentity(cte))
            return;
        PB_INT fault = -1;
        bool base64 = cte == MIME_CONTENT_TRANSFER_ENCODING_BASE64;
        Ref<PB_BUFFER> raw = adopt(pbBufferRead(input_, c.part.bodyOffset, c.part.bodyLength));
        c.part.decodedBody = adopt(base64 ? rfcBaseDecodeTolerant(raw.get(), RFC_BASE_VARIANT_BASE64, &fault)
                                          : rfcQuopDecodeTolerant(raw.get(), &fault));
        if (fault >= 0)
            c.defects.add(MIME_DEFECT_BODY_INVALID, c.part.bodyOffset + fault, base64 ? "base64" : "quoted-printable");
    }

    PB_BUFFER *input_;
    const PB_BYTE *b_;
    MIME_OPTIONS *opt_;
    std::string_view rawValue(const mime::FieldSpan &f) const
    {
        return {reinterpret_cast<const char *>(b_ + f.value), static_cast<size_t>(f.end - f.value)};
    }

    MIME_READ_LIMITS limits_;
    TypeCache typeCache_;
    Ref<MIME_CONTENT_TYPE> implied_[2]; // text/plain; charset=us-ascii, and message/rfc822 in a digest
    PB_INT parts_ = 0;
};

} // namespace

MIME_PART *mimeMessageRead(PB_BUFFER *message, MIME_OPTIONS *opt, const MIME_READ_LIMITS *limits) noexcept
{
    PB_ASSERT( message );
    PB_ASSERT( opt );
    MIME_READ_LIMITS chosen;
    mimeReadLimitsSetDefaults(&chosen);
    if (limits)
        chosen = *limits;
    PB_ASSERT( chosen.maxDepth >= 0 && chosen.maxParts >= 0 && chosen.maxHeaderBytes >= 0 && chosen.maxDefectsPerPart >= 0 );
    return Reader(message, opt, chosen).read();
}
