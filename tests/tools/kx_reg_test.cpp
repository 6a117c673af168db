#include "common/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using KxTest::ProgramResult;
using testing::HasSubstr;

namespace {

class KxReg : public testing::Test {
protected:
    KxReg() { removeAll(); }
    ~KxReg() override { removeAll(); }

    static void removeAll() {
        for (const char* root : {"KXQTS_ROOT", "HOME"})
            std::filesystem::remove_all(std::filesystem::path(std::getenv(root)) / "Library");
    }

    static ProgramResult run(std::vector<std::string> words, const std::string& input = {}) {
        words.insert(words.begin(), {KX_PROGRAM, "reg"});
        return KxTest::runProgram(words, {}, input);
    }

    static std::string output(const std::vector<std::string>& words,
                              const std::string& input = {}) {
        const ProgramResult result = run(words, input);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.errors, "");
        return result.output;
    }

    static void fails(const std::vector<std::string>& words, int status, const std::string& text) {
        const ProgramResult result = run(words);
        EXPECT_EQ(result.status, status) << result.output;
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, HasSubstr(text));
    }
};

} // namespace

TEST_F(KxReg, EmptyRootsAreShown) {
    EXPECT_EQ(output({}), "HKLM/\nHKCU/\n");
    EXPECT_FALSE(
        std::filesystem::exists(std::filesystem::path(std::getenv("KXQTS_ROOT")) / "Library"));
}

TEST_F(KxReg, ValuesOfEachTypeAreSetAndShown) {
    output({"set", "HKLM/A/B", "text", "h\xC3\xA9 \"x\"\n"});
    output({"set", "HKLM/A/B", "number", "0xFFFFFFFE", "--type", "dword"});
    output({"set", "--type=qword", "HKLM/A/B", "large", "--", "-2"});
    output({"set", "HKLM/A/B", "bytes", "00 Ff", "--type", "binary"});
    output({"set", "HKCU/U", "mine", "1"});
    EXPECT_EQ(output({"list"}), "HKLM/\n"
                                "  A/\n"
                                "    B/\n"
                                "      text  sz      \"h\xC3\xA9 \"x\"\\x0A\"\n"
                                "      number  dword   -2\n"
                                "      large  binary  fe ff ff ff ff ff ff ff\n"
                                "      bytes  binary  00 ff\n"
                                "HKCU/\n"
                                "  U/\n"
                                "    mine  sz      \"1\"\n");
    EXPECT_EQ(output({"list", "HKEY_LOCAL_MACHINE/A"}).substr(0, 14), "HKLM/A/\n  B/\n ");
    EXPECT_EQ(output({"get", "HKLM/A/B", "bytes"}), "binary  00 ff\n");
}

TEST_F(KxReg, ValuesAndKeysAreDeleted) {
    output({"set", "HKLM/A", "one", "1"});
    output({"set", "HKLM/A", "two", "2"});
    output({"delete", "HKLM/A", "one"});
    EXPECT_EQ(output({"list", "HKLM"}), "HKLM/\n  A/\n    two  sz      \"2\"\n");
    fails({"delete", "HKLM/A", "one"}, 1, "cannot delete one in HKLM/A");
    output({"delete", "HKLM/A"});
    fails({"delete", "HKLM/A"}, 1, "cannot delete the key");
    fails({"list", "HKLM/A"}, 1, "there is no key HKLM/A");
    fails({"get", "HKLM/A", "one"}, 1, "there is no value one");
}

TEST_F(KxReg, OtherApplicationsHaveDomainsOfTheirOwn) {
    output({"set", "--app", "com.example.app", "HKLM/A", "v", "1"});
    EXPECT_EQ(output({"list", "HKLM"}), "HKLM/\n");
    EXPECT_EQ(output({"--app", "com.example.app"}), "HKLM/\n  A/\n    v  sz      \"1\"\n");
    fails({"list", "HKCU", "--app", "x"}, 2, "HKCU has no other applications");
}

