#pragma once

#include "platform/replaceable.h"
#include "platform/sessioncontrol.h"

#include <cstdio>
#include <vector>

namespace KxTest {

/// A session control that does nothing but take notes. It is in force while it lives.
class ScriptedSessionControl : public Korvex::SessionControl {
public:
    OSErr result = 0;
    std::vector<Korvex::SessionRequest> requests;

    [[nodiscard]] OSErr send(Korvex::SessionRequest request) override {
        requests.push_back(request);
        // For who looks from outside, where a child has sent it.
        std::fprintf(stderr, "request %d\n", static_cast<int>(request));
        return result;
    }

private:
    Korvex::Replacement<Korvex::SessionControl> inForce{*this};
};

} // namespace KxTest
