#include "faults/sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <execinfo.h>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace KxTest {

namespace {

constexpr int sentinel = 4711;
constexpr unsigned mostCalls = 20'000; // a scenario that never ends is no scenario

const KxFaults& faultsOfShim() {
    static const auto* const found =
        static_cast<const KxFaults*>(dlsym(RTLD_DEFAULT, KX_FAULTS_SYMBOL));
    if (!found)
        throw std::runtime_error("The shim is not preloaded; run this through ctest.");
    return *found;
}

std::string namesOf(void* const* addresses, int count) {
    char** names = backtrace_symbols(addresses, count);
    std::ostringstream text;
    for (int i = 0; i < count; ++i)
        text << "  " << names[i] << '\n';
    std::free(names);
    return text.str();
}

std::string originOfFault() {
    std::array<void*, 48> addresses{};
    return namesOf(addresses.data(), faultsOfShim().origin(addresses.data(), addresses.size()));
}

/// How a call ended under a fault.
struct Ending {
    std::optional<bool> succeeded; ///< Nothing when an exception came out of it
    int error = 0;
    bool wasHit = false;
};

Ending runUnder(const Fault& fault, unsigned nth, const Scenario& scenario) {
    const KxFault armed{fault.call, nth, fault.error, scenario.onAllThreads ? 1 : 0};
    Ending ending;
    unsigned calls = 0;
    errno = sentinel;
    faultsOfShim().arm(&armed);
    try {
        ending.succeeded = scenario.run();
        ending.error = errno;
        calls = faultsOfShim().disarm();
    } catch (const std::bad_alloc&) {
        calls = faultsOfShim().disarm();
    }
    ending.wasHit = calls >= nth;
    return ending;
}

bool mayReport(const Scenario& scenario, const Fault& fault, int error) {
    return std::any_of(scenario.reports.begin(), scenario.reports.end(), [&](int allowed) {
        switch (allowed) {
        case Reported::anything:
            return true;
        case Reported::injected:
            return error == fault.error;
        case Reported::untouched:
            return error == sentinel;
        default:
            return error == allowed || (fault.call == KX_FAULT_MEMORY && error == ENOMEM);
        }
    });
}

void check(const Fault& fault, const Scenario& scenario, const Ending& ending) {
    if (!ending.succeeded) {
        ADD_FAILURE() << "An exception crossed the interface.";
        return;
    }
    EXPECT_TRUE(*ending.succeeded || mayReport(scenario, fault, ending.error))
        << "errno is " << ending.error;
    if (scenario.verify)
        scenario.verify(*ending.succeeded);
}

void repeat(const Scenario& scenario) {
    if (scenario.prepare)
        scenario.prepare();
    const bool succeeds = scenario.run();
    EXPECT_TRUE(succeeds) << "does not work without a fault";
    if (scenario.verify)
        scenario.verify(succeeds);
}

constexpr std::size_t depth = 16;
using Origin = std::array<void*, depth>;

bool isWithin(const Origin& origin, const std::vector<const char*>& functions) {
    return std::any_of(origin.begin(), origin.end(), [&](void* address) {
        Dl_info place{};
        return dladdr(address, &place) != 0 && place.dli_sname &&
               std::any_of(functions.begin(), functions.end(), [&](const char* part) {
                   return std::strstr(place.dli_sname, part) != nullptr;
               });
    });
}

/// Checks that what was allocated under the faults is there no more.
void expectNoBlocks(const std::vector<const char*>& leaks) {
    std::vector<Origin> origins(1000);
    const std::size_t left = faultsOfShim().blocks(origins.front().data(), origins.size(), 1);
    origins.resize(std::min(left, origins.size()));
    std::erase_if(origins, [&](const Origin& origin) { return isWithin(origin, leaks); });
    for (const Origin& origin : origins) {
        ADD_FAILURE() << origins.size() << " blocks of memory are left, one from\n"
                      << namesOf(origin.data(), depth);
        if (&origin - origins.data() == 2)
            break;
    }
}

} // namespace

namespace {

/// \return How many calls were let fail.
unsigned sweepOne(const Fault& fault, const Scenario& scenario) {
    SCOPED_TRACE(scenario.name + " with " + fault.name);
    repeat(scenario); // what is made at first use is made now
    faultsOfShim().exempt(nullptr);
    for (const char* function : scenario.cannotBeTold)
        faultsOfShim().exempt(function);
    faultsOfShim().blocks(nullptr, 0, 1);
    unsigned nth = 1;
    for (; nth <= mostCalls; ++nth) {
        SCOPED_TRACE("call " + std::to_string(nth));
        if (scenario.prepare)
            scenario.prepare();
        const Ending ending = runUnder(fault, nth, scenario);
        const bool wasFailed = testing::Test::HasFailure();
        check(fault, scenario, ending);
        if (!ending.wasHit)
            break;
        if (std::getenv("KXQTS_SHOW_ORIGINS"))
            std::printf("%s, call %u, from\n%s\n", fault.name.c_str(), nth,
                        originOfFault().c_str());
        repeat(scenario);
        if (!wasFailed && testing::Test::HasFailure())
            ADD_FAILURE() << "The call that failed came from\n" << originOfFault();
        if (testing::Test::HasFailure())
            break;
    }
    EXPECT_LT(nth, mostCalls);
    if (fault.call == KX_FAULT_MEMORY && !testing::Test::HasFailure()) {
        repeat(scenario); // what the last one has left to be kept is replaced
        if (scenario.forget)
            scenario.forget();
        expectNoBlocks(scenario.leaks);
    }
    if (std::getenv("KXQTS_SHOW_FAULTS"))
        std::printf("%s | %s | %u\n", scenario.name.c_str(), fault.name.c_str(), nth - 1);
    return nth - 1;
}

} // namespace

void sweep(const std::vector<Fault>& faults, const Scenario& scenario) {
    unsigned injections = 0;
    for (const Fault& fault : faults) {
        injections += sweepOne(fault, scenario);
        if (testing::Test::HasFailure())
            return;
    }
    // Some scenarios know no other fault than want of memory, which a sanitizer does not have.
    EXPECT_TRUE(injections > 0 || memoryFaults().empty()) << "nothing was let fail";
    testing::Test::RecordProperty("injections", std::to_string(injections));
}

} // namespace KxTest
