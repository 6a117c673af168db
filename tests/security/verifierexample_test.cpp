#include "common/fileover.h"
#include "common/program.h"
#include "fakes/systemfacts.h"
#include "modules/emptyfolder.h"

#include <KxQts/security/accounts.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>

namespace {

std::string hashOf(const std::string& password) {
    std::string hash =
        KxTest::runProgram({"/usr/bin/openssl", "passwd", "-6", "--", password}).output;
    return hash.substr(0, hash.find('\n'));
}

std::string accounts() {
    std::string text = KxTest::contentsOf("/etc/passwd");
    for (const char* name : {"kxann", "kxold", "kxnew", "kxopen"})
        text += std::string(name) + ":x:54321:54321::/:/bin/sh\n";
    return text;
}

std::string shadows() {
    const std::string hash = hashOf("pass word");
    return "kxann:" + hash + ":19000:0:99999:7:::\n" + "kxold:" + hash +
           ":19000:0:99999:7::19001:\n" + "kxnew:" + hash + ":0:0:99999:7:::\n" +
           "kxopen::19000:0:99999:7:::\n";
}

/// A machine with accounts of the test's own, and a PAM that looks at nothing else.
class VerifierExample : public testing::Test {
protected:
    VerifierExample() {
        std::ofstream("/etc/pam.d/korvex") << "auth required pam_unix.so nodelay nullok\n"
                                              "account required pam_unix.so\n";
        library = dlopen(KXTEST_ODAPI, RTLD_NOW);
        if (library)
            verify = reinterpret_cast<unsigned (*)(const char*, const char*)>(
                dlsym(library, "odUserAccountVerifyPassword"));
    }
    ~VerifierExample() override {
        if (library)
            dlclose(library);
    }

    void SetUp() override {
        ASSERT_TRUE(configuration.mounted);
        ASSERT_TRUE(users.mounted);
        ASSERT_TRUE(hashes.mounted);
        ASSERT_NE(verify, nullptr) << dlerror();
    }

    KxTest::EmptyFolderOver configuration{"/etc/pam.d"};
    KxTest::FileOver users{"/etc/passwd", accounts()};
    KxTest::FileOver hashes{"/etc/shadow", shadows()};
    void* library = nullptr;
    unsigned (*verify)(const char*, const char*) = nullptr;
};

[[noreturn]] void askThroughTheCall() {
    KxTest::ScriptedSystemFacts facts;
    facts.release = "10.8.0";
    const bool right = KxVerifyUserPassword("kxann", "pass word") == 0;
    const bool wrong = KxVerifyUserPassword("kxann", "password") == 7;
    std::_Exit(right && wrong ? 0 : 1);
}

} // namespace

TEST_F(VerifierExample, AcceptsTheRightPasswordOnly) {
    EXPECT_EQ(verify("kxann", "pass word"), 0u);
    EXPECT_EQ(verify("kxann", "password"), 7u);
    EXPECT_EQ(verify("kxann", ""), 7u);
    EXPECT_NE(verify("kxnobody", "pass word"), 0u);
}

TEST_F(VerifierExample, RefusesWhoHasNoPasswordOrAnAccountThatIsOver) {
    EXPECT_NE(verify("kxopen", ""), 0u);
    EXPECT_EQ(verify("kxold", "pass word"), 13u);
    EXPECT_EQ(verify("kxnew", "pass word"), 0u) << "has to be changed, but is right";
}

TEST_F(VerifierExample, RefusesWhatIsNoText) {
    EXPECT_NE(verify(nullptr, "pass word"), 0u);
    EXPECT_NE(verify("", "pass word"), 0u);
    EXPECT_NE(verify("kxann", nullptr), 0u);
}

TEST_F(VerifierExample, IsWhatTheCallAsks) {
    const KxTest::EmptyFolderOver machine("/usr/local/lib");
    ASSERT_TRUE(machine.mounted);
    std::filesystem::create_directory("/usr/local/lib/Korvex");
    std::filesystem::copy_file(KXTEST_ODAPI, "/usr/local/lib/Korvex/libOdApi.dylib");
    EXPECT_EXIT(askThroughTheCall(), testing::ExitedWithCode(0), "");
}
