#pragma once

#include "registrykey.h"

namespace Kx {

/// Prints a key with all in it as a tree: dictionaries and arrays with what is in them below.
void printTree(const QString& name, const Object& value);

/// A single value as the tree shows it: its type and what it is.
[[nodiscard]] std::string shownValue(CFTypeRef value);

} // namespace Kx
