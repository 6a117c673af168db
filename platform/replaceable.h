#pragma once

#include <atomic>

namespace Korvex {

/// The stand-in for the system's implementation of a platform class, if one is in force.
template <class Interface>
inline std::atomic<Interface*> replacementFor{nullptr};

/// The implementation of a platform class that is in force: the system's, unless a test has put its
/// own in its place.
template <class Interface>
Interface& inForce(Interface& system) {
    Interface* replacement = replacementFor<Interface>.load(std::memory_order_acquire);
    return replacement ? *replacement : system;
}

/// Puts another implementation of a platform class in force while it lives. Scopes nest.
template <class Interface>
class Replacement {
public:
    explicit Replacement(Interface& other) : previous(replacementFor<Interface>.exchange(&other)) {}
    ~Replacement() { replacementFor<Interface>.store(previous, std::memory_order_release); }

    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

private:
    Interface* previous;
};

} // namespace Korvex
