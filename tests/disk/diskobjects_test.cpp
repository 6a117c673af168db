// Properties of disks, whatever the system says about them.

#include <KxQts/disk/diskobjects.h>

#include "common/virtualslot.h"
#include "fakes/diskarbiter.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

using Korvex::IRefCounter;
using Korvex::Reference;
using Korvex::WDiskManager;
using Korvex::WDiskProps;
using KxTest::FakeArbiter;
using KxTest::virtualSlot;

namespace {

constexpr std::array<const char*, 31> keys{
    "DAMediaBlockSize",  "DAMediaBSDName",   "DADeviceUnit",     "DADevicePath",
    "DAVolumeMountable", "DABusPath",        "DADeviceModel",    "DAMediaEjectable",
    "DAMediaBSDMajor",   "DAMediaContent",   "DAMediaPath",      "DAVolumeNetwork",
    "DAMediaSize",       "DAMediaWhole",     "DAMediaWritable",  "DAVolumeName",
    "DAMediaRemovable",  "DAMediaName",      "DAAppearanceTime", "DAMediaLeaf",
    "DAMediaBSDMinor",   "DAMediaKind",      "DAVolumeUUID",     "DADeviceProtocol",
    "DABusName",         "DADeviceInternal", "DAVolumeKind",     "DADeviceRevision",
    "DAMediaIcon",       "DAMediaBSDUnit",   "DAVolumePath",
};

KX_DEV_VOL_UNION idOf(unsigned disk, unsigned volume) {
    KX_DEV_VOL_UNION id{};
    id.deviceNumber = static_cast<std::uint8_t>(disk);
    id.volumeNumber = static_cast<std::uint8_t>(volume);
    return id;
}

class DiskProps : public testing::Test {
protected:
    [[nodiscard]] Reference<WDiskProps> props() const {
        return Reference<WDiskProps>(Korvex::createFromBSDName("disk1"));
    }
    ~DiskProps() override { EXPECT_EQ(arbiter.liveObjects(), 0); }

    FakeArbiter arbiter;
    CFMutableDictionaryRef description = arbiter.addDisk("disk1");
};

} // namespace

TEST(DiskPropertyNames, StandInAnOrderOfTheirOwn) {
    for (int i = 0; i < 31; ++i) {
        EXPECT_STREQ(Korvex::dpKeys[i], keys[static_cast<std::size_t>(i)]);
        EXPECT_EQ(Korvex::getPropName(i), QString::fromLatin1(keys[static_cast<std::size_t>(i)]));
    }
    EXPECT_EQ(Korvex::getPropName(30), "DAVolumePath");
    EXPECT_TRUE(Korvex::getPropName(31).isNull());
    EXPECT_TRUE(Korvex::getPropName(-1).isNull());
}

TEST_F(DiskProps, AreReadByTheirNumber) {
    for (long long i = 0; i < 31; ++i)
        FakeArbiter::set(description, keys[static_cast<std::size_t>(i)], i + 1000);
    const auto disk = props();
    for (int i = 0; i < 31; ++i) {
        unsigned value = 0;
        EXPECT_EQ(disk->getIntegerProperty(i, value), 0u);
        EXPECT_EQ(value, static_cast<unsigned>(i) + 1000);
    }
}

TEST_F(DiskProps, AreASnapshot) {
    FakeArbiter::set(description, "DAVolumeName", "before");
    const auto disk = props();
    FakeArbiter::set(description, "DAVolumeName", "after");
    QString name;
    EXPECT_EQ(disk->getQStringProperty(15, name), 0u);
    EXPECT_EQ(name, "before");
}

