#pragma once

#include "platform/linux/domainfile.h"
#include "platform/lock.h"
#include "platform/preferences.h"
#include "platform/propertylist/document.h"

#include <memory>
#include <unordered_map>

namespace Korvex {

/// Preference domains as property-list files: the machine's in `/Library/Preferences`, the user's
/// in `Library/Preferences` of the home folder.
class FilePreferences final : public Preferences {
public:
    /// Whether a change is safe on the disk before it is acknowledged. It is safe against the end
    /// of a process in any case; power loss is another matter, and waiting for the disk takes four
    /// to ten times as long as the change itself on a journalling file system (bench_registry).
    enum class PowerLoss : std::uint8_t {
        SafeForMachine, ///< In the machine's domains, when a process of root's changes them
        Safe,
        Unsafe,
    };

    explicit FilePreferences(PowerLoss onPowerLoss = PowerLoss::SafeForMachine,
                             const PropertyList::Limits& withLimits = {});
    ~FilePreferences() override;

    [[nodiscard]] bool synchronize(const PreferenceDomain& domain) override;
    bool read(const PreferenceDomain& domain, const Reader& reader) override;
    [[nodiscard]] bool change(const PreferenceDomain& domain, const Changer& changer) override;
    [[nodiscard]] std::optional<QString> folder(PreferenceDomain::Scope scope) override;

private:
    class Domain;
    Domain& known(const PreferenceDomain& domain);

    const PowerLoss powerLoss;
    const PropertyList::Limits limits;
    Lock lock;
    // A domain that was used once is kept: there are never many.
    std::unordered_map<PreferenceDomain, std::shared_ptr<Domain>, PreferenceDomainHash>
        domains KXQTS_GUARDED_BY(lock);
};

} // namespace Korvex
