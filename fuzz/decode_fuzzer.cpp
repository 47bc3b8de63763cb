// An entity from the input decoded: never aborts or leaks. The first byte gives
// the flags, the second which fields are present; the rest is cut at 0xFF bytes
// into Content-Type, Content-Disposition, Content-Transfer-Encoding, Content-Id
// and body. What decodes is encoded again and decodes to the same body, media
// type name, disposition type and Content-Id.
#include "entity_support.hpp"
#include "fuzz_support.hpp"

#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        using pb::adopt;
        using pb::Ref;
        if (n < 2)
            return;
        std::vector<std::string> pieces(1);
        for (size_t i = 2; i < n; ++i) {
            if (d[i] == 0xFF)
                pieces.emplace_back();
            else
                pieces.back() += static_cast<char>(d[i]);
        }
        pieces.resize(5);
        void (*const setters[])(MIME_ENTITY **,
                                PB_STRING *) = {mimeEntitySetContentType, mimeEntitySetContentDisposition,
                                                mimeEntitySetContentTransferEncoding, mimeEntitySetContentId};
        Ref<MIME_ENTITY> ent = adopt(mimeEntityCreate());
        for (size_t f = 0; f < 4; ++f) {
            if (d[1] & (1u << f)) {
                Ref<PB_STRING> text =
                    adopt(pbStringCreateFromCstr(pieces[f].data(), static_cast<PB_INT>(pieces[f].size())));
                setters[f](ent.addr(), text.get());
            }
        }
        if (d[1] & 16) {
            Ref<PB_BUFFER> body =
                adopt(pbBufferCreateFromBytesCopy(pieces[4].data(), static_cast<PB_INT>(pieces[4].size())));
            mimeEntitySetBody(ent.addr(), body.get());
        }
        Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
        mimeOptionsSetFlags(mo.addr(), d[0]);
        Ref<PB_BUFFER> body;
        Ref<MIME_CONTENT_TYPE> type;
        Ref<MIME_CONTENT_DISPOSITION> disposition;
        Ref<PB_STRING> id;
        if (!mimeDecode(ent.get(), mo.get(), body.addr(), type.addr(), disposition.addr(), id.addr())) {
            PB_ASSERT( !body && !type && !disposition && !id );
            return;
        }
        Ref<MIME_ENTITY> again = adopt(mimeEncode(mo.get(), body.get(), type.get(), disposition.get(), id.get()));
        Ref<PB_BUFFER> body2;
        Ref<MIME_CONTENT_TYPE> type2;
        Ref<MIME_CONTENT_DISPOSITION> disposition2;
        Ref<PB_STRING> id2;
        PB_ASSERT( mimeDecode(again.get(), mo.get(), body2.addr(), type2.addr(), disposition2.addr(), id2.addr()) );
        PB_ASSERT( !body == !body2 );
        PB_ASSERT( !body || pbBufferCompare(body.get(), body2.get()) == 0 );
        PB_ASSERT( !type == !type2 );
        PB_ASSERT( !type || fuzz::sameText(adopt(mimeContentTypeName(type.get())).get(),
                                           adopt(mimeContentTypeName(type2.get())).get()) );
        PB_ASSERT( !disposition == !disposition2 );
        PB_ASSERT( !disposition || fuzz::sameText(adopt(mimeContentDispositionType(disposition.get())).get(),
                                                  adopt(mimeContentDispositionType(disposition2.get())).get()) );
        PB_ASSERT( fuzz::sameText(id.get(), id2.get()) );
    });
}
