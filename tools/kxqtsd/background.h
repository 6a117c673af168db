#pragma once

#include "platform/descriptor.h"

namespace Kxqtsd {

/// A daemon's way to the background. Whoever started it waits until it is ready, and gets its
/// failure as an exit status else.
class Background {
public:
    /// Goes on in a process of its own, in a session of its own; must be called before there are
    /// threads. \return In that process only.
    static Background enter();

    /// Ends the wait of whoever started the daemon, and gives up its terminal.
    void reportReady();

private:
    explicit Background(Korvex::Descriptor toReportTo) : starter(std::move(toReportTo)) {}

    Korvex::Descriptor starter;
};

} // namespace Kxqtsd
