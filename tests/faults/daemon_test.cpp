#include "fakes/kernelcontrolhost.h"
#include "fakes/peer.h"
#include "faults/sweep.h"

#include <KxQts/daemon/command.h>
#include <KxQts/daemon/kernelcontrol.h>
#include <KxQts/daemon/registry.h>
#include <KxQts/daemon/session.h>
#include <KxQts/errors.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <unistd.h>

using namespace KxTest;

namespace {

constexpr unsigned short anyPort = 0;
constexpr unsigned short commandPort = 12316;
constexpr unsigned short registryPort = 12317;
constexpr std::size_t sessionRequest = 24;
constexpr std::size_t commandRequest = 2068;
constexpr std::size_t registryRequest = 2332;
constexpr unsigned patience = 1; // seconds that an answer is waited for

std::vector<Fault> allFaults() {
    return networkFaults() + processFaults() + fileFaults() + memoryFaults();
}

/// Answers each request of a size with the same bytes.
Peer answering(unsigned short port, std::size_t size, const std::string& response) {
    return {port, [=](Connection& connection) {
                connection.read(size);
                connection.write(response);
                connection.readToEnd();
            }};
}

/// Qt does not look whether it was given the memory for a connection of a signal, nor for the list
/// of proxies of a connection that has none.
const std::vector<const char*> fatal{"connectImpl", "connectToHost"};

/// Its module is built without exceptions: a socket that cannot be made whole is not taken apart.
const std::vector<const char*> leaking{"QTcpSocket"};

} // namespace

TEST(DaemonFaults, Session) {
    const Peer peer = answering(anyPort, sessionRequest, words({9, 0, 4, 77}));
    sweep(allFaults(), {.name = "session",
                        .run =
                            [&] {
                                unsigned value = 0;
                                unsigned size = sizeof value;
                                return daemonSession(peer.port(), 9, patience, nullptr, 0, nullptr,
                                                     0, reinterpret_cast<unsigned char*>(&value),
                                                     &size) == 0 &&
                                       value == 77;
                            },
                        .cannotBeTold = fatal,
                        .leaks = leaking});
}

TEST(DaemonFaults, CommandSession) {
    const Peer peer = answering(commandPort, commandRequest, words({6, 0}));
    const QString text = QStringLiteral("a b c");
    sweep(allFaults(), {.name = "command",
                        .run =
                            [&] {
                                const std::array<unsigned, 4> parameters{};
                                // The answer to another command is a success that only the message
                                // tells of.
                                QString message;
                                return CallDaemonSession(6, patience, &text, parameters.data(),
                                                         parameters.size(), &message) == 0 &&
                                       message.isEmpty();
                            },
                        .cannotBeTold = fatal,
                        .leaks = leaking});
}

TEST(DaemonFaults, RegistrySession) {
    const std::string answer = words({1}) + std::string(16, 'x') + words({0, 4}) + "data";
    const Peer peer = answering(registryPort, registryRequest, answer);
    sweep(allFaults(), {.name = "registry session",
                        .run =
                            [&] {
                                _D_REG_REQUEST request{};
                                request.command = 1;
                                _D_REG_RESPONSE response{};
                                char* payload = nullptr;
                                QString message;
                                const int result = CallDaemonRegistrySession(
                                    request, response, patience, payload, nullptr, &message);
                                const std::unique_ptr<char[]> owned(payload);
                                return result == 0 && message.isEmpty() && payload &&
                                       std::memcmp(payload, "data", 4) == 0;
                            },
                        .cannotBeTold = fatal,
                        .leaks = leaking});
}

TEST(DaemonFaults, KernelControl) {
    KernelControlHost host("com.example.faults", {1},
                           [](auto, unsigned, const std::string& request) {
                               return KernelControlHost::Reply{0, request};
                           });
    sweep(allFaults(), {.name = "kernel control",
                        .prepare =
                            [&] {
                                while (host.connections() > 0)
                                    usleep(100);
                            },
                        .run =
                            [] {
                                int socket = -1;
                                if (KextConnect("com.example.faults", 1, socket) != 0) {
                                    EXPECT_EQ(socket, -1);
                                    return false;
                                }
                                std::array<char, 4> value{'a', 'b', 'c', 'd'};
                                unsigned size = value.size();
                                const bool isDone =
                                    KextControl(socket, 5, value.data(), &size) == 0 &&
                                    size == value.size() && KextCommand(socket, 7) == 0;
                                close(socket);
                                return isDone;
                            }});
}
