#pragma once

namespace Korvex {

/// The directory that the library and its companions are installed in, without a separator behind
/// it. Callers know it as the system directory. It is the same text wherever the library lies.
inline constexpr char systemDirectory[] = "/usr/local/lib/Korvex";

} // namespace Korvex
