#pragma once

#include "platform/extentmap.h"
#include "platform/replaceable.h"

namespace KxTest {

/// A map of what a test says. It is in force while it lives.
class FakeExtentMap final : public Korvex::ExtentMap {
public:
    std::optional<std::vector<Korvex::Extent>> extentsOf(int, unsigned long long) override {
        ++fetches;
        return extents;
    }

    std::optional<std::vector<Korvex::Extent>> extents = std::vector<Korvex::Extent>();
    int fetches = 0;

private:
    Korvex::Replacement<Korvex::ExtentMap> inForce{*this};
};

} // namespace KxTest
