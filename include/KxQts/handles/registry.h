/// \file
/// The list of live objects that every handle class keeps.
#pragma once

#include <cstddef>
#include <iterator>
#include <list>
#include <unordered_map>

namespace Korvex {

/// The live objects of one handle class, in the order of their creation.
///
/// Membership is told in constant time from the address alone: nothing is read through a pointer
/// that is asked for. Whoever reads or changes a registry holds the lock of its class; a client may
/// read it without when no other thread works with handles of that class. A registry lives until
/// its process ends, so that threads that outlive `main` can still ask it.
template <class T>
class HandleRegistry {
public:
    using const_iterator = typename std::list<T*>::const_iterator;

    HandleRegistry() : members(new Members) {}
    HandleRegistry(const HandleRegistry&) = delete;
    HandleRegistry& operator=(const HandleRegistry&) = delete;

    /// How many objects are live.
    [[nodiscard]] std::size_t size() const { return members->inOrder.size(); }
    /// Whether none is.
    [[nodiscard]] bool isEmpty() const { return members->inOrder.empty(); }

    /// Whether an object is live. Any pointer may be asked for.
    [[nodiscard]] bool contains(const T* object) const {
        if (object && object == members->lastFound)
            return true;
        const bool found = members->places.count(object) != 0;
        if (found)
            members->lastFound = object;
        return found;
    }

    /// The object at a place, 0 being the oldest; null when there are not so many.
    [[nodiscard]] T* at(std::size_t place) const {
        return place < size() ? *std::next(begin(), static_cast<std::ptrdiff_t>(place)) : nullptr;
    }

    /// The oldest object.
    [[nodiscard]] const_iterator begin() const { return members->inOrder.begin(); }
    /// Behind the newest object.
    [[nodiscard]] const_iterator end() const { return members->inOrder.end(); }

    /// Adds a live object behind all others. Nothing has changed when it throws `std::bad_alloc`.
    void append(T* object) {
        auto place = members->inOrder.insert(members->inOrder.end(), object);
        try {
            members->places.emplace(object, place);
        } catch (...) {
            members->inOrder.erase(place);
            throw;
        }
    }

    /// Takes an object out; one that is not there is no error.
    void remove(const T* object) {
        if (auto found = members->places.find(object); found != members->places.end()) {
            members->inOrder.erase(found->second);
            members->places.erase(found);
            members->lastFound = nullptr;
        }
    }

private:
    struct Members {
        std::list<T*> inOrder;
        std::unordered_map<const T*, typename std::list<T*>::iterator> places;
        const T* lastFound = nullptr; // the same one is mostly asked for again and again
    };

    Members* const members; // never deleted, see above
};

} // namespace Korvex
