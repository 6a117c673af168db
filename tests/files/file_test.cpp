#include "common/scratchfile.h"

#include <KxQts/files/file.h>
#include <KxQts/winapi/handles.h>

#include <gtest/gtest.h>

#include <QFileInfo>

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

using KxTest::contentsOf;
using KxTest::ScratchFile;

namespace {

constexpr DWORD readWrite = GENERIC_READ | GENERIC_WRITE;

HANDLE openFile(const std::string& name, DWORD access, DWORD disposition, DWORD share = 0,
                DWORD flags = 0) {
    return CreateFileA(name.c_str(), access, share, nullptr, disposition, flags, nullptr);
}

int modeOf(HANDLE file) {
    return static_cast<int>(static_cast<QFile*>(file)->openMode());
}

bool write(HANDLE file, const std::string& text) {
    DWORD done = 0;
    return WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr) &&
           done == text.size();
}

std::string readAll(HANDLE file) {
    std::string text(1000, '\0');
    DWORD done = 0;
    EXPECT_TRUE(ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr));
    text.resize(done);
    return text;
}

LARGE_INTEGER large(long long value) {
    LARGE_INTEGER integer;
    integer.QuadPart = value;
    return integer;
}

} // namespace

TEST(CreateFile, NewNeverCreates) {
    const std::string missing = "missing";
    errno = 0;
    EXPECT_EQ(openFile(missing, readWrite, CREATE_NEW), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_NE(access(missing.c_str(), F_OK), 0);

    const ScratchFile existing("text");
    EXPECT_EQ(openFile(existing.name, readWrite, CREATE_NEW), nullptr);
    EXPECT_EQ(errno, 17);
    EXPECT_EQ(contentsOf(existing.name), "text");
}

TEST(CreateFile, AlwaysKeepsTheContentsOfAnExistingFile) {
    const ScratchFile file("text");
    HANDLE handle = openFile(file.name, readWrite, CREATE_ALWAYS);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(readAll(handle), "text");
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_EQ(contentsOf(file.name), "text");
}

TEST(CreateFile, AlwaysAndOpenAlwaysCreateWhatIsMissing) {
    for (DWORD disposition : {CREATE_ALWAYS, OPEN_ALWAYS}) {
        const ScratchFile file;
        const mode_t mask = umask(0);
        HANDLE handle = openFile(file.name, GENERIC_WRITE, disposition);
        umask(mask);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(errno, 0);
        EXPECT_TRUE(CloseHandle(handle));
        struct stat facts {};
        ASSERT_EQ(stat(file.name.c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 0777, 0666u);
    }
}

TEST(CreateFile, OpenExistingNeedsTheFile) {
    errno = 0;
    EXPECT_EQ(openFile("missing", GENERIC_READ, OPEN_EXISTING), nullptr);
    EXPECT_EQ(errno, 2);
    const ScratchFile file("text");
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(readAll(handle), "text");
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(CreateFile, TruncateExistingEmptiesTheFile) {
    errno = 0;
    EXPECT_EQ(openFile("missing", GENERIC_WRITE, TRUNCATE_EXISTING), nullptr);
    EXPECT_EQ(errno, 2);
    const ScratchFile file("text");
    HANDLE handle = openFile(file.name, GENERIC_WRITE, TRUNCATE_EXISTING);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(contentsOf(file.name), "");
    EXPECT_EQ(modeOf(handle), QIODevice::WriteOnly | QIODevice::Truncate);
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(CreateFile, OtherDispositionsAreRefusedBeforeAnythingIsOpened) {
    const ScratchFile file("text");
    for (DWORD disposition : {0u, 6u, 0xFFFFFFFFu}) {
        errno = 0;
        EXPECT_EQ(openFile(file.name, readWrite, disposition), nullptr);
        EXPECT_EQ(errno, 22);
    }
}

TEST(CreateFile, AMissingFileIsNotFoundWhateverKeepsItFromView) {
    // A path through something that is no folder: the system's own answer would be another.
    const ScratchFile file("text");
    errno = 0;
    EXPECT_EQ(openFile(file.name + "/inside", GENERIC_READ, OPEN_EXISTING), nullptr);
    EXPECT_EQ(errno, 2);
    EXPECT_EQ(openFile(file.name + "/inside", GENERIC_READ, OPEN_ALWAYS), nullptr);
    EXPECT_EQ(errno, ENOTDIR) << "what the opening itself says";
}

TEST(CreateFile, AccessDecidesTheMode) {
    const ScratchFile file("text");
    struct Case {
        DWORD access;
        int mode;
    };
    for (const Case& expected :
         {Case{0, QIODevice::ReadOnly}, Case{GENERIC_READ, QIODevice::ReadOnly},
          Case{GENERIC_WRITE, QIODevice::WriteOnly}, Case{readWrite, QIODevice::ReadWrite},
          Case{GENERIC_ALL, QIODevice::ReadOnly}, Case{0xFFFFFFFFu, QIODevice::ReadWrite}}) {
        HANDLE handle = openFile(file.name, expected.access, OPEN_EXISTING);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(modeOf(handle), expected.mode);
        EXPECT_TRUE(CloseHandle(handle));
    }
}

TEST(CreateFile, TransfersAgainstTheAccessFailWithAnInputOutputError) {
    const ScratchFile file("text");
    char letter = 'x';
    DWORD done = 77;
    HANDLE reader = openFile(file.name, 0, OPEN_EXISTING);
    EXPECT_FALSE(WriteFile(reader, &letter, 1, &done, nullptr));
    EXPECT_EQ(errno, 5);
    EXPECT_TRUE(CloseHandle(reader));
    HANDLE writer = openFile(file.name, GENERIC_WRITE, OPEN_EXISTING);
    EXPECT_FALSE(ReadFile(writer, &letter, 1, &done, nullptr));
    EXPECT_EQ(errno, 5);
    EXPECT_EQ(done, 77u) << "the count is left alone";
    EXPECT_TRUE(CloseHandle(writer));
    EXPECT_EQ(contentsOf(file.name), "text");
}

TEST(CreateFile, TheModeCarriesWhatWasAskedForAndNothingActsOnIt) {
    const ScratchFile file("text");
    HANDLE handle =
        openFile(file.name, readWrite, OPEN_EXISTING, FILE_SHARE_READ, FILE_FLAG_DELETE_ON_CLOSE);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(modeOf(handle), QIODevice::ReadWrite | 0x40 | 0x80);
    EXPECT_EQ(readAll(handle), "text");
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_EQ(contentsOf(file.name), "text") << "neither emptied nor deleted";

    handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING, FILE_SHARE_WRITE);
    EXPECT_EQ(modeOf(handle), QIODevice::ReadOnly | 0x40);
    EXPECT_TRUE(CloseHandle(handle));
    handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING, FILE_SHARE_DELETE,
                      FILE_ATTRIBUTE_READONLY | FILE_FLAG_OVERLAPPED);
    EXPECT_EQ(modeOf(handle), QIODevice::ReadOnly);
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(CreateFile, SharingTakesASharedLockAndNothingElseTakesAny) {
    const ScratchFile file("text");
    const int other = open(file.name.c_str(), O_RDONLY | O_CLOEXEC);
    for (DWORD share : {FILE_SHARE_READ, FILE_SHARE_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE}) {
        HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING, share);
        EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), -1) << share;
        EXPECT_EQ(flock(other, LOCK_SH | LOCK_NB), 0) << share;
        EXPECT_TRUE(CloseHandle(handle));
        EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), 0) << "closing gives the lock up";
        flock(other, LOCK_UN);
    }
    for (DWORD share : {0u, FILE_SHARE_DELETE}) {
        HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING, share);
        EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), 0) << share;
        flock(other, LOCK_UN);
        EXPECT_TRUE(CloseHandle(handle));
    }
    close(other);
}

