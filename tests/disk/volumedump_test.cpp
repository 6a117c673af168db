// What the dump of all volumes prints.

#include <KxQts/disk/volumeid.h>

#include "fakes/devicetree.h"
#include "fakes/volumetable.h"

#include <gtest/gtest.h>

#include <cstdio>

using Korvex::DeviceAncestry;
using Korvex::DeviceTreeEntry;
using Result = Korvex::DeviceAncestry::Result;

namespace {

DeviceTreeEntry medium(std::optional<bool> whole, const char* name = "Medium") {
    DeviceTreeEntry entry;
    entry.isMedium = true;
    entry.isWhole = whole;
    entry.className = name;
    return entry;
}

class VolumeDump : public testing::Test {
protected:
    void print() {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        EXPECT_EQ(printAllVolumesInfo(), 0);
        std::fflush(stdout);
        output = testing::internal::GetCapturedStdout();
        errors = testing::internal::GetCapturedStderr();
    }

    /// Prints one volume on a device with an ancestry.
    void print(const DeviceAncestry& ancestry) {
        table.list.clear();
        table.add("Data", "disk1s2");
        tree.devices["disk1s2"] = ancestry;
        print();
    }

    KxTest::FakeVolumeTable table;
    KxTest::FakeDeviceTree tree;
    std::string output;
    std::string errors;
};

constexpr char heading[] = R"(Volume "Data" (vRefNum -100), BSD node /dev/disk1s2, )";

} // namespace

TEST_F(VolumeDump, TellsTheClassOfTheWholeDisk) {
    DeviceTreeEntry controller;
    controller.className = "controller";
    controller.isWhole = true; // of something that is no medium
    print({Result::Found,
           0,
           {controller, medium(false, "Slice"), medium(true, "Disk"), medium(true, "Outer")}});
    EXPECT_EQ(output, std::string(heading) + "is of class Disk\n");
    EXPECT_EQ(errors, "");
}

TEST_F(VolumeDump, TellsOpticalMedia) {
    DeviceTreeEntry disc = medium(true);
    disc.isDVD = true;
    print({Result::Found, 0, {disc}});
    EXPECT_EQ(output, std::string(heading) + "is a DVD\n");
    disc.isCD = true;
    print({Result::Found, 0, {disc}});
    EXPECT_EQ(output, std::string(heading) + "is a CD\n");
}

TEST_F(VolumeDump, GoesOnWhereItIsNotToldWhetherADiskIsWhole) {
    print({Result::Found, 0, {medium(std::nullopt), medium(true, "Disk")}});
    EXPECT_EQ(output, std::string(heading) + "is of class Disk\n");
    EXPECT_EQ(errors, "Could not retrieve Whole property\n");
    print({Result::Found, 0, {medium(false)}});
    EXPECT_EQ(output, heading) << "no whole disk, no end of the line";
}

TEST_F(VolumeDump, TellsWhereItCannotGo) {
    print({Result::NoQuery, 0, {medium(true)}});
    EXPECT_EQ(output, heading);
    EXPECT_EQ(errors, "IOBSDNameMatching returned a NULL dictionary.\n"
                      "IOServiceGetMatchingService returned IO_OBJECT_NULL.\n");
    print({Result::NoDevice, 0, {medium(true)}});
    EXPECT_EQ(output, heading);
    EXPECT_EQ(errors, "IOServiceGetMatchingService returned IO_OBJECT_NULL.\n");
    print({Result::WalkFailed, static_cast<int>(0xE00002BC), {medium(true)}});
    EXPECT_EQ(output, heading);
    EXPECT_EQ(errors, "IORegistryEntryCreateIterator returned 0xe00002bc\n");
    print({Result::NothingToWalk, 0, {medium(true)}});
    EXPECT_EQ(output, heading);
    EXPECT_EQ(errors, "IORegistryEntryCreateIterator returned a NULL iterator\n");
}

TEST_F(VolumeDump, SkipsWhatIsNoLocalVolume) {
    table.addBroken(-36);
    table.addNetworked("Server");
    table.add("Strange", "").backing.error = 5;
    table.add("Data", "disk1s2");
    table.addBroken(-35);
    table.add("Behind", "disk1s3");
    tree.devices["disk1s2"] = {Result::Found, 0, {medium(true)}};
    print();
    EXPECT_EQ(output, R"(Volume "Data" (vRefNum -103), BSD node /dev/disk1s2, is of class Medium)"
                      "\n");
    EXPECT_EQ(errors, "PBHGetVolParmsSync returned 5.\n");
    EXPECT_EQ(table.reads, 1);
}

TEST_F(VolumeDump, WritesNamesInUtf8AsFarAsTheyFit) {
    const QString wide = QString::fromUtf8("ä");
    table.add(wide, "disk1");
    table.add(QString(127, QChar(0xE4)) + 'x', "disk2");
    table.add(QString(128, QChar(0xE4)), "disk3");
    table.add(QString(QChar(0xD800)), "disk4");
    print();
    EXPECT_NE(output.find("Volume \"\xC3\xA4\" "), std::string::npos);
    EXPECT_NE(output.find(QString(127, QChar(0xE4)).toStdString() + "x\" "), std::string::npos);
    EXPECT_NE(output.find("Volume \"\" (vRefNum -102)"), std::string::npos) << "256 bytes";
    EXPECT_NE(output.find("Volume \"\" (vRefNum -103)"), std::string::npos) << "no valid text";
}
