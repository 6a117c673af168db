#include "platform/groups.h"

#include "platform/replaceable.h"

#include <cerrno>
#include <grp.h>
#include <pwd.h>
#include <sys/types.h>
#include <unistd.h>

namespace Korvex {

namespace {

constexpr std::size_t longestEntry = 1 << 20;

class LinuxGroupMembership final : public GroupMembership {
public:
    std::optional<std::vector<unsigned>> ofProcess(std::size_t limit) override {
        std::vector<gid_t> groups(limit);
        const int count = getgroups(static_cast<int>(limit), groups.data());
        if (count < 0 || static_cast<std::size_t>(count) > limit)
            return std::nullopt;
        groups.resize(static_cast<std::size_t>(count));
        return groups;
    }

    std::optional<std::vector<unsigned>> ofUser(const std::string& name, unsigned baseGroup,
                                                std::size_t limit) override {
        std::vector<gid_t> groups(limit);
        int count = static_cast<int>(limit);
        if (getgrouplist(name.c_str(), baseGroup, groups.data(), &count) < 0)
            return std::nullopt;
        groups.resize(static_cast<std::size_t>(count));
        return groups;
    }

    std::optional<std::string> nameOf(unsigned userId) override {
        std::vector<char> buffer(1024);
        passwd entry{};
        passwd* found = nullptr;
        while (getpwuid_r(userId, &entry, buffer.data(), buffer.size(), &found) == ERANGE &&
               buffer.size() < longestEntry)
            buffer.resize(buffer.size() * 2);
        return found ? std::optional<std::string>(entry.pw_name) : std::nullopt;
    }
};

} // namespace

GroupMembership& groupMembership() {
    static LinuxGroupMembership membership;
    return inForce<GroupMembership>(membership);
}

} // namespace Korvex
