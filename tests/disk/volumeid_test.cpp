// Identifiers, nodes, names and mount points of volumes, whatever the system has mounted.

#include <KxQts/disk/volumeid.h>
#include <KxQts/support/log.h>

#include "fakes/diskarbiter.h"
#include "fakes/volumetable.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

using Korvex::Volume;
using KxTest::FakeArbiter;
using KxTest::FakeVolumeTable;
using KxTest::onDevice;

namespace {

KX_DEV_VOL_UNION idOf(std::uint32_t value) {
    KX_DEV_VOL_UNION id{};
    id.value = value;
    return id;
}

/// Catches what is written to the library's log.
class Log {
public:
    Log() { Korvex::IOLogOpen(path.c_str(), 2, "test", ""); }
    ~Log() {
        Korvex::IOLogClose();
        std::filesystem::remove(path);
    }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    [[nodiscard]] std::string text() const {
        std::ostringstream contents;
        contents << std::ifstream(path).rdbuf();
        return contents.str();
    }
    [[nodiscard]] bool has(const std::string& line) const {
        return text().find("test: " + line + '\n') != std::string::npos;
    }

private:
    const std::string path = std::filesystem::current_path() / "volumes.log";
};

class VolumeIds : public testing::Test {
protected:
    FakeVolumeTable table;
};

} // namespace

TEST(VolumeId, HasItsFieldsInTheOrderOfTheBits) {
    KX_DEV_VOL_UNION id = idOf(0x12340302);
    EXPECT_EQ(id.deviceNumber, 2);
    EXPECT_EQ(id.volumeNumber, 3);
    EXPECT_EQ(id.volumeFlags, 0x1234);
    static_assert(sizeof id == 4);
}

TEST(VolumeId, IsWrittenAsANodeWithItsSliceAlways) {
    QString node;
    getBSDNodeFromID(idOf(0x0003), node);
    EXPECT_EQ(node, "/dev/disk3s0");
    getBSDNodeFromID(idOf(0xFFFF0201), node);
    EXPECT_EQ(node, "/dev/disk1s2");
    getBSDNodeFromID(idOf(0xFFFF), node);
    EXPECT_EQ(node, "/dev/disk255s255");
}

TEST(VolumeId, IsReadFromANodeOfSingleDigits) {
    struct Case {
        const char* node;
        bool result;
        unsigned short id;
    };
    for (const Case& test : {
             Case{"/dev/disk1s2", true, 0x0201},
             Case{"/dev/disk2s1", true, 0x0102},
             Case{"/dev/disk0", false, 0},
             Case{"/dev/disk7", false, 7},
             Case{"/dev/disk12s3", false, 1},
             Case{"/dev/disk1s23", true, 0x0201},
             Case{"1x2", true, 0x0201},
             Case{"122", true, 0x0201},
             Case{"/dev/disk/dev/disk4s5", true, 0x0504},
             Case{"", false, 0},
             Case{"/dev/DISK1s2", false, 0},
             Case{"disk1s2", false, 0},
             Case{"x12", false, 0},
             Case{"-1s2", false, 0},
             Case{" 1s2", false, 0},
             Case{"/dev/disk9s9", true, 0x0909},
         }) {
        unsigned short id = 0xABCD;
        EXPECT_EQ(getDeviceAndVolumeFromBSDNode(test.node, &id), test.result) << test.node;
        EXPECT_EQ(id, test.id) << test.node;
    }
    EXPECT_FALSE(getDeviceAndVolumeFromBSDNode("/dev/disk1s2", nullptr));
}

TEST(VolumeId, HasFlags) {
    KX_DEV_VOL_UNION id{};
    id.volumeFlags = 0x0004;
    EXPECT_EQ(getFlaggedPropertyFromVolumeID(id, VOLUME_PROPERTIES(2)), 1);
    EXPECT_EQ(getFlaggedPropertyFromVolumeID(id, VOLUME_PROPERTIES(3)), 0);
    EXPECT_EQ(getFlaggedPropertyFromVolumeID(id, VOLUME_PROPERTIES(34)), 1) << "of 32";
    id.volumeFlags = 0xFFFF;
    for (int p = 0; p < 16; ++p)
        EXPECT_EQ(getFlaggedPropertyFromVolumeID(id, VOLUME_PROPERTIES(p)), 1);
    for (int p = 16; p < 32; ++p)
        EXPECT_EQ(getFlaggedPropertyFromVolumeID(id, VOLUME_PROPERTIES(p)), 0);
}

