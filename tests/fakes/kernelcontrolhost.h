#pragma once

#include "platform/descriptor.h"
#include "platform/linux/kernelchannelwire.h"

#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace KxTest {

/// The driver's side of a control, served by a thread of its own: some units, each of which takes
/// one connection at a time and is busy for others.
class KernelControlHost {
public:
    struct Reply {
        int error = 0;
        std::string bytes;
    };
    /// What the driver says to a request; called by the host's thread.
    using Driver = std::function<Reply(Korvex::KernelWire::Kind, unsigned option, std::string)>;

    KernelControlHost(const std::string& controlName, const std::vector<unsigned>& units,
                      Driver driver);
    ~KernelControlHost();
    KernelControlHost(const KernelControlHost&) = delete;
    KernelControlHost& operator=(const KernelControlHost&) = delete;

    /// Makes a unit busy for everyone, or not.
    void setBusy(unsigned unit, bool busy);
    /// What new connections are refused with, in place of being served; 0 for nothing.
    void refuseWith(Korvex::KernelWire::Greeting error);

    /// The units that connections were asked for, in order, busy or not.
    std::vector<unsigned> attempts();
    /// How many connections there are at this moment.
    std::size_t connections();

private:
    void serve();
    void accept(unsigned unit, int listener);
    bool answer(int connection);

    std::string folder;
    Driver answerTo;
    std::map<unsigned, Korvex::Descriptor> listeners;
    Korvex::Descriptor stopRead;
    Korvex::Descriptor stopWrite;

    std::mutex lock;
    std::map<unsigned, Korvex::Descriptor> connected;
    std::set<unsigned> busyUnits;
    Korvex::KernelWire::Greeting refusal = Korvex::KernelWire::ready;
    std::vector<unsigned> asked;

    std::thread server;
};

} // namespace KxTest
