// Mounting and unmounting disks that the tests attach.

#include <KxQts/corefoundation.h>
#include <KxQts/disk/diskobjects.h>

#include "common/unprivileged.h"
#include "platform/diskarbiter.h"
#include "platform/linux/mounts.h"
#include "realdisk.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <thread>

namespace fs = std::filesystem;

using Korvex::DiskNode;
using Korvex::Reference;
using Korvex::WDiskManager;
using KxTest::idOf;
using KxTest::LoopDisk;
using KxTest::Mounted;

namespace {

/// Where a disk is mounted: the mount points, with a blank behind each.
std::string placesOf(const DiskNode& node) {
    std::string places;
    for (const Korvex::Mount& mount : Korvex::mountsOf(node, Korvex::mounts()))
        places += mount.target + ' ';
    return places;
}

/// What is held back from a mounted volume.
unsigned long flagsOf(const std::string& place) {
    struct statvfs status {};
    EXPECT_EQ(statvfs(place.c_str(), &status), 0);
    return status.f_flag & (ST_NOSUID | ST_NODEV | ST_NOEXEC | ST_RDONLY);
}

Reference<WDiskManager> managerOf(const DiskNode& node) {
    return Reference<WDiskManager>(Korvex::diskManagerFromDvID(idOf(node)));
}

/// Waits for the answer to one request.
class Answer {
public:
    static void take(DADiskRef, DADissenterRef dissenter, void* context) {
        auto& answer = *static_cast<Answer*>(context);
        sigset_t blocked;
        pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        answer.signalsAreBlocked = sigismember(&blocked, SIGTERM) == 1;
        answer.thread = std::this_thread::get_id();
        answer.promise.set_value(DADissenterGetStatus(dissenter)); // throws when it is the second
    }
    DAReturn status() { return promise.get_future().get(); }

    bool signalsAreBlocked = false;
    std::thread::id thread;

private:
    std::promise<DAReturn> promise;
};

class RealMount : public KxTest::RealDisk {
protected:
    void SetUp() override {
        RealDisk::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        manager = managerOf(slice);
        ASSERT_TRUE(manager);
    }
    void TearDown() override {
        for (const DiskNode& node : Korvex::diskNodes()) {
            if (node.disk != whole.disk || !disk.isAttached())
                continue;
            for (const Korvex::Mount& mount : Korvex::mountsOf(node, Korvex::mounts()))
                umount2(mount.target.c_str(), MNT_DETACH);
        }
    }

    static DAReturn mount(const Reference<WDiskManager>& with, const std::string& path = {},
                          unsigned long options = 0) {
        CFURLRef url = path.empty() ? nullptr
                                    : CFURLCreateFromFileSystemRepresentation(
                                          nullptr, reinterpret_cast<const UInt8*>(path.data()),
                                          static_cast<CFIndex>(path.size()), true);
        Answer answer;
        with->mount(Answer::take, &answer, options, url);
        CFRelease(url); // nobody needs it any more
        return answer.status();
    }
    static DAReturn unmount(const Reference<WDiskManager>& with, unsigned long options = 0) {
        Answer answer;
        with->unmount(Answer::take, &answer, options);
        return answer.status();
    }

    static std::string volume(const std::string& name) {
        return std::getenv("KXQTS_ROOT") + ("/Volumes/" + name);
    }

    Reference<WDiskManager> manager;
};

} // namespace

TEST_F(RealMount, WaitsUntilItIsDone) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(manager->mount(0, nullptr), 0);
    EXPECT_EQ(placesOf(slice), volume("Data One") + ' ');
    EXPECT_EQ(manager->unmount(0), 0);
    EXPECT_EQ(placesOf(slice), "");
    EXPECT_EQ(manager->unmount(0), 0) << "which is refused";
    testing::internal::GetCapturedStdout();
}

TEST_F(RealMount, AnswersOnAThreadOfItsOwnThatTakesNoSignals) {
    Answer answer;
    manager->mount(Answer::take, &answer, 0, nullptr);
    EXPECT_EQ(answer.status(), kDAReturnSuccess);
    EXPECT_NE(answer.thread, std::this_thread::get_id());
    EXPECT_TRUE(answer.signalsAreBlocked);
    EXPECT_EQ(unmount(manager), kDAReturnSuccess);
}