TEST_F(DiskProps, RefuseNumbersThatThereAreNotEachInItsWay) {
    const auto disk = props();
    for (const int index : {31, 1000, -1}) {
        unsigned value = 7;
        bool flag = true;
        QString text = "kept";
        EXPECT_EQ(disk->getIntegerProperty(index, value), 1010u);
        EXPECT_EQ(disk->getBooleanProperty(index, flag), 1611u);
        EXPECT_EQ(disk->getQStringProperty(index, text), 1611u);
        EXPECT_EQ(value, 7u);
        EXPECT_TRUE(flag);
        EXPECT_EQ(text, "kept");
    }
}

TEST_F(DiskProps, AreNotFoundWhenAbsent) {
    const auto disk = props();
    unsigned value = 7;
    bool flag = true;
    QString text = "kept";
    EXPECT_EQ(disk->getIntegerProperty(0, value), 1168u);
    EXPECT_EQ(disk->getBooleanProperty(0, flag), 1168u);
    EXPECT_EQ(disk->getQStringProperty(0, text), 1168u);
    EXPECT_EQ(value, 7u);
    EXPECT_TRUE(flag);
    EXPECT_EQ(text, "kept");
}

TEST_F(DiskProps, OfAnotherTypeAreRefused) {
    FakeArbiter::set(description, "DAMediaBSDName", "disk1");
    FakeArbiter::set(description, "DAMediaWhole", kCFBooleanTrue);
    FakeArbiter::set(description, "DAMediaBSDUnit", 1);
    CFDataRef data = CFDataCreate(nullptr, nullptr, 0);
    FakeArbiter::set(description, "DAMediaIcon", static_cast<CFTypeRef>(data));
    const CFIndex before = CFGetRetainCount(data);
    const auto disk = props();
    unsigned value = 7;
    bool flag = true;
    QString text = "kept";
    for (const int index : {1, 13, 28})
        EXPECT_EQ(disk->getIntegerProperty(index, value), 66u) << index;
    for (const int index : {1, 29, 28})
        EXPECT_EQ(disk->getBooleanProperty(index, flag), 66u) << index;
    for (const int index : {13, 29, 28})
        EXPECT_EQ(disk->getQStringProperty(index, text), 66u) << index;
    EXPECT_EQ(value, 7u);
    EXPECT_TRUE(flag);
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(CFGetRetainCount(data), before + 1) << "what was looked up is given back";
    CFRelease(data);
}

TEST_F(DiskProps, AreNumbersOf32Bits) {
    FakeArbiter::set(description, "DAMediaSize", 1LL << 31);
    FakeArbiter::set(description, "DAMediaBSDMajor", -5);
    FakeArbiter::set(description, "DAMediaBSDMinor", (1LL << 31) - 1);
    const auto disk = props();
    unsigned value = 7;
    EXPECT_EQ(disk->getIntegerProperty(12, value), 66u);
    EXPECT_EQ(value, 7u);
    EXPECT_EQ(disk->getIntegerProperty(8, value), 0u);
    EXPECT_EQ(value, static_cast<unsigned>(-5));
    EXPECT_EQ(disk->getIntegerProperty(20, value), 0u);
    EXPECT_EQ(value, 0x7FFFFFFFu);
}

TEST_F(DiskProps, AreBooleans) {
    FakeArbiter::set(description, "DAMediaWhole", kCFBooleanTrue);
    FakeArbiter::set(description, "DAMediaLeaf", kCFBooleanFalse);
    const auto disk = props();
    bool whole = false;
    bool leaf = true;
    EXPECT_EQ(disk->getBooleanProperty(13, whole), 0u);
    EXPECT_EQ(disk->getBooleanProperty(19, leaf), 0u);
    EXPECT_TRUE(whole);
    EXPECT_FALSE(leaf);
}

TEST_F(DiskProps, AreTextsOfAnyCharacters) {
    FakeArbiter::set(description, "DAVolumeName", "Größe 磁盘 \xF0\x9F\x92\xBE");
    FakeArbiter::set(description, "DAMediaName", "");
    const auto disk = props();
    QString text;
    EXPECT_EQ(disk->getQStringProperty(15, text), 0u);
    EXPECT_EQ(text, QString::fromUtf8("Größe 磁盘 \xF0\x9F\x92\xBE"));
    EXPECT_EQ(disk->getQStringProperty(17, text), 0u);
    EXPECT_EQ(text, "");
}

