#pragma once

#include <filesystem>
#include <string>

namespace KxTest {

/// A folder of a test's own with copies of the libraries to load: each copy is a library by itself
/// to the system. Gone with the object.
class ModuleFolder {
public:
    ModuleFolder();
    ~ModuleFolder();
    ModuleFolder(const ModuleFolder&) = delete;
    ModuleFolder& operator=(const ModuleFolder&) = delete;

    /// Copies a library into the folder, its sub-folders included. \return The copy's path.
    [[nodiscard]] std::string add(const std::string& name, const std::string& library) const;

    [[nodiscard]] const std::filesystem::path& path() const { return folder; }

private:
    std::filesystem::path folder;
};

/// Whether the system has a file's code loaded.
[[nodiscard]] bool isMapped(const std::string& path);

} // namespace KxTest
