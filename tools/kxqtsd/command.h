#pragma once

#include "loop.h"
#include "platform/descriptor.h"

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>

namespace Kxqtsd {

/// A command line that a shell runs in a process group of its own. Nothing of the group is left
/// when the shell has ended or the time is over.
class Command {
public:
    /// Gets what `waitpid` says of the shell. The command may be deleted in it.
    using Ended = std::function<void(int status)>;

    Command(Loop& loop, Loop::Clock::duration time, Ended ended);
    ~Command();
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    /// \return Whether the shell was started.
    bool start(const std::string& line);

    /// Asks the group to end, and kills it when it does not.
    void terminate();

private:
    void noteEnd();

    Loop& loop;
    Ended onEnd;
    Loop::Clock::duration time;
    Loop::Alarm alarm;
    pid_t shell = -1;
    Korvex::Descriptor end;
};

} // namespace Kxqtsd
