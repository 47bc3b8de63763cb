// A message read into a tree of decoded parts, as `show` prints it and
// `extract` writes it out.
#pragma once

#include "ref.hpp"

#include <string>
#include <vector>

namespace mimetool {

struct Part {
    std::string number;                           // "1" for the message, "1.2" for its second part, ...
    Ref<MIME_CONTENT_TYPE> type;                  // null: no Content-Type field
    Ref<MIME_CONTENT_DISPOSITION> disposition;    // null: no Content-Disposition field
    Ref<PB_STRING> contentId;                     // without brackets; null: none
    MIME_CONTENT_TRANSFER_ENCODING encoding = -1; // -1: no Content-Transfer-Encoding field
    Ref<PB_BUFFER> body;                          // decoded; null: the part has no body
    bool multipart = false;
    std::vector<Part> parts; // of a multipart body
};

// Calls visit(key, value) for each entry of a parameter dictionary, in key
// order; takes over the reference to parameters.
template <class F> void forEachParameter(PB_DICT *parameters, F visit)
{
    Ref<PB_DICT> dict(parameters);
    for (PB_INT i = 0; i < pbDictLength(dict.get()); i++) {
        Ref<PB_OBJ> key(pbDictKeyAt(dict.get(), i));
        Ref<PB_OBJ> value(pbDictValueAt(dict.get(), i));
        visit(pbStringFrom(key.get()), pbStringFrom(value.get()));
    }
}

// Reads content as one entity, decodes it and unpacks multipart bodies
// recursively. Malformed input is an InputError naming the part and what
// failed in it.
Part readMessage(PB_BUFFER *content, MIME_OPTIONS *opt);

// The media type name as registered (application/EmergencyCallData.Comment+xml),
// or null without a Content-Type.
Ref<PB_STRING> typeName(const Part &part);
// The name the sender gave the part: the disposition's "filename", else the
// media type's "name"; null when neither is there.
Ref<PB_STRING> suggestedFilename(const Part &part);
// The first line of a text part's body (text/*, */xml, */*+xml, */json,
// application/sdp; no Content-Type means text/plain), in its charset, cut to 80
// characters; null for other parts.
Ref<PB_STRING> firstLine(const Part &part);

} // namespace mimetool