TEST_F(RealMount, MountsWhereItIsTold) {
    fs::create_directory(here("place"));
    EXPECT_EQ(mount(manager, here("place")), kDAReturnSuccess);
    EXPECT_EQ(placesOf(slice), here("place") + ' ');
    EXPECT_TRUE(fs::exists(here("place/lost+found")));
    EXPECT_EQ(flagsOf(here("place")), 0u) << "who names the place trusts what is there";
    EXPECT_EQ(unmount(manager), kDAReturnSuccess);
    EXPECT_TRUE(fs::remove(here("place"))) << "a folder of someone else stays";
    EXPECT_EQ(mount(manager, here("place")), kDAReturnNotFound);
}

TEST_F(RealMount, MakesAFolderAndRemovesItAgain) {
    EXPECT_EQ(mount(manager), kDAReturnSuccess);
    EXPECT_EQ(placesOf(slice), volume("Data One") + ' ');
    EXPECT_EQ(flagsOf(volume("Data One")), unsigned(ST_NOSUID | ST_NODEV));
    EXPECT_EQ(unmount(manager), kDAReturnSuccess);
    EXPECT_FALSE(fs::exists(volume("Data One")));
}

TEST_F(RealMount, MakesAFolderOfAnotherNameWhereThereIsOne) {
    fs::create_directories(volume("Data One"));
    EXPECT_EQ(mount(manager), kDAReturnSuccess);
    EXPECT_EQ(placesOf(slice), volume("Data One 1") + ' ');
    EXPECT_EQ(unmount(manager), kDAReturnSuccess);
    EXPECT_FALSE(fs::exists(volume("Data One 1")));
    EXPECT_TRUE(fs::remove(volume("Data One")));
}

TEST_F(RealMount, KeepsWhatIsWrittenOnAMediumInItsPlace) {
    ASSERT_TRUE(KxTest::makeFileSystem(disk.partitionPath(2), "../../x"));
    const auto other = managerOf(*Korvex::diskNode(whole.name() + "s2"));
    EXPECT_EQ(mount(other), kDAReturnSuccess);
    EXPECT_TRUE(fs::exists(volume("..:..:x/lost+found")));
    EXPECT_EQ(unmount(other), kDAReturnSuccess);
    ASSERT_TRUE(KxTest::makeFileSystem(disk.partitionPath(2), ".."));
    EXPECT_EQ(mount(other), kDAReturnSuccess);
    EXPECT_TRUE(fs::exists(volume("_../lost+found")));
    EXPECT_EQ(unmount(other), kDAReturnSuccess);
    ASSERT_TRUE(KxTest::makeFileSystem(disk.partitionPath(2), ""));
    EXPECT_EQ(mount(other), kDAReturnSuccess);
    EXPECT_TRUE(fs::exists(volume(whole.name() + "s2/lost+found")));
    EXPECT_EQ(unmount(other), kDAReturnSuccess);
}

TEST_F(RealMount, RefusesAVolumeInUse) {
    ASSERT_EQ(mount(manager), kDAReturnSuccess);
    EXPECT_EQ(mount(manager), kDAReturnBusy) << "it is mounted";
    {
        const std::ofstream user(volume("Data One/file"));
        EXPECT_EQ(unmount(manager), kDAReturnBusy);
        EXPECT_EQ(unmount(manager, kDADiskUnmountOptionForce), kDAReturnBusy);
        EXPECT_EQ(placesOf(slice), volume("Data One") + ' ') << "and not detached";
        testing::internal::CaptureStdout();
        EXPECT_EQ(manager->unmount(0), 0) << "as always";
        testing::internal::GetCapturedStdout();
    }
    EXPECT_EQ(unmount(manager), kDAReturnSuccess);
    EXPECT_EQ(unmount(manager), kDAReturnNotMounted);
}

TEST_F(RealMount, RefusesWhatHasNoFileSystem) {
    const auto other = managerOf(*Korvex::diskNode(whole.name() + "s2"));
    EXPECT_EQ(mount(other), kDAReturnUnsupported);
    EXPECT_FALSE(fs::exists(volume(whole.name() + "s2"))) << "no folder is left";
    EXPECT_EQ(mount(other, {}, kDADiskMountOptionWhole), kDAReturnSuccess) << "slice 1 has one";
    EXPECT_EQ(mount(other, {}, kDADiskMountOptionWhole), kDAReturnUnsupported) << "no more";
    EXPECT_EQ(unmount(other, kDADiskUnmountOptionWhole), kDAReturnSuccess);
}

