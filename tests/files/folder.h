#pragma once

#include "common/scratchfile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace KxTest {

/// Runs each test in an empty folder of its own, which is the current one and belongs to a user who
/// is not root: the library counts what root owns as something else.
class InOwnFolder : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Makes a file that root does not own. \return Its path, absolute.
    std::string makeFile(const std::string& name, const std::string& contents = "contents") const;
    std::string makeFolder(const std::string& name) const;

    /// Whether there is an entry, a link that leads nowhere included.
    static bool isThere(const std::string& path);
    /// The permission bits.
    static unsigned modeOf(const std::string& path);

    std::filesystem::path folder;

private:
    std::filesystem::path previous;
};

/// Mounts a file system of its own in a folder while it lives.
class SmallFileSystem {
public:
    SmallFileSystem(const std::string& folder, unsigned kibibytes);
    ~SmallFileSystem();

    SmallFileSystem(const SmallFileSystem&) = delete;
    SmallFileSystem& operator=(const SmallFileSystem&) = delete;

    [[nodiscard]] bool isMounted() const { return mounted; }

private:
    const std::string place;
    const bool mounted;
};

} // namespace KxTest