TEST_F(DiskProps, GivePathsByteForByteUpToTheirLimit) {
    const std::string longest = '/' + std::string(258, 'x');
    FakeArbiter::setPath(description, "DAVolumePath", "/Volumes/D\xC3\xA4ta");
    FakeArbiter::setPath(description, "DAMediaPath", longest);
    FakeArbiter::setPath(description, "DABusPath", longest + 'x');
    const auto disk = props();
    QString text;
    EXPECT_EQ(disk->getQStringProperty(30, text), 0u);
    EXPECT_EQ(text, QString::fromLatin1("/Volumes/D\xC3\xA4ta"));
    EXPECT_EQ(disk->getQStringProperty(10, text), 0u);
    EXPECT_EQ(text.toStdString(), longest);
    EXPECT_EQ(disk->getQStringProperty(5, text), 66u);
    EXPECT_EQ(text.toStdString(), longest) << "left alone";
}

TEST_F(DiskProps, LiveAsLongAsTheyAreReferredTo) {
    WDiskProps* disk = Korvex::createFromBSDName("disk1");
    ASSERT_NE(disk, nullptr);
    EXPECT_EQ(disk->refCount, 1);
    const CFDictionaryRef described = disk->description;
    CFRetain(described);
    EXPECT_EQ(disk->retain(), 2);
    EXPECT_EQ(disk->release(), 1);
    EXPECT_EQ(CFGetRetainCount(described), 2);
    EXPECT_EQ(disk->release(), 0);
    EXPECT_EQ(CFGetRetainCount(described), 1);
    CFRelease(described);
}

TEST_F(DiskProps, CountReferencesOfManyThreads) {
    const auto disk = props();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int turn = 0; turn < 1000; ++turn) {
                disk->retain();
                disk->release();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(disk->refCount, 1);
}

TEST(DiskFactories, MakeNamesOfIdentifiers) {
    FakeArbiter arbiter;
    for (const char* name : {"disk2", "disk2s3", "disk255s255"})
        FakeArbiter::set(arbiter.addDisk(name), "DAMediaBSDName", name);
    const auto nameOf = [](KX_DEV_VOL_UNION id) {
        const Reference<WDiskProps> disk(Korvex::createFromDvID(id));
        QString name;
        return disk && disk->getQStringProperty(1, name) == 0 ? name : QString("none");
    };
    EXPECT_EQ(nameOf(idOf(2, 0)), "disk2");
    EXPECT_EQ(nameOf(idOf(2, 3)), "disk2s3");
    EXPECT_EQ(nameOf(idOf(255, 255)), "disk255s255");
    EXPECT_EQ(nameOf(idOf(3, 0)), "none");
    KX_DEV_VOL_UNION flagged = idOf(2, 3);
    flagged.volumeFlags = 0xFFFF;
    EXPECT_EQ(nameOf(flagged), "disk2s3");
    EXPECT_TRUE(Reference<WDiskManager>(Korvex::diskManagerFromDvID(idOf(2, 0))));
    EXPECT_TRUE(Reference<WDiskManager>(Korvex::diskManagerFromDvID(idOf(2, 3))));
    EXPECT_FALSE(Reference<WDiskManager>(Korvex::diskManagerFromDvID(idOf(2, 4))));
    EXPECT_EQ(arbiter.liveObjects(), 0);
}

