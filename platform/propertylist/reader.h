#pragma once

#include "platform/propertylist/objects.h"

namespace Korvex::PropertyList {

/// Reads a file in either format into empty \a objects.
/// \return False when it is damaged, more than the limits allow, or no dictionary.
[[nodiscard]] bool readFile(ByteView file, Objects& objects);

/// The formats, each for itself.
[[nodiscard]] bool readBinary(ByteView file, Objects& objects);
[[nodiscard]] bool readXml(ByteView file, Objects& objects);

} // namespace Korvex::PropertyList
