#pragma once

#include "platform/devicetree.h"
#include "platform/replaceable.h"

#include <map>

namespace KxTest {

/// A tree of what a test says. It is in force while it lives.
class FakeDeviceTree final : public Korvex::DeviceTree {
public:
    Korvex::DeviceAncestry ancestryOf(const std::string& disk) override {
        const auto found = devices.find(disk);
        if (found != devices.end())
            return found->second;
        Korvex::DeviceAncestry none;
        none.result = Korvex::DeviceAncestry::Result::NoDevice;
        return none;
    }

    std::map<std::string, Korvex::DeviceAncestry> devices;

private:
    Korvex::Replacement<Korvex::DeviceTree> inForce{*this};
};

} // namespace KxTest
