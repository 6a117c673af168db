// Mounting and unmounting, whatever the arbiter does.

#include <KxQts/disk/diskobjects.h>

#include "fakes/diskarbiter.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <future>
#include <pthread.h>
#include <set>
#include <sstream>

using Korvex::Reference;
using Korvex::WDiskManager;
using KxTest::FakeArbiter;

namespace {

using Texts = std::vector<std::string>;

class DiskManager : public testing::Test {
protected:
    /// What a call printed; its lines in any order, since two threads write them.
    template <class Call>
    static std::multiset<std::string> linesOf(Call call) {
        testing::internal::CaptureStdout();
        call();
        std::fflush(stdout);
        std::istringstream output(testing::internal::GetCapturedStdout());
        std::multiset<std::string> lines;
        for (std::string line; std::getline(output, line);)
            lines.insert(line);
        return lines;
    }

    FakeArbiter arbiter;
    const CFMutableDictionaryRef description = arbiter.addDisk("disk1s2");
    const Reference<WDiskManager> manager{Korvex::diskManagerFromBSDName("disk1s2")};
};

struct Answer {
    std::promise<DAReturn> status;
    std::thread::id thread;
    int calls = 0;

    static void take(DADiskRef disk, DADissenterRef dissenter, void* context) {
        auto& answer = *static_cast<Answer*>(context);
        EXPECT_NE(disk, nullptr);
        answer.thread = std::this_thread::get_id();
        ++answer.calls;
        answer.status.set_value(DADissenterGetStatus(dissenter));
    }
};

CFURLRef urlOf(const std::string& path) {
    return CFURLCreateFromFileSystemRepresentation(nullptr,
                                                   reinterpret_cast<const UInt8*>(path.data()),
                                                   static_cast<CFIndex>(path.size()), true);
}

} // namespace

TEST_F(DiskManager, MountsAndWaits) {
    int result = -7;
    const auto lines = linesOf([&] { result = manager->mount(3, nullptr); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(lines, (std::multiset<std::string>{"***** EVENT!", "--> mountWait!",
                                                 "--> mount result 1 status 0!"}));
    EXPECT_EQ(arbiter.requests(), (Texts{"mount disk1s2 options 3"}));
}

TEST_F(DiskManager, UnmountsAndWaitsAndTellsItWithTheTextOfMounting) {
    int result = -7;
    const auto lines = linesOf([&] { result = manager->unmount(0x80001); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(lines, (std::multiset<std::string>{"***** EVENT!", "--> unmountWait!",
                                                 "--> mount result 1 status 0!"}));
    EXPECT_EQ(arbiter.requests(), (Texts{"unclaim disk1s2", "unmount disk1s2 options 524289"}));
}

TEST_F(DiskManager, PrintsInTheOrderOfWhatHappens) {
    arbiter.answersAtOnce = true;
    testing::internal::CaptureStdout();
    EXPECT_EQ(manager->mount(0, nullptr), 0);
    EXPECT_EQ(manager->unmount(0), 0);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "***** EVENT!\n--> mountWait!\n"
                                                      "--> mount result 1 status 0!\n"
                                                      "***** EVENT!\n--> unmountWait!\n"
                                                      "--> mount result 1 status 0!\n");
}

TEST_F(DiskManager, IsSuccessfulAlsoWhenTheArbiterRefuses) {
    arbiter.answer = kDAReturnBusy;
    const auto lines = linesOf([&] {
        EXPECT_EQ(manager->mount(0, nullptr), 0);
        EXPECT_EQ(manager->unmount(0), 0);
    });
    EXPECT_EQ(lines.count("--> mount result 1 status 0!"), 2u);
}

TEST_F(DiskManager, MountsAtAPath) {
    CFURLRef url = urlOf("/some/where");
    linesOf([&] { manager->mount(0, url); });
    CFRelease(url);
    EXPECT_EQ(arbiter.requests(), (Texts{"mount disk1s2 options 0 at /some/where"}));
}

TEST_F(DiskManager, StartsAndCallsBackOnce) {
    for (const DAReturn expected : {DAReturn{kDAReturnSuccess}, DAReturn{kDAReturnNotPermitted}}) {
        arbiter.answer = expected;
        Answer mounted;
        Answer unmounted;
        const auto lines = linesOf([&] {
            manager->mount(Answer::take, &mounted, 5, nullptr);
            EXPECT_EQ(mounted.status.get_future().get(), expected);
            manager->unmount(Answer::take, &unmounted, 6);
            EXPECT_EQ(unmounted.status.get_future().get(), expected);
        });
        EXPECT_TRUE(lines.empty()) << "nothing is printed";
        EXPECT_EQ(mounted.calls, 1);
        EXPECT_EQ(unmounted.calls, 1);
        EXPECT_NE(mounted.thread, std::this_thread::get_id());
    }
    EXPECT_EQ(arbiter.requests(), (Texts{"mount disk1s2 options 5", "unmount disk1s2 options 6",
                                         "mount disk1s2 options 5", "unmount disk1s2 options 6"}))
        << "and nothing is unclaimed";
}

TEST_F(DiskManager, MayBeGivenUpBeforeItCallsBack) {
    arbiter.isSilent = true;
    Answer answer;
    WDiskManager* other = Korvex::diskManagerFromBSDName("disk1s2");
    other->mount(Answer::take, &answer, 0, nullptr);
    EXPECT_EQ(other->release(), 0);
    arbiter.answerNow();
    EXPECT_EQ(answer.status.get_future().get(), 0);
}

TEST_F(DiskManager, StartsWithoutACallbackToo) {
    manager->mount(nullptr, nullptr, 0, nullptr);
    manager->unmount(nullptr, nullptr, 0);
    EXPECT_EQ(arbiter.requests().size(), 2u);
}

TEST_F(DiskManager, IsNotHurtWhenAWaitingThreadIsEnded) {
    arbiter.isSilent = true;
    pthread_t thread{};
    auto wait = [](void* waiting) -> void* {
        static_cast<WDiskManager*>(waiting)->mount(0, nullptr);
        return nullptr;
    };
    testing::internal::CaptureStdout();
    ASSERT_EQ(pthread_create(&thread, nullptr, wait, manager.get()), 0);
    while (arbiter.requests().empty())
        std::this_thread::yield();
    pthread_cancel(thread);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    arbiter.isSilent = false;
    arbiter.answerNow(); // to a record that is gone
    EXPECT_EQ(manager->mount(0, nullptr), 0);
    testing::internal::GetCapturedStdout();
}

TEST(DiskCallback, PrintsAndDoesNothingForAContextThatNobodyWaitsWith) {
    testing::internal::CaptureStdout();
    int nobody = 0;
    Korvex::callback(nullptr, nullptr, nullptr);
    Korvex::callback(nullptr, nullptr, &nobody);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "***** EVENT!\n***** EVENT!\n");
}

TEST(Dissenter, TellsItsStatus) {
    const __DADissenter busy{kDAReturnBusy};
    EXPECT_EQ(static_cast<unsigned>(DADissenterGetStatus(&busy)), 0xF8DA0002u);
    EXPECT_EQ(DADissenterGetStatus(nullptr), 0);
    EXPECT_EQ(static_cast<unsigned>(kDAReturnError), 0xF8DA0001u);
    EXPECT_EQ(static_cast<unsigned>(kDAReturnUnsupported), 0xF8DA000Cu);
}
