// mime::Defect, why and where wire input departs from the RFCs, and
// mime::Result, what an operation on wire input gives: a value or the defect
// that stopped it. Nothing here throws: code built without exceptions can use
// it, and programming errors abort as in C.
#ifndef MIME_CPP_DEFECT_HPP
#define MIME_CPP_DEFECT_HPP

#include <mime/cpp/text.hpp>

#include <optional>
#include <utility>

namespace mime {

// One defect: a value (shared, never changed).
class Defect {
public:
    // Takes over a reference the caller owns / adds one to a defect it keeps.
    static Defect adopt(MIME_DEFECT *defect) noexcept { return Defect(Ref<MIME_DEFECT>::adopt(defect)); }
    static Defect retain(MIME_DEFECT *defect) noexcept { return Defect(Ref<MIME_DEFECT>::retain(defect)); }
    MIME_DEFECT *get() const noexcept { return ref_.get(); }

    // What it is: a MIME_DEFECT_ code, and its name ("close-delimiter-missing").
    MIME_DEFECT_CODE code() const noexcept { return mimeDefectCode(get()); }
    const char *codeName() const noexcept { return mimeDefectCodeName(code()); }
    // Where: the byte (or, in a header value, the character) and the part ("" for the input itself).
    PB_INT offset() const noexcept { return mimeDefectOffset(get()); }
    std::string part() const { return takeUtf8(mimeDefectPart(get())); }
    // The sentence, and the whole text ("part 2, byte 5120: the close delimiter --b-- is missing").
    std::string text() const { return takeUtf8(mimeDefectText(get())); }
    std::string to_string() const { return takeUtf8(mimeDefectToString(get())); }

    friend bool operator==(const Defect &a, const Defect &b) noexcept { return mimeDefectEquals(a.get(), b.get()); }
    friend bool operator!=(const Defect &a, const Defect &b) noexcept { return !(a == b); }
    friend bool operator<(const Defect &a, const Defect &b) noexcept { return mimeDefectCompare(a.get(), b.get()) < 0; }

private:
    explicit Defect(Ref<MIME_DEFECT> ref) noexcept : ref_(std::move(ref)) {}
    Ref<MIME_DEFECT> ref_;
};

// A T, or the defect that kept the operation from giving one. Test it, then
// read the value with * or ->, or the defect with defect().
template <class T> class Result {
public:
    Result(T value) noexcept : value_(std::move(value)) {}
    Result(Defect defect) noexcept : defect_(std::move(defect)) {}

    bool ok() const noexcept { return value_.has_value(); }
    explicit operator bool() const noexcept { return ok(); }
    // The value; aborts when there is none.
    T &operator*() noexcept { return *checked(); }
    const T &operator*() const noexcept { return *const_cast<Result *>(this)->checked(); }
    T *operator->() noexcept { return checked(); }
    const T *operator->() const noexcept { return const_cast<Result *>(this)->checked(); }
    // The defect; aborts when there is a value.
    const Defect &defect() const noexcept
    {
        PB_ASSERT_MSG("a failed result", defect_.has_value());
        return *defect_;
    }

private:
    T *checked() noexcept
    {
        PB_ASSERT_MSG("a result with a value", value_.has_value());
        return &*value_;
    }
    std::optional<T> value_;
    std::optional<Defect> defect_;
};

// What an operation that gives nothing else gives: done, or the defect.
template <> class Result<void> {
public:
    Result() noexcept = default;
    Result(Defect defect) noexcept : defect_(std::move(defect)) {}
    bool ok() const noexcept { return !defect_.has_value(); }
    explicit operator bool() const noexcept { return ok(); }
    const Defect &defect() const noexcept
    {
        PB_ASSERT_MSG("a failed result", defect_.has_value());
        return *defect_;
    }

private:
    std::optional<Defect> defect_;
};

namespace detail {

// The Result of a C function that gives a new reference or null and says why
// through a defect: make(obj) wraps the value.
template <class T, class C, class Make> Result<T> resultOf(C *obj, MIME_DEFECT *defect, Make make)
{
    if (obj)
        return make(obj);
    PB_ASSERT_MSG("a reason for the failure", defect);
    return Defect::adopt(defect);
}

} // namespace detail
} // namespace mime

#endif
