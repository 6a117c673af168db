#pragma once

#include "commandexchange.h"
#include "loop.h"
#include "registryexchange.h"
#include "server.h"
#include "worker.h"

#include <chrono>

namespace Kxqtsd {

/// The root daemon: both exchanges, until it is asked to end.
class Daemon {
public:
    explicit Daemon(std::chrono::seconds commandTime);

    /// Takes the ports. \return Whether they are the daemon's; else the log says why not.
    [[nodiscard]] bool open();

    /// Serves until SIGTERM or SIGINT, and then until the commands have ended. These signals are
    /// blocked in all threads before.
    void run();

private:
    void watchSignals();
    void windUp();

    Loop loop;
    Worker worker;
    CommandExchange commands;
    RegistryExchange registry;
    Server commandServer;
    Server registryServer;
    Korvex::Descriptor signals;
};

} // namespace Kxqtsd