TEST(CreateFile, SharingWaitsForSomeonesExclusiveLock) {
    const ScratchFile file("text");
    const int other = open(file.name.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    HANDLE opened = nullptr;
    std::thread opener(
        [&] { opened = openFile(file.name, GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ); });
    KxTest::waitUntilBlockedOnLock(file.name);
    flock(other, LOCK_UN);
    opener.join();
    EXPECT_NE(opened, nullptr);
    EXPECT_TRUE(CloseHandle(opened));
    close(other);
}

TEST(CreateFile, TheFirstDescriptorIsOneLikeOthers) {
    const ScratchFile file("text");
    const int input = fcntl(0, F_DUPFD_CLOEXEC, 10);
    close(0);
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(static_cast<QFile*>(handle)->handle(), 0);
    EXPECT_EQ(readAll(handle), "text");
    EXPECT_TRUE(CloseHandle(handle));
    dup2(input, 0);
    close(input);
}

TEST(CreateFile, DescriptorsAreNotInherited) {
    const ScratchFile file("text");
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    const int descriptor = static_cast<QFile*>(handle)->handle();
    EXPECT_TRUE((fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0);
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1) << "closed with its handle";
}

TEST(CreateFile, EightBitNamesAreLatin1AndOpenedAsSuch) {
    const ScratchFile file(KxTest::Named{"na\xefve"}, "text");
    // The existence test asks by the name itself, which this system writes in UTF-8.
    EXPECT_EQ(openFile(file.name, GENERIC_READ, OPEN_EXISTING), nullptr);
    EXPECT_EQ(errno, 2);
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_ALWAYS);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(readAll(handle), "text");
    EXPECT_TRUE(CloseHandle(handle));
    const ScratchFile sameInUtf8(KxTest::Named{"na\xc3\xafve"}, "another");
    handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    ASSERT_NE(handle, nullptr) << "both names exist";
    EXPECT_EQ(readAll(handle), "text");
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_EQ(openFile(file.name, GENERIC_READ, CREATE_NEW), nullptr);
    EXPECT_EQ(errno, 17) << "asked by the name itself, too";
}

