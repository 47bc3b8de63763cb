// mime::Ref: one reference to a library object, held the C++ way. Copying
// retains, moving steals, destruction releases; get() hands the C pointer out
// for C calls, adopt() and retain() take one in, so C and C++ code mix freely.
#ifndef MIME_CPP_REF_HPP
#define MIME_CPP_REF_HPP

#include <mime/mime.h>
#include <pb/pb.h>
#include <rfc/rfc.h>

#include <utility>

namespace mime {
namespace detail {

// How a reference to T is added and dropped: one specialisation per object type.
template <class T> struct ObjectTraits;

#define MIME_CPP_OBJECT_TRAITS(Type, prefix) \
    template <> struct ObjectTraits<Type> { \
        static Type *retain(Type *obj) noexcept { return prefix##Retain(obj); } \
        static void release(Type *obj) noexcept { prefix##Release(obj); } \
    };
MIME_CPP_OBJECT_TRAITS(PB_OBJ, pbObj)
MIME_CPP_OBJECT_TRAITS(PB_STRING, pbString)
MIME_CPP_OBJECT_TRAITS(PB_BUFFER, pbBuffer)
MIME_CPP_OBJECT_TRAITS(PB_VECTOR, pbVector)
MIME_CPP_OBJECT_TRAITS(PB_DICT, pbDict)
MIME_CPP_OBJECT_TRAITS(PB_STORE, pbStore)
MIME_CPP_OBJECT_TRAITS(PB_FLAGSET, pbFlagset)
MIME_CPP_OBJECT_TRAITS(PB_IDENTIFIER, pbIdentifier)
MIME_CPP_OBJECT_TRAITS(RFC_BASE_OPTIONS, rfcBaseOptions)
MIME_CPP_OBJECT_TRAITS(RFC_QUOP_OPTIONS, rfcQuopOptions)
MIME_CPP_OBJECT_TRAITS(MIME_OPTIONS, mimeOptions)
MIME_CPP_OBJECT_TRAITS(MIME_CONTENT_TYPE, mimeContentType)
MIME_CPP_OBJECT_TRAITS(MIME_CONTENT_DISPOSITION, mimeContentDisposition)
MIME_CPP_OBJECT_TRAITS(MIME_ENTITY, mimeEntity)
MIME_CPP_OBJECT_TRAITS(MIME_DEFECT, mimeDefect)
MIME_CPP_OBJECT_TRAITS(MIME_PART, mimePart)
MIME_CPP_OBJECT_TRAITS(MIME_SHF_TOKEN, mimeShfToken)
#undef MIME_CPP_OBJECT_TRAITS

} // namespace detail

// One reference to a T, or none.
template <class T> class Ref {
public:
    Ref() noexcept = default;
    // Takes over a reference the caller owns (a C function's result).
    static Ref adopt(T *obj) noexcept
    {
        Ref ref;
        ref.obj_ = obj;
        return ref;
    }
    // Adds a reference to obj (one the caller keeps holding).
    static Ref retain(T *obj) noexcept { return adopt(obj ? detail::ObjectTraits<T>::retain(obj) : nullptr); }

    Ref(const Ref &other) noexcept : obj_(other.obj_ ? detail::ObjectTraits<T>::retain(other.obj_) : nullptr) {}
    Ref(Ref &&other) noexcept : obj_(std::exchange(other.obj_, nullptr)) {}
    Ref &operator=(const Ref &other) noexcept
    {
        Ref(other).swap(*this);
        return *this;
    }
    Ref &operator=(Ref &&other) noexcept
    {
        Ref(std::move(other)).swap(*this);
        return *this;
    }
    ~Ref() { reset(); }

    // The object, no reference added (null when none is held).
    T *get() const noexcept { return obj_; }
    explicit operator bool() const noexcept { return obj_ != nullptr; }
    // Hands the reference out: the caller releases it; the holder is empty.
    T *release() noexcept { return std::exchange(obj_, nullptr); }
    // Drops the reference, if any.
    void reset() noexcept
    {
        if (T *obj = std::exchange(obj_, nullptr))
            detail::ObjectTraits<T>::release(obj);
    }
    // The held reference's address, for the C functions that change a value
    // through T ** (they copy it first when it is shared).
    T **address() noexcept { return &obj_; }
    // Drops the reference and hands out its address, for a C function's
    // result parameter.
    T **receive() noexcept
    {
        reset();
        return &obj_;
    }
    void swap(Ref &other) noexcept { std::swap(obj_, other.obj_); }

private:
    T *obj_ = nullptr;
};

// Ref<T>::adopt and Ref<T>::retain with T deduced.
template <class T> Ref<T> adopt(T *obj) noexcept
{
    return Ref<T>::adopt(obj);
}
template <class T> Ref<T> retain(T *obj) noexcept
{
    return Ref<T>::retain(obj);
}

} // namespace mime

#endif
