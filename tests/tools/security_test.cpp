#include "common/program.h"
#include "common/scratchfile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <pty.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;
using KxTest::contentsOf;
using KxTest::ProgramResult;
using testing::HasSubstr;

namespace {

using Words = std::vector<std::string>;

ProgramResult openssl(Words words) {
    words.insert(words.begin(), "/usr/bin/openssl");
    return KxTest::runProgram(words);
}

/// The program in a folder of its own. A keychain with a recovery identity is made once.
class SecurityTool : public testing::Test {
protected:
    static void SetUpTestSuite() {
        fs::create_directory("saved");
        succeeds({"create-filevaultmaster-keychain", "-p", "secret", "saved/m"});
        forgetSession();
    }
    static void TearDownTestSuite() { fs::remove_all("saved"); }

    SecurityTool() {
        fs::create_directory("k");
        fs::copy_file("saved/m", master);
    }
    ~SecurityTool() override {
        fs::remove_all("k");
        forgetSession();
    }

    static void forgetSession() { fs::remove_all(fs::path(std::getenv("KXQTS_ROOT")) / "run"); }

    static ProgramResult run(Words words, const std::string& input = {},
                             const KxTest::Environment& environment = {}) {
        words.insert(words.begin(), KXTEST_SECURITY);
        return KxTest::runProgram(words, environment, input);
    }

    static std::string succeeds(const Words& words, const std::string& input = {}) {
        const ProgramResult result = run(words, input);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.errors, "");
        return result.output;
    }

    static void fails(const Words& words, int status, const std::string& text) {
        const ProgramResult result = run(words);
        EXPECT_EQ(result.status, status) << words.front();
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, HasSubstr(text));
    }

    static std::string certificateOf(const std::string& keychain) {
        return openssl({"x509", "-in", keychain}).output;
    }

    static inline const std::string master = "k/m";
};

} // namespace

TEST_F(SecurityTool, IdentityIsAsOthersWantIt) {
    const std::string text = openssl({"x509", "-in", master, "-noout", "-text"}).output;
    EXPECT_THAT(text, HasSubstr("Version: 3"));
    EXPECT_THAT(text, HasSubstr("Public-Key: (3072 bit)"));
    EXPECT_THAT(text, HasSubstr("sha256WithRSAEncryption"));
    EXPECT_THAT(text, HasSubstr("Key Encipherment, Data Encipherment"));
    EXPECT_THAT(text, HasSubstr("CA:FALSE"));
    EXPECT_THAT(text, HasSubstr("Subject: CN = Recovery Key ("));
    EXPECT_EQ(openssl({"verify", "-CAfile", master, master}).status, 0);
    EXPECT_EQ(openssl({"x509", "-in", master, "-noout", "-checkend", "600000000"}).status, 0)
        << "19 years from now";
    EXPECT_EQ(openssl({"pkey", "-in", master, "-passin", "pass:secret", "-noout", "-check"}).status,
              0);
}

TEST_F(SecurityTool, IdentityServesItsPurpose) {
    const std::string diskKey = "a key of a disk";
    std::ofstream("k/plain") << diskKey;
    EXPECT_EQ(openssl({"pkeyutl", "-encrypt", "-certin", "-inkey", master, "-in", "k/plain", "-out",
                       "k/secret"})
                  .status,
              0);
    EXPECT_EQ(openssl({"pkeyutl", "-decrypt", "-inkey", master, "-passin", "pass:secret", "-in",
                       "k/secret"})
                  .output,
              diskKey);
}

TEST_F(SecurityTool, CertificatesGoFromOneKeychainToAnother) {
    succeeds({"create-keychain", "-p", "other", "k/o"});
    EXPECT_EQ(succeeds({"export", "-k", master, "-t", "certs", "-o", "k/c.cer"}), "");
    EXPECT_EQ(contentsOf("k/c.cer"), certificateOf(master));
    EXPECT_EQ(succeeds({"export", "-k", master}), certificateOf(master));
    EXPECT_EQ(succeeds({"import", "k/c.cer", "-t", "cert", "-k", "k/o"}), "");
    EXPECT_EQ(certificateOf("k/o"), certificateOf(master));
    EXPECT_THAT(contentsOf("k/o"), testing::Not(HasSubstr("PRIVATE KEY")));
    fails({"import", "k/c.cer", "-k", "k/o"}, 1, "(-25299)");
}

