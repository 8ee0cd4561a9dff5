/// \file
/// SP<T>: the owning pointer of smart objects. It counts through BSmartObjBase::Ref and Unref,
/// so for a class with BSmartObj as a virtual base every SP to one object shares one count.
#pragma once

#include <type_traits>
#include <typeinfo>
#include <utility>

/// One pointer to a T (which may be const) that owns a share of it: the object goes when the
/// last SP lets go. Functions that hand out an SP make the caller an owner; a plain T* from a
/// getter only borrows. Give it only objects made with new: the count of a new object is 0,
/// and the first SP takes it. Two threads may hold separate SPs to one object, since the count
/// is atomic, but one SP variable must not be read and assigned at the same time. No operation
/// throws.
template <class T>
class SP {
public:
    /// @name Construction. Null touches nothing; a pointer or a copy takes a reference; a move
    /// takes the other's reference and leaves it null.
    ///@{
    SP() noexcept = default;
    SP(std::nullptr_t) noexcept {}
    SP(T* p) noexcept : m_p(p) {
        if (m_p)
            m_p->Ref();
    }
    SP(SP const& other) noexcept : SP(other.m_p) {}
    SP(SP&& other) noexcept : m_p(std::exchange(other.m_p, nullptr)) {}
    ///@}

    /// From an SP of another type: a checked conversion. The result holds null when the object
    /// is not of the wanted type, and its own reference otherwise.
    template <class U>
    requires(!std::is_same_v<U, T>) SP(SP<U> const& other)
    noexcept : SP(Convert(other.get())) {}
    /// From an SP of another type that is given up: a converted object takes the other's
    /// reference along, so that no count changes; one of another type leaves this null and
    /// the other as it was.
    template <class U>
    requires(!std::is_same_v<U, T>) SP(SP<U>&& other)
    noexcept : m_p(Convert(other.m_p)) {
        if (m_p)
            other.m_p = nullptr;
    }

    /// The first owner of an object just made, which no other thread can reach yet and no SP
    /// holds: the same as SP(made), without the atomic step. Code that makes many objects in a
    /// row (a load makes one per record) saves that step on each.
    static SP FirstOwner(T* made) noexcept {
        SP owner;
        if (made) {
            made->RefFirst();
            owner.m_p = made;
        }
        return owner;
    }

    /// Lets go of the object, which is destroyed when this was its last owner.
    ~SP() {
        if (m_p)
            m_p->Unref();
    }

    /// @name Assignment. The new object is counted before the old one is let go, so that
    /// assigning an SP its own object, or an object that the old one owns, is safe. A move
    /// leaves the source null.
    ///@{
    SP& operator=(T* p) noexcept {
        if (p)
            p->Ref();
        T* old = std::exchange(m_p, p);
        if (old)
            old->Unref();
        return *this;
    }
    SP& operator=(SP const& other) noexcept { return *this = other.m_p; }
    SP& operator=(SP&& other) noexcept {
        if (this != &other) {
            T* old = std::exchange(m_p, std::exchange(other.m_p, nullptr));
            if (old)
                old->Unref();
        }
        return *this;
    }
    ///@}

    /// From an SP of another type, converted as by the constructor: null when the object is
    /// not of the wanted type.
    template <class U>
    requires(!std::is_same_v<U, T>) SP& operator=(SP<U> const& other) noexcept {
        return *this = Convert(other.get());
    }
    /// A converted object takes the other's reference along; one of another type makes this
    /// null and leaves the other as it was.
    template <class U>
    requires(!std::is_same_v<U, T>) SP& operator=(SP<U>&& other) noexcept {
        T* p = Convert(other.m_p);
        if (!p)
            return *this = nullptr;
        other.m_p = nullptr;
        if (T* old = std::exchange(m_p, p))
            old->Unref();
        return *this;
    }

    /// @name Plain access to the held pointer, possibly null; the count does not change.
    ///@{
    operator T*() const noexcept { return m_p; }
    T* operator->() const noexcept { return m_p; }
    T& operator*() const noexcept { return *m_p; }
    T* get() const noexcept { return m_p; }
    ///@}

private:
    template <class U>
    friend class SP;

    template <class U>
    static T* Convert(U* p) noexcept {
        if constexpr (std::is_convertible_v<U*, T*>) {
            return p;
        } else {
            // An object of exactly the wanted type needs no walk through the hierarchy, which
            // is what a dynamic_cast costs; loading a graph converts once per reference. A
            // virtual base cannot be cast down statically and always takes the walk.
            if constexpr (requires { static_cast<T*>(p); })
                if (p && typeid(*p) == typeid(T))
                    return static_cast<T*>(p);
            return dynamic_cast<T*>(p);
        }
    }

    T* m_p = nullptr;
};