TEST(CreateFile, WideNamesAreNarrowed) {
    const ScratchFile file(KxTest::Named{"?"}, "question");
    HANDLE handle = CreateFileW(L"\u20ac", GENERIC_READ, 0, nullptr, OPEN_ALWAYS, 0, nullptr);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(readAll(handle), "question");
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_EQ(CreateFileW(L"\u20ac", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr), nullptr);
    EXPECT_EQ(errno, 2) << "the name itself does not exist";
}

TEST(CreateFile, NullAndEmptyNamesAreNotFound) {
    for (DWORD disposition : {CREATE_NEW, CREATE_ALWAYS, OPEN_EXISTING, OPEN_ALWAYS}) {
        EXPECT_EQ(CreateFileA(nullptr, readWrite, 0, nullptr, disposition, 0, nullptr), nullptr);
        EXPECT_EQ(errno, 2);
        EXPECT_EQ(CreateFileW(nullptr, readWrite, 0, nullptr, disposition, 0, nullptr), nullptr);
        EXPECT_EQ(errno, 2);
        EXPECT_EQ(CreateFileA("", readWrite, 0, nullptr, disposition, 0, nullptr), nullptr);
        EXPECT_EQ(errno, 2);
    }
}

TEST(CreateFile, ANameWithAZeroInsideIsNotTheNameInFrontOfIt) {
    const ScratchFile file("text");
    const QString name = QString::fromStdString(file.name) + QChar() + u'x';
    for (unsigned int disposition : {OPEN_EXISTING, TRUNCATE_EXISTING}) {
        errno = 0;
        EXPECT_EQ(createFile(name, readWrite, 0, nullptr, disposition, 0, nullptr), nullptr);
        EXPECT_EQ(errno, 2);
    }
    EXPECT_EQ(contentsOf(file.name), "text");
}

TEST(CreateFile, AFailureOfTheSystemIsPassedOn) {
    EXPECT_EQ(openFile(std::string(5000, 'x'), GENERIC_READ, OPEN_ALWAYS), nullptr);
    EXPECT_EQ(errno, ENAMETOOLONG);
    EXPECT_EQ(openFile(".", GENERIC_WRITE, OPEN_EXISTING), nullptr);
    EXPECT_EQ(errno, EISDIR);
}

TEST(CreateFile, TakesAFileObjectOver) {
    const ScratchFile existing("text");
    auto* file = new QFile(QString::fromStdString(existing.name));
    EXPECT_EQ(createFile(file, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr), file);
    EXPECT_EQ(file->objectName(), "QFile");
    EXPECT_EQ(readAll(file), "text");
    EXPECT_TRUE(CloseHandle(file));
    errno = 0;
    EXPECT_FALSE(CloseHandle(file));
    EXPECT_EQ(errno, 22);
}

