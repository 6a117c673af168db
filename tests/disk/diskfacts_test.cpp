// What is known of disks from elsewhere than the kernel, on machines that this one may not be.

#include "platform/linux/opticalmedium.h"
#include "platform/linux/sysfs.h"
#include "platform/linux/udevrecord.h"

#include <gtest/gtest.h>

using Korvex::OpticalMedium;
using Korvex::opticalMediumOf;
using Korvex::UdevRecord;

TEST(UdevRecord, HasProperties) {
    const UdevRecord record("S:disk/by-label/Data\n"
                            "I:1234\n"
                            "E:ID_FS_LABEL_ENC=My\\x20Data\\x5c\\xc3\\xa4\\x4\n"
                            "E:ID_FS_LABEL=My_Data\n"
                            "E:ID_FS_TYPE=ext4\n"
                            "E:EMPTY=\n"
                            "G:systemd\n"
                            "E:LAST=end");
    EXPECT_EQ(record.property("ID_FS_LABEL_ENC"), "My Data\\\xC3\xA4\\x4");
    EXPECT_EQ(record.property("ID_FS_LABEL"), "My_Data");
    EXPECT_EQ(record.property("ID_FS_TYPE"), "ext4");
    EXPECT_EQ(record.property("EMPTY"), "");
    EXPECT_EQ(record.property("LAST"), "end");
    EXPECT_EQ(record.property("ID_FS"), "");
    EXPECT_EQ(record.property("MISSING"), "");
    EXPECT_EQ(UdevRecord("").property("ANY"), "");
}

TEST(UdevRecord, IsMissingForADeviceThatNobodyKnows) {
    Korvex::DiskNode node;
    node.major = 4095;
    node.minor = 1048575;
    EXPECT_FALSE(UdevRecord::of(node));
}

TEST(OpticalMedium, IsToldByTheProfileOfTheDrive) {
    for (const unsigned profile : {0x08U, 0x09U, 0x0AU})
        EXPECT_EQ(opticalMediumOf(profile), OpticalMedium::CD) << profile;
    for (const unsigned profile : {0x10U, 0x11U, 0x12U, 0x1AU, 0x1BU, 0x2AU, 0x2BU})
        EXPECT_EQ(opticalMediumOf(profile), OpticalMedium::DVD) << profile;
    for (const unsigned profile : {0x00U, 0x01U, 0x02U, 0x07U, 0x0BU, 0x1CU, 0x40U, 0x43U, 0xFFFFU})
        EXPECT_EQ(opticalMediumOf(profile), OpticalMedium::None) << profile;
}

TEST(OpticalMedium, IsNoneInWhatIsNoDrive) {
    EXPECT_EQ(Korvex::opticalMediumIn("/dev/null"), OpticalMedium::None);
    EXPECT_EQ(Korvex::opticalMediumIn("/nowhere"), OpticalMedium::None);
}

TEST(Sysfs, ReadsFieldsAndNumbers) {
    constexpr std::string_view event = "MAJOR=7\nMINOR=0\nDEVNAME=loop0\nDISKSEQ=";
    EXPECT_EQ(Korvex::Sysfs::field(event, "MAJOR"), "7");
    EXPECT_EQ(Korvex::Sysfs::field(event, "DEVNAME"), "loop0");
    EXPECT_EQ(Korvex::Sysfs::field(event, "DISKSEQ"), "");
    EXPECT_EQ(Korvex::Sysfs::field(event, "DEV"), "");
    EXPECT_EQ(Korvex::Sysfs::field("", "DEV"), "");
    EXPECT_EQ(Korvex::Sysfs::number("18446744073709551615"), 18446744073709551615U);
    for (const char* none : {"", " 1", "1 ", "-1", "0x1", "18446744073709551616"})
        EXPECT_FALSE(Korvex::Sysfs::number(none)) << none;
    EXPECT_FALSE(Korvex::Sysfs::read("/proc/self/nothing"));
    EXPECT_FALSE(Korvex::Sysfs::read("/proc/self"));
}