TEST_F(VolumeIds, OfAPathAreThoseOfItsVolume) {
    table.places["/a/b"] = {0, onDevice("disk1s2")};
    KX_DEV_VOL_UNION id = idOf(0xFFFFFFFF);
    EXPECT_EQ(convertPathToPartialDvID("/a/b", id), 0);
    EXPECT_EQ(id.value, 0x0201u);
}

TEST_F(VolumeIds, OfAPathComeFromTheNearestAncestorThatExists) {
    table.places["/a"] = {0, onDevice("disk3")};
    KX_DEV_VOL_UNION id{};
    EXPECT_EQ(convertPathToPartialDvID("/a/b.c/d//e/", id), 0);
    EXPECT_EQ(id.value, 0x0003u) << "a device without a slice";
    EXPECT_EQ(table.asked, (std::vector<std::string>{"/a/b.c/d//e/", "/a/b.c/d//e", "/a/b.c/d/",
                                                     "/a/b.c/d", "/a/b.c", "/a"}));
    table.places = {{"/", {0, onDevice("disk0s1")}}};
    EXPECT_EQ(convertPathToPartialDvID("/x", id), 0);
    EXPECT_EQ(id.value, 0x0100u);
    table.places = {{"x", {0, onDevice("disk5s6")}}};
    EXPECT_EQ(convertPathToPartialDvID("x/y", id), 0) << "relative";
    EXPECT_EQ(id.value, 0x0605u);
}

TEST_F(VolumeIds, OfAPathAreNotFoundWithoutAnAncestor) {
    const Log log;
    for (const char* path : {"nothing", "", "nothing/at/all", "/nothing", "/"}) {
        KX_DEV_VOL_UNION id = idOf(7);
        EXPECT_EQ(convertPathToPartialDvID(path, id), 2) << path;
        EXPECT_EQ(id.value, 7u);
    }
    EXPECT_TRUE(log.has("cannot get FSRef from [nothing]."));
    EXPECT_TRUE(log.has("cannot get FSRef from []."));
    EXPECT_TRUE(log.has("cannot get FSRef from [/]."));
}

TEST_F(VolumeIds, OfAPathAreAskedForInLatin1) {
    table.places["/D\xE4ta/?"] = {0, onDevice("disk1")};
    KX_DEV_VOL_UNION id{};
    EXPECT_EQ(convertPathToPartialDvID(QString::fromUtf8("/Däta/磁"), id), 0);
}

TEST_F(VolumeIds, OfAPathPassErrorsOn) {
    const Log log;
    KX_DEV_VOL_UNION id = idOf(7);
    table.places["/p"] = {-43, onDevice("disk1")};
    EXPECT_EQ(convertPathToPartialDvID("/p/q", id), -43);
    EXPECT_TRUE(log.has("cannot get CatalogInfo from [/p/q]."));
    table.places["/p"] = {0xFFD5, onDevice("disk1")};
    EXPECT_EQ(convertPathToPartialDvID("/p", id), -43) << "16 bits with a sign";
    table.places["/p"] = {0, {-50, false, "disk1"}};
    EXPECT_EQ(convertPathToPartialDvID("/p", id), -50);
    table.places["/p"] = {0, {0, true, "disk1"}};
    EXPECT_EQ(convertPathToPartialDvID("/p", id), 87) << "networked";
    for (const char* device : {"", "sda1", "disk", "Disk1", "diskx"}) {
        table.places["/p"] = {0, onDevice(device)};
        EXPECT_EQ(convertPathToPartialDvID("/p", id), 87) << device;
    }
    EXPECT_EQ(id.value, 7u);
}

TEST_F(VolumeIds, AreScannedFromTheFrontOnly) {
    KX_DEV_VOL_UNION id{};
    for (const auto& [device, value] : {std::pair{"disk3", 0x0003u},
                                        {"disk3s", 0x0003u},
                                        {"disk3x4", 0x0003u},
                                        {"disk3s4x", 0x0403u},
                                        {"disk300s1", 0x012Cu},
                                        {"disk1s300", 0x2C01u}}) {
        table.places["/p"] = {0, onDevice(device)};
        EXPECT_EQ(convertPathToPartialDvID("/p", id), 0);
        EXPECT_EQ(id.value, value) << device;
    }
}

