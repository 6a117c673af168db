// The library's calls over the disk utility, with a real disk.

#include "common/child.h"
#include "tools/runningdaemon.h"
#include "tools/utilitydisk.h"

#include <KxQts/disk/diskutility.h>
#include <KxQts/disk/volumeid.h>
#include <KxQts/system/commandline.h>

#include <cstdio>
#include <filesystem>

namespace fs = std::filesystem;

using KxTest::mebibyte;
using KxTest::mountPointsOf;

namespace {

class DiskUtilLibrary : public KxTest::UtilityDisk {
protected:
    void SetUp() override {
        UtilityDisk::SetUp();
        if (IsSkipped())
            return;
        partition();
        makeVolume();
    }

    void expectLimits(const QString& volume, unsigned long long size) const {
        unsigned long long current = 0;
        unsigned long long minimum = 0;
        EXPECT_EQ(getVolumeFreeSpace(volume, current, minimum), 0);
        EXPECT_EQ(current, size);
        EXPECT_GT(minimum, 8 * mebibyte) << "the data takes that much";
        EXPECT_LT(minimum, size);
    }

    static void expectResize(const QString& volume, unsigned long long size) {
        QString output;
        EXPECT_EQ(resizeVolume(volume, size, output), 0) << output.toStdString();
        EXPECT_EQ(output, "");
    }

    static void expectRefusals(const QString& volume) {
        QString output;
        EXPECT_NE(resizeVolume(volume, mebibyte, output), 0);
        EXPECT_NE(mountUnmountDisk(QStringLiteral("disk99999"), true), 0);
        unsigned long long current = 1;
        unsigned long long minimum = 1;
        EXPECT_EQ(getVolumeFreeSpace(QStringLiteral("no such volume"), current, minimum), 1);
        EXPECT_EQ(current + minimum, 0u);
    }

    static void expectFreeSpace(const QString& quoted, const std::string& folder) {
        unsigned long long space = 0;
        EXPECT_EQ(getVolumeFreeSpaceFromInfo(quoted, space), 0);
        EXPECT_EQ(space, fs::space(folder).available);
        EXPECT_TRUE(fs::exists("/Korvex/info"));
        fs::remove("/Korvex/info");
    }

    /// Mounts the volume, writes to it, shrinks and grows it, and takes it off again.
    void useVolume() {
        const std::string folder = volumes("Data One");
        const QString quoted = QStringLiteral("'Data One'"); // for the shell
        ASSERT_EQ(mountUnmountVolume(quoted, true), 0);
        ASSERT_EQ(mountPointsOf(node()), folder + ' ');
        writeData(folder);
        expectLimits(QStringLiteral("Data One"), 48 * mebibyte);
        expectFreeSpace(quoted, folder);
        expectResize(QString::fromStdString(name()), 40 * mebibyte - 4095);
        expectLimits(QString::fromStdString(folder), 40 * mebibyte);
        expectResize(QString::fromStdString('\'' + folder + '\''), 79 * mebibyte);
        expectLimits(QString::fromStdString(slicePath()), 79 * mebibyte);
        expectRefusals(quoted);
        EXPECT_TRUE(hasData(folder));
        EXPECT_TRUE(isOtherSliceIntact());
        EXPECT_EQ(mountUnmountDisk(QString::fromStdString(name(0)), false), 0);
        EXPECT_EQ(mountPointsOf(node()), "");
        EXPECT_TRUE(isClean());
        EXPECT_EQ(mountUnmountDisk(QString::fromStdString("/dev/" + name(0)), true), 0);
        EXPECT_TRUE(hasData(folder));
        EXPECT_EQ(mountUnmountVolume(quoted, false), 0);
        EXPECT_FALSE(fs::exists(folder));
    }
};

} // namespace

TEST_F(DiskUtilLibrary, ResizesAVolumeInRootMode) {
    EXPECT_TRUE(KxTest::inChild([&] {
        setRootModeFor_executeCommandLineTool();
        useVolume();
    }));
}

TEST_F(DiskUtilLibrary, ResizesAVolumeThroughTheDaemon) {
    const KxTest::RunningDaemon daemon;
    useVolume();
}

TEST_F(DiskUtilLibrary, NamesOfTheLibraryAreUnderstood) {
    makeVolume("Gr\xC3\xB6\xC3\x9F"
               "e");
    EXPECT_TRUE(KxTest::inChild([&] {
        setRootModeFor_executeCommandLineTool();
        ASSERT_EQ(mountUnmountVolume(QString::fromUtf8("Gr\xC3\xB6\xC3\x9F"
                                                       "e"),
                                     true),
                  0);
        KX_DEV_VOL_UNION id{};
        id.value = node().slice << 8 | node().disk;
        QString root;
        QString volumeName;
        ASSERT_EQ(volumePropsFromDvID(id, root, volumeName), 0);
        for (const QString& volume : {root, volumeName}) {
            unsigned long long current = 0;
            unsigned long long minimum = 0;
            EXPECT_EQ(getVolumeFreeSpace(volume, current, minimum), 0) << volume.toStdString();
            EXPECT_EQ(current, 48 * mebibyte);
        }
        EXPECT_EQ(mountUnmountVolume(root, false), 0);
    }));
}
