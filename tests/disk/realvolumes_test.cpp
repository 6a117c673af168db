// Disks and volumes of this machine, some of which the tests attach and mount.

#include <KxQts/disk/diskobjects.h>
#include <KxQts/files/paths.h>

#include "common/unprivileged.h"
#include "platform/diskarbiter.h"
#include "platform/volumetable.h"
#include "realdisk.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <sys/mount.h>

namespace fs = std::filesystem;

using Korvex::DiskNode;
using Korvex::Reference;
using Korvex::Volume;
using Korvex::WDiskProps;
using KxTest::idOf;
using KxTest::mebibyte;
using KxTest::Mounted;

namespace {

Reference<WDiskProps> propsOf(const DiskNode& node) {
    return Reference<WDiskProps>(Korvex::createFromDvID(idOf(node)));
}

unsigned numberOf(const Reference<WDiskProps>& props, int index) {
    unsigned value = 0xABABABAB;
    EXPECT_EQ(props->getIntegerProperty(index, value), 0u) << index;
    return value;
}

bool flagOf(const Reference<WDiskProps>& props, int index) {
    bool value = false;
    EXPECT_EQ(props->getBooleanProperty(index, value), 0u) << index;
    return value;
}

/// A text; "none" where it is not known.
std::string textOf(const Reference<WDiskProps>& props, int index) {
    QString value;
    return props->getQStringProperty(index, value) == 0 ? value.toStdString() : "none";
}

std::vector<Volume> volumesOn(const DiskNode& node) {
    std::vector<Volume> volumes = Korvex::volumeTable().volumes();
    std::erase_if(volumes, [&](const Volume& each) { return each.backing.device != node.name(); });
    return volumes;
}

std::string rootsOf(const std::vector<Volume>& volumes) {
    std::string roots;
    for (const Volume& volume : volumes)
        roots += fs::path(volume.root).filename().string() + ' ';
    return roots;
}

class RealVolumes : public KxTest::RealDisk {};

} // namespace

TEST_F(RealVolumes, AreDescribedAsWholeDisks) {
    const auto props = propsOf(whole);
    ASSERT_TRUE(props);
    EXPECT_EQ(numberOf(props, 0), 512u);
    EXPECT_EQ(textOf(props, 1), whole.name());
    EXPECT_EQ(numberOf(props, 8), whole.major);
    EXPECT_EQ(numberOf(props, 20), whole.minor);
    EXPECT_EQ(numberOf(props, 29), whole.disk);
    EXPECT_EQ(numberOf(props, 12), 32 * mebibyte);
    EXPECT_TRUE(flagOf(props, 13));
    EXPECT_FALSE(flagOf(props, 19)) << "it has slices";
    EXPECT_TRUE(flagOf(props, 14));
    EXPECT_FALSE(flagOf(props, 16));
    EXPECT_FALSE(flagOf(props, 25)) << "no hardware";
    EXPECT_FALSE(flagOf(props, 4));
    EXPECT_FALSE(flagOf(props, 11));
    EXPECT_EQ(textOf(props, 10), "/sys/devices/virtual/block/" + disk.systemName());
    EXPECT_EQ(textOf(props, 21), "IOMedia");
    EXPECT_EQ(textOf(props, 23), "Virtual Interface");
    EXPECT_EQ(textOf(props, 15), "none");
    EXPECT_EQ(textOf(props, 30), "none");
}

TEST_F(RealVolumes, AreDescribedAsSlicesWithWhatLiesOnThem) {
    const auto props = propsOf(slice);
    ASSERT_TRUE(props);
    EXPECT_EQ(textOf(props, 1), whole.name() + "s1");
    EXPECT_EQ(numberOf(props, 12), 24 * mebibyte);
    EXPECT_EQ(numberOf(props, 29), whole.disk);
    EXPECT_FALSE(flagOf(props, 13));
    EXPECT_TRUE(flagOf(props, 19));
    EXPECT_TRUE(flagOf(props, 4));
    EXPECT_EQ(textOf(props, 15), "Data One");
    EXPECT_EQ(textOf(props, 26), "ext4");
    EXPECT_EQ(textOf(props, 22).size(), 36u);
    EXPECT_EQ(textOf(props, 30), "none") << "not mounted";
    const auto empty = propsOf(*Korvex::diskNode(whole.name() + "s2"));
    EXPECT_FALSE(flagOf(empty, 4));
    EXPECT_EQ(textOf(empty, 15), "none");
    EXPECT_EQ(textOf(empty, 26), "none");
}

TEST_F(RealVolumes, AreDescribedWithTheirPartitionTable) {
    std::array<unsigned char, 512> table{};
    table[440] = 1; // an identifier of the disk
    unsigned char* entry = &table[446];
    entry[4] = 0x83; // for Linux
    const std::array<unsigned, 2> sectors{2048, 24 * 2048};
    std::memcpy(entry + 8, sectors.data(), 8);
    table[510] = 0x55;
    table[511] = 0xAA;
    ASSERT_TRUE(disk.write(0, table.data(), table.size()));
    EXPECT_EQ(textOf(propsOf(whole), 9), "dos");
    EXPECT_EQ(textOf(propsOf(slice), 9), "0x83");
    EXPECT_EQ(textOf(propsOf(slice), 15), "Data One");
}

