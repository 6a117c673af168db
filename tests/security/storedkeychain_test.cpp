#include "platform/keychain/storedkeychain.h"

#include "common/scratchfile.h"
#include "common/unprivileged.h"
#include "platform/keychain/hexadecimal.h"
#include "platform/keychain/status.h"
#include "security/ownworld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
namespace Status = Korvex::KeychainStatus;
using Korvex::KeychainItem;
using Korvex::StoredKeychain;
using KxTest::contentsOf;

namespace {

KeychainItem certificate(const std::string& body) {
    return {KeychainItem::Kind::Certificate,
            "-----BEGIN CERTIFICATE-----\n" + body + "\n-----END CERTIFICATE-----\n"};
}

/// A folder "keychains" with one keychain, "keychains/k", whose password is "secret".
class Stored : public testing::Test {
protected:
    Stored() {
        fs::create_directory("keychains");
        EXPECT_EQ(StoredKeychain::create(path, "secret", {certificate("Rmlyc3Q=")}), 0);
    }
    ~Stored() override {
        fs::remove_all("keychains");
        fs::remove_all(fs::path(std::getenv("KXQTS_ROOT")) / "run");
    }

    static int open(const std::string& file) {
        StoredKeychain keychain;
        return keychain.open(file);
    }

    static StoredKeychain opened(const std::string& file = path) {
        StoredKeychain keychain;
        EXPECT_EQ(keychain.open(file), 0);
        return keychain;
    }

