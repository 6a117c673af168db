#pragma once

#include "common/scriptedbus.h"

namespace KxTest {

/// A system bus with a UDisks2 service.
class UDisksMock : public ScriptedBus {
public:
    UDisksMock() : ScriptedBus(KXQTS_UDISKSMOCK) {}
};

} // namespace KxTest