TEST(DiskFactories, TakeNamesInBothForms) {
    FakeArbiter arbiter;
    arbiter.addDisk("disk2");
    EXPECT_TRUE(Reference<WDiskProps>(Korvex::createFromBSDName("disk2")));
    EXPECT_TRUE(Reference<WDiskProps>(Korvex::createFromBSDName(QString("disk2"))));
    EXPECT_TRUE(Reference<WDiskManager>(Korvex::diskManagerFromBSDName("disk2")));
    EXPECT_TRUE(Reference<WDiskManager>(Korvex::diskManagerFromBSDName(QString("disk2"))));
    EXPECT_EQ(Korvex::createFromBSDName(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_EQ(Korvex::diskManagerFromBSDName(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_EQ(Korvex::createFromBSDName(QString()), nullptr);
    EXPECT_EQ(arbiter.liveObjects(), 0);
}

TEST(DiskFactories, GiveNullWhenAnythingIsMissing) {
    FakeArbiter arbiter;
    arbiter.addBareDisk("disk3");
    EXPECT_EQ(Korvex::createFromBSDName("disk9"), nullptr);
    EXPECT_EQ(Korvex::diskManagerFromBSDName("disk9"), nullptr);
    EXPECT_EQ(Korvex::createFromBSDName("disk3"), nullptr) << "no description";
    EXPECT_TRUE(Reference<WDiskManager>(Korvex::diskManagerFromBSDName("disk3")))
        << "needs no description";
    arbiter.hasSessions = false;
    EXPECT_EQ(Korvex::createFromBSDName("disk3"), nullptr);
    EXPECT_EQ(Korvex::diskManagerFromBSDName("disk3"), nullptr);
    EXPECT_EQ(arbiter.liveObjects(), 0);
}

TEST(DiskFactories, HandDiskAndSessionToTheManager) {
    FakeArbiter arbiter;
    arbiter.addDisk("disk2");
    WDiskManager* manager = Korvex::diskManagerFromBSDName("disk2");
    ASSERT_NE(manager, nullptr);
    EXPECT_EQ(arbiter.liveObjects(), 2);
    EXPECT_EQ(manager->refCount, 1);
    EXPECT_EQ(manager->retain(), 2);
    EXPECT_EQ(manager->release(), 1);
    EXPECT_EQ(arbiter.liveObjects(), 2);
    EXPECT_EQ(manager->release(), 0);
    EXPECT_EQ(arbiter.liveObjects(), 0);
}

TEST(DiskObjects, HaveTheirOperationsInOrder) {
    EXPECT_EQ(virtualSlot(&IRefCounter::retain), 2u);
    EXPECT_EQ(virtualSlot(&IRefCounter::release), 3u);
    EXPECT_EQ(virtualSlot(&WDiskProps::retain), 2u);
    EXPECT_EQ(virtualSlot(&WDiskProps::release), 3u);
    EXPECT_EQ(virtualSlot(&WDiskProps::getIntegerProperty), 4u);
    EXPECT_EQ(virtualSlot(&WDiskProps::getBooleanProperty), 5u);
    EXPECT_EQ(virtualSlot(&WDiskProps::getQStringProperty), 6u);
    using Path = const __CFURL*;
    using Unmount = int (WDiskManager::*)(unsigned long);
    using Mount = int (WDiskManager::*)(unsigned long, Path);
    using StartUnmount = void (WDiskManager::*)(DADiskCallback, void*, unsigned long);
    using StartMount = void (WDiskManager::*)(DADiskCallback, void*, unsigned long, Path);
    EXPECT_EQ(virtualSlot(&WDiskManager::retain), 2u);
    EXPECT_EQ(virtualSlot(&WDiskManager::release), 3u);
    EXPECT_EQ(virtualSlot(static_cast<Unmount>(&WDiskManager::unmount)), 4u);
    EXPECT_EQ(virtualSlot(static_cast<Mount>(&WDiskManager::mount)), 5u);
    EXPECT_EQ(virtualSlot(static_cast<StartUnmount>(&WDiskManager::unmount)), 6u);
    EXPECT_EQ(virtualSlot(static_cast<StartMount>(&WDiskManager::mount)), 7u);
}
