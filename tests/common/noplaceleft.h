#pragma once

#include "common/memory.h"

#include <KxQts/winapi/handles.h>

#include <gtest/gtest.h>

#include <vector>

namespace KxTest {

/// While it lives, all places for handles are taken by events, and no more can be had.
class NoPlaceLeft {
public:
    NoPlaceLeft() {
        HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
        while (event != INVALID_HANDLE_VALUE) {
            events.push_back(event);
            event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
        }
    }
    ~NoPlaceLeft() {
        for (HANDLE event : events)
            EXPECT_TRUE(CloseHandle(event));
    }
    NoPlaceLeft(const NoPlaceLeft&) = delete;
    NoPlaceLeft& operator=(const NoPlaceLeft&) = delete;

private:
    const FailingAllocation failing;
    std::vector<HANDLE> events;
};

} // namespace KxTest
