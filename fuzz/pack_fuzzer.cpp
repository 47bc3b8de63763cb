// Entities built from the input packed and unpacked: the same entities come back.
// The input is cut at 0xFF bytes into pieces that fill the fields and bodies of
// up to eight entities; header values keep only what a header line can carry as
// it is (no control characters, no white space at either end), bodies anything.
#include "entity_support.hpp"
#include "fuzz_support.hpp"

#include <string>
#include <vector>

namespace {

pb::Ref<PB_STRING> headerValue(const std::string &piece)
{
    std::string v;
    for (char c : piece)
        if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F)
            v += c;
    size_t begin = v.find_first_not_of(' '), end = v.find_last_not_of(' ');
    v = begin == std::string::npos ? "" : v.substr(begin, end - begin + 1);
    return pb::adopt(pbStringCreateFromCstr(v.data(), static_cast<PB_INT>(v.size())));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        using pb::adopt;
        std::vector<std::string> pieces(1);
        for (size_t i = 0; i < n; ++i) {
            if (d[i] == 0xFF)
                pieces.emplace_back();
            else
                pieces.back() += static_cast<char>(d[i]);
        }
        void (*const setters[])(MIME_ENTITY **,
                                PB_STRING *) = {mimeEntitySetContentType, mimeEntitySetContentDisposition,
                                                mimeEntitySetContentTransferEncoding, mimeEntitySetContentId};
        pb::Ref<PB_VECTOR> entities = adopt(pbVectorCreate());
        // Each entity: a presence mask (first byte of its first piece), four values, a body.
        for (size_t p = 0; p < pieces.size() && pbVectorLength(entities.get()) < 8; p += 6) {
            unsigned mask = pieces[p].empty() ? 0 : static_cast<unsigned char>(pieces[p][0]);
            pb::Ref<MIME_ENTITY> ent = adopt(mimeEntityCreate());
            for (size_t f = 0; f < 4; ++f)
                if (mask & (1u << f) && p + 1 + f < pieces.size())
                    setters[f](ent.addr(), headerValue(pieces[p + 1 + f]).get());
            if (mask & 16 && p + 5 < pieces.size()) {
                const std::string &b = pieces[p + 5];
                pb::Ref<PB_BUFFER> body = adopt(pbBufferCreateFromBytesCopy(b.data(), static_cast<PB_INT>(b.size())));
                mimeEntitySetBody(ent.addr(), body.get());
            }
            pbVectorAppendObj(entities.addr(), mimeEntityObj(ent.get()));
        }
        pb::Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
        fuzz::packUnpackRoundTrip(entities.get(), mo.get());
    });
}
