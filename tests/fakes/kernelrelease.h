#pragma once

#include "platform/kernelrelease.h"
#include "platform/replaceable.h"

#include <atomic>
#include <string>
#include <utility>

namespace KxTest {

/// A kernel of a release as a test wants it. It is in force while it lives.
class FakeKernelRelease : public Korvex::KernelRelease {
public:
    explicit FakeKernelRelease(std::string text) : release(std::move(text)) {}

    std::string text() override {
        ++asked;
        return release;
    }

    std::string release; ///< Changed only while nobody asks
    std::atomic<int> asked{0};

private:
    Korvex::Replacement<Korvex::KernelRelease> inForce{*this};
};

} // namespace KxTest
