#pragma once

namespace KxFuzz {

/// Gives the target a home and a `KXQTS_ROOT` of its own, in memory where the rights suffice. They
/// are gone when it ends. To be called before anything of the library is.
void makeOwnWorld();

} // namespace KxFuzz
