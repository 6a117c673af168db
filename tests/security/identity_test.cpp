#include <KxQts/security/keychain.h>
#include <KxQts/support/text.h>

#include "common/memorysearch.h"
#include "common/program.h"
#include "common/scratchfile.h"
#include "security/ownworld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using KxTest::contentsOf;
using KxTest::OwnWorld;

namespace {

using Lines = std::vector<std::string>;

constexpr int failure = 3;
constexpr int asSystemTells = failure << 8;

/// A world in which `security`, `rm` and `mv` only note that they were called, and one call fails.
class NotedCommands : public testing::Test {
protected:
    NotedCommands() {
        const std::string note = "{ printf '%s' \"${0##*/}\"\n"
                                 "for word; do printf ' [%s]' \"$word\"; done\n"
                                 "echo; } >>" +
                                 log +
                                 "\n"
                                 "[ \"$(grep -c '' " +
                                 log + ")\" != \"$(cat " + failing + ")\" ] || exit " +
                                 std::to_string(failure) + "\n";
        for (const char* name : {"security", "rm", "mv"})
            world.addScript(name, note);
        failAt(0);
    }

    void SetUp() override { ASSERT_TRUE(world.isMounted); }

    void failAt(int step) {
        std::ofstream(failing) << step;
        std::filesystem::remove(log);
    }

    [[nodiscard]] Lines commands() const {
        std::ifstream file(log);
        Lines lines;
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        return lines;
    }

    int make(const QString& folder) {
        return KxSecurityCreateMasterIdentityAndFileVaultKeychain(
            "top secret", folder, "m.keychain", "k.keychain", message);
    }

    OwnWorld world;
    const std::string log = world.folder + "/log";
    const std::string failing = world.folder + "/failing";
    QString message = "as it was";
};

const Lines allCommands{
    "rm [-f] [/tmp/kxfvm.keychain]",
    "security [create-filevaultmaster-keychain] [-p] [top secret] [/tmp/kxfvm.keychain]",
    "mv [-f] [/tmp/kxfvm.keychain] [/some/folder/m.keychain]",
    "security [create-keychain] [-p] [top secret] [/tmp/kxfvm.keychain]",
    "security [export] [-k] [/some/folder/m.keychain] [-t] [certs] [-o] [/tmp/kxfvrk.cer]",
    "security [import] [/tmp/kxfvrk.cer] [-t] [cert] [-k] [/tmp/kxfvm.keychain]",
    "rm [-f] [/tmp/kxfvrk.cer]",
    "mv [-f] [/tmp/kxfvm.keychain] [/some/folder/k.keychain]",
};

} // namespace

TEST_F(NotedCommands, RunInTheirOrder) {
    EXPECT_EQ(make("/some/folder"), 0);
    EXPECT_EQ(commands(), allCommands);
    EXPECT_EQ(message, "as it was");
}

TEST_F(NotedCommands, AreTheSameWithASlashAtTheEndOfTheFolder) {
    EXPECT_EQ(make("/some/folder/"), 0);
    EXPECT_EQ(commands(), allCommands);
    failAt(0);
    EXPECT_EQ(make("/"), 0);
    EXPECT_THAT(commands(), testing::Contains("mv [-f] [/tmp/kxfvm.keychain] [/m.keychain]"));
}

TEST_F(NotedCommands, EndWithTheFirstThatFails) {
    const std::array<const char*, 9> texts{
        "",
        nullptr, // not looked at
        "security create-filevaultmaster-keychain -p \"top secret\" /tmp/kxfvm.keychain",
        "mv -f /tmp/kxfvm.keychain /some/folder/m.keychain",
        "security create-keychain -p \"top secret\" /tmp/kxfvm.keychain",
        "security export -k /some/folder/m.keychain -t certs -o /tmp/kxfvrk.cer",
        "security import /tmp/kxfvrk.cer -t cert -k /tmp/kxfvm.keychain",
        nullptr,
        "mv -f /tmp/kxfvm.keychain /some/folder/k.keychain",
    };
    for (int step = 1; step <= 8; ++step) {
        failAt(step);
        message = "as it was";
        const int status = make("/some/folder");
        const char* text = texts.at(static_cast<std::size_t>(step));
        if (text) {
            EXPECT_EQ(status, asSystemTells) << step;
            EXPECT_EQ(message, QString("system(") + text + ") failed.") << step;
            EXPECT_EQ(commands(), Lines(allCommands.begin(), allCommands.begin() + step)) << step;
        } else {
            EXPECT_EQ(status, 0) << step;
            EXPECT_EQ(message, "as it was") << step;
            EXPECT_EQ(commands(), allCommands) << step;
        }
    }
}

