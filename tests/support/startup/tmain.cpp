// The same source as C++.
#include "tmain.c" // NOLINT(bugprone-suspicious-include)
