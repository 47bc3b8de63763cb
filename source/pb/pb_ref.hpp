// Internal: the RAII reference holder. Never crosses the C interface.
#pragma once

#include <pb/pb_obj.hpp>

#include <utility>

namespace pb {

// Holds one reference. Adopt or retain is spelled at every construction; there is
// no implicit conversion to T* and no copy (copies are Ref::retain(x.get())).
template <class T> class Ref {
public:
    static Ref adopt(T *p) noexcept { return Ref(p); }
    static Ref retain(T *p) noexcept
    {
        if (p)
            pb::retain(p);
        return Ref(p);
    }

    Ref() noexcept = default;
    Ref(Ref &&o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
    Ref &operator=(Ref &&o) noexcept
    {
        reset(std::exchange(o.p_, nullptr));
        return *this;
    }
    Ref(const Ref &) = delete;
    Ref &operator=(const Ref &) = delete;
    ~Ref() { reset(); }

    T *get() const noexcept { return p_; } // borrow: no count change
    T **addr() noexcept { return &p_; }    // for changing operations
    [[nodiscard]] T *release() noexcept { return std::exchange(p_, nullptr); }
    void reset(T *adopted = nullptr) noexcept
    {
        T *old = std::exchange(p_, adopted);
        if (old)
            pb::release(old);
    }
    explicit operator bool() const noexcept { return p_ != nullptr; }

private:
    explicit Ref(T *p) noexcept : p_(p) {}
    T *p_ = nullptr;
};

template <class T> inline Ref<T> adopt(T *p) noexcept
{
    return Ref<T>::adopt(p);
}
template <class T> inline Ref<T> retained(T *p) noexcept
{
    return Ref<T>::retain(p);
}

} // namespace pb
