// Any bytes as stored settings for mimeOptionsRestore: a store built from the
// input (the right keys with values of the wrong type or out of range, unknown
// keys, nested stores where values belong and values where stores belong).
// Restoring never aborts, and what restore gives survives a store and restore
// unchanged: store, restore, store gives the same store again, and the store
// of explicit settings alone restores options equal to the first (a full store
// also sets the defaults explicitly).
#include "fuzz_support.hpp"

#include <mime/mime.h>
#include <pb/pb_ref.hpp>

#include <string>

using pb::adopt;
using pb::Ref;

namespace {

const char *const kKeys[] = {"flags",
                             "wrapLineLength",
                             "rfc2231Charset",
                             "rfc2231MaxSegmentLength",
                             "rfcBaseOptions",
                             "rfcQuopOptions",
                             "outputLineLength",
                             "maxLineLength",
                             "C",
                             "unknown"};

// Reads the input one byte at a time; zeros past its end.
struct Reader {
    const uint8_t *d;
    size_t n, at = 0;
    uint8_t next() { return at < n ? d[at++] : 0; }
    bool more() const { return at < n; }
    std::string text()
    {
        std::string s;
        for (size_t length = next() % 12; length > 0 && more(); --length)
            s += static_cast<char>(next());
        return s;
    }
};

// A store of entries read from the input, stores nested depth levels at most.
Ref<PB_STORE> storeOf(Reader &in, int depth)
{
    Ref<PB_STORE> store = adopt(pbStoreCreate());
    for (size_t entries = in.next() % 8; entries > 0 && in.more(); --entries) {
        const uint8_t pick = in.next();
        const std::string key = pick % 16 < 10 ? kKeys[pick % 16] : in.text();
        switch (in.next() % 4) {
        case 0: // a number, often near the edges of a rule
            pbStoreSetValueIntCstr(store.addr(), key.data(), static_cast<PB_INT>(key.size()),
                                   static_cast<PB_INT>(static_cast<int8_t>(in.next())) * (in.next() % 3 ? 1 : 1000003));
            break;
        case 1: { // text
            const std::string value = in.text();
            Ref<PB_STRING> text = adopt(pbStringCreateFromCstr(value.data(), static_cast<PB_INT>(value.size())));
            pbStoreSetValueCstr(store.addr(), key.data(), static_cast<PB_INT>(key.size()), text.get());
            break;
        }
        default:
            if (depth > 0) {
                Ref<PB_STORE> sub = storeOf(in, depth - 1);
                pbStoreSetStoreCstr(store.addr(), key.data(), static_cast<PB_INT>(key.size()), sub.get());
            }
        }
    }
    return store;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        Reader in{d, n};
        Ref<PB_STORE> given = storeOf(in, 3);
        Ref<MIME_OPTIONS> restored = adopt(mimeOptionsRestore(given.get()));
        for (int full = 0; full <= 1; ++full) {
            Ref<PB_STORE> stored = adopt(mimeOptionsStore(restored.get(), full));
            Ref<MIME_OPTIONS> again = adopt(mimeOptionsRestore(stored.get()));
            PB_ASSERT( full || mimeOptionsEquals(again.get(), restored.get()) );
            Ref<PB_STORE> storedAgain = adopt(mimeOptionsStore(again.get(), full));
            PB_ASSERT( pbStoreEquals(storedAgain.get(), stored.get()) );
        }
    });
}
