#pragma once

#include <KxQts/refcounter.h>

#include <atomic>
#include <type_traits>

namespace Korvex {

/// Gives up a reference of an object that counts them in a public field `refCount`, and the object
/// with the last one. \return The count after it.
template <class Counted>
int giveUpReference(Counted* object) {
    const int left = --object->refCount;
    if (left == 0)
        delete object;
    return left;
}

/// Counts the references of an object, which begins with one. Any thread may count.
template <class Interface>
class ReferenceCounted : public Interface {
    static_assert(std::is_base_of_v<IRefCounter, Interface>);

public:
    int retain() override { return ++references; }

    int release() override {
        const int left = --references;
        if (left == 0)
            delete this;
        return left;
    }

protected:
    ReferenceCounted() = default;
    ~ReferenceCounted() override = default;
    ReferenceCounted(const ReferenceCounted&) = delete;
    ReferenceCounted& operator=(const ReferenceCounted&) = delete;

private:
    std::atomic<int> references{1};
};

} // namespace Korvex
