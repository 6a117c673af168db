#pragma once

#include "platform/groups.h"
#include "platform/replaceable.h"

#include <map>

namespace KxTest {

/// Accounts as a test wants them. They are in force while this lives.
class FakeGroups : public Korvex::GroupMembership {
public:
    /// The supplementary groups of this process.
    std::vector<unsigned> ofThisProcess;
    /// The groups of each user, beside the base group.
    std::map<std::string, std::vector<unsigned>> ofUsers;
    std::map<unsigned, std::string> names;

    std::optional<std::vector<unsigned>> ofProcess(std::size_t limit) override {
        return fitting(ofThisProcess, limit);
    }
    std::optional<std::vector<unsigned>> ofUser(const std::string& name, unsigned baseGroup,
                                                std::size_t limit) override {
        std::vector<unsigned> all{baseGroup};
        const auto found = ofUsers.find(name);
        if (found != ofUsers.end())
            all.insert(all.end(), found->second.begin(), found->second.end());
        return fitting(all, limit);
    }
    std::optional<std::string> nameOf(unsigned userId) override {
        const auto found = names.find(userId);
        return found == names.end() ? std::nullopt : std::optional(found->second);
    }

private:
    static std::optional<std::vector<unsigned>> fitting(const std::vector<unsigned>& groups,
                                                        std::size_t limit) {
        return groups.size() <= limit ? std::optional(groups) : std::nullopt;
    }

    Korvex::Replacement<Korvex::GroupMembership> inForce{*this};
};

} // namespace KxTest
