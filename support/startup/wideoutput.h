#pragma once

#include <stdio.h>
#include <wchar.h>

/// Writes wide text to a stream, whichever kind of text has been written to it before, and without
/// deciding what may be written to it later. \return 1; 0 on failure.
int kxmain_write(const wchar_t* text, size_t length, FILE* stream);