TEST_F(SecurityTool, CertificatesAreReadInEitherFormAndMany) {
    succeeds({"create-keychain", "-p", "x", "k/o"});
    openssl({"x509", "-in", master, "-outform", "DER", "-out", "k/c.der"});
    succeeds({"import", "-k", "k/o", "k/c.der"});
    EXPECT_EQ(certificateOf("k/o"), certificateOf(master));
    for (const char* name : {"one", "two"})
        openssl({"req", "-x509", "-newkey", "rsa:1024", "-nodes", "-subj",
                 std::string("/CN=") + name, "-keyout", "k/key", "-out", std::string("k/") + name});
    std::ofstream("k/many") << "a comment\n" << contentsOf("k/one") << contentsOf("k/two");
    succeeds({"import", "-k", "k/o", "k/many"});
    const std::string list = succeeds({"list", "k/o"});
    EXPECT_THAT(list, testing::AllOf(HasSubstr("subject: CN=one\n"), HasSubstr("CN=two\n")));
    const std::string many = contentsOf("k/many");
    std::ofstream("k/damaged") << many.substr(0, many.size() - 100) << "\n";
    fails({"import", "-k", "k/o", "k/damaged"}, 1, "(-25257)");
}

TEST_F(SecurityTool, WhatIsNoCertificateIsNotImported) {
    succeeds({"create-keychain", "-p", "x", "k/o"});
    std::ofstream("k/text") << "text";
    std::ofstream("k/empty").flush();
    openssl({"x509", "-in", master, "-outform", "DER", "-out", "k/der"});
    std::ofstream("k/der", std::ios::app) << "more";
    std::ofstream("k/encrypted") << "-----BEGIN CERTIFICATE-----\nProc-Type: 4,ENCRYPTED\n"
                                    "DEK-Info: AES-128-CBC,00112233445566778899AABBCCDDEEFF\n\n"
                                    "QUJD\n-----END CERTIFICATE-----\n";
    const std::string before = contentsOf("k/o");
    for (const char* file : {"k/text", "k/empty", "k/der", "k/encrypted"})
        fails({"import", file, "-k", "k/o"}, 1, "(-25257)");
    fails({"import", "k/none", "-k", "k/o"}, 1, "k/none: No such file");
    fails({"import", "k", "-k", "k/o"}, 1, "k: Is a directory");
    EXPECT_EQ(contentsOf("k/o"), before);
}

TEST_F(SecurityTool, ListsWhatOthersReadToo) {
    const std::string list = succeeds({"list", master});
    std::string digest =
        openssl({"x509", "-in", master, "-noout", "-fingerprint", "-sha256"}).output;
    digest = digest.substr(digest.find('=') + 1);
    EXPECT_THAT(list, HasSubstr("SHA-256: " + digest));
    std::string serial = openssl({"x509", "-in", master, "-noout", "-serial"}).output;
    EXPECT_THAT(list, HasSubstr("serial:  " + serial.substr(serial.find('=') + 1)));
    EXPECT_THAT(list, HasSubstr("private key"));
}

TEST_F(SecurityTool, ExportReplacesFilesAsAWholeAndNothingElse) {
    std::ofstream("k/c.cer") << "before";
    std::ofstream("k/target") << "somebody else's";
    fs::create_symlink("target", "k/link");
    succeeds({"export", "-k", master, "-o", "k/c.cer"});
    EXPECT_EQ(contentsOf("k/c.cer"), certificateOf(master));
    fails({"export", "-k", master, "-o", "k/link"}, 1, "this is no file");
    fails({"export", "-k", master, "-o", "k"}, 1, "this is no file");
    fails({"export", "-k", master, "-o", "none/c.cer"}, 1, "No such file");
    EXPECT_EQ(contentsOf("k/target"), "somebody else's");
    succeeds({"create-keychain", "-p", "x", "k/o"});
    fails({"export", "-k", "k/o"}, 1, "(-25300)");
}

