#include "messages/defaultlog.h"

#include "support/enginelog.h"

#include <KxQts/support/log.h>

namespace Korvex {

void openDefaultLog() {
    constexpr unsigned append = 4;
    IOLogOpen(engineLogPath().toLatin1().constData(), append, "KxQts", nullptr);
}

namespace {

/// The log from the loading of the library to its unloading: made after the log object and before
/// everything that writes to it, so it goes in between as well.
class DefaultLog {
public:
    DefaultLog() { openDefaultLog(); }
    ~DefaultLog() { IOLogClose(); }
    DefaultLog(const DefaultLog&) = delete;
    DefaultLog& operator=(const DefaultLog&) = delete;
};
const DefaultLog defaultLog __attribute__((init_priority(102)));

} // namespace

} // namespace Korvex
