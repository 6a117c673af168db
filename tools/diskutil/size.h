#pragma once

#include <string>

namespace DiskUtil {

/// A size as programs read it: "499.9 GB (499912345600 Bytes)". Units are powers of 1000.
std::string shownSize(unsigned long long bytes);

/// The bytes that a size of the command line stands for: a number, with a fraction or without, and
/// one of the units B, K, M, G and T, behind which "B" may stand. Throws \ref UsageError for
/// others and what does not fit into 63 bits.
unsigned long long parseSize(const std::string& text);

} // namespace DiskUtil
