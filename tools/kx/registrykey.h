#pragma once

#include <KxQts/KxQts.h>

#include <QString>

#include <memory>
#include <optional>
#include <string>

namespace Kx {

/// Holds a property-list object.
using Object = std::shared_ptr<const void>;

/// Takes over an object that the caller owns; empty for null.
[[nodiscard]] Object owned(CFTypeRef object);

[[nodiscard]] Object stringObject(const QString& text);
[[nodiscard]] QString textOf(CFTypeRef string);
[[nodiscard]] bool isDictionary(const Object& object);

/// A registry key as the user names it: "HKLM", "HKCU", or one of these with a path behind it.
class RegistryKey {
public:
    /// \param name As written on the command line; the long names of the roots are taken too.
    /// \param application The domain; nothing is the usual one, which the user's part always is.
    /// Throws \ref UsageError.
    RegistryKey(const std::string& name, const std::optional<std::string>& application);

    [[nodiscard]] bool isRoot() const { return path.isEmpty(); }
    [[nodiscard]] QString name() const;

    /// The key with all in it, of the root too; empty when there is none. Throws \ref Failure when
    /// the domain cannot be read.
    [[nodiscard]] Object read() const;

    /// Makes this the key's contents: those of a root are added to what there is.
    /// Throws \ref Failure.
    void write(const Object& dictionary) const;

    /// \name The registry calls, as programs use them. They throw \ref Failure.
    /// @{
    [[nodiscard]] Object value(const QString& valueName) const;
    void setValue(const QString& valueName, unsigned type, const QByteArray& data) const;
    void deleteValue(const QString& valueName) const;
    void deleteKey() const;
    /// @}

    QString domain;
    QString path;
    bool isMachines = false;

private:
    [[nodiscard]] void* root() const;
    [[nodiscard]] const __CFString* user() const;
    [[nodiscard]] const __CFString* host() const;
    [[nodiscard]] Korvex::WPrefs prefs() const;
    void requirePath() const;
};

} // namespace Kx