TEST_F(SecurityTool, KeychainsAreLockedAndUnlocked) {
    EXPECT_THAT(succeeds({"show-keychain-info", master}),
                "Keychain \"k/m\" locked\n  certificates: 1\n  private keys: 1\n");
    fails({"unlock-keychain", "-p", "wrong", master}, 1, "(-25293)");
    succeeds({"unlock-keychain", "-p", "secret", master});
    EXPECT_THAT(succeeds({"show-keychain-info", master}), HasSubstr("\"k/m\" unlocked no-timeout"));
    openssl({"x509", "-in", master, "-out", "k/c.cer"});
    succeeds({"lock-keychain", master});
    fails({"import", "k/c.cer", "-k", master}, 1, "(-25308)");
    fails({"unlock-keychain", "-p", "x", "k/none"}, 1, "(-25294)");
    fails({"lock-keychain", "k"}, 1, "(-25295)");
}

TEST_F(SecurityTool, FilesThatAreThereStay) {
    fails({"create-keychain", "-p", "x", master}, 1, "(-25296)");
    fails({"create-filevaultmaster-keychain", "-p", "x", master}, 1, "(-25296)");
    EXPECT_EQ(contentsOf(master), contentsOf("saved/m"));
    fails({"create-keychain", "-p", "x", "none/o"}, 1, "(-25294)");
}

TEST_F(SecurityTool, PasswordsMayComeOnStandardInput) {
    succeeds({"create-keychain", "k/o"}, "from a file\nmore");
    succeeds({"unlock-keychain", "-p", "from a file", "k/o"});
    succeeds({"unlock-keychain", "k/o"}, "from a file");
    fails({"unlock-keychain", "k/o"}, 1, "no password can be read");
    succeeds({"create-keychain", "k/e"}, "\n");
    succeeds({"unlock-keychain", "-p", "", "k/e"});
    EXPECT_EQ(run({"create-keychain", "k/l"}, std::string(65537, 'x')).status, 1) << "too long";
    EXPECT_FALSE(fs::exists("k/l"));
}

TEST_F(SecurityTool, PasswordsMayHaveEveryByte) {
    std::string every;
    for (int byte = 1; byte < 256; ++byte)
        every += static_cast<char>(byte);
    succeeds({"create-keychain", "-p", every, "k/o"});
    succeeds({"unlock-keychain", "-p", every, "k/o"});
    fails({"unlock-keychain", "-p", every.substr(1), "k/o"}, 1, "(-25293)");
    const std::string longOne(100000, 'p');
    succeeds({"create-keychain", "-p" + longOne, "k/l"});
    succeeds({"unlock-keychain", "-p", longOne, "k/l"});
}

