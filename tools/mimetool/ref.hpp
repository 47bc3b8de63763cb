// An owning holder for one reference to a library object, so that every path
// out of a function releases what it took. The tool uses the public C interface
// only; this is what a C++ caller of the library writes for itself. The
// library's C++ interface (mime/mime.hpp, still to come) will provide one
// holder for every C++ user; this one and the copy in examples/pack_parts.cpp
// go then.
#pragma once

#include <mime/mime.h>
#include <pb/pb.h>

#include <utility>

namespace mimetool {

inline void releaseObject(PB_OBJ *o)
{
    pbObjRelease(o);
}
inline void releaseObject(PB_STRING *o)
{
    pbStringRelease(o);
}
inline void releaseObject(PB_BUFFER *o)
{
    pbBufferRelease(o);
}
inline void releaseObject(PB_VECTOR *o)
{
    pbVectorRelease(o);
}
inline void releaseObject(PB_DICT *o)
{
    pbDictRelease(o);
}
inline void releaseObject(MIME_OPTIONS *o)
{
    mimeOptionsRelease(o);
}
inline void releaseObject(MIME_PART *o)
{
    mimePartRelease(o);
}
inline void releaseObject(MIME_DEFECT *o)
{
    mimeDefectRelease(o);
}
inline void releaseObject(MIME_ENTITY *o)
{
    mimeEntityRelease(o);
}
inline void releaseObject(MIME_CONTENT_TYPE *o)
{
    mimeContentTypeRelease(o);
}
inline void releaseObject(MIME_CONTENT_DISPOSITION *o)
{
    mimeContentDispositionRelease(o);
}

template <class T> class Ref {
public:
    Ref() = default;
    explicit Ref(T *adopted) : p_(adopted) {} // takes over a new reference
    Ref(const Ref &) = delete;
    Ref &operator=(const Ref &) = delete;
    Ref(Ref &&other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
    Ref &operator=(Ref &&other) noexcept
    {
        reset(std::exchange(other.p_, nullptr));
        return *this;
    }
    ~Ref() { reset(); }

    T *get() const { return p_; }
    explicit operator bool() const { return p_ != nullptr; }
    // The address of the reference, for the library's changing operations.
    T **address() { return &p_; }
    // Releases the held reference and hands out the address for a result.
    T **receive()
    {
        reset();
        return &p_;
    }
    void reset(T *adopted = nullptr)
    {
        if (p_)
            releaseObject(p_);
        p_ = adopted;
    }

private:
    T *p_ = nullptr;
};

} // namespace mimetool
