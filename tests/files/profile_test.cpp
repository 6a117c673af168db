#include <KxQts/files/profile.h>
#include <KxQts/registry/registry.h>
#include <KxQts/winapi/profiles.h>

#include "common/memorysearch.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace {

class Profile : public testing::Test {
protected:
    Profile() { removeAll(); }
    ~Profile() override { removeAll(); }

    static void removeAll() { std::filesystem::remove_all(folder()); }
    static std::filesystem::path folder() {
        return std::filesystem::path(std::getenv("KXQTS_ROOT")) / "Library";
    }

    /// What a buffer looks like before anything is written to it.
    static constexpr char filler = '#';

    /// The buffer after a call with a size, one place behind that size included, and the result.
    struct Read {
        DWORD result = 0;
        std::string buffer;
    };
    static Read read(const char* section, const char* key, const char* byDefault, DWORD size) {
        Read read;
        read.buffer.assign(40, filler);
        read.result = GetPrivateProfileStringA(section, key, byDefault, read.buffer.data(), size,
                                               "/x/app.ini");
        return read;
    }

    struct ReadWide {
        DWORD result = 0;
        std::wstring buffer;
    };
    static ReadWide readWide(const wchar_t* section, const wchar_t* key, const wchar_t* byDefault,
                             DWORD size) {
        ReadWide read;
        read.buffer.assign(40, L'#');
        read.result = GetPrivateProfileStringW(section, key, byDefault, read.buffer.data(), size,
                                               L"/x/app.ini");
        return read;
    }

    static void write(const char* section, const char* key, const char* value) {
        EXPECT_TRUE(WritePrivateProfileStringA(section, key, value, "/a/b/app.ini"));
    }

    /// The beginning of a buffer, zeros and all.
    static std::string start(const std::string& buffer, std::size_t count) {
        return buffer.substr(0, count);
    }
};

std::string bytes(const char* text, std::size_t count) {
    return {text, count};
}

} // namespace

TEST_F(Profile, TheFoldersOfTheFileAreIgnoredAndValuesAreTrimmed) {
    write("Main", "Size", "  12  ");
    const Read read = this->read("Main", "Size", "0", 10);
    EXPECT_EQ(read.result, 2U);
    EXPECT_EQ(start(read.buffer, 4), bytes("12\0#", 4));
}

TEST_F(Profile, AProfileIsARegistryKeyOfTheMachine) {
    write("Main", "Size", " 12 ");
    void* key = nullptr;
    ASSERT_EQ(regOpenKeyEx(QString(), HKEY_LOCAL_MACHINE, "app.ini/Main", 0, 0, &key), 0U);
    QByteArray data;
    unsigned type = 0;
    EXPECT_EQ(regQueryValueEx(key, "Size", nullptr, &type, data), 0U);
    EXPECT_EQ(type, unsigned(REG_SZ));
    EXPECT_EQ(data, QByteArray(" \0001\0002\0 \0", 8)) << "as it was written, blanks and all";
    RegCloseKey(key);
    EXPECT_FALSE(std::filesystem::exists("/a/b/app.ini"));
}

TEST_F(Profile, ADefaultIsTakenAsItStands) {
    EXPECT_EQ(read("Main", "Missing", " x ", 10).result, 3U);
    EXPECT_EQ(start(read("Main", "Missing", " x ", 10).buffer, 5), bytes(" x \0#", 5));
    write("Main", "Other", "1");
    EXPECT_EQ(read("Main", "Missing", "d", 10).result, 1U);
}

TEST_F(Profile, AnEmptyResultLeavesTheBufferAlone) {
    const std::string untouched(40, filler);
    for (const char* byDefault : {"", static_cast<const char*>(nullptr)}) {
        const Read read = this->read("Main", "Missing", byDefault, 10);
        EXPECT_EQ(read.result, 0U);
        EXPECT_EQ(read.buffer, untouched);
    }
    write("Main", "Blank", "   ");
    EXPECT_EQ(read("Main", "Blank", "default", 10).buffer, untouched)
        << "a stored blank is no default";
    EXPECT_EQ(readWide(L"Main", L"Missing", L"", 10).buffer, std::wstring(40, L'#'));
}

