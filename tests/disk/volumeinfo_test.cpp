#include <KxQts/disk/volumeinfo.h>
#include <KxQts/winapi/volumes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

constexpr DWORD mark = 0xABABABABu;

/// Everything that the calls could write, and whether they did.
template <class Character>
struct Outputs {
    std::array<Character, 16> name{};
    std::array<Character, 16> fileSystem{};
    std::array<DWORD, 4> words{};

    Outputs() {
        name.fill(Character('#'));
        fileSystem.fill(Character('#'));
        words.fill(mark);
    }

    [[nodiscard]] bool untouched() const {
        const auto isMark = [](Character c) { return c == Character('#'); };
        return std::all_of(name.begin(), name.end(), isMark) &&
               std::all_of(fileSystem.begin(), fileSystem.end(), isMark) &&
               std::all_of(words.begin(), words.end(), [](DWORD word) { return word == mark; });
    }
};

/// Calls with `errno` set to something else before, and expects the refusal.
template <class Call>
void expectUnsupported(Call call) {
    errno = 77;
    EXPECT_EQ(call(), 0u);
    EXPECT_EQ(errno, 50);
}

} // namespace

TEST(VolumeInfo, InformationIsNotSupported) {
    Outputs<char> out;
    expectUnsupported([&] {
        return GetVolumeInformationA("/", out.name.data(), 16, &out.words[0], &out.words[1],
                                     &out.words[2], out.fileSystem.data(), 16);
    });
    EXPECT_TRUE(out.untouched());
    Outputs<wchar_t> wide;
    expectUnsupported([&] {
        return GetVolumeInformationW(L"/", wide.name.data(), 16, &wide.words[0], &wide.words[1],
                                     &wide.words[2], wide.fileSystem.data(), 16);
    });
    EXPECT_TRUE(wide.untouched());
}

TEST(VolumeInfo, DriveTypesAreUnknown) {
    for (const char* path : {"/", "C:\\", "", "missing"})
        expectUnsupported([&] { return GetDriveTypeA(path); });
    for (const wchar_t* path : {L"/", L"C:\\", L"", L"missing"})
        expectUnsupported([&] { return GetDriveTypeW(path); });
}

TEST(VolumeInfo, FreeSpaceIsNotSupported) {
    Outputs<char> out;
    expectUnsupported([&] {
        return GetDiskFreeSpaceA("/", &out.words[0], &out.words[1], &out.words[2], &out.words[3]);
    });
    expectUnsupported([&] {
        return GetDiskFreeSpaceW(L"/", &out.words[0], &out.words[1], &out.words[2], &out.words[3]);
    });
    EXPECT_TRUE(out.untouched());
}

TEST(VolumeInfo, MessagesAreNotFormatted) {
    Outputs<char> out;
    expectUnsupported([&] {
        return FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 2, 0, out.name.data(), 16,
                              nullptr);
    });
    EXPECT_TRUE(out.untouched());
    Outputs<wchar_t> wide;
    expectUnsupported([&] {
        return FormatMessageW(FORMAT_MESSAGE_FROM_STRING, L"text", 0, 0, wide.name.data(), 16,
                              nullptr);
    });
    EXPECT_TRUE(wide.untouched());
}

TEST(VolumeInfo, NoBufferIsAllocatedForAMessage) {
    char* text = nullptr;
    expectUnsupported([&] {
        return FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_ALLOCATE_BUFFER, nullptr,
                              2, 0, reinterpret_cast<LPSTR>(&text), 0, nullptr);
    });
    EXPECT_EQ(text, nullptr);
}

TEST(VolumeInfo, NullArgumentsMakeNoDifference) {
    expectUnsupported([] {
        return GetVolumeInformationA(nullptr, nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0);
    });
    expectUnsupported([] {
        return GetVolumeInformationW(nullptr, nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0);
    });
    expectUnsupported([] { return GetDriveTypeA(nullptr); });
    expectUnsupported([] { return GetDriveTypeW(nullptr); });
    expectUnsupported(
        [] { return GetDiskFreeSpaceA(nullptr, nullptr, nullptr, nullptr, nullptr); });
    expectUnsupported(
        [] { return GetDiskFreeSpaceW(nullptr, nullptr, nullptr, nullptr, nullptr); });
    expectUnsupported([] { return FormatMessageA(0, nullptr, 0, 0, nullptr, 0, nullptr); });
    expectUnsupported([] { return FormatMessageW(0, nullptr, 0, 0, nullptr, 0, nullptr); });
}

TEST(VolumeInfo, TheTypedCallsRefuseAlike) {
    const QString root = QStringLiteral("/");
    QString name = QStringLiteral("name");
    QString fileSystem = QStringLiteral("file system");
    std::array<unsigned int, 4> words{mark, mark, mark, mark};
    expectUnsupported([&] {
        return static_cast<unsigned>(
            getVolumeInformation(root, name, &words[0], &words[1], &words[2], fileSystem));
    });
    expectUnsupported([&] { return getDriveType(root); });
    expectUnsupported([&] {
        return static_cast<unsigned>(
            getDiskFreeSpace(root, &words[0], &words[1], &words[2], &words[3]));
    });
    expectUnsupported([&] { return formatMessage(0, nullptr, 0, 0, name, nullptr); });
    EXPECT_EQ(name, QStringLiteral("name"));
    EXPECT_EQ(fileSystem, QStringLiteral("file system"));
    EXPECT_EQ(words, (std::array<unsigned int, 4>{mark, mark, mark, mark}));
}

TEST(VolumeInfo, MakingAFileSystemDoesNothingAndLeavesErrnoAlone) {
    const QString text = QStringLiteral("text");
    for (const QString* options : {&text, static_cast<const QString*>(nullptr)}) {
        errno = 77;
        EXPECT_EQ(initializeHfsPlus(text, text, options), 0);
        EXPECT_EQ(errno, 77);
    }
}
