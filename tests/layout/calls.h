#pragma once

#include <type_traits>

/// Whether a call has exactly a type.
template <class Type, class Call>
constexpr bool is(Call) {
    return std::is_same_v<Type, Call>;
}

/// One of the calls of a name: that which has a type.
template <class Type>
constexpr bool has(Type) {
    return true;
}
