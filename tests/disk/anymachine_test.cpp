// What holds for the disks and volumes of this machine and for those that other tests make up.

#include "machines.h"

#include "platform/descriptor.h"

#include <KxQts/corefoundation.h>

#include <gtest/gtest.h>

#include <array>
#include <future>
#include <thread>

using Korvex::Reference;
using Korvex::Volume;

namespace {

template <class Machine>
class AnyMachine : public testing::Test {
protected:
    void SetUp() override {
        if (std::is_same_v<Machine, KxTest::RealMachine> && !KxTest::LoopDisk::isPossible())
            GTEST_SKIP() << "attaching disks needs root's rights and loop devices";
        ASSERT_TRUE(machine.isReady());
    }

    [[nodiscard]] Reference<__DADisk> diskOf(const std::string& name) const {
        return Reference<__DADisk>(session->createDisk(name.c_str()));
    }
    [[nodiscard]] Reference<__DADisk> disk() const { return diskOf(machine.slice(1)); }

    Machine machine;
    const Reference<__DASession> session{Korvex::diskArbiter().createSession()};
};

using Machines = testing::Types<KxTest::RealMachine, KxTest::FakeMachine>;
TYPED_TEST_SUITE(AnyMachine, Machines);

/// The answer to one request.
struct Answer {
    std::promise<DAReturn> status;
    std::thread::id thread;
    bool hasDissenter = false;
    std::string described;

    static void take(DADiskRef disk, DADissenterRef dissenter, void* context);
};

std::string nameIn(CFDictionaryRef description) {
    CFStringRef key = CFStringCreateWithCString(nullptr, "DAMediaBSDName", kCFStringEncodingUTF8);
    const void* value = CFDictionaryGetValue(description, key);
    CFRelease(key);
    std::array<char, 64> name{};
    if (value)
        CFStringGetCString(static_cast<CFStringRef>(value), name.data(), name.size(),
                           kCFStringEncodingUTF8);
    return name.data();
}

std::string describe(__DADisk& disk) {
    CFDictionaryRef description = disk.copyDescription();
    std::string name = description ? nameIn(description) : "none";
    CFRelease(description);
    return name;
}

void Answer::take(DADiskRef disk, DADissenterRef dissenter, void* context) {
    auto& answer = *static_cast<Answer*>(context);
    answer.thread = std::this_thread::get_id();
    answer.hasDissenter = dissenter != nullptr;
    answer.described = describe(*disk);
    answer.status.set_value(DADissenterGetStatus(dissenter)); // throws when it is the second
}

} // namespace

TYPED_TEST(AnyMachine, KnowsItsDisksByTheirNames) {
    EXPECT_TRUE(this->diskOf(this->machine.slice(1)));
    EXPECT_TRUE(this->diskOf(this->machine.slice(2)));
    for (const char* name : {"disk9999", "disk9999s1", "", "disk", "/dev/null", "DISK7S1"})
        EXPECT_FALSE(this->diskOf(name)) << name;
    EXPECT_FALSE(this->diskOf(this->machine.slice(1) + 'x'));
}

TYPED_TEST(AnyMachine, DescribesADiskAnewEachTime) {
    const auto disk = this->disk();
    CFDictionaryRef first = disk->copyDescription();
    CFDictionaryRef second = disk->copyDescription();
    ASSERT_TRUE(first && second);
    EXPECT_NE(first, second);
    EXPECT_EQ(CFGetRetainCount(first), 1) << "the caller's own";
    EXPECT_EQ(nameIn(first), this->machine.slice(1));
    CFRelease(first);
    CFRelease(second);
}

TYPED_TEST(AnyMachine, CallsBackOnAnotherThreadWithoutADissenterOnSuccess) {
    const auto disk = this->disk();
    Answer mounted;
    Answer unmounted;
    disk->mount(nullptr, 0, Answer::take, &mounted);
    EXPECT_EQ(mounted.status.get_future().get(), kDAReturnSuccess);
    disk->unclaim();
    disk->unmount(0, Answer::take, &unmounted);
    EXPECT_EQ(unmounted.status.get_future().get(), kDAReturnSuccess);
    for (const Answer* answer : {&mounted, &unmounted}) {
        EXPECT_FALSE(answer->hasDissenter);
        EXPECT_NE(answer->thread, std::this_thread::get_id());
    }
}