TEST_F(RealVolumes, TellWhereTheyAreMounted) {
    const Mounted mounted(slice.path, here("place"));
    ASSERT_TRUE(mounted.isMounted());
    const auto props = propsOf(slice);
    EXPECT_EQ(textOf(props, 30), mounted.folder());
    EXPECT_EQ(textOf(props, 15), "Data One");
    EXPECT_EQ(textOf(props, 26), "ext4");
    EXPECT_TRUE(flagOf(props, 4));
    QString path;
    EXPECT_EQ(convertDvIDToPath(idOf(slice), path), 0);
    EXPECT_EQ(path.toStdString(), mounted.folder());
    EXPECT_EQ(convertDvIDToPath(idOf(whole), path), 1168);
}

TEST_F(RealVolumes, HaveThePropertiesThatNeedNoRightsForEveryUser) {
    const Mounted mounted(slice.path, here("place"));
    fs::permissions(fs::current_path(), fs::perms(0755));
    EXPECT_TRUE(KxTest::asOrdinaryUser([&] {
        const auto props = propsOf(slice);
        ASSERT_TRUE(props);
        EXPECT_EQ(textOf(props, 30), mounted.folder());
        EXPECT_EQ(textOf(props, 15), "Data One") << "the file system tells its label itself";
        EXPECT_EQ(textOf(props, 26), "ext4");
        EXPECT_EQ(numberOf(props, 12), 24 * mebibyte);
        QString root;
        QString name;
        EXPECT_EQ(volumePropsFromDvID(idOf(slice), root, name), 0);
        EXPECT_EQ(name, "Data One");
    }));
}

TEST_F(RealVolumes, AreReadOnlyWhenTheirDiskIs) {
    const Mounted mounted(slice.path, here("place"), "ext4", MS_RDONLY);
    EXPECT_TRUE(flagOf(propsOf(slice), 14)) << "the medium, not the mount";
}

TEST_F(RealVolumes, StandInTheOrderOfMountingWithTheirNames) {
    ASSERT_TRUE(KxTest::makeFileSystem(disk.partitionPath(2), ""));
    const DiskNode second = *Korvex::diskNode(whole.name() + "s2");
    const Mounted later(second.path, here("no label"));
    const Mounted earlier(slice.path, here("place"));
    const auto volumes = Korvex::volumeTable().volumes();
    const auto find = [&](const DiskNode& node) {
        return std::find_if(volumes.begin(), volumes.end(),
                            [&](const Volume& each) { return each.backing.device == node.name(); });
    };
    ASSERT_NE(find(slice), volumes.end());
    ASSERT_NE(find(second), volumes.end());
    EXPECT_LT(find(second), find(slice));
    EXPECT_EQ(find(slice)->name, "Data One");
    EXPECT_EQ(find(second)->name, "no label");
    EXPECT_EQ(find(slice)->root, earlier.folder());
    EXPECT_LT(find(slice)->reference, 0);
    EXPECT_NE(find(slice)->reference, find(second)->reference);
    QString node;
    EXPECT_EQ(getBSDNodeFromVolumeName("no label", node), 0);
    EXPECT_EQ(node.toStdString(), "/dev/" + second.name());
}

TEST_F(RealVolumes, AreListedOnceHoweverOftenTheyAreMounted) {
    const Mounted mounted(slice.path, here("place"));
    fs::create_directory(here("place/inside"));
    const Mounted bound(here("place/inside"), here("bound"), nullptr, MS_BIND);
    const Mounted again(slice.path, here("again"));
    ASSERT_TRUE(bound.isMounted() && again.isMounted());
    EXPECT_EQ(rootsOf(volumesOn(slice)), "place ");
    QString path;
    EXPECT_EQ(convertDvIDToPath(idOf(slice), path), 0);
    EXPECT_EQ(path.toStdString(), mounted.folder());
    KX_DEV_VOL_UNION id{};
    EXPECT_EQ(convertPathToPartialDvID(QString::fromStdString(here("bound/x")), id), 0);
    EXPECT_EQ(id.value, idOf(slice).value);
}

TEST_F(RealVolumes, HoldPathsThatExistAndThatDoNot) {
    const std::string folder = here("place");
    for (int turn = 0; turn < 2; ++turn) { // what is remembered of a mount ends with it
        const Mounted mounted(slice.path, folder);
        ASSERT_TRUE(mounted.isMounted());
        for (const std::string& path :
             {folder, folder + '/', folder + "/lost+found", folder + "/no/such/file.txt"}) {
            KX_DEV_VOL_UNION id{};
            EXPECT_EQ(convertPathToPartialDvID(QString::fromStdString(path), id), 0) << path;
            EXPECT_EQ(id.value, idOf(slice).value) << path;
        }
    }
}