TEST(VolumePaths, AreThoseOfDisks) {
    FakeArbiter arbiter;
    FakeArbiter::setPath(arbiter.addDisk("disk1s2"), "DAVolumePath", "/Volumes/Data");
    FakeArbiter::set(arbiter.addDisk("disk1s3"), "DAVolumePath", 5);
    arbiter.addDisk("disk1");
    QString path = "kept";
    EXPECT_EQ(convertDvIDToPath(idOf(0x0901), path), 1168) << "no disk";
    EXPECT_EQ(convertDvIDToPath(idOf(0x0001), path), 1168) << "not mounted";
    EXPECT_EQ(convertDvIDToPath(idOf(0x0301), path), 66);
    EXPECT_EQ(path, "kept");
    EXPECT_EQ(convertDvIDToPath(idOf(0x0201), path), 0);
    EXPECT_EQ(path, "/Volumes/Data");
    EXPECT_EQ(arbiter.liveObjects(), 0);
}

TEST_F(VolumeIds, LeadToMountPointAndName) {
    table.add("First", "disk0s1", "/");
    table.add("Second", "disk1s2", "/Volumes/Sec\xE4nd");
    QString path;
    QString name;
    EXPECT_EQ(volumePropsFromDvID(idOf(0xABCD0201), path, name), 0) << "the low half counts";
    EXPECT_EQ(path, QString::fromLatin1("/Volumes/Sec\xE4nd"));
    EXPECT_EQ(name, "Second");
    EXPECT_EQ(getVolumeNameFromDvID(idOf(0x0100), name), 0);
    EXPECT_EQ(name, "First");
    EXPECT_EQ(table.reads, 2) << "one each";
}

TEST_F(VolumeIds, LeadToNothingWhenNoVolumeMatches) {
    const Log log;
    table.add("First", "disk0s1");
    QString path = "kept";
    QString name = "kept";
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0201), path, name), -35);
    EXPECT_EQ(getVolumeNameFromDvID(idOf(0x0201), name), -35);
    EXPECT_EQ(path, "kept");
    EXPECT_EQ(name, "kept");
    EXPECT_EQ(log.text().find("FSGetVolumeInfo"), std::string::npos) << "skipped silently";
}

TEST_F(VolumeIds, AreLookedForUpToTheFirstNetworkedVolume) {
    table.add("First", "disk0s1", "/first");
    table.addNetworked("Server");
    table.add("Second", "disk1s2", "/second");
    QString path;
    QString name;
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0100), path, name), 0);
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0201), path, name), 87);
    EXPECT_EQ(path, "/first");
    table.list[1] = Volume{};
    table.list[1].backing = onDevice("no disk");
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0201), path, name), 87) << "a device of another name";
    table.list[1].backing.error = -50;
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0201), path, name), -50);
}

TEST_F(VolumeIds, AreLookedForBehindVolumesThatCannotBeRead) {
    const Log log;
    table.addBroken(-36);
    table.addBroken(-35);
    table.add("Third", "disk1s2", "/third");
    QString path;
    QString name;
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0201), path, name), 0);
    EXPECT_EQ(name, "Third");
    EXPECT_TRUE(log.has("volumePropsFromDvID() - FSGetVolumeInfo(1) returned error -36."));
    EXPECT_EQ(log.text().find("FSGetVolumeInfo(2)"), std::string::npos);
}

TEST_F(VolumeIds, AreLookedForAmongTheFirst126) {
    for (int i = 0; i < 125; ++i)
        table.add("x", "disk9s9");
    table.add("Last", "disk1s2", "/last");
    table.add("Behind", "disk3s4", "/behind");
    QString path;
    QString name;
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0201), path, name), 0);
    EXPECT_EQ(name, "Last");
    name = "kept";
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0403), path, name), 0)
        << "the last one looked at is there";
    EXPECT_EQ(name, "kept");
    table.list[125].error = -36;
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0403), path, name), -36);
    table.list.resize(125);
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0403), path, name), -35);
}

TEST_F(VolumeIds, LeadToMountPointsOfAtMost259Bytes) {
    const Log log;
    const std::string longest = '/' + std::string(258, 'x');
    table.add("Long", "disk1s2", longest);
    table.add("Longer", "disk1s3", longest + 'x');
    table.add("Lost", "disk1s4").rootError = -1407;
    QString path;
    QString name;
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0201), path, name), 0);
    EXPECT_EQ(path.toStdString(), longest);
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0301), path, name), -2110);
    EXPECT_TRUE(log.has("volumePropsFromDvID() - FSRefMakePath(-101) error -2110."));
    EXPECT_EQ(volumePropsFromDvID(idOf(0x0401), path, name), -1407);
    EXPECT_TRUE(log.has("volumePropsFromDvID() - FSRefMakePath(-102) error -1407."));
    EXPECT_EQ(path.toStdString(), longest);
    EXPECT_EQ(name, "Long");
}

