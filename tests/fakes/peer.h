#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace KxTest {

/// One connection as its server sees it, for scripts.
class Connection {
public:
    explicit Connection(int toServe) : descriptor(toServe) {}
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Exactly that many bytes, or fewer at the client's end.
    std::string read(std::size_t size);
    /// All that comes until the client closes.
    std::string readToEnd();
    void write(const std::string& bytes);
    /// Closes so that the client sees a broken connection, not an orderly end.
    void reset();

private:
    int descriptor;
};

/// A daemon on the loopback address that does what a script says with every connection, one after
/// the other, on a thread of its own.
class Peer {
public:
    using Script = std::function<void(Connection&)>;

    /// \param toListenAt 0 for any free port.
    Peer(unsigned short toListenAt, Script toFollow);
    ~Peer();
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    [[nodiscard]] unsigned short port() const { return usedPort; }
    [[nodiscard]] int connections() const { return count; }

private:
    void serve();

    Script script;
    unsigned short usedPort;
    int listener;
    std::atomic<int> count{0};
    std::thread server;
};

/// A daemon that never looks at its port: one connection comes about, others wait for nothing.
class DeafPeer {
public:
    /// \param toListenAt 0 for any free port.
    explicit DeafPeer(unsigned short toListenAt);
    ~DeafPeer();
    DeafPeer(const DeafPeer&) = delete;
    DeafPeer& operator=(const DeafPeer&) = delete;

    [[nodiscard]] unsigned short port() const { return usedPort; }

private:
    unsigned short usedPort;
    int listener;
};

/// The bytes of numbers as they travel.
std::string words(const std::vector<unsigned>& values);

/// The number at an offset of what travelled.
unsigned wordAt(const std::string& bytes, std::size_t offset);

} // namespace KxTest
