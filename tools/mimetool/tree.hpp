// A message read into a tree of decoded parts, as `show` prints it and
// `extract` writes it out.
#pragma once

#include "library.hpp"

#include <string>
#include <vector>

namespace mimetool {

// One departure from the RFCs that the reader found and read past.
struct Defect {
    MIME_DEFECT_CODE code; // its name: mimeDefectCodeName
    PB_INT offset;         // byte of the message where it was found
    std::string text;      // one sentence
};

struct Part {
    std::string number;                           // "1" for the message, "1.2" for its second part, ...
    Ref<MIME_CONTENT_TYPE> type;                  // null: no Content-Type field
    Ref<MIME_CONTENT_DISPOSITION> disposition;    // null: no Content-Disposition field
    Ref<PB_STRING> contentId;                     // without brackets; null: none
    MIME_CONTENT_TRANSFER_ENCODING encoding = -1; // -1: no Content-Transfer-Encoding field
    Ref<PB_BUFFER> body;                          // decoded; null: the part has no body
    PB_INT encodedSize = -1;                      // the body's bytes as they stand; -1: no body
    bool impliedType = false;                     // no usable Content-Type: the type is implied
    bool multipart = false;
    bool message = false;    // a message/... part whose body is read as a message: parts[0]
    std::vector<Part> parts; // of a multipart body, or the message of a message part
    std::vector<std::pair<std::string, Ref<PB_STRING>>> headings; // From, Subject, Date of a message
    std::vector<Defect> defects;
};

// Calls visit(key, value) for each entry of a parameter dictionary, in key
// order; takes over the reference to parameters.
template <class F> void forEachParameter(PB_DICT *parameters, F visit)
{
    Ref<PB_DICT> dict = adopt(parameters);
    for (PB_INT i = 0; i < pbDictLength(dict.get()); i++) {
        Ref<PB_OBJ> key = adopt(pbDictKeyAt(dict.get(), i));
        Ref<PB_OBJ> value = adopt(pbDictValueAt(dict.get(), i));
        visit(pbStringFrom(key.get()), pbStringFrom(value.get()));
    }
}

// Reads content with the exact rules (what SIP peers must send): one entity,
// decoded, multipart bodies unpacked recursively. Malformed input is an
// InputError naming the part, the byte and what failed there.
Part readMessage(PB_BUFFER *content, MIME_OPTIONS *opt);

// Reads content as mail readers read it (the library's tolerant reader): it
// never fails; what departs from the RFCs is in each part's defects. prefix
// goes before every part number ("3:" for the third message of a mailbox).
Part readMail(PB_BUFFER *content, MIME_OPTIONS *opt, const std::string &prefix = "");

// The message in content, read strictly (CR LF taken for each LF of a file
// without CR) or as mail readers read it, its warnings then written to
// standard error ("mimetool: part 2, byte 5120: ...").
Part readPart(Ref<PB_BUFFER> content, bool strict);

// A warning line for every defect of the tree, depth first: "mimetool: part
// 2, byte 5120: the close delimiter --b-- is missing".
std::string warnings(const Part &message);

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