TEST_F(NotedCommands, AreNotRunWithoutAllTexts) {
    const QString all[] = {"secret", "/folder", "m", "k"};
    for (int empty = 0; empty < 5; ++empty) {
        QString texts[] = {all[0], all[1], all[2], all[3]};
        if (empty < 4)
            texts[empty] = QString();
        else
            texts[3] = texts[2];
        message.clear();
        EXPECT_EQ(KxSecurityCreateMasterIdentityAndFileVaultKeychain(texts[0], texts[1], texts[2],
                                                                     texts[3], message),
                  22)
            << empty;
        EXPECT_EQ(message, "Some/all args are empty or keychain names are same.") << empty;
    }
    EXPECT_EQ(commands(), Lines());
}

TEST_F(NotedCommands, AreReadByTheShellWithPathsUnquoted) {
    EXPECT_EQ(KxSecurityCreateMasterIdentityAndFileVaultKeychain(
                  QString::fromUtf8("a  $((1+1)) \xC3\xA9\xE2\x82\xAC"), "/a b", "m", "k", message),
              0);
    EXPECT_EQ(commands()[1], "security [create-filevaultmaster-keychain] [-p] [a  2 \xE9?] "
                             "[/tmp/kxfvm.keychain]");
    EXPECT_EQ(commands()[2], "mv [-f] [/tmp/kxfvm.keychain] [/a] [b/m]");
}

TEST_F(NotedCommands, LeaveNoCopyOfThePasswordInMemory) {
    const KxTest::UnwrittenText secret(24);
    std::string own8Bit;
    own8Bit.reserve(32);
    QString password;
    password.reserve(32);
    ASSERT_EQ(secret.occurrences(2), 0u);
    secret.writeTo(password);
    ASSERT_EQ(secret.occurrences(2), 1u) << "what is in memory is found";
    secret.writeTo(own8Bit);
    ASSERT_EQ(secret.occurrences(1), 1u) << "what is in memory is found";
    own8Bit.assign(own8Bit.size(), ' ');

    for (int failingStep : {0, 2, 4, 8}) {
        failAt(failingStep);
        const int status = KxSecurityCreateMasterIdentityAndFileVaultKeychain(password, "/folder",
                                                                              "m", "k", message);
        EXPECT_EQ(status, failingStep == 0 ? 0 : asSystemTells);
        KXQStringDeepCleanAndRelease(message);
        EXPECT_EQ(secret.occurrences(2), 1u) << "the caller's own, step " << failingStep;
        EXPECT_EQ(secret.occurrences(1), 0u) << failingStep;
    }
}

namespace {

/// A world with the real program.
class RecoveryIdentity : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(world.isMounted); }

    int make(const char* folder = "/tmp/world") {
        return KxSecurityCreateMasterIdentityAndFileVaultKeychain("pass word", folder, "m.keychain",
                                                                  "k.keychain", message);
    }

    static KxTest::ProgramResult openssl(std::vector<std::string> words) {
        words.insert(words.begin(), "/usr/bin/openssl");
        return KxTest::runProgram(words);
    }

    OwnWorld world{KXTEST_SECURITY};
    const std::string master = "/tmp/world/m.keychain";
    const std::string certificates = "/tmp/world/k.keychain";
    QString message;
};

} // namespace

