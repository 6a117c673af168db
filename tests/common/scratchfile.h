#pragma once

#include <string>

namespace KxTest {

/// A file's name, where it matters.
struct Named {
    std::string name;
};

/// A file in the current folder that is gone when the object is.
class ScratchFile {
public:
    /// A name of which there is no file yet.
    ScratchFile();
    explicit ScratchFile(const std::string& contents);
    ScratchFile(Named named, const std::string& contents);
    ~ScratchFile();

    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    /// Makes the file, empty. \return Its name.
    const std::string& create() const;

    std::string name;
};

std::string contentsOf(const std::string& name);

/// Returns when some thread waits for a lock on a file that another holds.
void waitUntilBlockedOnLock(const std::string& name);

} // namespace KxTest
