#pragma once

namespace Korvex {

/// Opens the log that every process with the library has from the start.
///
/// Only the library itself comes with it: a program that is made of the library's objects, such as
/// a test, opens no log when it starts (`nodefaultlog.cpp`), for there is no library to put it
/// beside.
void openDefaultLog();

} // namespace Korvex
