// Internal: what Content-Type and Content-Disposition values share. Each holds,
// after its object header, a label (the media type name, or the disposition
// type) in lower case and its parameters in a dictionary under lower-case keys
// (RFC 2045 tokens) with their values exactly as given.
//
// The exported functions of each type are written out in its own file and check
// their own preconditions, so that every abort names its own line; they unshare
// the caller's reference themselves and leave the work on the fields to the
// functions here.
#pragma once

#include <mime/mime_object.hpp>
#include <pb/pb_dict.h>
#include <pb/pb_string.h>

namespace mime::parameterized {

struct Fields {
    PB_STRING *label;    // never null while the value lives
    PB_DICT *parameters; // never null while the value lives
};

// A new value of sort holding new references to label and parameters, which
// must already be in normalised form.
template <class T> T *create(const PB_SORT *sort, PB_STRING *label, PB_DICT *parameters) noexcept
{
    auto *value = pb::create<T>(sort);
    value->fields = {nullptr, nullptr};
    pb::setField(value->fields.label, label);
    pb::setField(value->fields.parameters, parameters);
    return value;
}

// Releases both fields (the sort's free function).
void release(Fields &f) noexcept;
// Order: label, then parameters; absent before present.
PB_INT compare(const Fields &a, const Fields &b) noexcept;
// "label {k=v, ...}", or the label alone without parameters.
PB_STRING *text(const Fields &f) noexcept;

// RFC 2045 token: printable ASCII without space and tspecials, not empty.
bool keyOk(PB_STRING *key) noexcept;
// A new string: s in lower case.
PB_STRING *lowered(PB_STRING *s) noexcept;
// A table of registered spellings, keyed by their lower-case forms.
PB_DICT *wireFormatTable(const char *const *spellings, size_t count) noexcept;
// The registered spelling of a normalised label, or a new reference to it.
PB_STRING *wireFormat(PB_DICT *table, PB_STRING *normalized) noexcept;

// The value under a normalised key (a new reference), or null.
PB_STRING *parameter(const Fields &f, PB_STRING *key) noexcept;
// The key or the value at index, in key order (new references).
PB_STRING *keyAt(const Fields &f, PB_INT index) noexcept;
PB_STRING *valueAt(const Fields &f, PB_INT index) noexcept;

} // namespace mime::parameterized
