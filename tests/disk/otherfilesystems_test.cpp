// What else this machine may have mounted: file systems that are no volumes on its disks.

#include <KxQts/disk/volumeid.h>

#include "common/loopdisk.h"
#include "platform/volumetable.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace fs = std::filesystem;

using Korvex::Volume;
using KxTest::Mounted;

namespace {

/// Whatever is no volume on a disk.
class OtherFileSystems : public testing::Test {
protected:
    void SetUp() override {
        if (geteuid() != 0)
            GTEST_SKIP() << "mounting needs root's rights";
    }
    static std::string here(const std::string& name) { return fs::current_path() / name; }
    static int resultFor(const std::string& path) {
        KX_DEV_VOL_UNION id{};
        return convertPathToPartialDvID(QString::fromStdString(path), id);
    }
};

} // namespace

TEST_F(OtherFileSystems, InMemoryAreNoVolumes) {
    const Mounted mounted("none", here("memory"), "tmpfs");
    ASSERT_TRUE(mounted.isMounted());
    EXPECT_EQ(resultFor(here("memory/x")), 87);
    EXPECT_EQ(resultFor("/proc/self/status"), 87);
    EXPECT_EQ(resultFor("/sys"), 87);
    for (const Volume& volume : Korvex::volumeTable().volumes())
        EXPECT_NE(volume.root, mounted.folder());
}

TEST_F(OtherFileSystems, ThatOverlayOthersAreNoVolumes) {
    const Mounted memory("none", here("memory"), "tmpfs");
    for (const char* name : {"memory/lower", "memory/upper", "memory/work"})
        fs::create_directory(here(name));
    const std::string data = "lowerdir=" + here("memory/lower") +
                             ",upperdir=" + here("memory/upper") +
                             ",workdir=" + here("memory/work");
    const Mounted overlay("overlay", here("overlay"), "overlay", 0, data.c_str());
    if (!overlay.isMounted())
        GTEST_SKIP() << "this kernel mounts no overlays here";
    EXPECT_EQ(resultFor(here("overlay/x")), 87);
    for (const Volume& volume : Korvex::volumeTable().volumes())
        EXPECT_NE(volume.root, overlay.folder());
}

TEST_F(OtherFileSystems, BehindANetworkAreMarkedAndNeverAsked) {
    const int server = open("/dev/fuse", O_RDWR | O_CLOEXEC);
    if (server < 0)
        GTEST_SKIP() << "there is no /dev/fuse";
    const std::string data =
        "fd=" + std::to_string(server) + ",rootmode=40000,user_id=0,group_id=0";
    {
        // Nobody answers on the other side: whoever asked would wait for ever.
        const Mounted mounted("someone@host:/place", here("far"), "fuse.sshfs", 0, data.c_str());
        EXPECT_TRUE(mounted.isMounted());
        int found = 0;
        for (const Volume& volume : Korvex::volumeTable().volumes()) {
            if (volume.root != mounted.folder())
                continue;
            ++found;
            EXPECT_TRUE(volume.backing.isNetworked);
            EXPECT_EQ(volume.name, "far");
        }
        EXPECT_EQ(found, mounted.isMounted() ? 1 : 0);
        EXPECT_EQ(resultFor(here("far")), 87);
        QString name;
        KX_DEV_VOL_UNION none{};
        none.value = 0xFFFF;
        EXPECT_EQ(getVolumeNameFromDvID(none, name), 87) << "the walk ends there";
        close(server);
    }
}

TEST_F(OtherFileSystems, AreNotMistakenForDisksByTheirSource) {
    const Mounted mounted("/dev/null", here("memory"), "tmpfs");
    ASSERT_TRUE(mounted.isMounted());
    EXPECT_EQ(resultFor(here("memory/x")), 87);
}
