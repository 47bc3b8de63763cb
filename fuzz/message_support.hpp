// The properties of the tolerant message reader, shared by its fuzz target and
// its tests: on any input the tree stays inside the input; wherever the strict
// functions accept a message whose line ends are all CR LF, the tolerant tree
// holds the same parts, values and bodies and no defect; and the WithDefect
// variants agree with the plain functions.
#pragma once

#include "checks.hpp"
#include "entity_support.hpp"

#include <mime/mime.h>

#include <algorithm>
#include <string>
#include <vector>

namespace fuzz {

using pb::adopt;
using pb::Ref;

// A message as the strict functions read it, parts of multipart bodies included.
struct StrictPart {
    Ref<MIME_ENTITY> entity;
    Ref<MIME_CONTENT_TYPE> type;
    Ref<MIME_CONTENT_DISPOSITION> disposition;
    Ref<PB_STRING> id;
    MIME_CONTENT_TRANSFER_ENCODING cte = -1;
    Ref<PB_BUFFER> body;
    std::vector<StrictPart> children;
};

inline bool startsWith(PB_STRING *s, const char *prefix)
{
    const PB_CHAR *c = pbStringBacking(s);
    PB_INT i = 0;
    for (; prefix[i]; ++i)
        if (i >= pbStringLength(s) || c[i] != static_cast<PB_CHAR>(prefix[i]))
            return false;
    return true;
}

class MessageCheck {
public:
    MessageCheck() : mo_(adopt(mimeOptionsCreate())) {}

    // "" when every property holds for the input, else what failed.
    std::string run(const uint8_t *data, size_t size)
    {
        Ref<PB_BUFFER> input = adopt(pbBufferCreateFromBytesCopy(data, static_cast<PB_INT>(size)));
        Ref<MIME_PART> tree = adopt(mimeMessageRead(input.get(), mo_.get(), nullptr));
        inside(tree.get(), 0, static_cast<PB_INT>(size));
        StrictPart strict;
        if (readStrict(input.get(), strict) && allCrLf(data, size))
            agree(strict, tree.get());
        return failure_;
    }

    // Whether the last run compared the two readings value by value.
    bool compared() const { return compared_; }

private:
    void fail(const std::string &what)
    {
        if (failure_.empty())
            failure_ = what;
    }

    // Every range of part lies in [from, to), its children's in its body.
    void inside(MIME_PART *part, PB_INT from, PB_INT to)
    {
        PB_INT offset = mimePartOffset(part), end = offset + mimePartLength(part);
        PB_INT body = mimePartBodyOffset(part), bodyEnd = body + mimePartBodyLength(part);
        if (offset < from || end > to || body < offset || bodyEnd > end)
            fail("a range outside its parent");
        for (PB_INT i = 0; i < mimePartDefectCount(part); ++i) {
            Ref<MIME_DEFECT> defect = adopt(mimePartDefectAt(part, i));
            if (mimeDefectOffset(defect.get()) > to)
                fail("a defect after the end");
            ordered(defect.get(), adopt(mimePartDefectAt(part, 0)).get(), mimeDefectCompare, mimeDefectEquals);
            Ref<MIME_DEFECT> held = adopt(mimeDefectRetain(defect.get()));
            PB_ASSERT( held.get() == defect.get() && adopt(mimeDefectToString(held.get())) );
        }
        fieldsFound(part);
        for (PB_INT i = 0; i < mimePartChildCount(part); ++i) {
            Ref<MIME_PART> child = adopt(mimePartChildAt(part, i));
            ordered(part, child.get(), mimePartCompare, mimePartEquals);
            inside(child.get(), body, bodyEnd);
        }
        Ref<MIME_PART> held = adopt(mimePartRetain(part));
        PB_ASSERT( held.get() == part && adopt(mimePartToString(held.get())) );
    }

    // The first few fields are found by their names, in every form, as the
    // first field of the name (letters in any case).
    void fieldsFound(MIME_PART *part)
    {
        const PB_INT count = std::min<PB_INT>(mimePartFieldCount(part), 8);
        for (PB_INT i = 0; i < count; ++i) {
            const Forms name(adopt(mimePartFieldNameAt(part, i)).get());
            PB_INT first = 0;
            while (!pbStringEqualsCaseFold(adopt(mimePartFieldNameAt(part, first)).get(), name.string.get()))
                ++first;
            Ref<PB_STRING> value = adopt(mimePartFieldValueAt(part, first));
            if (!sameText(value.get(), adopt(mimePartField(part, name.string.get())).get()) ||
                !sameText(value.get(), adopt(mimePartFieldCstr(part, name.utf8.data(), name.utf8UpToNul())).get()) ||
                !sameText(value.get(), adopt(mimePartFieldWcstr(part, name.wide.data(), name.wideLength())).get()))
                fail("a field not found by its name");
        }
    }

    static bool allCrLf(const uint8_t *d, size_t n)
    {
        for (size_t i = 0; i < n; ++i)
            if (d[i] == '\n' && (i == 0 || d[i - 1] != '\r'))
                return false;
        return true;
    }

    // The strict reading; false when a step refuses. Each step is also run
    // with its defect, which must agree.
    bool readStrict(PB_BUFFER *input, StrictPart &out)
    {
        Ref<MIME_DEFECT> defect;
        out.entity = adopt(mimeEntityTryParse(input, mo_.get()));
        Ref<MIME_ENTITY> twin = adopt(mimeEntityTryParseWithDefect(input, mo_.get(), defect.addr()));
        if (!out.entity != !twin || !out.entity == !defect || (twin && !sameEntity(twin.get(), out.entity.get())))
            fail("mimeEntityTryParseWithDefect disagrees");
        return out.entity && decodeStrict(out, 0);
    }

