#include "platform/keychain/document.h"

#include "platform/keychain/hexadecimal.h"
#include "platform/keychain/items.h"

namespace Korvex {

namespace {

constexpr std::string_view formatName = "KxQts keychain 1\n";

template <std::size_t Size>
std::string field(std::string_view name, const std::array<std::uint8_t, Size>& bytes) {
    return std::string(name) + ": " + hexadecimal(bytes) + '\n';
}

bool take(std::string_view& text, std::string_view expected) {
    if (!text.starts_with(expected))
        return false;
    text.remove_prefix(expected.size());
    return true;
}

template <std::size_t Size>
bool takeField(std::string_view& text, std::string_view name,
               std::array<std::uint8_t, Size>& bytes) {
    if (!take(text, name) || !take(text, ": ") || !fromHexadecimal(text.substr(0, 2 * Size), bytes))
        return false;
    text.remove_prefix(2 * Size);
    return take(text, "\n");
}

/// Takes a field from the end of a text.
bool takeLastField(std::string_view& text, std::string_view name, KeychainBlock& bytes) {
    const std::size_t size = name.size() + 2 + 2 * bytes.size() + 1;
    if (text.size() < size)
        return false;
    std::string_view last = text.substr(text.size() - size);
    text.remove_suffix(size);
    return takeField(last, name, bytes);
}

/// Takes the last line and compares it with the digest of what is before it.
bool takeDigest(std::string_view& text) {
    KeychainBlock written{};
    KeychainBlock computed{};
    return takeLastField(text, "digest", written) && Cryptography::digest(text, computed) &&
           written == computed;
}

KeychainBlock combined(const KeychainBlock& one, const KeychainBlock& other) {
    KeychainBlock result{};
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = static_cast<std::uint8_t>(one[i] ^ other[i]);
    return result;
}

} // namespace

std::optional<KeychainDocument> KeychainDocument::create(std::string_view password,
                                                         KeychainKey& key) {
    KeychainDocument made;
    Cryptography::PasswordKeys keys;
    if (!Cryptography::random(made.identifier.data(), made.identifier.size()) ||
        !Cryptography::random(made.salt.data(), made.salt.size()) ||
        !Cryptography::random(key.bytes.data(), key.bytes.size()) ||
        !Cryptography::derive(password, made.salt, keys))
        return std::nullopt;
    // The salt is new, so no other key will ever be behind this pad.
    made.wrappedKey = combined(key.bytes, keys.pad.bytes);
    if (!Cryptography::authenticate(keys.authentication, made.header(), made.verifier))
        return std::nullopt;
    return made;
}

std::optional<KeychainDocument> KeychainDocument::read(std::string_view file) {
    KeychainDocument document;
    if (file.size() > largestSize || !takeDigest(file) || !take(file, formatName) ||
        !takeField(file, "identifier", document.identifier) ||
        !takeField(file, "salt", document.salt) || !takeField(file, "key", document.wrappedKey) ||
        !takeField(file, "verifier", document.verifier) ||
        !takeLastField(file, "seal", document.seal) || !KeychainItems::read(file, document.items))
        return std::nullopt;
    return document;
}

std::optional<KeychainKey> KeychainDocument::keyFor(std::string_view password) const {
    Cryptography::PasswordKeys keys;
    KeychainBlock expected{};
    if (!Cryptography::derive(password, salt, keys) ||
        !Cryptography::authenticate(keys.authentication, header(), expected) ||
        !Cryptography::equal(expected, verifier))
        return std::nullopt;
    KeychainKey key;
    key.bytes = combined(wrappedKey, keys.pad.bytes);
    return key;
}

bool KeychainDocument::isSealedBy(const KeychainKey& key) const {
    KeychainBlock expected{};
    return Cryptography::authenticate(key, sealedText(), expected) &&
           Cryptography::equal(expected, seal);
}

std::string KeychainDocument::write(const KeychainKey& key) {
    std::string text = sealedText();
    KeychainBlock digest{};
    if (!Cryptography::authenticate(key, text, seal))
        return {};
    text += field("seal", seal);
    if (!Cryptography::digest(text, digest))
        return {};
    text += field("digest", digest);
    return text.size() <= largestSize ? text : std::string();
}

std::string KeychainDocument::header() const {
    return std::string(formatName) + field("identifier", identifier) + field("salt", salt) +
           field("key", wrappedKey);
}

std::string KeychainDocument::sealedText() const {
    std::string text = header() + field("verifier", verifier);
    for (const KeychainItem& item : items)
        text += item.pem;
    return text;
}

} // namespace Korvex
