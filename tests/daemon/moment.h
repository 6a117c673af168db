#pragma once

#include "daemon/loopback.h"

namespace KxTest {

/// Sets how long daemons get to finish what they have begun to send, for a scope.
class Moment {
public:
    explicit Moment(int ms) : before(Korvex::Loopback::moment.exchange(ms)) {}
    ~Moment() { Korvex::Loopback::moment = before; }
    Moment(const Moment&) = delete;
    Moment& operator=(const Moment&) = delete;

private:
    const int before;
};

} // namespace KxTest
