/// \file
/// The base of objects that count their references.
#pragma once

#include <KxQts/export.h>

namespace Korvex {

/// An object that deletes itself when its last reference is given up.
class KXQTS_EXPORT IRefCounter {
public:
    virtual ~IRefCounter() = default;

    /// Adds a reference. \return The count after it.
    virtual int retain() = 0;

    /// Gives up a reference, and the object when none is left. \return The count after it.
    virtual int release() = 0;
};

} // namespace Korvex

using Korvex::IRefCounter;