    static std::vector<std::string> namesIn(const fs::path& folder) {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    /// Where the unlocked ones are noted.
    static fs::path session() {
        return fs::path(std::getenv("KXQTS_ROOT")) / "run/korvex/users" /
               std::to_string(geteuid()) / "keychains";
    }

    static mode_t modeOf(const fs::path& file) {
        struct stat status {};
        EXPECT_EQ(lstat(file.c_str(), &status), 0) << file;
        return status.st_mode & 07777;
    }

    static inline const std::string path = "keychains/k";
};

} // namespace

TEST_F(Stored, IsMadeForItsOwnerAndUnlocked) {
    EXPECT_EQ(modeOf(path), 0600u);
    EXPECT_EQ(namesIn("keychains"), std::vector<std::string>{"k"});
    EXPECT_TRUE(opened().isUnlocked());
    EXPECT_EQ(opened().items(), std::vector{certificate("Rmlyc3Q=")});
    EXPECT_EQ(opened().verify(), 0);
}

TEST_F(Stored, IsLockedAndUnlockedByItsPassword) {
    EXPECT_EQ(opened().lock(), 0);
    EXPECT_FALSE(opened().isUnlocked());
    EXPECT_EQ(opened().lock(), 0) << "locked already";
    EXPECT_EQ(opened().unlock("wrong"), Status::WrongPassword);
    EXPECT_FALSE(opened().isUnlocked());
    EXPECT_EQ(opened().unlock("secret"), 0);
    EXPECT_TRUE(opened().isUnlocked());
    EXPECT_EQ(opened().unlock("wrong"), Status::WrongPassword);
    EXPECT_TRUE(opened().isUnlocked()) << "a wrong password changes nothing";
}

TEST_F(Stored, StaysUnlockedWhenItIsMoved) {
    fs::rename(path, "keychains/other");
    EXPECT_TRUE(opened("keychains/other").isUnlocked());
}

TEST_F(Stored, SessionHoldsARandomKeyAndNothingElse) {
    const auto names = namesIn(session());
    ASSERT_EQ(names.size(), 1u);
    EXPECT_EQ(fs::file_size(session() / names[0]), 32u);
    EXPECT_EQ(modeOf(session() / names[0]), 0600u);
    EXPECT_EQ(modeOf(session()), 0700u);
    EXPECT_THAT(contentsOf(path), testing::HasSubstr("identifier: " + names[0] + '\n'));
    EXPECT_EQ(opened().lock(), 0);
    EXPECT_EQ(namesIn(session()), std::vector<std::string>());
}

TEST_F(Stored, SessionIsNotBelievedWhenOthersMayEnterIt) {
    fs::permissions(session(), fs::perms(0755));
    EXPECT_FALSE(opened().isUnlocked());
    EXPECT_EQ(opened().unlock("secret"), Status::NotAvailable);
    EXPECT_EQ(opened().unlock("wrong"), Status::WrongPassword);
    fs::permissions(session(), fs::perms(0700));
    EXPECT_TRUE(opened().isUnlocked());
}

TEST_F(Stored, SessionIsAFolderAndNoLink) {
    fs::rename(session(), session().string() + "-moved");
    fs::create_directory_symlink("keychains-moved", session());
    EXPECT_FALSE(opened().isUnlocked());
    EXPECT_EQ(opened().unlock("secret"), Status::NotAvailable);
}

TEST_F(Stored, WhatIsNoKeychainIsToldFromWhatIsNotThere) {
    EXPECT_EQ(open("keychains/none"), Status::NoSuchKeychain);
    EXPECT_EQ(open("none/k"), Status::NoSuchKeychain);
    EXPECT_EQ(open("keychains/k/k"), Status::NoSuchKeychain);
    EXPECT_EQ(open(std::string(5000, 'x')), Status::NoSuchKeychain);
    EXPECT_EQ(open("keychains"), Status::InvalidKeychain);
    EXPECT_EQ(open("/dev/null"), Status::InvalidKeychain);
    std::ofstream("keychains/empty").flush();
    EXPECT_EQ(open("keychains/empty"), Status::InvalidKeychain);
    std::ofstream("keychains/text") << "KxQts keychain 1\n";
    EXPECT_EQ(open("keychains/text"), Status::InvalidKeychain);
    fs::create_symlink("loop", "keychains/loop");
    EXPECT_EQ(open("keychains/loop"), Status::InvalidKeychain);
    std::ofstream("keychains/large").flush();
    fs::resize_file("keychains/large", std::uintmax_t(1) << 40);
    EXPECT_EQ(open("keychains/large"), Status::InvalidKeychain);
}

TEST_F(Stored, PipesAndSocketsAreNotWaitedFor) {
    ASSERT_EQ(mkfifo("keychains/pipe", 0600), 0);
    EXPECT_EQ(open("keychains/pipe"), Status::InvalidKeychain);
    const int listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{AF_UNIX, "keychains/socket"};
    ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(open("keychains/socket"), Status::InvalidKeychain);
    close(listening);
}

TEST_F(Stored, DamageIsNoticedAndLeftAlone) {
    std::string damaged = contentsOf(path);
    damaged[damaged.find("Rmly")] = 'S';
    std::ofstream(path) << damaged;
    EXPECT_EQ(open(path), Status::InvalidKeychain);
    EXPECT_EQ(StoredKeychain::add(path, {certificate("U2Vjb25k")}), Status::InvalidKeychain);
    EXPECT_EQ(contentsOf(path), damaged);
}

TEST_F(Stored, ForgeryIsNoticedWhenItIsUnlocked) {
    std::string forged = contentsOf(path);
    forged.replace(forged.find("Rmly"), 4, "Rmlz");
    forged.resize(forged.find("digest: "));
    Korvex::KeychainBlock digest{};
    ASSERT_TRUE(Korvex::Cryptography::digest(forged, digest));
    std::ofstream(path) << forged << "digest: " << Korvex::hexadecimal(digest) << '\n';
    EXPECT_EQ(opened().verify(), Status::InvalidKeychain);
    EXPECT_EQ(StoredKeychain::add(path, {certificate("U2Vjb25k")}), Status::InvalidKeychain);
    EXPECT_EQ(opened().lock(), 0) << "it can still be locked";
    EXPECT_EQ(opened().verify(), 0) << "nobody can tell";
    EXPECT_EQ(opened().unlock("secret"), Status::InvalidKeychain);
    EXPECT_FALSE(opened().isUnlocked());
}

TEST_F(Stored, IsNeverMadeInThePlaceOfAnother) {
    const std::string before = contentsOf(path);
    EXPECT_EQ(StoredKeychain::create(path, "other", {}), Status::DuplicateKeychain);
    EXPECT_EQ(contentsOf(path), before);
    EXPECT_EQ(StoredKeychain::create("keychains", "other", {}), Status::DuplicateKeychain);
    EXPECT_EQ(StoredKeychain::create("keychains/", "other", {}), Status::DuplicateKeychain);
    EXPECT_EQ(StoredKeychain::create("none/k", "other", {}), Status::NoSuchKeychain);
    fs::create_symlink("elsewhere", "keychains/link");
    EXPECT_EQ(StoredKeychain::create("keychains/link", "other", {}), Status::DuplicateKeychain);
    EXPECT_FALSE(fs::exists("keychains/elsewhere"));
    EXPECT_EQ(namesIn("keychains"), (std::vector<std::string>{"k", "link"}));
}

TEST_F(Stored, TakesItemsWhileItIsUnlocked) {
    EXPECT_EQ(StoredKeychain::add(path, {certificate("U2Vjb25k"), certificate("VGhpcmQ=")}), 0);
    EXPECT_EQ(opened().items().size(), 3u);
    EXPECT_EQ(opened().verify(), 0);
    EXPECT_EQ(modeOf(path), 0600u);
    EXPECT_EQ(namesIn("keychains"), std::vector<std::string>{"k"});
    EXPECT_EQ(StoredKeychain::add(path, {certificate("Rm91cg=="), certificate("U2Vjb25k")}),
              Status::DuplicateItem);
    EXPECT_EQ(opened().items().size(), 3u) << "all or none";
    EXPECT_EQ(opened().lock(), 0);
    EXPECT_EQ(StoredKeychain::add(path, {certificate("Rm91cg==")}), Status::InteractionNotAllowed);
    EXPECT_EQ(opened().items().size(), 3u);
    EXPECT_EQ(opened().unlock("secret"), 0) << "and the password is the same";
}

TEST_F(Stored, IsNotMadeTooLargeToBeRead) {
    const std::string before = contentsOf(path);
    EXPECT_EQ(StoredKeychain::add(path, {certificate(std::string(4 << 20, 'Q'))}),
              Status::DataTooLarge);
    EXPECT_EQ(contentsOf(path), before);
    EXPECT_EQ(StoredKeychain::create("keychains/l", "", {certificate(std::string(4 << 20, 'Q'))}),
              Status::DataTooLarge);
}

TEST_F(Stored, IsChangedThroughLinks) {
    fs::create_symlink("k", "keychains/link");
    EXPECT_EQ(StoredKeychain::add("keychains/link", {certificate("U2Vjb25k")}), 0);
    EXPECT_TRUE(fs::is_symlink("keychains/link"));
    EXPECT_EQ(opened().items().size(), 2u);
}

TEST_F(Stored, KeepsItsOwnerWhenRootChangesIt) {
    if (geteuid() != 0)
        GTEST_SKIP() << "needs root";
    KxTest::giveToOrdinaryUser(path.c_str());
    EXPECT_EQ(StoredKeychain::add(path, {certificate("U2Vjb25k")}), 0);
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, KxTest::ordinaryUser);
    EXPECT_EQ(status.st_gid, KxTest::ordinaryUser);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
}

