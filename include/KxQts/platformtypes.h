/// \file
/// The few types and numbers of the platform that the interface uses.
#pragma once

#include <stdint.h>

typedef int32_t OSErr; ///< 0, or a negative error number; 32 bits wide here
typedef int32_t OSStatus;

enum {
    noErr = 0,
    procNotFound = -600, ///< There is no such process
};
