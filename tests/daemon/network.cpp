// The daemon exchanges have fixed ports. Where the rights suffice, every test program has a
// loopback interface of its own, so that they may run side by side and beside a daemon of the
// machine.

#include <QString>
#include <QtGlobal>

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

/// The library's clients have neither an event loop nor a `QCoreApplication`; Qt must not complain
/// about that on their standard error.
class NoWarnings : public testing::Environment {
    static void fail(QtMsgType, const QMessageLogContext&, const QString& text) {
        ADD_FAILURE() << text.toStdString();
    }

    void SetUp() override { qInstallMessageHandler(fail); }
};

const auto* const quiet = testing::AddGlobalTestEnvironment(new NoWarnings);
const auto* const registered = testing::AddGlobalTestEnvironment(new OwnLoopback);

} // namespace
