#pragma once

#include <KxQts/daemon/command.h>

#include <string>
#include <sys/types.h>
#include <vector>

namespace KxTest {

/// The program kxqtsd in the foreground, as long as this lives.
class RunningDaemon {
public:
    explicit RunningDaemon(std::vector<std::string> options = {});
    ~RunningDaemon();
    RunningDaemon(const RunningDaemon&) = delete;
    RunningDaemon& operator=(const RunningDaemon&) = delete;

    [[nodiscard]] pid_t id() const { return process; }

    /// Waits for the next line of its log.
    std::string nextLine();

    /// Asks it to end. \return Its exit status, when it has.
    int stop();

private:
    pid_t process = -1;
    int log = -1;
};

/// Asks the daemon to run a command line. \return The status, or a code of the exchange.
inline int runThroughDaemon(const std::string& line, unsigned timeout = 20) {
    const QString text = QString::fromLatin1(line);
    return CallDaemonSession(6, timeout, &text, nullptr, 0, nullptr);
}

/// A bare connection to one of the daemon's ports.
class RawConnection {
public:
    explicit RawConnection(unsigned short port, const char* address = "127.0.0.1");
    ~RawConnection();
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    [[nodiscard]] bool isOpen() const { return connected; }
    void send(const std::string& bytes) const;
    /// All that comes until the daemon closes.
    [[nodiscard]] std::string readToEnd() const;

private:
    int descriptor;
    bool connected = false;
};

/// The bytes of a command request.
std::string commandRequest(unsigned code, const std::string& text);

} // namespace KxTest
