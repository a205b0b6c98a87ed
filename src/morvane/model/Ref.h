#pragma once
// Shared ownership of Nodes and lists.
//
// Nodes and lists are shared by reference. Their reference count lives inside
// the object rather than in a separate control block: a tree can hold tens of
// thousands of small containers (a geometry file is mostly two-number lists),
// and a count beside each object saves a block per container, makes the handle
// one pointer, and lets a Value fit in two words.
//
// `Ref<T>` reads like std::shared_ptr (get, ->, *, bool, reset, use_count,
// comparisons with other Refs and nullptr); there are no weak references.
// Only the containers themselves make Refs from raw pointers (in their `make`
// factories), so a Node on the stack or inside another object can never be
// taken over by a Ref.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

namespace morvane {

template <typename T> class Ref;

// Base of the shared containers: the count of Refs holding the object. An
// object that no Ref ever held (one on the stack, a static, a member) keeps a
// count of zero, which is how a container tells whether it is shared.
class RefCounted {
  public:
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;

    // True while at least one Ref holds this object.
    bool isShared() const noexcept { return refs_.load(std::memory_order_relaxed) != 0; }

    // The count itself, for Ref (through the refRetain / refRelease functions
    // each container type provides); not for application code.
    void retainRef() const noexcept { refs_.fetch_add(1, std::memory_order_relaxed); }
    // True when that was the last reference. The last holder skips the atomic
    // decrement (a costly locked instruction, paid by every container of a
    // dropped tree): nobody else holds a reference, so nobody can take a new
    // one while the object goes.
    bool releaseRef() const noexcept {
        return refs_.load(std::memory_order_acquire) == 1 ||
               refs_.fetch_sub(1, std::memory_order_acq_rel) == 1;
    }
    // The first reference of a new object, which no other thread can see yet.
    void adoptRef() const noexcept { refs_.store(1, std::memory_order_relaxed); }
    long refCount() const noexcept { return static_cast<long>(refs_.load(std::memory_order_relaxed)); }

  protected:
    RefCounted() = default;
    ~RefCounted() = default;

  private:
    mutable std::atomic<std::uint32_t> refs_{0};
};

// A Ref<T> needs three functions found by argument-dependent lookup:
// refRetain(const T*), refRelease(const T*) (which destroys the object with its
// last reference) and refCount(const T*). They are declared beside the type
// and defined with it, so a Ref of a type that is only declared can still be
// copied and destroyed.
template <typename T> class Ref {
  public:
    using element_type = T;

    constexpr Ref() noexcept = default;
    constexpr Ref(std::nullptr_t) noexcept {}
    Ref(const Ref& other) noexcept : object_(other.object_) { retain(); }
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(const Ref& other) noexcept {
        Ref(other).swap(*this);
        return *this;
    }
    Ref& operator=(Ref&& other) noexcept {
        Ref(std::move(other)).swap(*this);
        return *this;
    }
    Ref& operator=(std::nullptr_t) noexcept {
        reset();
        return *this;
    }
    ~Ref() { release(); }

    T* get() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    T* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    void reset() noexcept { Ref().swap(*this); }
    void swap(Ref& other) noexcept { std::swap(object_, other.object_); }
    // The number of Refs holding the object (0 for an empty Ref).
    long use_count() const noexcept { return object_ ? refCount(object_) : 0; }

    friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.object_ == b.object_; }
    friend bool operator==(const Ref& a, std::nullptr_t) noexcept { return a.object_ == nullptr; }

  private:
    friend T;
    friend class Value;

    // Holds `object` (one more reference). Only for the container's own
    // factories and for Value, which stores the pointer of a Ref it was given.
    explicit Ref(T* object) noexcept : object_(object) { retain(); }
    // Holds a new object with its first reference (see RefCounted::adoptRef).
    struct Adopt {};
    Ref(T* fresh, Adopt) noexcept : object_(fresh) { fresh->adoptRef(); }

    void retain() const noexcept {
        if (object_) refRetain(object_);
    }
    void release() noexcept {
        if (object_) refRelease(object_);
    }

    T* object_ = nullptr;
};

} // namespace morvane

template <typename T> struct std::hash<morvane::Ref<T>> {
    std::size_t operator()(const morvane::Ref<T>& ref) const noexcept { return std::hash<T*>{}(ref.get()); }
};
