#pragma once

#include "platform/propertylist/objects.h"

namespace Korvex::PropertyList {

/// Adds an object and all in it to the values of a property list.
/// \param depth The level on which it will stand.
/// \return `none`, with nothing added, for what is no property list or more than the limits allow.
[[nodiscard]] Node addObject(Objects& objects, CFTypeRef object, std::size_t depth);

/// Makes an object of a value and all in it, which the caller owns; null when there is no memory.
[[nodiscard]] CFTypeRef makeObject(Objects& objects, Node node);

} // namespace Korvex::PropertyList
