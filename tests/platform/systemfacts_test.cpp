#include "fakes/systemfacts.h"
#include "platform/linux/systemfacts.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/utsname.h>

using Korvex::LinuxSystemFacts;
using Korvex::systemFacts;

namespace {

/// The files of a machine that a test writes down.
class Machine : public testing::Test {
protected:
    void TearDown() override { std::filesystem::remove_all(root); }

    void write(const std::string& path, const std::string& text) const {
        std::filesystem::create_directories((root + path).substr(0, (root + path).rfind('/')));
        std::ofstream(root + path) << text;
    }

    /// The place of a device in the kernel's list.
    static std::string listed(dev_t device) {
        return "/sys/dev/block/" + std::to_string(major(device)) + ':' +
               std::to_string(minor(device));
    }

    /// A file that is swapped to. \return The place of the device that it lies on.
    std::string makeSwapFile(const std::string& path) const {
        write(path, "");
        struct stat status {};
        EXPECT_EQ(stat((root + path).c_str(), &status), 0);
        return listed(status.st_dev);
    }

    /// The only swap.
    void useSwap(const std::string& path) const {
        write("/proc/swaps", "Filename\t\tType\t\tSize\n" + path + "   file\t\t100\n");
    }

    [[nodiscard]] bool swapIsEncrypted() {
        bool encrypted = false;
        EXPECT_EQ(facts.readSwapEncryption(encrypted), 0);
        return encrypted;
    }

    const std::string root = "machine";
    LinuxSystemFacts facts{root.c_str()};
};

} // namespace

TEST(SystemFacts, OfTheRunningSystem) {
    utsname names{};
    ASSERT_EQ(uname(&names), 0);
    EXPECT_EQ(systemFacts().kernelRelease(), std::string(names.release));
    EXPECT_TRUE(systemFacts().configuredHostName().has_value());
    bool encrypted = false;
    EXPECT_EQ(systemFacts().readSwapEncryption(encrypted), 0);
}

TEST(SystemFacts, AreThoseOfTheTestWhileItsOwnAreInForce) {
    auto other = std::make_unique<KxTest::ScriptedSystemFacts>();
    other->release = "11.4.2";
    EXPECT_EQ(systemFacts().kernelRelease(), "11.4.2");
    EXPECT_FALSE(systemFacts().model().has_value());
    other.reset();
    EXPECT_NE(systemFacts().kernelRelease(), "11.4.2");
}

TEST_F(Machine, WithoutFilesTellsNothing) {
    EXPECT_FALSE(facts.productVersion().has_value());
    EXPECT_FALSE(facts.productBuild().has_value());
    EXPECT_FALSE(facts.model().has_value());
    EXPECT_FALSE(facts.serialNumber().has_value());
    bool encrypted = true;
    EXPECT_EQ(facts.readSwapEncryption(encrypted), ENOENT);
    EXPECT_TRUE(encrypted) << "left alone";
}

TEST_F(Machine, TellsVersionAndBuildOfItsDistribution) {
    write("/etc/os-release", "NAME=\"Example\"\n# VERSION_ID=1\nVERSION_ID=\"10.6.8\"\n"
                             "BUILD_ID='10K\\549'\nX_VERSION_ID=3\n");
    EXPECT_EQ(facts.productVersion(), "10.6.8");
    EXPECT_EQ(facts.productBuild(), "10K\\549") << "a backslash is one between single quotes";
}

TEST_F(Machine, TellsValuesAsAShellReadsThem) {
    write("/usr/lib/os-release", "VERSION_ID=1\nVERSION_ID=1\\2\nBUILD_ID=\"a\\\"b\"\n");
    EXPECT_EQ(facts.productVersion(), "12") << "the last one counts";
    EXPECT_EQ(facts.productBuild(), "a\"b");
    write("/etc/os-release", "VERSION_ID=\"\"\n");
    EXPECT_FALSE(facts.productVersion().has_value()) << "the first file counts, and is empty";
}

TEST_F(Machine, TellsTheNameItWasGiven) {
    utsname names{};
    ASSERT_EQ(uname(&names), 0);
    EXPECT_EQ(facts.configuredHostName(), std::string(names.nodename));
    write("/etc/hostname", "# who we are\n\n  pear \n");
    EXPECT_EQ(facts.configuredHostName(), "pear");
}

TEST_F(Machine, TellsModelAndNumberOfItsFirmware) {
    using namespace std::string_literals;
    write("/proc/device-tree/model", "Board 2\0"s);
    write("/proc/device-tree/serial-number", "77\0"s);
    EXPECT_EQ(facts.model(), "Board 2");
    EXPECT_EQ(facts.serialNumber(), "77");
    write("/sys/class/dmi/id/product_name", "Book 5,1\n");
    write("/sys/class/dmi/id/product_serial", " W80 \n");
    EXPECT_EQ(facts.model(), "Book 5,1");
    EXPECT_EQ(facts.serialNumber(), "W80");
    write("/sys/class/dmi/id/product_serial", "\n");
    EXPECT_EQ(facts.serialNumber(), "77") << "an empty one is none";
}

TEST_F(Machine, SwapsNothingInClearWithoutSwap) {
    write("/proc/swaps", "Filename\tType\n");
    EXPECT_TRUE(swapIsEncrypted());
}

TEST_F(Machine, SwapsInClearToAnOrdinaryDevice) {
    write(makeSwapFile("/swap file") + "/size", "1");
    useSwap("/swap\\040file");
    EXPECT_FALSE(swapIsEncrypted());
    useSwap("/gone");
    EXPECT_FALSE(swapIsEncrypted()) << "what nobody can tell";
}

TEST_F(Machine, SwapsEncryptedToAnEncryptingDevice) {
    write(makeSwapFile("/swap file") + "/dm/uuid", "CRYPT-PLAIN-swap\n");
    useSwap("/swap\\040file");
    EXPECT_TRUE(swapIsEncrypted());
}

TEST_F(Machine, SwapsEncryptedToAVolumeOnEncryptingDevicesOnly) {
    const std::string device = makeSwapFile("/swap");
    useSwap("/swap");
    write(device + "/dm/uuid", "LVM-x\n");
    write(device + "/slaves/dm-1/dm/uuid", "CRYPT-LUKS2-x\n");
    EXPECT_TRUE(swapIsEncrypted());
    write(device + "/slaves/sda2/size", "1");
    EXPECT_FALSE(swapIsEncrypted()) << "one of two is in clear";
}

TEST_F(Machine, OneSwapInClearIsEnough) {
    write(makeSwapFile("/swap") + "/dm/uuid", "CRYPT-PLAIN-swap\n");
    write("/proc/swaps", "Filename\tType\n/swap file\n/other file\n");
    EXPECT_FALSE(swapIsEncrypted());
}

TEST_F(Machine, SwapPartitionsAreDevicesThemselves) {
    const dev_t device = makedev(240, 77);
    write("/dev/here", "");
    ASSERT_EQ(mknod((root + "/dev/swap1").c_str(), S_IFBLK | 0600, device), 0);
    write(listed(device) + "/dm/uuid", "CRYPT-PLAIN-swap1\n");
    useSwap("/dev/swap1");
    EXPECT_TRUE(swapIsEncrypted());
}
