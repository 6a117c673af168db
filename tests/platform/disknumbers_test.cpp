#include "platform/linux/disknumbers.h"

#include <gtest/gtest.h>

using Korvex::AttachedDisk;
using Korvex::DiskNumbers;

namespace {

AttachedDisk disk(const char* name, unsigned long long sequence, bool physical = false) {
    AttachedDisk made;
    made.device.systemName = name;
    made.sequence = sequence;
    made.isPhysical = physical;
    return made;
}

const AttachedDisk drive = disk("sda", 9, true);
const AttachedDisk stick = disk("sdb", 12, true);
const AttachedDisk image = disk("loop0", 2);
const AttachedDisk other = disk("loop1", 3);

} // namespace

TEST(DiskNumbers, GoToPhysicalDisksFirst) {
    DiskNumbers numbers;
    numbers.update({image, other, drive, stick});
    EXPECT_EQ(numbers.numberOf(drive), 0u);
    EXPECT_EQ(numbers.numberOf(stick), 1u);
    EXPECT_EQ(numbers.numberOf(image), 2u);
    EXPECT_EQ(numbers.numberOf(other), 3u);
}

TEST(DiskNumbers, StayWhileTheDiskIsAttached) {
    DiskNumbers numbers;
    numbers.update({image, other});
    numbers.update({image, other, drive});
    EXPECT_EQ(numbers.numberOf(image), 0u);
    EXPECT_EQ(numbers.numberOf(other), 1u);
    EXPECT_EQ(numbers.numberOf(drive), 2u);
}

TEST(DiskNumbers, AreFreeAgainWhenTheDiskIsGone) {
    DiskNumbers numbers;
    numbers.update({image, other});
    numbers.update({other});
    EXPECT_FALSE(numbers.numberOf(image));
    numbers.update({other, stick});
    EXPECT_EQ(numbers.numberOf(stick), 0u);
    EXPECT_EQ(numbers.numberOf(other), 1u);
}

TEST(DiskNumbers, AreNotInheritedByAnotherMediumInTheSameDrive) {
    DiskNumbers numbers;
    numbers.update({image, other});
    const AttachedDisk again = disk("loop0", 77);
    numbers.update({other, again, drive});
    EXPECT_EQ(numbers.numberOf(drive), 0u) << "a physical disk goes first";
    EXPECT_EQ(numbers.numberOf(other), 1u);
    EXPECT_EQ(numbers.numberOf(again), 2u);
    EXPECT_FALSE(numbers.numberOf(image));
}

TEST(DiskNumbers, TellDisksApartByNameWhereTheKernelDoesNotCount) {
    DiskNumbers numbers;
    numbers.update({disk("sda", 0, true), disk("sdb", 0, true)});
    EXPECT_EQ(numbers.numberOf(disk("sda", 0)), 0u);
    EXPECT_EQ(numbers.numberOf(disk("sdb", 0)), 1u);
}

TEST(DiskNumbers, SurviveBeingWrittenDown) {
    DiskNumbers numbers;
    numbers.update({image, drive, disk("cciss!c0d0", 5, true)});
    EXPECT_EQ(DiskNumbers::parse(numbers.text("boot"), "boot"), numbers);
    EXPECT_EQ(DiskNumbers::parse(DiskNumbers().text("boot"), "boot"), DiskNumbers());
}

TEST(DiskNumbers, OfAnotherRunOfTheMachineMeanNothing) {
    DiskNumbers numbers;
    numbers.update({image});
    EXPECT_EQ(DiskNumbers::parse(numbers.text("before"), "now"), DiskNumbers());
}

TEST(DiskNumbers, LeaveOutWhatIsDamaged) {
    const auto numbers = DiskNumbers::parse("boot\n"
                                            "0 2 loop0\n"
                                            "x 3 loop1\n"
                                            "1 y loop2\n"
                                            "2 4 \n"
                                            "4\n"
                                            "\n"
                                            "99999999999 4 loop3\n"
                                            "0 5 loop4\n"
                                            "3 3 loop1",
                                            "boot");
    EXPECT_EQ(numbers.numberOf(image), 0u) << "the first of two with one number";
    EXPECT_EQ(numbers.numberOf(other), 3u) << "also without an end of the line";
    EXPECT_EQ(numbers.text("boot"), "boot\n0 2 loop0\n3 3 loop1\n");
    EXPECT_EQ(DiskNumbers::parse("", "boot"), DiskNumbers());
}

TEST(DiskNumbers, KnowTheDiskOfANumber) {
    DiskNumbers numbers;
    numbers.update({image});
    EXPECT_EQ(numbers.diskOf(0), DiskNumbers::keyOf(image));
    EXPECT_FALSE(numbers.diskOf(1));
}