TEST_F(RecoveryIdentity, IsMadeAsOthersReadIt) {
    ASSERT_EQ(make(), 0) << message.toStdString();
    EXPECT_EQ(message, QString());
    const auto inMaster = openssl({"x509", "-in", master, "-outform", "PEM"});
    const auto inOther = openssl({"x509", "-in", certificates, "-outform", "PEM"});
    EXPECT_EQ(inMaster.status, 0) << inMaster.errors;
    EXPECT_EQ(inMaster.output, inOther.output);
    EXPECT_THAT(inMaster.output, testing::HasSubstr("BEGIN CERTIFICATE"));
    EXPECT_THAT(contentsOf(certificates), testing::Not(testing::HasSubstr("PRIVATE KEY")));
    EXPECT_EQ(openssl({"verify", "-x509_strict", "-CAfile", master, master}).status, 0);
    const auto fromKey = openssl({"pkey", "-in", master, "-passin", "pass:pass word", "-pubout"});
    EXPECT_EQ(fromKey.status, 0) << fromKey.errors;
    EXPECT_EQ(fromKey.output, openssl({"x509", "-in", master, "-noout", "-pubkey"}).output);
    EXPECT_NE(openssl({"pkey", "-in", master, "-passin", "pass:password"}).status, 0);
}

TEST_F(RecoveryIdentity, LeavesNothingInTheTemporaryFolder) {
    ASSERT_EQ(make(), 0) << message.toStdString();
    EXPECT_FALSE(std::filesystem::exists("/tmp/kxfvm.keychain"));
    EXPECT_FALSE(std::filesystem::exists("/tmp/kxfvrk.cer"));
    for (const std::string& keychain : {master, certificates})
        EXPECT_EQ(std::filesystem::status(keychain).permissions(),
                  std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(RecoveryIdentity, IsANewOneEachTimeAndReplacesTheLast) {
    ASSERT_EQ(make(), 0) << message.toStdString();
    const std::string first = openssl({"x509", "-in", master, "-noout", "-serial"}).output;
    std::ofstream("/tmp/kxfvm.keychain") << "left behind by something else";
    ASSERT_EQ(make("/tmp/world/"), 0) << message.toStdString();
    EXPECT_NE(openssl({"x509", "-in", master, "-noout", "-serial"}).output, first);
}

TEST_F(RecoveryIdentity, OpensWithItsPasswordOnly) {
    ASSERT_EQ(make(), 0) << message.toStdString();
    for (const std::string& keychain : {master, certificates}) {
        EXPECT_EQ(KxSecurityKeychainControl(keychain.c_str(), nullptr), 0u);
        EXPECT_EQ(KxSecurityKeychainControl(keychain.c_str(), "password"), uint32_t(-25293));
        EXPECT_EQ(KxSecurityKeychainControl(keychain.c_str(), "pass word"), 0u);
    }
}

TEST_F(RecoveryIdentity, KeepsTheMasterKeychainWhenItsExportFails) {
    std::filesystem::rename("/tmp/world/bin/security", "/tmp/world/bin/real");
    world.addScript("security", "[ \"$1\" = export ] && exit 9\nexec real \"$@\"\n");
    EXPECT_EQ(make(), 9 << 8);
    EXPECT_EQ(message, "system(security export -k /tmp/world/m.keychain -t certs -o "
                       "/tmp/kxfvrk.cer) failed.");
    EXPECT_TRUE(std::filesystem::exists(master));
    EXPECT_TRUE(std::filesystem::exists("/tmp/kxfvm.keychain")) << "not cleaned up";
    EXPECT_FALSE(std::filesystem::exists(certificates));
}

TEST_F(RecoveryIdentity, FailsWithoutTheProgramOrTheFolder) {
    EXPECT_EQ(make("/tmp/no/folder"), 1 << 8);
    EXPECT_EQ(message, "system(mv -f /tmp/kxfvm.keychain /tmp/no/folder/m.keychain) failed.");
    std::filesystem::remove("/tmp/world/bin/security");
    EXPECT_EQ(make(), 127 << 8);
}
