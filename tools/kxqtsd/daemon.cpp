#include "daemon.h"

#include "log.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/epoll.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace Kxqtsd {

namespace {

constexpr unsigned short commandPort = 12316;
constexpr unsigned short registryPort = 12317;

bool take(Server& server, unsigned short port) {
    if (server.listen(port))
        return true;
    Log::error("cannot listen at port " + std::to_string(port) + ": " + std::strerror(errno));
    return false;
}

} // namespace

Daemon::Daemon(std::chrono::seconds commandTime)
    : worker(loop),
      commands(loop, commandTime),
      registry(worker),
      commandServer(loop, commands, "command"),
      registryServer(loop, registry, "registry request") {}

bool Daemon::open() {
    return take(commandServer, commandPort) && take(registryServer, registryPort);
}

void Daemon::run() {
    watchSignals();
    Log::info("serving");
    loop.run();
    Log::info("ended");
}

void Daemon::watchSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGINT);
    signals = Korvex::Descriptor(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    loop.watch(signals.get(), EPOLLIN, [this] { windUp(); });
}

void Daemon::windUp() {
    signalfd_siginfo ignored{};
    (void)!read(signals.get(), &ignored, sizeof ignored);
    commandServer.close();
    registryServer.close();
    registry.windUp([this] { commands.windUp([this] { loop.stop(); }); });
}

} // namespace Kxqtsd
