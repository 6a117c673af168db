#pragma once

#include "platform/imagelist.h"
#include "platform/replaceable.h"

namespace KxTest {

/// A process whose images a test writes down. It is in force while it lives.
class FakeImageList final : public Korvex::ImageList {
public:
    std::vector<Korvex::LoadedImage> images() override { return list; }
    const void* ownHeader() override { return own; }

    std::vector<Korvex::LoadedImage> list;
    const void* own = nullptr;

private:
    Korvex::Replacement<Korvex::ImageList> inForce{*this};
};

} // namespace KxTest