namespace {

/// The program at a terminal, with somebody who types.
class AtTerminal {
public:
    explicit AtTerminal(Words words) {
        words.insert(words.begin(), KXTEST_SECURITY);
        process = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (process != 0)
            return;
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    ~AtTerminal() { close(terminal); }
    AtTerminal(const AtTerminal&) = delete;
    AtTerminal& operator=(const AtTerminal&) = delete;

    void awaitPrompt(const std::string& text) {
        char byte = 0;
        while (!shown.ends_with(text) && read(terminal, &byte, 1) == 1)
            shown += byte;
    }

    void type(const std::string& line) const {
        const std::string keys = line + '\n';
        EXPECT_EQ(write(terminal, keys.data(), keys.size()), ssize_t(keys.size()));
    }

    int end() {
        awaitPrompt(std::string(1, '\0')); // that never comes
        int status = -1;
        waitpid(process, &status, 0);
        return WEXITSTATUS(status);
    }

    std::string shown;

private:
    int terminal = -1;
    pid_t process = -1;
};

} // namespace

TEST_F(SecurityTool, PasswordsAreNotShownAtATerminal) {
    AtTerminal right({"create-keychain", "k/o"});
    right.awaitPrompt("Password for the new keychain: ");
    right.type("typed secret");
    right.awaitPrompt("Once more: ");
    right.type("typed secret");
    EXPECT_EQ(right.end(), 0);
    EXPECT_THAT(right.shown, testing::Not(HasSubstr("typed")));
    AtTerminal unlocking({"unlock-keychain", "k/o"});
    unlocking.awaitPrompt("Password: ");
    unlocking.type("typed secret");
    EXPECT_EQ(unlocking.end(), 0);
    AtTerminal wrong({"create-keychain", "k/other"});
    wrong.awaitPrompt("Password for the new keychain: ");
    wrong.type("one");
    wrong.awaitPrompt("Once more: ");
    wrong.type("two");
    EXPECT_EQ(wrong.end(), 1);
    EXPECT_THAT(wrong.shown, HasSubstr("not the same"));
    EXPECT_FALSE(fs::exists("k/other"));
}

TEST_F(SecurityTool, PasswordsAreWipedFromItsCommandLine) {
    const pid_t child = fork();
    if (child == 0) {
        execl(KXTEST_SECURITY, "security", "create-filevaultmaster-keychain", "-p", "seen secret",
              "k/o", nullptr);
        _exit(127);
    }
    const std::string commandLine = "/proc/" + std::to_string(child) + "/cmdline";
    bool wasWiped = false;
    while (waitpid(child, nullptr, WNOHANG) == 0) {
        const std::string words = contentsOf(commandLine);
        wasWiped = wasWiped || (words.find("filevaultmaster") != std::string::npos &&
                                words.find("secret") == std::string::npos &&
                                words.find("seen") == std::string::npos);
    }
    EXPECT_TRUE(wasWiped);
}

TEST_F(SecurityTool, SessionsHaveTheirOwnFolder) {
    ASSERT_EQ(mkdir("k/session", 0700), 0);
    const fs::path session = fs::absolute("k/session");
    const KxTest::Environment mine{{"KXQTS_ROOT", ""}, {"XDG_RUNTIME_DIR", session}};
    EXPECT_EQ(run({"unlock-keychain", "-p", "secret", master}, {}, mine).status, 0);
    EXPECT_FALSE(fs::is_empty(session / "korvex/keychains"));
    EXPECT_THAT(run({"show-keychain-info", master}, {}, mine).output, HasSubstr("unlocked"));
    EXPECT_THAT(succeeds({"show-keychain-info", master}), HasSubstr("\" locked"))
        << "not in another session";
    EXPECT_EQ(run({"lock-keychain", master}, {}, mine).status, 0);
    EXPECT_TRUE(fs::is_empty(session / "korvex/keychains"));
}

TEST_F(SecurityTool, WhatMakesNoSenseIsAUsageError) {
    fails({"nonsense"}, 2, "unknown command nonsense");
    EXPECT_EQ(run({}).status, 2);
    fails({"lock-keychain"}, 2, "no keychain");
    fails({"lock-keychain", ""}, 2, "no keychain");
    fails({"lock-keychain", "a", "b"}, 2, "more than one keychain");
    fails({"lock-keychain", "-p", "x", "a"}, 2, "unknown option -p");
    fails({"create-keychain", "a", "-p"}, 2, "option -p needs an argument");
    fails({"export", "-t", "certs"}, 2, "option -k is missing");
    fails({"export", "-k", master, "-t", "keys"}, 2, "only certificates");
    fails({"export", "-k", master, "more"}, 2, "unknown argument more");
    fails({"import", "-k", master}, 2, "no file");
    EXPECT_THAT(succeeds({"--help"}), HasSubstr("create-filevaultmaster-keychain"));
    EXPECT_THAT(succeeds({"--version"}), HasSubstr("security (KxQts)"));
    succeeds({"show-keychain-info", "--", master});
}

TEST_F(SecurityTool, NoticesWhenItsOutputIsLost) {
    EXPECT_EQ(KxTest::runProgram({"/bin/sh", "-c", KXTEST_SECURITY " list k/m >/dev/full"}).status,
              1);
}