TEST_F(VolumeIds, AreFoundByName) {
    table.addBroken(-36);
    table.addNetworked("Data");
    table.add("data", "disk0s1");
    table.add("Data", "disk1s2");
    table.add("Data", "disk1s3");
    QString node;
    EXPECT_EQ(getBSDNodeFromVolumeName("Data", node), 0);
    EXPECT_EQ(node, "/dev/disk1s2");
    unsigned short id = 0;
    EXPECT_TRUE(getDeviceAndVolumeFromVolumeName("Data", &id));
    EXPECT_EQ(id, 0x0201);
    EXPECT_FALSE(getDeviceAndVolumeFromVolumeName("None", &id));
    EXPECT_EQ(id, 0x0201);
    table.list[2].backing.device = "disk12s3";
    EXPECT_FALSE(getDeviceAndVolumeFromVolumeName("data", &id));
    EXPECT_EQ(id, 1) << "single digits";
}

TEST_F(VolumeIds, LeaveAPrefixWhenANameIsNotFound) {
    QString node = "kept";
    EXPECT_EQ(getBSDNodeFromVolumeName("Data", node), 1);
    EXPECT_EQ(node, "kept") << "no local volume at all";
    table.addNetworked("Data");
    EXPECT_EQ(getBSDNodeFromVolumeName("Data", node), 1);
    EXPECT_EQ(node, "kept");
    table.add("Other", "disk0s1");
    EXPECT_EQ(getBSDNodeFromVolumeName("Data", node), 1);
    EXPECT_EQ(node, "/dev/");
    table.add("Broken", "").backing.error = 0xFFCE;
    EXPECT_EQ(getBSDNodeFromVolumeName("Data", node), -50) << "16 bits with a sign";
}

TEST_F(VolumeIds, AreSearchedUntilTheEndOfTheTable) {
    table.addBroken(-36);
    table.addBroken(-35);
    table.add("Data", "disk1s2");
    QString text;
    EXPECT_EQ(getBSDNodeFromVolumeName("Data", text), 1);
    EXPECT_EQ(getVolumeNameFromBSDNode("/dev/disk1s2", text), 1);
    table.list.erase(table.list.begin() + 1);
    EXPECT_EQ(getBSDNodeFromVolumeName("Data", text), 0);
    EXPECT_EQ(getVolumeNameFromBSDNode("/dev/disk1s2", text), 0);
    for (int i = 0; i < 200; ++i)
        table.list.insert(table.list.begin(), table.list.front());
    EXPECT_EQ(getBSDNodeFromVolumeName("Data", text), 0) << "behind 126 too";
}

TEST_F(VolumeIds, AreMatchedWithFiveCharactersOfTheNode) {
    table.addNetworked("Server");
    table.add("One", "disk1s2");
    table.add("Three", "disk1s3");
    table.add("Ten", "disk10s1");
    table.add("Two", "disk2");
    QString name = "kept";
    EXPECT_EQ(getVolumeNameFromBSDNode("/dev/disk1s3", name), 0);
    EXPECT_EQ(name, "One");
    EXPECT_EQ(getVolumeNameFromBSDNode("/dev/disk10s1", name), 0);
    EXPECT_EQ(name, "One");
    EXPECT_EQ(getVolumeNameFromBSDNode("xdisk2x", name), 0);
    EXPECT_EQ(name, "Two");
    EXPECT_EQ(getVolumeNameFromBSDNode("/dev/disk3s1", name), 1);
    EXPECT_EQ(getVolumeNameFromBSDNode("/dev/DISK1s3", name), 1);
    EXPECT_EQ(getVolumeNameFromBSDNode("", name), 1);
    EXPECT_EQ(name, "Two");
    EXPECT_EQ(getVolumeNameFromID(idOf(0x0901), name), 0);
    EXPECT_EQ(name, "One");
    EXPECT_EQ(getVolumeNameFromID(idOf(0x0003), name), 1);
    table.list[1].backing.error = -50;
    EXPECT_EQ(getVolumeNameFromBSDNode("/dev/disk1s3", name), -50);
}
