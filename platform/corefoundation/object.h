#pragma once

#include <KxQts/corefoundation/base.h>

#include <atomic>
#include <cstdint>
#include <memory>

/// How property-list objects are made, on systems that do not bring them.
namespace Korvex::Cf {

enum class Type : std::uint8_t {
    String = 1,
    Number,
    Boolean,
    Data,
    Date,
    Array,
    Dictionary,
    Url,
    Uid,
    Allocator,
};

/// What every object begins with.
struct Object {
    constexpr explicit Object(Type ofType, bool counted = true)
        : type(ofType), references(counted ? 1 : immortal) {}

    static constexpr std::uint32_t immortal = 0xFFFFFFFF;

    const Type type;
    mutable std::atomic<std::uint32_t> references;
    mutable const Object* nextToFree = nullptr;
};

inline const Object* object(CFTypeRef cf) {
    return static_cast<const Object*>(cf);
}

/// Whether an object is there and of a type.
inline bool isA(CFTypeRef cf, Type type) {
    return cf && object(cf)->type == type;
}

/// Frees objects and what goes with them, one after the other: the contents of a container wait in
/// a list until it is their turn.
class Disposal {
public:
    /// Gives up one reference.
    void release(CFTypeRef cf);
    /// Frees what nobody refers to any more.
    void run();

private:
    static void free(const Object* freed, Disposal& contents);

    const Object* waiting = nullptr;
};

/// Whether two keys are the same; containers are told apart by identity.
Boolean sameKey(const void* one, const void* other);

/// Whether two objects that hold no others are equal.
bool sameScalar(const Object& one, const Object& other);

struct Releaser {
    void operator()(CFTypeRef cf) const { CFRelease(cf); }
};

/// Holds a reference for a scope. `Ref` is one of the published pointer types.
template <class Ref>
class Owned {
public:
    Owned() = default;
    explicit Owned(Ref toHold) : held(toHold) {}

    [[nodiscard]] Ref get() const { return typed(held.get()); }
    [[nodiscard]] Ref release() { return typed(held.release()); }
    explicit operator bool() const { return held != nullptr; }

private:
    // Mutable containers have pointers that are not to constants.
    static Ref typed(const void* object) { return static_cast<Ref>(const_cast<void*>(object)); }

    std::unique_ptr<const void, Releaser> held;
};

} // namespace Korvex::Cf
