#pragma once

#include "platform/lock.h"

#include <KxQts/messages/processhandler.h>

#include <atomic>

namespace Korvex {

/// Made with the handlers; nothing takes it. Replacing a handler is one exchange and needs no lock.
extern Lock hookLock;

/// \name The handlers in place
/// The built-in ones from the start: usable before the first constructor has run.
/// \{
extern std::atomic<IProcessHandler*> pEngineHandler;
extern std::atomic<IProcessHandler*> pLayerHandler;
extern std::atomic<IProcessHandler*> pGuiHandler;
/// \}

} // namespace Korvex