TEST_F(Profile, AValueThatDoesNotFitKeepsTwoPlacesForZeros) {
    write("Main", "Ten", "0123456789");
    const Read exact = read("Main", "Ten", "", 10);
    EXPECT_EQ(exact.result, 9U);
    EXPECT_EQ(start(exact.buffer, 11), bytes("01234567\0\0#", 11));
    const Read fits = read("Main", "Ten", "", 11);
    EXPECT_EQ(fits.result, 10U);
    EXPECT_EQ(start(fits.buffer, 12), bytes("0123456789\0#", 12));
    const Read byDefault = read("Main", "Missing", "0123456789", 5);
    EXPECT_EQ(byDefault.result, 4U) << "a default is truncated alike";
    EXPECT_EQ(start(byDefault.buffer, 6), bytes("012\0\0#", 6));
}

TEST_F(Profile, AListIsTheNamesRunTogether) {
    write("Main", "Size", "1");
    write("Other", "Size", "1");
    const Read sections = read(nullptr, nullptr, "default", 20);
    EXPECT_EQ(sections.result, 9U);
    EXPECT_EQ(start(sections.buffer, 11), bytes("MainOther\0#", 11));
    const Read keys = read("Main", nullptr, "default", 20);
    EXPECT_EQ(keys.result, 4U);
    EXPECT_EQ(start(keys.buffer, 6), bytes("Size\0#", 6)) << "names of values included";
    EXPECT_EQ(read(nullptr, "Size", "", 20).result, 9U) << "the key is not looked at";
    EXPECT_EQ(read("", "Size", "", 20).result, 9U);
    EXPECT_EQ(read("Missing", nullptr, "default", 20).result, 7U) << "no such section";
}

TEST_F(Profile, AnEmptyListIsNoDefault) {
    write("Main", "Size", "1");
    EXPECT_TRUE(WritePrivateProfileStringA("Main", "Size", nullptr, "app.ini"));
    EXPECT_EQ(read("Main", nullptr, "default", 20).result, 0U);
}

TEST_F(Profile, AListThatDoesNotFitWritesOnePlaceBehindItsSize) {
    write("0123456789", "Size", "1");
    const Read read = this->read(nullptr, nullptr, "", 10);
    EXPECT_EQ(read.result, 8U);
    EXPECT_EQ(start(read.buffer, 12), bytes("0123456\0#\0\0#", 12))
        << "the place before the last zeros is left alone";
}

TEST_F(Profile, EitherNullNameMakesATruncationThatOfAList) {
    write("Main", "0123456789", "1");
    write("Second", "Size", "1");
    const std::string names = bytes("0123456\0#\0\0#", 12);
    EXPECT_EQ(read("Main", nullptr, "", 10).result, 8U);
    EXPECT_EQ(start(read("Main", nullptr, "", 10).buffer, 12), names);
    EXPECT_EQ(read(nullptr, "Size", "", 10).result, 8U);
    EXPECT_EQ(start(read(nullptr, "Size", "", 10).buffer, 12), bytes("MainSec\0#\0\0#", 12));
    const std::wstring wide(L"01234567#\0\0#", 12);
    EXPECT_EQ(readWide(L"Main", nullptr, L"", 10).result, 8U);
    EXPECT_EQ(readWide(L"Main", nullptr, L"", 10).buffer.substr(0, 12), wide);
    EXPECT_EQ(readWide(nullptr, L"Size", L"", 10).result, 8U);
    EXPECT_EQ(readWide(L"", L"", L"", 10).result, 9U) << "empty names are none";
    EXPECT_EQ(readWide(L"", L"", L"", 10).buffer.substr(0, 11), L"MainSecon##");
}

