// Dictionary operations taken from the input, checked against std::map: the
// key order (which decides the order of parameters on the wire), lookups,
// removal, and a copy made halfway that must not change.
#include "fuzz_support.hpp"

#include <pb/pb.h>
#include <pb/pb_ref.hpp>

#include <map>
#include <string>

using pb::adopt;
using pb::Ref;

namespace {

using Model = std::map<std::u32string, uint8_t>;

void check(PB_DICT *d, const Model &model)
{
    PB_ASSERT( pbDictLength(d) == static_cast<PB_INT>(model.size()) );
    PB_INT i = 0;
    for (const auto &[key, value] : model) {
        Ref<PB_OBJ> k = adopt(pbDictKeyAt(d, i));
        Ref<PB_OBJ> v = adopt(pbDictValueAt(d, i));
        PB_STRING *ks = pbStringFrom(k.get());
        PB_ASSERT( std::u32string(reinterpret_cast<const char32_t *>(pbStringBacking(ks)), pbStringLength(ks)) == key );
        PB_ASSERT( pbBufferBacking(pbBufferFrom(v.get()))[0] == value );
        ++i;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        Ref<PB_DICT> dict = adopt(pbDictCreate());
        Ref<PB_DICT> snapshot;
        Model model, snapshotModel;
        for (size_t i = 0; i + 1 < n; i += 2) {
            uint8_t op = d[i], arg = d[i + 1];
            // Keys of up to three characters from a small alphabet, so that they collide.
            std::u32string key;
            for (int k = 0; k < (arg & 3); ++k)
                key += static_cast<char32_t>(U'a' + ((arg >> (2 + 2 * k)) & 3));
            Ref<PB_STRING> ks = adopt(pbStringCreateFromCharsCopy(reinterpret_cast<const PB_CHAR *>(key.data()),
                                                                  static_cast<PB_INT>(key.size())));
            if (op % 3 == 0) {
                pbDictDelStringKey(dict.addr(), ks.get());
                model.erase(key);
            } else {
                Ref<PB_BUFFER> value = adopt(pbBufferCreateFromBytesCopy(&op, 1));
                pbDictSetStringKey(dict.addr(), ks.get(), pbBufferObj(value.get()));
                model[key] = op;
            }
            PB_ASSERT( pbDictHasStringKey(dict.get(), ks.get()) == (model.count(key) == 1) );
            if (i == n / 2 - n / 2 % 2) {
                snapshot = pb::retained(dict.get());
                snapshotModel = model;
            }
        }
        check(dict.get(), model);
        if (snapshot)
            check(snapshot.get(), snapshotModel);
    });
}
