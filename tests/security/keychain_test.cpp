#include <KxQts/winapi/security.h>

#include "common/memorysearch.h"
#include "fakes/keychains.h"
#include "platform/keychain/storedkeychain.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace {

std::uint32_t asReturned(int status) {
    return static_cast<std::uint32_t>(status);
}

using Calls = std::vector<std::string>;

} // namespace

TEST(KeychainControl, NeedsAPath) {
    KxTest::FakeKeychains keychains;
    EXPECT_EQ(KxSecurityKeychainControl(nullptr, "x"), 22u);
    EXPECT_EQ(KxSecurityKeychainControl("", "x"), 22u);
    EXPECT_EQ(KxSecurityKeychainControl("", nullptr), 22u);
    EXPECT_EQ(keychains.calls, Calls());
}

TEST(KeychainControl, UnlocksWithAPasswordAndLocksWithout) {
    KxTest::FakeKeychains keychains;
    keychains.passwords = {{"/a", "secret"}, {"/b", ""}};
    EXPECT_EQ(KxSecurityKeychainControl("/a", "secret"), 0u);
    EXPECT_EQ(keychains.calls, (Calls{"open /a", "unlock secret", "release"}));
    keychains.calls.clear();
    EXPECT_EQ(KxSecurityKeychainControl("/a", nullptr), 0u);
    EXPECT_EQ(keychains.calls, (Calls{"open /a", "lock", "release"}));
    keychains.calls.clear();
    EXPECT_EQ(KxSecurityKeychainControl("/b", ""), 0u);
    EXPECT_EQ(keychains.calls, (Calls{"open /b", "unlock ", "release"}));
}

TEST(KeychainControl, ReturnsThePlatformsStatus) {
    KxTest::FakeKeychains keychains;
    keychains.passwords = {{"/a", "secret"}};
    EXPECT_EQ(KxSecurityKeychainControl("/a", "wrong"), 0xFFFF9D33u);
    EXPECT_EQ(keychains.calls.back(), "release");
    keychains.lockFails = -12345;
    EXPECT_EQ(KxSecurityKeychainControl("/a", nullptr), asReturned(-12345));
    keychains.openFails = -77;
    keychains.calls.clear();
    EXPECT_EQ(KxSecurityKeychainControl("/a", nullptr), asReturned(-77));
    EXPECT_EQ(keychains.calls, Calls{"open /a"});
}

namespace {

/// A keychain at the path "k" with the password "secret", of the system's kind.
class RealKeychain {
public:
    RealKeychain() { EXPECT_EQ(Korvex::StoredKeychain::create("k", "secret", {}), 0); }
    ~RealKeychain() {
        std::filesystem::remove("k");
        std::filesystem::remove_all(std::filesystem::path(std::getenv("KXQTS_ROOT")) / "run");
    }
    RealKeychain(const RealKeychain&) = delete;
    RealKeychain& operator=(const RealKeychain&) = delete;
};

/// The same as tests have it.
class FakeKeychain {
public:
    FakeKeychain() { keychains.passwords = {{"k", "secret"}}; }

private:
    KxTest::FakeKeychains keychains;
};

template <class Keychain>
class AnyKeychain : public testing::Test {
protected:
    Keychain keychain;
};

using Kinds = testing::Types<RealKeychain, FakeKeychain>;
TYPED_TEST_SUITE(AnyKeychain, Kinds);

} // namespace

TYPED_TEST(AnyKeychain, IsLockedAndUnlocked) {
    EXPECT_EQ(KxSecurityKeychainControl("k", nullptr), 0u);
    EXPECT_EQ(KxSecurityKeychainControl("k", nullptr), 0u) << "locked already";
    EXPECT_EQ(KxSecurityKeychainControl("k", "secret"), 0u);
    EXPECT_EQ(KxSecurityKeychainControl("k", "secret"), 0u) << "unlocked already";
    EXPECT_EQ(KxSecurityKeychainControl("k", "wrong"), asReturned(-25293)) << "all the same";
    EXPECT_EQ(KxSecurityKeychainControl("k", ""), asReturned(-25293));
    EXPECT_EQ(KxSecurityKeychainControl("none", "secret"), asReturned(-25294));
    EXPECT_EQ(KxSecurityKeychainControl("none", nullptr), asReturned(-25294));
}

TEST(KeychainControl, LeavesNoCopyOfThePasswordInMemory) {
    const RealKeychain keychain;
    const KxTest::UnwrittenText secret(24);
    std::string password;
    password.reserve(32);
    secret.writeTo(password);
    EXPECT_EQ(secret.occurrences(1), 1u) << "the caller's own";
    EXPECT_EQ(KxSecurityKeychainControl("k", password.c_str()), asReturned(-25293));
    EXPECT_EQ(secret.occurrences(1), 1u);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {

/// Less than deriving a key needs is left; instruments need more than there is anyway.
void leaveLittleMemory() {
    malloc_trim(0); // what earlier tests have freed is no reserve
    std::size_t pages = 0;
    std::ifstream sizes("/proc/self/statm");
    for (int field = 0; field < 6; ++field) // the sixth is memory that can be written
        sizes >> pages;
    const rlim_t limit = pages * static_cast<std::size_t>(getpagesize()) + (8 << 20);
    const rlimit both{limit, limit};
    setrlimit(RLIMIT_DATA, &both);
}

} // namespace

TEST(KeychainControl, TellsWhenThereIsNoMemory) {
    const RealKeychain keychain;
    const auto inAChild = [] {
        leaveLittleMemory();
        std::_Exit(KxSecurityKeychainControl("k", "secret") == asReturned(-108) ? 0 : 1);
    };
    EXPECT_EXIT(inAChild(), testing::ExitedWithCode(0), "");
}

#endif