TEST_F(Profile, ADefaultForANullNameIsTruncatedAsAList) {
    EXPECT_EQ(read("Missing", nullptr, "0123456789", 10).result, 8U);
    EXPECT_EQ(start(read("Missing", nullptr, "0123456789", 10).buffer, 12),
              bytes("0123456\0#\0\0#", 12));
}

TEST_F(Profile, AnEmptySectionThatIsNotNullListsAndIsTruncatedAsAValue) {
    write("0123456789", "Size", "1");
    const Read read = this->read("", "", "", 10);
    EXPECT_EQ(read.result, 9U);
    EXPECT_EQ(start(read.buffer, 11), bytes("01234567\0\0#", 11));
}

TEST_F(Profile, BuffersOfFewerThanThreeCharactersAreNotOverrun) {
    write("Main", "Ten", "0123456789");
    EXPECT_EQ(start(read("Main", "Ten", "", 0).buffer, 3), "###");
    EXPECT_EQ(read("Main", "Ten", "", 0).result, 0U);
    EXPECT_EQ(start(read("Main", "Ten", "", 1).buffer, 3), bytes("\0##", 3));
    EXPECT_EQ(read("Main", "Ten", "", 1).result, 0U);
    EXPECT_EQ(start(read("Main", "Ten", "", 2).buffer, 3), bytes("\0\0#", 3));
    EXPECT_EQ(read("Main", "Ten", "", 2).result, 1U);
    EXPECT_EQ(start(read(nullptr, nullptr, "", 0).buffer, 3), "###");
    EXPECT_EQ(start(read(nullptr, nullptr, "", 1).buffer, 3), bytes("\0##", 3));
    EXPECT_EQ(start(read(nullptr, nullptr, "", 2).buffer, 3), bytes("#\0#", 3));
    for (const DWORD size : {0U, 1U, 2U})
        EXPECT_EQ(read(nullptr, nullptr, "", size).result, 0U) << "never below zero";
    EXPECT_EQ(start(read(nullptr, nullptr, "", 3).buffer, 5), bytes("\0#\0\0#", 5));
    EXPECT_EQ(GetPrivateProfileStringA("Main", "Ten", "", nullptr, 10, "app.ini"), 0U);
}

TEST_F(Profile, TheLibrarysOwn8BitTextIsWiped) {
    const KxTest::UnwrittenText secret(400);
    std::array<char, 500> buffer{};
    std::string byDefault;
    byDefault.reserve(buffer.size());
    secret.writeTo(byDefault);
    EXPECT_EQ(GetPrivateProfileStringA("Main", "Missing", byDefault.c_str(), buffer.data(),
                                       buffer.size(), "app.ini"),
              400U);
    EXPECT_EQ(secret.occurrences(sizeof(char)), 2U) << "the caller's";
}

TEST_F(Profile, AZeroInTheTextEndsTheCopyNotTheCount) {
    QString value("ab");
    value += QChar(0);
    value += "cd";
    ASSERT_TRUE(writePrivateProfileString(QString(), "Main", "Zero", value, "app.ini"));
    const Read read = this->read("Main", "Zero", "", 10);
    EXPECT_EQ(read.result, 5U);
    EXPECT_EQ(start(read.buffer, 4), bytes("ab\0#", 4));
}

TEST_F(Profile, WideValuesHaveNoTerminator) {
    write("Main", "Ten", "0123456789");
    EXPECT_EQ(readWide(L"Main", L"Ten", L"", 11).result, 10U);
    EXPECT_EQ(readWide(L"Main", L"Ten", L"", 11).buffer.substr(0, 11), L"0123456789#");
    EXPECT_EQ(readWide(L"Main", L"Ten", L"", 10).result, 9U);
    EXPECT_EQ(readWide(L"Main", L"Ten", L"", 10).buffer.substr(0, 11), L"012345678##");
    EXPECT_EQ(readWide(L"Main", L"Ten", L"", 1).result, 0U);
    EXPECT_EQ(readWide(L"Main", L"Ten", L"", 1).buffer[0], L'#');
    EXPECT_EQ(readWide(L"Main", L"Ten", L"", 0).result, 0U);
    EXPECT_EQ(GetPrivateProfileStringW(L"Main", L"Ten", L"", nullptr, 10, L"app.ini"), 0U);
}