namespace {

/// Adds items from a process of its own, each for itself. \return Its id.
pid_t startAdding(const std::string& path, char letter, int count) {
    const pid_t child = fork();
    if (child == 0) {
        bool good = true;
        for (int i = 0; i < count; ++i)
            good = StoredKeychain::add(
                       path, {certificate(std::string(2, letter) + char('A' + i) + 'Q')}) == 0 &&
                   good;
        _exit(good ? 0 : 1);
    }
    return child;
}

} // namespace

TEST_F(Stored, LosesNothingWhenManyProcessesChangeIt) {
    constexpr int count = 20;
    std::vector<pid_t> children;
    for (const char letter : {'a', 'b', 'c', 'd'})
        children.push_back(startAdding(path, letter, count));
    for (const pid_t child : children) {
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(opened().items().size(), 4u * count + 1);
    EXPECT_EQ(opened().verify(), 0);
    EXPECT_EQ(namesIn("keychains"), std::vector<std::string>{"k"});
}

TEST(StoredOfAnother, IsNeitherReadNorWritten) {
    const KxTest::OwnWorld world;
    ASSERT_TRUE(world.isMounted);
    const std::string path = world.folder + "/k";
    ASSERT_EQ(StoredKeychain::create(path, "secret", {}), 0);
    EXPECT_TRUE(KxTest::asOrdinaryUser([&] {
        StoredKeychain keychain;
        EXPECT_EQ(keychain.open(path), Status::NotAvailable);
        EXPECT_EQ(StoredKeychain::add(path, {}), Status::NotAvailable);
        EXPECT_EQ(StoredKeychain::create(world.folder + "/own", "", {}), Status::ReadOnly);
    }));
}

TEST(StoredForNobody, IsMadeButStaysLockedWhereNoSessionCanKeepIt) {
    const KxTest::OwnWorld world;
    ASSERT_TRUE(world.isMounted);
    fs::create_directories(std::getenv("KXQTS_ROOT")); // which is root's
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        StoredKeychain keychain;
        EXPECT_EQ(StoredKeychain::create("/tmp/own", "secret", {}), 0);
        EXPECT_EQ(keychain.open("/tmp/own"), 0);
        EXPECT_FALSE(keychain.isUnlocked());
        EXPECT_EQ(keychain.unlock("wrong"), Status::WrongPassword);
        EXPECT_EQ(keychain.unlock("secret"), Status::NotAvailable);
        EXPECT_EQ(keychain.lock(), 0);
    }));
}