TEST_F(RealMount, MountsAndUnmountsAllOfADisk) {
    ASSERT_TRUE(KxTest::makeFileSystem(disk.partitionPath(2), "Data Two"));
    const DiskNode second = *Korvex::diskNode(whole.name() + "s2");
    const auto all = managerOf(whole);
    EXPECT_EQ(mount(all, {}, kDADiskMountOptionWhole), kDAReturnSuccess);
    EXPECT_EQ(placesOf(slice), volume("Data One") + ' ');
    EXPECT_EQ(placesOf(second), volume("Data Two") + ' ');
    {
        const std::ofstream user(volume("Data One/file"));
        EXPECT_EQ(unmount(all, kDADiskUnmountOptionWhole), kDAReturnBusy);
        EXPECT_EQ(placesOf(second), "") << "what can be is unmounted";
    }
    EXPECT_EQ(unmount(all, kDADiskUnmountOptionWhole), kDAReturnSuccess);
    EXPECT_EQ(placesOf(slice), "");
}

TEST_F(RealMount, UnmountsAVolumeWhereverItIs) {
    ASSERT_EQ(mount(manager), kDAReturnSuccess);
    fs::create_directory(volume("Data One/inside"));
    const Mounted inside(volume("Data One"), volume("Data One/inside"), nullptr, MS_BIND);
    const Mounted outside(volume("Data One"), here("outside"), nullptr, MS_BIND);
    ASSERT_TRUE(inside.isMounted() && outside.isMounted());
    EXPECT_EQ(unmount(manager), kDAReturnSuccess);
    EXPECT_EQ(placesOf(slice), "");
}

TEST_F(RealMount, DoesNotTouchTheDiskThatHasTheNumberNow) {
    disk.detach();
    EXPECT_EQ(mount(manager), kDAReturnNotFound);
    EXPECT_EQ(unmount(manager), kDAReturnNotFound);
    // Another disk may have the number, and the drive.
    const LoopDisk next(4 * KxTest::mebibyte);
    EXPECT_EQ(mount(manager), kDAReturnNotFound);
}

TEST_F(RealMount, ServesManyAtOnce) {
    constexpr int threads = 4;
    constexpr int turns = 5;
    std::atomic<int> answers{0};
    const auto count = [](DADiskRef, DADissenterRef, void* context) {
        ++*static_cast<std::atomic<int>*>(context);
    };
    std::vector<std::thread> clients;
    for (int i = 0; i < threads; ++i)
        clients.emplace_back([&] {
            const auto own = managerOf(slice);
            for (int turn = 0; turn < turns; ++turn) {
                own->mount(count, &answers, 0, nullptr);
                own->unmount(count, &answers, 0);
            }
        });
    for (std::thread& client : clients)
        client.join();
    EXPECT_NE(unmount(manager), kDAReturnBusy); // comes last
    EXPECT_EQ(answers, threads * turns * 2);
    EXPECT_EQ(placesOf(slice), "");
}

TEST_F(RealMount, MayBeWaitedForInACallback) {
    struct Chain {
        WDiskManager* manager;
        std::promise<int> unmounted;
    } chain{manager.get(), {}};
    const auto unmountAgain = [](DADiskRef, DADissenterRef, void* context) {
        auto& own = *static_cast<Chain*>(context);
        own.unmounted.set_value(own.manager->unmount(0));
    };
    testing::internal::CaptureStdout();
    manager->mount(unmountAgain, &chain, 0, nullptr);
    EXPECT_EQ(chain.unmounted.get_future().get(), 0);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(placesOf(slice), "");
}

TEST_F(RealMount, AsksTheServiceForOtherUsersAndDoesNotHangWithoutOne) {
    EXPECT_TRUE(KxTest::asOrdinaryUser([&] {
        setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
        const auto own = managerOf(slice);
        ASSERT_TRUE(own);
        EXPECT_EQ(mount(own), kDAReturnNotReady);
        EXPECT_EQ(unmount(own), kDAReturnNotReady);
        testing::internal::CaptureStdout();
        EXPECT_EQ(own->mount(0, nullptr), 0);
        testing::internal::GetCapturedStdout();
    }));
    EXPECT_EQ(placesOf(slice), "");
}
