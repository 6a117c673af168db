// Reading, writing, positions and sizes of open files.

#include "common/scratchfile.h"
#include "files/openfile.h"

#include <KxQts/files/file.h>
#include <KxQts/winapi/handles.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <string>
#include <unistd.h>
#include <vector>

using KxTest::contentsOf;
using KxTest::openFile;
using KxTest::readAll;
using KxTest::readWrite;
using KxTest::ScratchFile;

namespace {

bool write(HANDLE file, const std::string& text) {
    DWORD done = 0;
    return WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr) &&
           done == text.size();
}

LARGE_INTEGER large(long long value) {
    LARGE_INTEGER integer;
    integer.QuadPart = value;
    return integer;
}

} // namespace

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
