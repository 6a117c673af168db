#pragma once

#include "platform/scopes.h"

#include <cerrno>
#include <new>
#include <type_traits>

namespace Korvex {

/// Does the work of a call whose caller knows no exceptions.
/// \return The work's result; \a otherwise, with `errno` 12, when there is no memory for it.
template <class Work>
std::invoke_result_t<Work> withoutMemory(std::type_identity_t<std::invoke_result_t<Work>> otherwise,
                                         Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return otherwise;
    }
}

/// The same for a call that leaves `errno` alone.
template <class Work>
std::invoke_result_t<Work>
keepingErrorNumber(std::type_identity_t<std::invoke_result_t<Work>> otherwise, Work work) {
    const ErrorNumberKept untilReturned;
    return withoutMemory(otherwise, work);
}

} // namespace Korvex
