// Keychain files from anywhere: whatever the bytes are, reading ends; what was read is what would
// be written again.

#include "common/require.h"
#include "platform/keychain/document.h"
#include "platform/keychain/hexadecimal.h"

#include <cstdint>
#include <string>

using Korvex::KeychainDocument;
using KxFuzz::require;

namespace {

/// The line that a file must end with, or nothing behind it is ever looked at.
std::string withDigest(std::string_view text) {
    Korvex::KeychainBlock digest{};
    require(Korvex::Cryptography::digest(text, digest));
    return std::string(text) + "digest: " + Korvex::hexadecimal(digest) + '\n';
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    (void)KeychainDocument::read(input);
    auto document = KeychainDocument::read(withDigest(input));
    if (!document)
        return 0;
    const Korvex::KeychainKey key;
    const std::string again = document->write(key);
    const auto reread = KeychainDocument::read(again);
    require(reread && reread->items == document->items && reread->isSealedBy(key));
    // All but the seal is as it was.
    constexpr std::size_t sealLine = 6 + 64 + 1;
    require(again.starts_with(input.substr(0, size - sealLine)));
    return 0;
}