TEST_F(Profile, WideListsEndWithTwoZerosWhenTheyDoNotFit) {
    write("0123456789", "Size", "1");
    const ReadWide read = readWide(nullptr, nullptr, L"", 10);
    EXPECT_EQ(read.result, 8U);
    EXPECT_EQ(read.buffer.substr(0, 12), std::wstring(L"01234567#\0\0#", 12));
    EXPECT_EQ(readWide(nullptr, nullptr, L"", 11).buffer.substr(0, 11), L"0123456789#");
    EXPECT_EQ(readWide(nullptr, nullptr, L"", 2).buffer.substr(0, 3), std::wstring(L"#\0#", 3));
    EXPECT_EQ(readWide(nullptr, nullptr, L"", 2).result, 0U);
}

TEST_F(Profile, WideTextIsCountedInItsOwnCharacters) {
    ASSERT_TRUE(WritePrivateProfileStringW(L"S", L"K", L"\U0001F600\u00e9\u4e2d", L"/a/app.ini"));
    const ReadWide read = readWide(L"S", L"K", L"", 10);
    EXPECT_EQ(read.result, 3U);
    EXPECT_EQ(read.buffer.substr(0, 4), L"\U0001F600\u00e9\u4e2d#");
}

TEST_F(Profile, EightBitTextIsLatin1) {
    write("\xC4", "\xD6", "\xDC");
    EXPECT_EQ(readWide(L"\u00c4", L"\u00d6", L"", 10).buffer.substr(0, 1), L"\u00dc");
    EXPECT_EQ(start(read("\xC4", "\xD6", "", 10).buffer, 2), bytes("\xDC\0", 2));
}

TEST_F(Profile, CaseCounts) {
    write("Main", "Size", "1");
    EXPECT_EQ(read("main", "Size", "d", 10).result, 1U);
    EXPECT_EQ(read("main", "Size", "d", 10).buffer[0], 'd');
    EXPECT_EQ(read("Main", "size", "d", 10).buffer[0], 'd');
}

TEST_F(Profile, ANullValueIsDeleted) {
    write("Main", "Size", "1");
    write("Main", "Kept", "2");
    write("Main", "Size", nullptr);
    EXPECT_EQ(read("Main", "Size", "d", 10).buffer[0], 'd');
    EXPECT_EQ(read("Main", "Kept", "d", 10).buffer[0], '2');
    errno = 0;
    EXPECT_FALSE(WritePrivateProfileStringA("Main", "Size", "", "app.ini")) << "it is gone";
    EXPECT_EQ(errno, 1010);
}

TEST_F(Profile, ANullKeyDeletesTheSection) {
    write("Main", "Size", "1");
    write("Other", "Size", "1");
    write("Main", nullptr, "ignored");
    EXPECT_EQ(start(read(nullptr, nullptr, "", 20).buffer, 6), bytes("Other\0", 6));
    errno = 0;
    EXPECT_FALSE(WritePrivateProfileStringA("Main", nullptr, nullptr, "app.ini"));
    EXPECT_EQ(errno, 1010);
}

