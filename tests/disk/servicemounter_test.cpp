// Mounting by the system's service, which is played by a mock on a bus of its own.

#include "platform/linux/servicemounter.h"
#include "platform/linux/volumemounter.h"

#include "udisksmock.h"

#include <gtest/gtest.h>

#include <cstdlib>

using Korvex::DiskNode;
using Korvex::serviceMounter;
using Texts = std::vector<std::string>;

namespace {

DiskNode device(const std::string& name) {
    DiskNode node;
    node.systemName = name;
    node.path = "/dev/" + name;
    return node;
}

class ServiceMounter : public testing::Test {
protected:
    void SetUp() override {
        if (!mock.isRunning())
            GTEST_SKIP() << "python3-dbusmock or dbus is not installed";
        mock.command("object sda1");
    }

    KxTest::UDisksMock mock;
    const DiskNode disk = device("sda1");
};

} // namespace

TEST_F(ServiceMounter, Mounts) {
    EXPECT_EQ(serviceMounter().mount(disk, {}), kDAReturnSuccess);
    EXPECT_EQ(mock.command("calls sda1"), (Texts{"Mount()"}));
}

TEST_F(ServiceMounter, Unmounts) {
    EXPECT_EQ(serviceMounter().unmount(disk, false), kDAReturnSuccess);
    EXPECT_EQ(serviceMounter().unmount(disk, true), kDAReturnSuccess);
    EXPECT_EQ(mock.command("calls sda1"), (Texts{"Unmount()", "Unmount(force=True)"}));
}

TEST_F(ServiceMounter, MountsNowhereInParticular) {
    EXPECT_EQ(serviceMounter().mount(disk, "/some/where"), kDAReturnNotPrivileged);
    EXPECT_EQ(mock.command("calls sda1"), Texts());
}

TEST_F(ServiceMounter, FindsDevicesOfAnyName) {
    for (const auto& [name, object] :
         {std::pair{"dm-0", "dm_2d0"}, {"cciss/c0d0p1", "c0d0p1"}, {"sd\xE4", "sd_e4"}}) {
        mock.command(std::string("object ") + object);
        EXPECT_EQ(serviceMounter().mount(device(name), {}), kDAReturnSuccess) << name;
    }
    EXPECT_EQ(serviceMounter().mount(device("sdb1"), {}), kDAReturnUnsupported)
        << "there is no such method at a place where there is nothing";
}

TEST_F(ServiceMounter, TellsWhyTheServiceRefuses) {
    const std::string prefix = "org.freedesktop.UDisks2.Error.";
    for (const auto& [error, status] : {
             std::pair{prefix + "DeviceBusy", kDAReturnBusy},
             {prefix + "AlreadyMounted", kDAReturnBusy},
             {prefix + "NotMounted", kDAReturnNotMounted},
             {prefix + "NotAuthorized", kDAReturnNotPrivileged},
             {prefix + "NotAuthorizedCanObtain", kDAReturnNotPrivileged},
             {prefix + "NotAuthorizedDismissed", kDAReturnNotPermitted},
             {prefix + "OptionNotPermitted", kDAReturnNotPermitted},
             {prefix + "NotSupported", kDAReturnUnsupported},
             {prefix + "Failed", kDAReturnError},
             {std::string("org.freedesktop.DBus.Error.UnknownMethod"), kDAReturnUnsupported},
             {std::string("org.freedesktop.DBus.Error.UnknownObject"), kDAReturnNotFound},
             {std::string("org.freedesktop.DBus.Error.AccessDenied"), kDAReturnNotPrivileged},
         }) {
        mock.command("fail sda1 Mount " + error);
        mock.command("fail sda1 Unmount " + error);
        EXPECT_EQ(serviceMounter().mount(disk, {}), status) << error;
        EXPECT_EQ(serviceMounter().unmount(disk, false), status) << error;
    }
}

TEST_F(ServiceMounter, WaitsNoLongerThanItsLimit) {
    const auto before = Korvex::setServiceTimeLimit(std::chrono::milliseconds(100));
    mock.command("stall sda1 Mount");
    EXPECT_EQ(serviceMounter().mount(disk, {}), kDAReturnNotReady);
    Korvex::setServiceTimeLimit(before);
}

TEST(ServiceMounterAlone, IsNotReadyWithoutABus) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
    EXPECT_EQ(serviceMounter().mount(device("sda1"), {}), kDAReturnNotReady);
    EXPECT_EQ(serviceMounter().unmount(device("sda1"), true), kDAReturnNotReady);
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}
