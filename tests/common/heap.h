#pragma once

#include <string_view>

namespace KxTest {

/// Whether some bytes stand anywhere in the heap of the main thread, freed memory included.
/// \param bytes Not in the heap themselves. Under a sanitizer that has a heap of its own: false.
bool heapHolds(std::string_view bytes);

} // namespace KxTest
