#include "handles/addresses.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <vector>

namespace HandleAddresses = Korvex::HandleAddresses;
using HandleAddresses::Use;

TEST(HandleAddresses, AreKnownFromTheirFirstUseOn) {
    int elsewhere = 0;
    EXPECT_EQ(HandleAddresses::useOf(&elsewhere), Use::Unknown);
    void* address = HandleAddresses::take(Use::Object);
    EXPECT_EQ(HandleAddresses::useOf(address), Use::Object);
    HandleAddresses::setUse(address, Use::Ended);
    EXPECT_EQ(HandleAddresses::useOf(address), Use::Ended);
    EXPECT_FALSE(HandleAddresses::mayBeObject(address));
    HandleAddresses::giveBack(address);
    EXPECT_EQ(HandleAddresses::useOf(address), Use::Free);
    HandleAddresses::setUse(&elsewhere, Use::Event);
    EXPECT_EQ(HandleAddresses::useOf(&elsewhere), Use::Unknown);
}

TEST(HandleAddresses, OneOfSomethingEndedIsGivenBackOnce) {
    int elsewhere = 0;
    void* address = HandleAddresses::take(Use::Thread);
    EXPECT_FALSE(HandleAddresses::giveBackEnded(address)) << "it has not ended";
    HandleAddresses::setUse(address, Use::Ended);
    EXPECT_TRUE(HandleAddresses::giveBackEnded(address));
    EXPECT_EQ(HandleAddresses::useOf(address), Use::Free);
    for (void* other : {address, static_cast<void*>(&elsewhere), static_cast<void*>(nullptr)})
        EXPECT_FALSE(HandleAddresses::giveBackEnded(other));
}

TEST(HandleAddresses, AFreedOneIsGivenOutAgainLast) {
    void* freed = HandleAddresses::take(Use::Object);
    HandleAddresses::giveBack(freed);
    for (int i = 0; i < 100; ++i) {
        void* next = HandleAddresses::take(Use::Object);
        EXPECT_NE(next, freed);
        HandleAddresses::giveBack(next);
    }
}

TEST(HandleAddresses, GrowAsNeededAndAreUsedAgain) {
    constexpr std::size_t many = 5000;
    std::set<void*> first;
    while (first.size() < many)
        ASSERT_TRUE(first.insert(HandleAddresses::take(Use::Object)).second);
    for (void* address : first)
        HandleAddresses::giveBack(address);
    for (std::size_t round = 0; round < 100 * many; ++round)
        HandleAddresses::giveBack(HandleAddresses::take(Use::Object));
    std::set<void*> later;
    while (later.size() < many)
        later.insert(HandleAddresses::take(Use::Object));
    std::size_t known = 0;
    for (void* address : later) {
        known += first.count(address);
        HandleAddresses::giveBack(address);
    }
    EXPECT_GT(known, many / 2) << "freed addresses serve again";
}

TEST(HandleAddresses, ClosedObjectsOfClientsAreRememberedUntilTheyComeBack) {
    std::array<int, 2> objects{};
    HandleAddresses::rememberClosed(&objects[0]);
    EXPECT_FALSE(HandleAddresses::mayBeObject(&objects[0]));
    EXPECT_TRUE(HandleAddresses::mayBeObject(&objects[1]));
    HandleAddresses::forgetClosed(&objects[0]);
    EXPECT_TRUE(HandleAddresses::mayBeObject(&objects[0]));
}