TEST_F(RealVolumes, AreToldApartWhenAnotherOneIsMountedAtTheSamePlace) {
    ASSERT_TRUE(KxTest::makeFileSystem(disk.partitionPath(2), ""));
    const QString path = QString::fromStdString(here("place/file"));
    for (const unsigned number : {1U, 2U, 1U}) {
        const Mounted mounted(disk.partitionPath(number), here("place"));
        ASSERT_TRUE(mounted.isMounted());
        for (int i = 0; i < 3; ++i) {
            KX_DEV_VOL_UNION id{};
            EXPECT_EQ(convertPathToPartialDvID(path, id), 0);
            EXPECT_EQ(id.volumeNumber, number);
        }
    }
}

TEST_F(RealVolumes, SplitPathsAtTheirMountPoint) {
    const Mounted mounted(slice.path, here("place.d"));
    QString drive;
    QString dir;
    QString fname;
    QString ext;
    splitPath(QString::fromStdString(here("place.d/dir/file.txt")), drive, dir, fname, ext);
    EXPECT_EQ(drive.toStdString(), mounted.folder());
    EXPECT_EQ(dir, "/dir");
    EXPECT_EQ(fname, "file");
    EXPECT_EQ(ext, "txt");
}

TEST_F(RealVolumes, HaveMountPointsAndPathsInLatin1) {
    const std::string folder = here("D\xE4ta");
    const Mounted mounted(slice.path, folder);
    ASSERT_TRUE(mounted.isMounted());
    const QString path = QString::fromLatin1(folder.c_str());
    KX_DEV_VOL_UNION id{};
    EXPECT_EQ(convertPathToPartialDvID(path + "/file", id), 0);
    EXPECT_EQ(id.value, idOf(slice).value);
    QString found;
    EXPECT_EQ(convertDvIDToPath(id, found), 0);
    EXPECT_EQ(found, path);
}

TEST_F(RealVolumes, HaveNamesInUtf8AndElseInLatin1) {
    const DiskNode second = *Korvex::diskNode(whole.name() + "s2");
    const QString text = QString::fromLatin1("D\xE4ta");
    for (const char* bytes : {"D\xE4ta", "D\xC3\xA4ta"}) {
        ASSERT_TRUE(KxTest::makeFileSystem(second.path, ""));
        {
            const Mounted mounted(second.path, here(bytes));
            EXPECT_EQ(volumesOn(second).at(0).name, text) << "by the folder";
        }
        ASSERT_TRUE(KxTest::makeFileSystem(second.path, bytes));
        const Mounted mounted(second.path, here("place"));
        EXPECT_EQ(volumesOn(second).at(0).name, text) << "by the label";
        QString name;
        EXPECT_EQ(propsOf(second)->getQStringProperty(15, name), 0u);
        EXPECT_EQ(name, text);
    }
}

TEST_F(RealVolumes, HaveMountPointsThatAreToldUpTo259Bytes) {
    const std::string parent = here(std::string(250, 'x'));
    fs::create_directory(parent);
    {
        const Mounted deep(slice.path, parent + "/place.of.its.own");
        ASSERT_TRUE(deep.isMounted());
        QString path = "kept";
        QString name = "kept";
        EXPECT_EQ(propsOf(slice)->getQStringProperty(30, path), 66u);
        EXPECT_EQ(convertDvIDToPath(idOf(slice), path), 66);
        EXPECT_EQ(volumePropsFromDvID(idOf(slice), path, name), -2110);
        EXPECT_EQ(path, "kept");
        EXPECT_EQ(name, "kept");
        KX_DEV_VOL_UNION id{};
        EXPECT_EQ(convertPathToPartialDvID(QString::fromStdString(deep.folder() + "/x"), id), 0);
        EXPECT_EQ(id.value, idOf(slice).value);
    }
    fs::remove(parent);
}

TEST_F(RealVolumes, AreWhatTheDumpTells) {
    const Mounted mounted(slice.path, here("place"));
    testing::internal::CaptureStdout();
    EXPECT_EQ(printAllVolumesInfo(), 0);
    std::fflush(stdout);
    const std::string output = testing::internal::GetCapturedStdout();
    const int reference = volumesOn(slice).at(0).reference;
    EXPECT_NE(output.find("Volume \"Data One\" (vRefNum " + std::to_string(reference) +
                          "), BSD node /dev/" + slice.name() + ", is of class loop\n"),
              std::string::npos)
        << output;
}

TEST_F(RealVolumes, DoNotOutliveTheirDisk) {
    {
        const Mounted mounted(slice.path, here("place"));
        EXPECT_EQ(volumesOn(slice).size(), 1u);
    }
    disk.detach();
    EXPECT_TRUE(volumesOn(slice).empty());
    const auto later = Korvex::diskNode(slice.name());
    EXPECT_FALSE(later && later->sequence == slice.sequence);
}
