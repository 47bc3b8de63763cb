// The C++ interface of the MIME library, over its C interface and header-only
// (C++17 and later; no exceptions are thrown, so code built with
// -fno-exceptions can use it):
//
//   Library         the library started for a scope
//   Ref<T>          one reference to any library object (copy retains, move
//                   steals, destruction releases; get(), adopt(), retain())
//   Buffer, Bytes   bytes out (shown without a copy) and in (pointer and size)
//   Options, ContentType, ContentDisposition, Entity, Defect, Part
//                   values that copy when shared; get(), adopt(), retain()
//   Result<T>       a value, or the Defect that says why and where it failed
//   decode, encode, pack, unpack, checkHeaderValue
//
// Text goes in as std::string_view (UTF-8) and comes out as std::string.
#ifndef MIME_HPP
#define MIME_HPP

#include <mime/cpp/codec.hpp>
#include <mime/cpp/defect.hpp>
#include <mime/cpp/entity.hpp>
#include <mime/cpp/library.hpp>
#include <mime/cpp/message.hpp>
#include <mime/cpp/options.hpp>
#include <mime/cpp/parameterized.hpp>
#include <mime/cpp/ranges.hpp>
#include <mime/cpp/ref.hpp>
#include <mime/cpp/text.hpp>

#endif
