#pragma once

#include <KxQts/messages/processhandler.h>

#include <functional>
#include <utility>

namespace KxTest {

/// A handler that is in place at a level while it lives.
class ScopedHandler final : public IProcessHandler {
public:
    ScopedHandler(int level, std::function<int(infoMessage*)> answer)
        : installedAt(level), handle(std::move(answer)) {
        inPlace = installCustomHandler(installedAt, this);
    }
    ~ScopedHandler() override { removeCustomHandler(installedAt, this); }

    ScopedHandler(const ScopedHandler&) = delete;
    ScopedHandler& operator=(const ScopedHandler&) = delete;

    bool installProcessHandler(IProcessHandler*) override { return false; }
    bool removeProcessHandler(IProcessHandler*) override { return false; }
    int processRequest(infoMessage* message) override { return handle(message); }

    bool inPlace = false;

private:
    const int installedAt;
    const std::function<int(infoMessage*)> handle;
};

} // namespace KxTest
