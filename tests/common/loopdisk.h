#pragma once

#include <memory>
#include <string>

namespace KxTest {

/// A disk whose medium is a file of no name: gone with its holder, and with the process however
/// that ends. Every program of the machine sees the disks of all: while a process has one, others
/// wait for theirs.
class LoopDisk {
public:
    explicit LoopDisk(unsigned long long bytes);
    ~LoopDisk();
    LoopDisk(const LoopDisk&) = delete;
    LoopDisk& operator=(const LoopDisk&) = delete;

    /// Whether the rights suffice here; where not, tests skip themselves.
    static bool isPossible();

    [[nodiscard]] bool isAttached() const { return descriptor >= 0; }
    [[nodiscard]] const std::string& systemName() const { return name; } ///< "loop0"
    [[nodiscard]] std::string path() const { return "/dev/" + name; }
    [[nodiscard]] std::string partitionPath(unsigned number) const; ///< "/dev/loop0p1"

    /// Announces a partition to the kernel. Nothing is written to the medium.
    /// \return Whether it has a node now.
    [[nodiscard]] bool addPartition(unsigned number, unsigned long long start,
                                    unsigned long long length) const;

    /// Takes a partition away from the kernel's list.
    void removePartition(unsigned number) const;

    /// Takes the medium out of the drive. Nobody else may use it.
    void detach();

    /// Writes to the medium.
    [[nodiscard]] bool write(unsigned long long place, const void* bytes, unsigned long size) const;

private:
    bool attach(int medium);

    std::shared_ptr<void> turn; ///< Shared by the disks of this process
    std::string name;
    int descriptor = -1;
};

/// Makes a file system of type ext4. \return Whether that worked.
[[nodiscard]] bool makeFileSystem(const std::string& path, const std::string& label,
                                  const std::string& options = {});

/// Mounts while it lives, in the test program's own namespace.
class Mounted {
public:
    Mounted(const std::string& source, std::string onFolder, const char* type = "ext4",
            unsigned long flags = 0, const char* data = nullptr);
    ~Mounted();
    Mounted(const Mounted&) = delete;
    Mounted& operator=(const Mounted&) = delete;

    [[nodiscard]] bool isMounted() const { return mounted; }
    [[nodiscard]] const std::string& folder() const { return place; }

private:
    const std::string place;
    const bool mounted;
};

} // namespace KxTest
