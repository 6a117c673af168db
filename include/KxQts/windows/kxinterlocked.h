/// \file
/// Numbers and pointers that several threads change at once. Each call is one step for the others,
/// and orders what is before and behind it.
#pragma once

#include <KxQts/winapi/types.h>

/// Adds 1. \return The new value.
static inline LONG InterlockedIncrement(LONG volatile* target) {
    return __atomic_add_fetch(target, 1, __ATOMIC_SEQ_CST);
}
/// Takes 1 away. \return The new value.
static inline LONG InterlockedDecrement(LONG volatile* target) {
    return __atomic_sub_fetch(target, 1, __ATOMIC_SEQ_CST);
}
/// Adds. \return The value before.
static inline LONG InterlockedExchangeAdd(LONG volatile* target, LONG value) {
    return __atomic_fetch_add(target, value, __ATOMIC_SEQ_CST);
}
/// Puts a value in place. \return The value before.
static inline LONG InterlockedExchange(LONG volatile* target, LONG value) {
    return __atomic_exchange_n(target, value, __ATOMIC_SEQ_CST);
}
/// Puts a value in the place of a certain one. \return The value before, whatever it was.
static inline LONG InterlockedCompareExchange(LONG volatile* target, LONG value, LONG comparand) {
    __atomic_compare_exchange_n(target, &comparand, value, 0, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
    return comparand;
}

/// As \ref InterlockedIncrement, with 64 bits.
static inline LONG64 InterlockedIncrement64(LONG64 volatile* target) {
    return __atomic_add_fetch(target, 1, __ATOMIC_SEQ_CST);
}
/// As \ref InterlockedDecrement, with 64 bits.
static inline LONG64 InterlockedDecrement64(LONG64 volatile* target) {
    return __atomic_sub_fetch(target, 1, __ATOMIC_SEQ_CST);
}

/// As \ref InterlockedExchange, for a pointer.
static inline PVOID InterlockedExchangePointer(PVOID volatile* target, PVOID value) {
    return __atomic_exchange_n(target, value, __ATOMIC_SEQ_CST);
}
/// As \ref InterlockedCompareExchange, for a pointer.
static inline PVOID InterlockedCompareExchangePointer(PVOID volatile* target, PVOID value,
                                                      PVOID comparand) {
    __atomic_compare_exchange_n(target, &comparand, value, 0, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
    return comparand;
}
