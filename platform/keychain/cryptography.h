#pragma once

#include "support/wipe.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Korvex {

/// 32 bytes: a digest, a salt, a wrapped key.
using KeychainBlock = std::array<std::uint8_t, 32>;

/// 32 secret bytes, wiped with their holder.
struct KeychainKey {
    KeychainKey() = default;
    KeychainKey(const KeychainKey&) = default;
    KeychainKey& operator=(const KeychainKey&) = default;
    ~KeychainKey() { wipe(bytes.data(), bytes.size()); }

    KeychainBlock bytes{};
};

/// What keychains need of cryptography. The library behind it is loaded when it is first asked for.
/// Any thread may call.
namespace Cryptography {

/// Whether the library behind it is there. When it is not, all calls below fail.
[[nodiscard]] bool isAvailable();

/// Fills memory with unpredictable bytes.
[[nodiscard]] bool random(std::uint8_t* bytes, std::size_t size);

/// Two keys that a password stands for.
struct PasswordKeys {
    KeychainKey pad;
    KeychainKey authentication;
};

/// Derives keys from a password and a salt. It takes much memory and time on purpose, so that
/// guessing passwords does too; `std::bad_alloc` when there is not so much memory.
[[nodiscard]] bool derive(std::string_view password, const KeychainBlock& salt, PasswordKeys& keys);

/// The authentication code of a text under a key.
[[nodiscard]] bool authenticate(const KeychainKey& key, std::string_view text, KeychainBlock& code);

/// The digest of a text, which anybody can compute.
[[nodiscard]] bool digest(std::string_view text, KeychainBlock& code);

/// Compares in a time that says nothing about where the two differ.
[[nodiscard]] bool equal(const KeychainBlock& one, const KeychainBlock& other);

/// What scrypt is called with, for whoever derives keys in a format of their own. An iteration
/// takes 16 MiB.
inline constexpr std::uint64_t scryptCost = 16384;
inline constexpr std::uint64_t scryptBlockSize = 8;
inline constexpr std::uint64_t scryptParallelization = 5;

} // namespace Cryptography

} // namespace Korvex