    bool decodeStrict(StrictPart &p, int depth)
    {
        Ref<MIME_DEFECT> defect;
        bool ok =
            mimeDecode(p.entity.get(), mo_.get(), p.body.addr(), p.type.addr(), p.disposition.addr(), p.id.addr());
        bool twin = mimeDecodeWithDefect(p.entity.get(), mo_.get(), nullptr, nullptr, nullptr, nullptr, defect.addr());
        if (ok != twin || ok == !!defect)
            fail("mimeDecodeWithDefect disagrees");
        if (!ok || depth > MIME_READ_LIMITS_DEFAULT_MAX_DEPTH)
            return false;
        if (Ref<PB_STRING> cte = adopt(mimeEntityContentTransferEncoding(p.entity.get())))
            p.cte = mimeContentTransferEncodingTryDecode(cte.get(), mo_.get());
        Ref<PB_STRING> name = p.type ? adopt(mimeContentTypeName(p.type.get())) : Ref<PB_STRING>();
        if (!name || !startsWith(name.get(), "multipart/") || !p.body)
            return true;
        Ref<PB_VECTOR> parts = adopt(mimeMultipartTryUnpack(p.type.get(), p.body.get(), mo_.get()));
        Ref<PB_VECTOR> same =
            adopt(mimeMultipartTryUnpackWithDefect(p.type.get(), p.body.get(), mo_.get(), defect.addr()));
        if (!parts != !same || !parts == !defect)
            fail("mimeMultipartTryUnpackWithDefect disagrees");
        for (PB_INT i = 0; parts && i < pbVectorLength(parts.get()); ++i) {
            p.children.emplace_back();
            p.children.back().entity = pb::retained(entityAt(parts.get(), i));
            if (!decodeStrict(p.children.back(), depth + 1))
                return false;
        }
        return static_cast<bool>(parts);
    }

    // The departures that the strict functions pass without a word: values may
    // then differ.
    static bool passedByStrict(MIME_DEFECT_CODE code)
    {
        return code == MIME_DEFECT_CHARSET_UNKNOWN || code == MIME_DEFECT_ENCODED_WORD_IN_PARAMETER ||
               code == MIME_DEFECT_CONTAINER_ENCODED || code == MIME_DEFECT_PARAMETERS_MALFORMED ||
               code == MIME_DEFECT_DELIMITER_REPEATED; // (a close delimiter right after a delimiter line)
    }

    // Whether a part (and its children, message bodies aside) holds only
    // defects that strict reading passes; fails on any other.
    bool comparable(MIME_PART *part, const StrictPart &strict)
    {
        std::vector<MIME_DEFECT_CODE> codes;
        for (PB_INT i = 0; i < mimePartDefectCount(part); ++i)
            codes.push_back(mimeDefectCode(adopt(mimePartDefectAt(part, i)).get()));
        // A departure that strict reading passes may change the part's values
        // (a boundary, say), and with them what else is found below it.
        if (std::any_of(codes.begin(), codes.end(), passedByStrict))
            return false;
        if (!codes.empty())
            fail(std::string("a defect where strict reading accepts: ") + mimeDefectCodeName(codes[0]));
        bool comparable = codes.empty();
        for (size_t i = 0; i < strict.children.size() && i < static_cast<size_t>(mimePartChildCount(part)); ++i)
            comparable &=
                this->comparable(adopt(mimePartChildAt(part, static_cast<PB_INT>(i))).get(), strict.children[i]);
        return comparable;
    }

    void agree(const StrictPart &strict, MIME_PART *part)
    {
        compared_ = comparable(part, strict);
        if (compared_)
            same(strict, part);
    }

    void same(const StrictPart &s, MIME_PART *t)
    {
        Ref<MIME_ENTITY> entity = adopt(mimePartEntity(t));
        Ref<MIME_CONTENT_TYPE> type = adopt(mimePartContentType(t));
        Ref<MIME_CONTENT_DISPOSITION> disposition = adopt(mimePartContentDisposition(t));
        Ref<PB_STRING> id = adopt(mimePartContentId(t));
        Ref<PB_BUFFER> body = adopt(mimePartBody(t));
        if (!sameEntity(entity.get(), s.entity.get()))
            fail("other fields or raw body");
        if (s.type ? mimePartContentTypeImplied(t) || !mimeContentTypeEquals(type.get(), s.type.get())
                   : !mimePartContentTypeImplied(t))
            fail("another content type");
        if (!disposition != !s.disposition ||
            (disposition && !mimeContentDispositionEquals(disposition.get(), s.disposition.get())))
            fail("another disposition");
        if (!sameText(id.get(), s.id.get()) || mimePartTransferEncoding(t) != s.cte)
            fail("another id or transfer encoding");
        if (!sameBytes(body.get(), s.body.get()))
            fail("another body");
        Ref<PB_STRING> name = adopt(mimeContentTypeName(type.get()));
        if (startsWith(name.get(), "message/"))
            return; // read as a message here only
        if (static_cast<size_t>(mimePartChildCount(t)) != s.children.size())
            fail("another number of parts");
        for (size_t i = 0; i < s.children.size() && i < static_cast<size_t>(mimePartChildCount(t)); ++i)
            same(s.children[i], adopt(mimePartChildAt(t, static_cast<PB_INT>(i))).get());
    }

    Ref<MIME_OPTIONS> mo_;
    std::string failure_;
    bool compared_ = false;
};

} // namespace fuzz