TEST_F(KxReg, KeysAreExportedAndImported) {
    output({"set", "HKLM/A", "v", "1"});
    output({"export", "HKLM", "all.plist"});
    const std::string key = output({"export", "HKLM/A"});
    EXPECT_EQ(key.substr(0, 8), "bplist00");
    output({"delete", "HKLM/A"});
    output({"import", "HKLM", "all.plist"});
    EXPECT_EQ(output({"list", "HKLM"}), "HKLM/\n  A/\n    v  sz      \"1\"\n");
    output({"set", "HKCU/C", "kept", "2"});
    output({"import", "HKCU/C", "-"}, key);
    EXPECT_EQ(output({"list", "HKCU"}),
              "HKCU/\n  C/\n    kept  sz      \"2\"\n    v  sz      \"1\"\n");
    output({"import", "HKCU/X"},
           "<plist version=\"1.0\"><dict><key>l</key><array><true/><real>1.5</real></array>"
           "<key>d</key><date>2001-01-01T00:00:00Z</date></dict></plist>");
    EXPECT_EQ(output({"list", "HKCU/X"}), "HKCU/X/\n"
                                          "  l[]\n"
                                          "    0  boolean true\n"
                                          "    1  real    1.5\n"
                                          "  d  date    2001-01-01T00:00:00Z\n");
    fails({"export", "HKLM/missing"}, 1, "there is no key");
    fails({"import", "HKLM", "missing"}, 1, "cannot read missing");
    std::ofstream("bad.plist") << "bplist00";
    fails({"import", "HKLM", "bad.plist"}, 1, "bad.plist is no property list");
    fails({"export", "HKLM", "/nowhere/x"}, 1, "cannot write /nowhere/x");
}

TEST_F(KxReg, IniFilesBecomeProfilesAndBack) {
    std::ofstream("app.ini") << "\xEF\xBB\xBF; a comment\r\n"
                                "top = 1\r\n"
                                "[Main]\r\n"
                                "Size = 12 \r\n"
                                "Size=13\r\n"
                                "Quoted = \" x \"\r\n"
                                "Empty=\r\n"
                                "\r\n"
                                "[ Other ]\r\n"
                                "Path=C:\\a=b\r\n";
    output({"import-ini", "app.ini"});
    EXPECT_EQ(output({"list", "HKLM/app.ini"}), "HKLM/app.ini/\n"
                                                "  top  sz      \"1\"\n"
                                                "  Main/\n"
                                                "    Size  sz      \"12\"\n"
                                                "    Quoted  sz      \" x \"\n"
                                                "    Empty  sz      \"\"\n"
                                                "  Other/\n"
                                                "    Path  sz      \"C:\\a=b\"\n");
    const std::string text = output({"export-ini", "app.ini"});
    EXPECT_EQ(text, "top=1\n\n[Main]\nSize=12\nQuoted=\" x \"\nEmpty=\n\n[Other]\nPath=C:\\a=b\n");
    output({"import-ini", "-", "copy.ini"}, text);
    EXPECT_EQ(output({"export-ini", "copy.ini"}), text);
    output({"import-ini", "-", "copy.ini"}, "[Main]\nSize=99\n");
    EXPECT_THAT(output({"export-ini", "copy.ini", "-"}),
                testing::AllOf(HasSubstr("Size=99\n"), HasSubstr("Path=")))
        << "other values stay";
}

TEST_F(KxReg, IniFilesMayBeUtf16OrLatin1) {
    std::ofstream("wide.ini", std::ios::binary)
        << std::string("\xFF\xFE[\0S\0]\0\n\0k\0=\0\xE9\0", 16);
    output({"import-ini", "wide.ini"});
    EXPECT_EQ(output({"export-ini", "wide.ini"}), "[S]\nk=\xC3\xA9\n");
    std::ofstream("latin.ini", std::ios::binary) << "[S]\nk=\xE9\n";
    output({"import-ini", "latin.ini", "other.ini"});
    EXPECT_EQ(output({"export-ini", "other.ini"}), "[S]\nk=\xC3\xA9\n");
}

TEST_F(KxReg, AMarkOfByteOrderThatBeginsANameIsKept) {
    output({"set", "HKLM/marked.ini", "\xEF\xBB\xBFname", "value"});
    std::ofstream("copy.ini", std::ios::binary) << output({"export-ini", "marked.ini"});
    output({"import-ini", "copy.ini"});
    EXPECT_EQ(output({"get", "HKLM/copy.ini", "\xEF\xBB\xBFname"}), "sz      \"value\"\n");
}

