#pragma once

namespace Korvex {

/// Keeps the module that this code is in loaded until the process ends, whoever unloads it: a
/// thread that is still to run its code would find it gone. Any thread may call it, as often as it
/// likes.
void stayLoaded();

} // namespace Korvex