TEST(CreateFile, DeletesAFileObjectThatItCouldNotOpen) {
    struct Watched : QFile {
        explicit Watched(bool& goneFlag) : QFile("missing"), gone(goneFlag) {}
        ~Watched() override { gone = true; }
        bool& gone;
    };
    bool gone = false;
    EXPECT_EQ(createFile(new Watched(gone), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
              nullptr);
    EXPECT_TRUE(gone);
    errno = 0;
    EXPECT_EQ(createFile(static_cast<QFile*>(nullptr), 0, 0, nullptr, OPEN_EXISTING, 0, nullptr),
              nullptr);
    EXPECT_EQ(errno, 12);
}

TEST(CreateFile, AFileObjectThatIsOpenAlreadyStaysAsItIs) {
    // It refuses the new descriptor without naming an error, and no error is a success.
    const ScratchFile existing("text");
    auto* file = new QFile(QString::fromStdString(existing.name));
    ASSERT_TRUE(file->open(QIODevice::ReadOnly));
    const int descriptor = file->handle();
    EXPECT_EQ(createFile(file, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr), file);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(file->handle(), descriptor);
    EXPECT_EQ(readAll(file), "text");
    EXPECT_TRUE(CloseHandle(file));
}

TEST(CreateFile, AFileObjectThatRefusesTheDescriptorNamesTheError) {
    // One that is open already refuses it and keeps the error that it has.
    auto* file = new QFile(QStringLiteral("/dev/full"));
    ASSERT_TRUE(file->open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    ASSERT_EQ(file->write("x", 1), -1);
    const int error = file->error();
    ASSERT_NE(error, 0);
    errno = 0;
    EXPECT_EQ(createFile(file, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr), nullptr);
    EXPECT_EQ(errno, error);
}

TEST(Transfer, ZeroBytesNullBuffersAndBadHandlesAreRefused) {
    const ScratchFile file("text");
    HANDLE handle = openFile(file.name, readWrite, OPEN_EXISTING);
    char buffer[4];
    DWORD done = 77;
    const auto refused = [&](BOOL result) {
        const bool asStated = result == FALSE && errno == 22 && done == 77;
        errno = 0;
        return asStated;
    };
    EXPECT_TRUE(refused(ReadFile(handle, buffer, 0, &done, nullptr)));
    EXPECT_TRUE(refused(ReadFile(handle, nullptr, 4, &done, nullptr)));
    EXPECT_TRUE(refused(WriteFile(handle, buffer, 0, &done, nullptr)));
    EXPECT_TRUE(refused(WriteFile(handle, nullptr, 4, &done, nullptr)));
    static_cast<QFile*>(handle)->close();
    EXPECT_TRUE(refused(ReadFile(handle, buffer, 4, &done, nullptr))) << "not open";
    EXPECT_TRUE(CloseHandle(handle));
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    for (HANDLE bad : {HANDLE(nullptr), INVALID_HANDLE_VALUE, handle, event}) {
        EXPECT_TRUE(refused(ReadFile(bad, buffer, 4, &done, nullptr)));
        EXPECT_TRUE(refused(WriteFile(bad, buffer, 4, &done, nullptr)));
        EXPECT_TRUE(refused(FlushFileBuffers(bad)));
    }
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Transfer, ReadingAtTheEndIsASuccessOfNoBytes) {
    const ScratchFile file("text");
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    char buffer[10];
    DWORD done = 77;
    EXPECT_TRUE(ReadFile(handle, buffer, sizeof buffer, &done, nullptr));
    EXPECT_EQ(done, 4u);
    errno = 5;
    EXPECT_TRUE(ReadFile(handle, buffer, sizeof buffer, &done, nullptr));
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(errno, 0);
    EXPECT_TRUE(ReadFile(handle, buffer, sizeof buffer, nullptr, nullptr)) << "no count wanted";
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(Transfer, WhatIsWrittenIsSeenAfterAFlush) {
    const ScratchFile file;
    HANDLE handle = openFile(file.name, readWrite, CREATE_ALWAYS);
    EXPECT_TRUE(write(handle, "text"));
    errno = 99;
    EXPECT_TRUE(FlushFileBuffers(handle));
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(contentsOf(file.name), "text");
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(Transfer, AFullDeviceMakesTheFlushFail) {
    HANDLE handle = openFile("/dev/full", GENERIC_WRITE, OPEN_EXISTING);
    ASSERT_NE(handle, nullptr);
    EXPECT_TRUE(write(handle, "text"));
    EXPECT_FALSE(FlushFileBuffers(handle));
    const std::vector<char> block(1 << 20, 'x');
    EXPECT_FALSE(
        WriteFile(handle, block.data(), static_cast<DWORD>(block.size()), nullptr, nullptr));
    EXPECT_EQ(errno, 5);
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(Transfer, ReadsOfEverySizeAndPlaceGiveTheFilesBytes) {
    constexpr DWORD size = 100'000;
    std::string text(size, '\0');
    for (DWORD i = 0; i < size; ++i)
        text[i] = static_cast<char>(i * 31 + i / 256);
    const ScratchFile file(text);
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    std::string buffer(size, '\0');
    for (DWORD count : {1u, 64u, 4095u, 4096u, 4097u, 16383u, 16384u, 16385u, 50'000u}) {
        for (DWORD place : {0u, 1u, 4096u, 16384u, 49'999u, size - 1}) {
            SCOPED_TRACE(testing::Message() << count << " bytes at " << place);
            ASSERT_EQ(SetFilePointer(handle, static_cast<LONG>(place), nullptr, FILE_BEGIN), place);
            DWORD done = 0;
            for (DWORD at = place, round = 0; at < size && round < 3; at += done, ++round) {
                ASSERT_TRUE(ReadFile(handle, buffer.data(), count, &done, nullptr));
                ASSERT_EQ(done, std::min(count, size - at));
                ASSERT_EQ(buffer.compare(0, done, text, at, done), 0);
            }
        }
    }
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(Transfer, ReadingAndWritingMayAlternate) {
    const ScratchFile file("0123456789");
    HANDLE handle = openFile(file.name, readWrite, OPEN_EXISTING);
    char letters[3] = {};
    EXPECT_TRUE(ReadFile(handle, letters, 2, nullptr, nullptr));
    EXPECT_TRUE(write(handle, "ab"));
    EXPECT_TRUE(ReadFile(handle, letters, 2, nullptr, nullptr));
    EXPECT_STREQ(letters, "45");
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_EQ(contentsOf(file.name), "01ab456789");
}

TEST(FilePointer, MovesFromTheBeginningTheCurrentPlaceAndTheEnd) {
    const ScratchFile file("0123456789");
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    LARGE_INTEGER place = large(-1);
    errno = 99;
    EXPECT_TRUE(SetFilePointerEx(handle, large(4), &place, FILE_BEGIN));
    EXPECT_EQ(place.QuadPart, 4);
    EXPECT_EQ(errno, 0);
    EXPECT_TRUE(SetFilePointerEx(handle, large(-1), &place, FILE_CURRENT));
    EXPECT_EQ(place.QuadPart, 3);
    EXPECT_TRUE(SetFilePointerEx(handle, large(-2), &place, FILE_END));
    EXPECT_EQ(place.QuadPart, 8);
    EXPECT_TRUE(SetFilePointerEx(handle, large(0), nullptr, FILE_CURRENT));
    EXPECT_EQ(readAll(handle), "89");
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(FilePointer, MayLieBehindTheEnd) {
    const ScratchFile file("0123");
    HANDLE handle = openFile(file.name, readWrite, OPEN_EXISTING);
    EXPECT_EQ(SetFilePointer(handle, 6, nullptr, FILE_BEGIN), 6u);
    EXPECT_TRUE(write(handle, "x"));
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_EQ(contentsOf(file.name), std::string("0123\0\0x", 7));
}

TEST(FilePointer, FailuresLeaveMinusOneBehindTheExtendedCall) {
    const ScratchFile file("text");
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    LARGE_INTEGER place = large(77);
    const auto failed = [&](BOOL result) {
        const bool asStated = result == FALSE && errno == -1 && place.QuadPart == 77;
        errno = 0;
        return asStated;
    };
    EXPECT_TRUE(failed(SetFilePointerEx(handle, large(-1), &place, FILE_BEGIN)));
    EXPECT_TRUE(failed(SetFilePointerEx(handle, large(0), &place, 3)));
    EXPECT_TRUE(failed(SetFilePointerEx(handle, large(0), &place, 0xFFFFFFFFu)));
    EXPECT_TRUE(failed(SetFilePointerEx(nullptr, large(0), &place, FILE_BEGIN)));
    SetFilePointer(handle, 1, nullptr, FILE_BEGIN);
    EXPECT_TRUE(failed(SetFilePointerEx(handle, large(LLONG_MAX), &place, FILE_CURRENT)))
        << "a distance beyond every position";
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_TRUE(failed(SetFilePointerEx(handle, large(0), &place, FILE_BEGIN)));
}

TEST(FilePointer, TheTypedCallLeavesTwentyTwo) {
    const ScratchFile file("text");
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    long long place = 77;
    EXPECT_FALSE(setFilePointer(handle, -1, &place, FILE_BEGIN));
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(place, 77);
    EXPECT_TRUE(setFilePointer(handle, 2, &place, FILE_BEGIN));
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(place, 2);
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(FilePointer, TheHighWordIsAddedToTheSignedLowWord) {
    const ScratchFile file;
    HANDLE handle = openFile(file.name, readWrite, CREATE_ALWAYS);
    LONG high = 1;
    EXPECT_EQ(SetFilePointer(handle, 5, &high, FILE_BEGIN), 5u);
    EXPECT_EQ(high, 1);
    high = 1;
    EXPECT_EQ(SetFilePointer(handle, -1, &high, FILE_BEGIN), 0xFFFFFFFFu) << "2^32 − 1 here";
    EXPECT_EQ(high, 0);
    EXPECT_EQ(errno, 0);
    high = 3;
    EXPECT_EQ(SetFilePointer(handle, INT32_MIN, &high, FILE_BEGIN), 0x80000000u);
    EXPECT_EQ(high, 2);
    high = INT32_MIN;
    EXPECT_EQ(SetFilePointer(handle, INT32_MIN, &high, FILE_CURRENT), INVALID_SET_FILE_POINTER)
        << "the sum of both is below all numbers";
    EXPECT_EQ(high, INT32_MIN);
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(FilePointer, AFailureOfTheTwoWordCallLeavesTheHighWordAlone) {
    const ScratchFile file("text");
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    LONG high = 0;
    EXPECT_EQ(SetFilePointer(handle, -1, &high, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(high, 0);
    high = -5;
    EXPECT_EQ(SetFilePointer(handle, 0, &high, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(high, -5);
    EXPECT_EQ(SetFilePointer(handle, 0, nullptr, FILE_END), 4u);
    EXPECT_EQ(SetFilePointer(handle, -1, nullptr, FILE_END), 3u);
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(FileSize, IsToldInOneWordOrTwo) {
    const ScratchFile file;
    ASSERT_EQ(truncate((std::string(file.create()).c_str()), 0x123456789LL), 0);
    HANDLE handle = openFile(file.name, GENERIC_READ, OPEN_EXISTING);
    LARGE_INTEGER size = large(0);
    errno = 99;
    EXPECT_TRUE(GetFileSizeEx(handle, &size));
    EXPECT_EQ(size.QuadPart, 0x123456789LL);
    DWORD high = 0;
    EXPECT_EQ(GetFileSize(handle, &high), 0x23456789u);
    EXPECT_EQ(high, 1u);
    EXPECT_EQ(GetFileSize(handle, nullptr), 0x23456789u);
    EXPECT_FALSE(GetFileSizeEx(handle, nullptr));
    EXPECT_EQ(errno, 99);
    EXPECT_TRUE(CloseHandle(handle));
}

TEST(FileSize, OfWhatIsNoFileIsZero) {
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    errno = 99;
    for (HANDLE bad : {HANDLE(nullptr), INVALID_HANDLE_VALUE, event}) {
        DWORD high = 7;
        LARGE_INTEGER size = large(77);
        EXPECT_EQ(GetFileSize(bad, &high), 0u);
        EXPECT_EQ(high, 0u);
        EXPECT_EQ(GetFileSize(bad, nullptr), 0u);
        EXPECT_FALSE(GetFileSizeEx(bad, &size));
        EXPECT_EQ(size.QuadPart, 77);
    }
    EXPECT_EQ(errno, 99);
    EXPECT_TRUE(CloseHandle(event));
}
