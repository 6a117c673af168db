#pragma once

#include <cstdio>
#include <string>
#include <sys/types.h>
#include <vector>

namespace KxTest {

/// A system bus with a UDisks2 service that answers as told, while it lives; this process's calls
/// go there.
class UDisksMock {
public:
    UDisksMock();
    ~UDisksMock();
    UDisksMock(const UDisksMock&) = delete;
    UDisksMock& operator=(const UDisksMock&) = delete;

    /// Whether what it is made of is installed.
    [[nodiscard]] bool isRunning() const { return !address.empty(); }

    /// Sends a command and gives the lines of the answer.
    std::vector<std::string> command(const std::string& line);

private:
    std::string readLine();

    pid_t process = -1;
    FILE* commands = nullptr;
    FILE* answers = nullptr;
    std::string address;
};

} // namespace KxTest