TYPED_TEST(AnyMachine, SaysInTheDissenterWhyItRefuses) {
    this->machine.refuseMounting();
    const auto disk = this->disk();
    Answer mounted;
    disk->mount(nullptr, 0, Answer::take, &mounted);
    EXPECT_EQ(mounted.status.get_future().get(), kDAReturnBusy);
    EXPECT_TRUE(mounted.hasDissenter);
}

TYPED_TEST(AnyMachine, KeepsADiskUntilItHasCalledBack) {
    this->machine.refuseMounting();
    auto disk = this->disk();
    Answer mounted;
    disk->mount(nullptr, 0, Answer::take, &mounted);
    disk.reset();
    mounted.status.get_future().get();
    EXPECT_EQ(mounted.described, this->machine.slice(1));
}

TYPED_TEST(AnyMachine, NeedsNobodyToCallBack) {
    this->machine.refuseMounting();
    const auto disk = this->disk();
    disk->mount(nullptr, 0, nullptr, nullptr);
    Answer mounted;
    disk->mount(nullptr, 0, Answer::take, &mounted);
    mounted.status.get_future().get();
}

TYPED_TEST(AnyMachine, ListsItsVolumesInTheOrderOfMounting) {
    const std::string second = this->machine.mountSlice(2);
    const std::string first = this->machine.mountSlice(1);
    std::vector<Volume> volumes = Korvex::volumeTable().volumes();
    std::erase_if(volumes, [&](const Volume& each) {
        return each.backing.device != this->machine.slice(1) &&
               each.backing.device != this->machine.slice(2);
    });
    ASSERT_EQ(volumes.size(), 2u);
    EXPECT_EQ(volumes[0].name, "Two");
    EXPECT_EQ(volumes[0].root, second);
    EXPECT_EQ(volumes[1].name, "One");
    EXPECT_EQ(volumes[1].root, first);
    EXPECT_NE(volumes[0].reference, volumes[1].reference);
    for (const Volume& volume : volumes) {
        EXPECT_LT(volume.reference, 0);
        EXPECT_FALSE(volume.backing.isNetworked);
        EXPECT_EQ(volume.error | volume.rootError | volume.backing.error, 0);
    }
}

TYPED_TEST(AnyMachine, TellsWhereAPathLiesIfThereIsOne) {
    const std::string folder = this->machine.mountSlice(2);
    const auto place = Korvex::volumeTable().placeOf(folder.c_str());
    ASSERT_TRUE(place);
    EXPECT_EQ(place->error | place->backing.error, 0);
    EXPECT_EQ(place->backing.device, this->machine.slice(2));
    EXPECT_FALSE(place->backing.isNetworked);
    EXPECT_FALSE(Korvex::volumeTable().placeOf((folder + "/nothing").c_str()));
    EXPECT_FALSE(Korvex::volumeTable().placeOf(""));
}

TYPED_TEST(AnyMachine, TellsWhereTheBytesOfAFileLie) {
    constexpr unsigned long long size = 100'000;
    const Korvex::Descriptor file(this->machine.openFile(size));
    ASSERT_TRUE(file.isOpen());
    const auto extents = Korvex::extentMap().extentsOf(file.get(), size);
    ASSERT_TRUE(extents);
    unsigned long long position = 0;
    for (const Korvex::Extent& extent : *extents) {
        EXPECT_EQ(extent.logical, position) << "in order, without overlap, and no hole";
        EXPECT_GT(extent.length, 0u);
        EXPECT_GT(extent.physical, 0u);
        position = extent.logical + extent.length;
    }
    EXPECT_GE(position, size);
}

TYPED_TEST(AnyMachine, TellsWhatADeviceHangsOnFromTheDeviceItselfOn) {
    const auto ancestry = Korvex::deviceTree().ancestryOf(this->machine.slice(1));
    EXPECT_EQ(ancestry.result, Korvex::DeviceAncestry::Result::Found);
    ASSERT_GE(ancestry.entries.size(), 2u);
    EXPECT_TRUE(ancestry.entries[0].isMedium);
    EXPECT_EQ(ancestry.entries[0].isWhole, false);
    EXPECT_TRUE(ancestry.entries[1].isMedium);
    EXPECT_EQ(ancestry.entries[1].isWhole, true);
    EXPECT_FALSE(ancestry.entries[1].isCD || ancestry.entries[1].isDVD);
    EXPECT_EQ(Korvex::deviceTree().ancestryOf("disk9999").result,
              Korvex::DeviceAncestry::Result::NoDevice);
}