TEST_F(Profile, WithoutSectionAndKeyNothingIsDone) {
    write("Main", "Size", "1");
    EXPECT_TRUE(WritePrivateProfileStringA(nullptr, nullptr, nullptr, "app.ini"));
    EXPECT_TRUE(WritePrivateProfileStringW(nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(read("Main", "Size", "", 10).result, 1U);
}

TEST_F(Profile, WithoutASectionTheValueStandsBesideTheSections) {
    write(nullptr, "Size", "1");
    write("Main", "Size", "1");
    EXPECT_EQ(start(read(nullptr, nullptr, "", 20).buffer, 9), bytes("SizeMain\0", 9));
    void* key = nullptr;
    ASSERT_EQ(regOpenKeyEx(QString(), HKEY_LOCAL_MACHINE, "app.ini", 0, 0, &key), 0U);
    QByteArray data;
    EXPECT_EQ(regQueryValueEx(key, "Size", nullptr, nullptr, data), 0U);
    RegCloseKey(key);
    write(nullptr, "Size", "");
    EXPECT_EQ(start(read(nullptr, nullptr, "", 20).buffer, 5), bytes("Main\0", 5));
}

TEST_F(Profile, AProfileWithoutANameIsNone) {
    errno = 0;
    EXPECT_FALSE(WritePrivateProfileStringA(nullptr, "Size", "1", "/folder/"));
    EXPECT_EQ(errno, 1010);
    errno = 0;
    EXPECT_FALSE(WritePrivateProfileStringA("Main", nullptr, nullptr, nullptr));
    EXPECT_EQ(errno, 1010);
    char buffer[8] = "#";
    EXPECT_EQ(GetPrivateProfileStringA("Main", "Size", "d", buffer, 8, nullptr), 1U);
    buffer[0] = '#';
    EXPECT_EQ(GetPrivateProfileStringA(nullptr, nullptr, "d", buffer, 8, nullptr), 0U);
    EXPECT_EQ(buffer[0], '#') << "an empty list";
}

TEST_F(Profile, ASuccessLeavesErrnoAlone) {
    errno = 77;
    write("Main", "Size", "1");
    (void)read("Main", "Missing", "d", 10);
    (void)readWide(L"Main", L"Size", L"", 10);
    EXPECT_EQ(errno, 77);
}

TEST_F(Profile, AStoreThatCannotBeWrittenFails) {
    std::filesystem::create_directories(folder() / "Preferences");
    std::ofstream(folder() / "Preferences/com.korvex.registry.plist") << "damaged";
    errno = 0;
    EXPECT_FALSE(WritePrivateProfileStringW(L"Main", L"Size", L"1", L"app.ini"));
    EXPECT_EQ(errno, 1010);
    EXPECT_EQ(read("Main", "Size", "default", 10).result, 7U);
}

TEST_F(Profile, TheDomainIsTheQtFormsFirstArgument) {
    QString result;
    EXPECT_TRUE(writePrivateProfileString("com.example.app", "S", "K", "v", "a/app.ini"));
    EXPECT_EQ(getPrivateProfileString("com.example.app", "S", "K", "d", result, "b/app.ini"), 1);
    EXPECT_EQ(result, "v");
    EXPECT_EQ(getPrivateProfileString(QString(), "S", "K", " d", result, "app.ini"), 2);
    EXPECT_EQ(result, " d");
    EXPECT_TRUE(std::filesystem::exists(folder() / "Preferences/com.example.app.plist"));
}

TEST_F(Profile, AValueThatIsNoTextIsReadAsItsBytes) {
    void* key = nullptr;
    regCreateKeyEx(QString(), HKEY_LOCAL_MACHINE, "app.ini/Main", 0, QString(), 0, 0, nullptr, &key,
                   nullptr);
    EXPECT_EQ(regSetValueEx(key, "Binary", 0, REG_BINARY, QByteArray("a\0b\0c", 5)), 0U);
    RegCloseKey(key);
    const Read read = this->read("Main", "Binary", "", 10);
    EXPECT_EQ(read.result, 3U) << "with the space behind it that makes the odd byte a character";
    EXPECT_EQ(start(read.buffer, 3), bytes("ab?", 3));
}
