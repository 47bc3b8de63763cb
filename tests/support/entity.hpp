// Test helpers: entities as plain structs, for tables and comparisons.
#pragma once

#include "pb_text.hpp"

#include <mime/mime.h>

#include <optional>
#include <ostream>
#include <string>

namespace test {

using Text = std::optional<std::string>;

// The five fields of an entity as UTF-8 text and bytes; nullopt: absent.
struct Fields {
    Text contentType, contentDisposition, contentTransferEncoding, contentId, body;
    bool operator==(const Fields &) const = default;
};

inline void PrintTo(const Fields &f, std::ostream *os)
{
    auto show = [&](const char *name, const Text &t) {
        if (t)
            *os << name << "=[" << *t << "] ";
    };
    show("ct", f.contentType);
    show("cd", f.contentDisposition);
    show("cte", f.contentTransferEncoding);
    show("cid", f.contentId);
    show("body", f.body);
}

inline Ref<MIME_ENTITY> entityOf(const Fields &f)
{
    Ref<MIME_ENTITY> ent = adopt(mimeEntityCreate());
    auto set = [&](void (*setter)(MIME_ENTITY **, PB_STRING *), const Text &t) {
        if (t)
            setter(ent.addr(), str(*t).get());
    };
    set(mimeEntitySetContentType, f.contentType);
    set(mimeEntitySetContentDisposition, f.contentDisposition);
    set(mimeEntitySetContentTransferEncoding, f.contentTransferEncoding);
    set(mimeEntitySetContentId, f.contentId);
    if (f.body)
        mimeEntitySetBody(ent.addr(), bytes(*f.body).get());
    return ent;
}

inline Fields fieldsOf(MIME_ENTITY *ent)
{
    auto get = [](PB_STRING *s) { return s ? Text(take(s)) : std::nullopt; };
    Fields f{get(mimeEntityContentType(ent)), get(mimeEntityContentDisposition(ent)),
             get(mimeEntityContentTransferEncoding(ent)), get(mimeEntityContentId(ent)), std::nullopt};
    if (Ref<PB_BUFFER> body = adopt(mimeEntityBody(ent)))
        f.body = bytesOf(body.get());
    return f;
}

// "a\nb" with every "\n" made CR LF: readable wire text in tables.
inline std::string crlf(std::string_view text)
{
    std::string out;
    for (char c : text) {
        if (c == '\n')
            out += '\r';
        out += c;
    }
    return out;
}

} // namespace test