TEST_F(KxReg, WhatNoIniFileCanHoldIsRefused) {
    output({"set", "HKLM/a.ini/S", "v", "two\nlines"});
    fails({"export-ini", "a.ini"}, 1, "an INI file cannot hold v");
    output({"set", "HKLM/b.ini/S", "v", "1", "--type", "dword"});
    fails({"export-ini", "b.ini"}, 1, "v is no text");
    output({"set", "HKLM/c.ini/S/T", "v", "1"});
    fails({"export-ini", "c.ini"}, 1, "the section S has keys in it");
    output({"set", "HKLM/d.ini/S", "a=b", "1"});
    fails({"export-ini", "d.ini"}, 1, "an INI file cannot hold a=b");
    std::ofstream("half.ini", std::ios::binary)
        << std::string("\xFF\xFE[\0S\0]\0\n\0k\0=\0x\0\x00\xDC", 18);
    output({"import-ini", "half.ini"});
    fails({"export-ini", "half.ini"}, 1, "an INI file cannot hold k");
    std::ofstream("bad.ini") << "[S]\nnonsense\n";
    fails({"import-ini", "bad.ini"}, 1, "line 2 is neither a section nor a value");
}

TEST_F(KxReg, WhatMakesNoSenseIsAUsageError) {
    fails({"nonsense"}, 2, "unknown action nonsense");
    fails({"set", "HKLM/A", "v"}, 2, "set takes other operands");
    fails({"list", "HKUX"}, 2, "a key begins with HKLM or HKCU");
    fails({"set", "HKLM", "v", "1"}, 2, "values are in keys");
    fails({"delete", "HKLM"}, 2, "a root cannot be deleted");
    fails({"set", "HKLM/A", "v", "1", "--type", "multi"}, 2, "unknown type multi");
    fails({"set", "HKLM/A", "v", "4294967296", "--type", "dword"}, 2, "no number of that size");
    fails({"set", "HKLM/A", "v", "one", "--type", "qword"}, 2, "no number of that size");
    fails({"set", "HKLM/A", "v", "0", "--type", "binary"}, 2, "hexadecimal");
    fails({"list", "--type", "sz"}, 2, "--type goes with set");
    fails({"export-ini", "a/b.ini"}, 2, "without its folder");
    EXPECT_EQ(output({"list"}), "HKLM/\nHKCU/\n") << "and nothing was written";
}

TEST_F(KxReg, ADamagedDomainIsToldAndLeftAlone) {
    const auto file = std::filesystem::path(std::getenv("KXQTS_ROOT")) /
                      "Library/Preferences/com.korvex.registry.plist";
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "damaged";
    fails({"list", "HKLM"}, 1, "cannot read the domain com.korvex.registry");
    fails({"set", "HKLM/A", "v", "1"}, 1, "cannot set v");
    std::ifstream stream(file);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "damaged");
}

TEST_F(KxReg, TheShellIsOfferedActionsAndKeys) {
    output({"set", "HKLM/app.ini/S", "v", "1"});
    output({"set", "HKCU/Mine", "v", "1"});
    const auto offered = [](std::vector<std::string> words) {
        words.insert(words.begin(), {KX_PROGRAM, "--complete", "reg"});
        return KxTest::runProgram(words).output;
    };
    EXPECT_EQ(offered({"im"}), "import\nimport-ini\n");
    EXPECT_EQ(offered({"list", ""}), "HKLM\nHKLM/app.ini\nHKCU\nHKCU/Mine\n");
    EXPECT_EQ(offered({"export-ini", ""}), "app.ini\n");
    EXPECT_EQ(offered({"import-ini", ""}), "") << "the shell's own files";
}

TEST_F(KxReg, TheRootMayBeARelativeFolderAndTheHomeMissing) {
    const auto runIn = [](const KxTest::Environment& environment,
                          const std::vector<std::string>& words) {
        std::vector<std::string> all{KX_PROGRAM, "reg"};
        all.insert(all.end(), words.begin(), words.end());
        return KxTest::runProgram(all, environment);
    };
    EXPECT_EQ(runIn({{"KXQTS_ROOT", "sub"}}, {"set", "HKLM/A", "v", "1"}).status, 0);
    EXPECT_TRUE(std::filesystem::exists("sub/Library/Preferences/com.korvex.registry.plist"));
    EXPECT_EQ(output({"list", "HKLM"}), "HKLM/\n");
    // Reading only: the account's own folder is nothing to write to.
    EXPECT_EQ(runIn({{"HOME", ""}}, {"list", "HKCU"}).output.substr(0, 5), "HKCU/");
    std::filesystem::remove_all("sub");
}
