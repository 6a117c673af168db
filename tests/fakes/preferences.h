#pragma once

#include "platform/preferences.h"
#include "platform/replaceable.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

namespace KxTest {

/// Preferences in memory, on a machine that a test describes. They are in force while they live.
class ScriptedPreferences : public Korvex::Preferences {
public:
    using Domain = Korvex::PreferenceDomain;

    ScriptedPreferences();
    ~ScriptedPreferences() override;

    [[nodiscard]] bool synchronize(const Domain& domain) override;
    bool read(const Domain& domain, const Reader& reader) override;
    [[nodiscard]] bool change(const Domain& domain, const Changer& changer) override;
    [[nodiscard]] std::optional<QString> folder(Domain::Scope scope) override;

    /// \name The script
    /// @{
    std::set<QString> damaged;       ///< Domains that cannot be read
    std::set<QString> readOnly;      ///< Domains that cannot be changed
    std::optional<QString> folderIs; ///< Of either scope
    std::function<void()> onRead;    ///< Called before each look at a domain
    int changes = 0;                 ///< How many were stored
    /// @}

private:
    class Values;
    using Key = std::pair<QString, Domain::Scope>;

    std::mutex lock;
    std::map<Key, std::shared_ptr<const Values>> stored;
    Korvex::Replacement<Korvex::Preferences> inForce{*this};
};

} // namespace KxTest
