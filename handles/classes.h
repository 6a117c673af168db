#pragma once

#include <KxQts/winapi/types.h>

#include <QString>

#include <span>

namespace Korvex {

/// What a handle class means to the calls that take every kind of handle.
struct HandleClass {
    const QString& tag;
    BOOL (*close)(HANDLE);        ///< Null where handles of this tag are not closed
    DWORD (*wait)(HANDLE, DWORD); ///< Null where they are not waited for
};

/// The handle classes, in the order in which a handle's tag is compared with theirs.
std::span<const HandleClass> handleClasses();

/// The class of a handle; null for everything that is no handle of a known class.
const HandleClass* classOf(HANDLE handle);

} // namespace Korvex
