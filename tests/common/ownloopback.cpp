// The daemon exchanges have fixed ports. Where the rights suffice, every test program has a
// loopback interface of its own, so that they may run side by side and beside a daemon of the
// machine.

#include <gtest/gtest.h>

#include <cstring>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

class OwnLoopback : public testing::Environment {
    void SetUp() override {
        if (unshare(CLONE_NEWNET) != 0)
            return;
        const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        ifreq request{};
        std::strcpy(request.ifr_name, "lo");
        request.ifr_flags = IFF_UP;
        const int result = ioctl(descriptor, SIOCSIFFLAGS, &request);
        close(descriptor);
        ASSERT_EQ(result, 0);
    }
};

const auto* const registered = testing::AddGlobalTestEnvironment(new OwnLoopback);

} // namespace
