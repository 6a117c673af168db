#include "security/passwordverifier.h"

#include "common/memorysearch.h"
#include "fakes/systemfacts.h"
#include "modules/emptyfolder.h"

#include <KxQts/security/accounts.h>
#include <KxQts/winapi/modules.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <thread>

using Korvex::PasswordVerifier;

namespace {

constexpr const char* verifierPath = "/usr/local/lib/Korvex/libOdApi.dylib";
const QString user =
    QString::fromUtf8("ann\xC3\xA9\xE2\x82\xAC"); // a Latin-1 character and another
const QString password = QString::fromUtf8("s\xC3\xA9"
                                           "cret");

/// A machine of release 10.8.0 without a verifier.
class Verifier : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(machine.mounted);
        facts.release = "10.8.0";
        std::filesystem::create_directory("/usr/local/lib/Korvex");
    }
    ~Verifier() override { unload(); }

    static void install(const char* library) { std::filesystem::copy_file(library, verifierPath); }

    /// Verifiers are loaded for good; here, until the test is over.
    static void unload() {
        while (HMODULE module = GetModuleHandleA(verifierPath)) {
            FreeLibrary(module);
            FreeLibrary(module);
        }
    }

    KxTest::EmptyFolderOver machine{"/usr/local/lib"};
    KxTest::ScriptedSystemFacts facts;
    PasswordVerifier verifier;
};

} // namespace

TEST_F(Verifier, IsAsked) {
    install(KXTEST_VERIFIER);
    EXPECT_EQ(verifier.verify(user, password), 0u);
    EXPECT_EQ(verifier.verify(user, "other"), 1u);
    EXPECT_EQ(verifier.verify(user, QString()), 3u) << "no password is an empty one";
    EXPECT_EQ(verifier.verify("bob", password), 4000000001u) << "every result is handed on";
}

TEST_F(Verifier, NeedsReleaseTen) {
    install(KXTEST_VERIFIER);
    for (const char* text : {"9.8.0", "6.18.44", "0.0.0", "", "no number"}) {
        PasswordVerifier other;
        facts.release = text;
        EXPECT_EQ(other.verify(user, password), 9000u) << text;
        EXPECT_EQ(GetModuleHandleA(verifierPath), nullptr) << "nothing is loaded";
    }
    for (const char* text : {"10.0.0", "10", "12.1", "100.2.3.4-rest", "20-rc1"}) {
        PasswordVerifier other;
        facts.release = text;
        EXPECT_EQ(other.verify(user, password), 0u) << text;
    }
}

TEST_F(Verifier, ReadsTheReleaseAgainOnlyWhileItsMajorNumberIsZero) {
    install(KXTEST_VERIFIER);
    facts.release = "";
    EXPECT_EQ(verifier.verify(user, password), 9000u);
    facts.release = "0.9";
    EXPECT_EQ(verifier.verify(user, password), 9000u);
    EXPECT_EQ(facts.releaseQuestions, 2);
    facts.release = "9.8.0";
    EXPECT_EQ(verifier.verify(user, password), 9000u);
    EXPECT_EQ(facts.releaseQuestions, 3);
    facts.release = "10.8.0";
    EXPECT_EQ(verifier.verify(user, password), 9000u) << "known by now";
    EXPECT_EQ(facts.releaseQuestions, 3);
}

TEST_F(Verifier, MayComeLater) {
    EXPECT_EQ(verifier.verify(user, password), 9001u);
    EXPECT_EQ(verifier.verify(user, password), 9001u);
    install(KXTEST_VERIFIER);
    EXPECT_EQ(verifier.verify(user, password), 0u);
    std::filesystem::remove(verifierPath);
    EXPECT_EQ(verifier.verify(user, password), 0u) << "it is kept";
}

TEST_F(Verifier, IsUnusableWithoutItsFunction) {
    install(KXTEST_MODULE);
    EXPECT_EQ(verifier.verify(user, password), 9002u);
    EXPECT_EQ(verifier.verify(user, password), 9002u);
}

TEST_F(Verifier, FindsTheFunctionOnceItIsThere) {
    install(KXTEST_MODULE);
    EXPECT_EQ(verifier.verify(user, password), 9002u);
    unload();
    std::filesystem::remove(verifierPath);
    install(KXTEST_VERIFIER);
    PasswordVerifier other;
    EXPECT_EQ(other.verify(user, password), 0u);
}

TEST_F(Verifier, MayBeFoundByManyThreadsAtOnce) {
    install(KXTEST_VERIFIER);
    std::vector<std::thread> threads;
    std::atomic<int> right{0};
    threads.reserve(8);
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] { right += verifier.verify(user, password) == 0 ? 1 : 0; });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(right, 8);
}

TEST_F(Verifier, GetsCopiesThatAreWiped) {
    install(KXTEST_VERIFIER);
    const KxTest::UnwrittenText secret(24);
    QString text;
    text.reserve(32);
    secret.writeTo(text);
    EXPECT_EQ(verifier.verify(user, text), 1u);
    EXPECT_EQ(secret.occurrences(1), 0u);
    EXPECT_EQ(secret.occurrences(2), 1u) << "the caller's own";
}

namespace {

[[noreturn]] void askInAProcessOfItsOwn() {
    const bool first = KxVerifyUserPassword(user, password) == 9001;
    std::filesystem::copy_file(KXTEST_VERIFIER, verifierPath);
    const bool second = KxVerifyUserPassword(user, password) == 0;
    const bool third = KxVerifyUserPassword(user, "other") == 1;
    std::_Exit(first && second && third ? 0 : 1);
}

} // namespace

TEST_F(Verifier, IsWhatTheCallAsks) {
    // The call remembers for the process what it has found.
    EXPECT_EXIT(askInAProcessOfItsOwn(), testing::ExitedWithCode(0), "");
}

TEST(KxVerifyUserPassword, TellsThatThisSystemHasNoVerifiers) {
    const int major = std::atoi(Korvex::systemFacts().kernelRelease().value_or("").c_str());
    ASSERT_GT(major, 0);
    if (major < 10) {
        EXPECT_EXIT(std::_Exit(KxVerifyUserPassword("root", "x") == 9000 ? 0 : 1),
                    testing::ExitedWithCode(0), "");
    }
}
