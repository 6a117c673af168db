// The same source as C++.
#include "tmain.c"
