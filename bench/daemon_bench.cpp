// Daemon sessions beside the same bytes on a bare socket, and what the daemon kxqtsd serves in a
// second. As root the program has a loopback interface of its own, so that the ports are free.

#include "ratios.h"

#include <KxQts/daemon/command.h>
#include <KxQts/daemon/session.h>

#include <arpa/inet.h>
#include <array>
#include <csignal>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned short commandPort = 12316;
constexpr std::size_t commandSize = 2068;
constexpr std::size_t generalSize = 24;

sockaddr_in loopback(unsigned short port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int connectTo(unsigned short port) {
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(port);
    (void)connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return descriptor;
}

int listenAt(unsigned short port) {
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const sockaddr_in address = loopback(port);
    (void)bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    listen(descriptor, 64);
    return descriptor;
}

unsigned short portOf(int descriptor) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

/// A daemon of the least kind: reads so many bytes, answers with others, closes.
class Echo {
public:
    /// \param wanted The port to listen at; 0 for any.
    Echo(unsigned short wanted, std::size_t requestSize, const std::string& response)
        : listener(listenAt(wanted)),
          port(portOf(listener)),
          server([this, requestSize, response] { serve(requestSize, response); }) {}
    ~Echo() {
        shutdown(listener, SHUT_RDWR);
        server.join();
        close(listener);
    }
    Echo(const Echo&) = delete;
    Echo& operator=(const Echo&) = delete;

private:
    void serve(std::size_t requestSize, const std::string& response) const {
        std::vector<char> request(requestSize);
        for (int accepted = 0; (accepted = accept(listener, nullptr, nullptr)) >= 0;) {
            recv(accepted, request.data(), request.size(), MSG_WAITALL);
            send(accepted, response.data(), response.size(), MSG_NOSIGNAL);
            close(accepted);
        }
    }

    int listener;

public:
    const unsigned short port;

private:
    std::thread server;
};

std::string words(std::initializer_list<unsigned> values) {
    return {reinterpret_cast<const char*>(values.begin()), values.size() * sizeof(unsigned)};
}

/// The bytes of one exchange on a bare socket.
void exchange(unsigned short port, const std::string& request, std::size_t responseSize) {
    std::array<char, 64> response{};
    const int descriptor = connectTo(port);
    send(descriptor, request.data(), request.size(), MSG_NOSIGNAL);
    recv(descriptor, response.data(), responseSize, MSG_WAITALL);
    close(descriptor);
}

void FloorCommandSession(benchmark::State& state) {
    const Echo daemon(commandPort, commandSize, words({6, 0}));
    std::string request = words({6});
    request.resize(commandSize);
    for (auto _ : state)
        exchange(commandPort, request, 8);
}
BENCHMARK(FloorCommandSession)->UseRealTime();

void CommandSession(benchmark::State& state) {
    const Echo daemon(commandPort, commandSize, words({6, 0}));
    const QString text = QStringLiteral("true");
    for (auto _ : state)
        CallDaemonSession(6, 10, &text, nullptr, 0, nullptr);
}
BENCHMARK(CommandSession)->UseRealTime();

void FloorGeneralSession(benchmark::State& state) {
    const Echo daemon(0, generalSize, words({4, 0, 0}));
    std::string request = words({4});
    request.resize(generalSize);
    for (auto _ : state)
        exchange(daemon.port, request, 12);
}
BENCHMARK(FloorGeneralSession)->UseRealTime();

void GeneralSession(benchmark::State& state) {
    const Echo daemon(0, generalSize, words({4, 0, 0}));
    for (auto _ : state)
        daemonSession(daemon.port, 4, 10, nullptr, 0, nullptr, 0, nullptr, nullptr);
}
BENCHMARK(GeneralSession)->UseRealTime();

/// The program kxqtsd, as long as this lives.
class Kxqtsd {
public:
    Kxqtsd() : process(fork()) {
        if (process == 0) {
            execl(KXQTS_BENCH_KXQTSD, KXQTS_BENCH_KXQTSD, "--foreground", nullptr);
            _exit(1);
        }
        const QString text = QStringLiteral("true");
        while (CallDaemonSession(6, 10, &text, nullptr, 0, nullptr) == 30766)
            usleep(10'000);
    }
    ~Kxqtsd() {
        kill(process, SIGTERM);
        waitpid(process, nullptr, 0);
    }
    Kxqtsd(const Kxqtsd&) = delete;
    Kxqtsd& operator=(const Kxqtsd&) = delete;

private:
    pid_t process;
};

/// What 500 sessions a second leave for each.
void FloorTwoMilliseconds(benchmark::State& state) {
    for (auto _ : state)
        state.SetIterationTime(0.002);
}
BENCHMARK(FloorTwoMilliseconds)->UseManualTime()->Iterations(10);

void DaemonRunsCommand(benchmark::State& state) {
    const Kxqtsd daemon;
    const QString text = QStringLiteral("true");
    for (auto _ : state)
        CallDaemonSession(6, 10, &text, nullptr, 0, nullptr);
    state.counters["sessions"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(DaemonRunsCommand)->UseRealTime();

/// One second for 64 sessions at the same time.
void FloorOneSecond(benchmark::State& state) {
    for (auto _ : state)
        state.SetIterationTime(1);
}
BENCHMARK(FloorOneSecond)->UseManualTime()->Iterations(1);

void DaemonRunsCommandsAtTheSameTime(benchmark::State& state) {
    constexpr int peers = 64;
    const Kxqtsd daemon;
    std::string request = words({6, 0, 0, 0, 0}) + "true";
    request.resize(commandSize);
    for (auto _ : state) {
        std::vector<int> connections;
        for (int i = 0; i < peers; ++i)
            connections.push_back(connectTo(commandPort));
        for (int connection : connections)
            send(connection, request.data(), request.size(), MSG_NOSIGNAL);
        for (int connection : connections) {
            std::array<char, 8> response{};
            recv(connection, response.data(), response.size(), MSG_WAITALL);
            close(connection);
        }
    }
}
BENCHMARK(DaemonRunsCommandsAtTheSameTime)->UseRealTime();

void takeOwnLoopback() {
    if (unshare(CLONE_NEWNET) != 0)
        return;
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP;
    ioctl(descriptor, SIOCSIFFLAGS, &request);
    close(descriptor);
}

} // namespace

int main(int argc, char** argv) {
    takeOwnLoopback();
    return KxBench::run(
        argc, argv,
        {
            {"CommandSession/real_time", "FloorCommandSession/real_time", 1.5},
            {"GeneralSession/real_time", "FloorGeneralSession/real_time", 1.5},
            {"DaemonRunsCommand/real_time", "FloorTwoMilliseconds/iterations:10/manual_time", 1.0},
            {"DaemonRunsCommandsAtTheSameTime/real_time", "FloorOneSecond/iterations:1/manual_time",
             1.0},
        });
}
