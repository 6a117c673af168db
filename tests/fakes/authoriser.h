#pragma once

#include "platform/authoriser.h"
#include "platform/replaceable.h"

#include <deque>
#include <string>
#include <vector>

namespace KxTest {

/// An authoriser whose answers a test writes down. It is in force while it lives.
class ScriptedAuthoriser : public Korvex::Authoriser {
public:
    /// What calls give, in order; 0 when there is no more.
    std::deque<OSStatus> creations;
    std::deque<OSStatus> rights;
    std::deque<OSStatus> runs;
    /// Every call in order, such as "create 0", "right 19", "run /bin/tool a b", "free 8".
    std::vector<std::string> calls;
    int live = 0; ///< Authorisations that were not freed

    [[nodiscard]] OSStatus create(unsigned long flags,
                                  const AuthorizationOpaqueRef*& ref) override {
        calls.push_back("create " + std::to_string(flags));
        const OSStatus status = next(creations);
        ref = status == 0 ? new AuthorizationOpaqueRef : nullptr;
        live += status == 0 ? 1 : 0;
        return status;
    }
    [[nodiscard]] OSStatus copyAdministratorRight(const AuthorizationOpaqueRef*,
                                                  unsigned long flags) override {
        calls.push_back("right " + std::to_string(flags));
        return next(rights);
    }
    [[nodiscard]] OSStatus run(const AuthorizationOpaqueRef*, const char* tool,
                               const char* const* arguments) override {
        std::string call = std::string("run ") + tool;
        for (; arguments && *arguments; ++arguments)
            call += std::string(" ") + *arguments;
        calls.push_back(call);
        return next(runs);
    }
    OSStatus free(const AuthorizationOpaqueRef* ref, unsigned long flags) override {
        if (ref)
            calls.push_back("free " + std::to_string(flags));
        live -= ref ? 1 : 0;
        delete ref;
        return 0;
    }

private:
    static OSStatus next(std::deque<OSStatus>& answers) {
        if (answers.empty())
            return 0;
        const OSStatus first = answers.front();
        answers.pop_front();
        return first;
    }

    Korvex::Replacement<Korvex::Authoriser> inForce{*this};
};

} // namespace KxTest
