#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/// Calls every function of the C runtime from C.
/// \return The check that failed, or null.
const char* crtClientFailure(void);

#ifdef __cplusplus
}
#endif
