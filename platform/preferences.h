#pragma once

#include "platform/propertylist/tree.h"

#include <KxQts/corefoundation/base.h>

#include <QString>
#include <QStringView>

#include <functional>
#include <optional>

namespace Korvex {

/// A property list that programs keep settings in.
struct PreferenceDomain {
    enum class Scope : std::uint8_t {
        AnyUser,     ///< The machine's
        CurrentUser, ///< The user's own
    };

    QString id; ///< A name, or an absolute path that lacks ".plist"
    Scope scope = Scope::AnyUser;

    bool operator==(const PreferenceDomain& other) const = default;
};

/// For the tables of the standard library: Qt's own end the program when they cannot grow.
struct PreferenceDomainHash {
    std::size_t operator()(const PreferenceDomain& domain) const;
};

/// Where preference domains are kept.
///
/// Any number of threads and processes may use one domain at once. Every read sees what was written
/// last by anyone, as a whole; every change is one step against all others; a change that was
/// acknowledged stays, also when its process is killed right after. A domain that nobody wrote to
/// is an empty dictionary. Operations may wait for the disk, and changes for one another; they
/// leave `errno` alone.
class Preferences {
public:
    using Reader = std::function<void(const PropertyList::Tree&)>;
    using Changer = std::function<bool(PropertyList::Editor&)>;

    virtual ~Preferences() = default;

    /// Makes sure that a domain can be read, and that reading sees the present state.
    /// \return False when it is damaged or may not be read.
    [[nodiscard]] virtual bool synchronize(const PreferenceDomain& domain) = 0;

    /// Looks at a domain. \param reader Is called once, unless the domain cannot be read. What it
    /// is given is valid during the call only.
    /// \return Whether it was called.
    virtual bool read(const PreferenceDomain& domain, const Reader& reader) = 0;

    /// Changes a domain and stores it. \param changer Is called with nobody else changing the
    /// domain meanwhile, unless that cannot be; a false result gives the change up. It must not
    /// change the same domain itself: it would wait for itself.
    /// \return Whether the new state is stored. The stored one is as it was otherwise: what is
    /// damaged, may not be read or written or has no room is left alone.
    [[nodiscard]] virtual bool change(const PreferenceDomain& domain, const Changer& changer) = 0;

    /// The folder of the domains without a path of their own; nothing when there is none yet.
    [[nodiscard]] virtual std::optional<QString> folder(PreferenceDomain::Scope scope) = 0;

    /// \name One top-level value
    /// Made of the above, with their results.
    /// @{

    /// A value, which the caller owns; null when there is none or the domain cannot be read.
    [[nodiscard]] CFTypeRef copyValue(const PreferenceDomain& domain, QStringView name);
    [[nodiscard]] bool setValue(const PreferenceDomain& domain, QStringView name, CFTypeRef value);
    /// Removing a value that is not there is a success.
    [[nodiscard]] bool removeValue(const PreferenceDomain& domain, QStringView name);
    /// @}
};

/// The preference storage in force.
Preferences& systemPreferences();

} // namespace Korvex
