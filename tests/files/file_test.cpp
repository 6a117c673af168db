// Opening files.

#include "common/scratchfile.h"
#include "files/openfile.h"

#include <KxQts/files/file.h>
#include <KxQts/winapi/handles.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using KxTest::contentsOf;
using KxTest::openFile;
using KxTest::readAll;
using KxTest::readWrite;
using KxTest::ScratchFile;

namespace {

int modeOf(HANDLE file) {
    return static_cast<int>(static_cast<QFile*>(file)->openMode());
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
