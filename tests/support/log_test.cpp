// Opening, closing and titling the log.

#include "support/logfixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using Korvex::__kx_glog;
using Korvex::IOLog;
using Korvex::WLogFile;
using KxTest::appending;
using KxTest::contentsOf;
using KxTest::linesOf;
using KxTest::Log;
using KxTest::newFile;
using KxTest::ScratchFile;
using KxTest::stamp;
using testing::MatchesRegex;

namespace {

constexpr unsigned inTmp = 0x4000;
constexpr unsigned off = 0x8000;

/// A log as it is before any constructor has run.
class ZeroFilledLog {
public:
    ~ZeroFilledLog() { get().~WLogFile(); }
    WLogFile& get() { return *std::launder(reinterpret_cast<WLogFile*>(memory)); }

private:
    alignas(WLogFile) unsigned char memory[sizeof(WLogFile)] = {};
};

/// Leads a descriptor to a file for a scope.
class Redirected {
public:
    Redirected(int redirected, const std::string& file)
        : descriptor(redirected), before(fcntl(redirected, F_DUPFD_CLOEXEC, 10)) {
        const int opened = open(file.c_str(), O_RDWR | O_CREAT | O_APPEND, 0600);
        dup2(opened, descriptor);
        close(opened);
    }
    ~Redirected() {
        dup2(before, descriptor);
        close(before);
    }
    Redirected(const Redirected&) = delete;
    Redirected& operator=(const Redirected&) = delete;

private:
    int descriptor;
    int before;
};

/// A folder "/tmp" of the test's own where the rights suffice.
class PrivateTmp {
public:
    PrivateTmp() : mounted(mount("none", "/tmp", "tmpfs", 0, nullptr) == 0) {}
    ~PrivateTmp() {
        if (mounted)
            umount("/tmp");
    }
    PrivateTmp(const PrivateTmp&) = delete;
    PrivateTmp& operator=(const PrivateTmp&) = delete;

private:
    bool mounted;
};

int messageV(WLogFile& log, bool withTime, const char* format, ...) {
    va_list args;
    va_start(args, format);
    log.messageV(withTime, QString::fromLatin1(format), args);
    va_end(args);
    return 0;
}

int printV(WLogFile& log, const char* format, ...) {
    va_list args;
    va_start(args, format);
    log.printV(QString::fromLatin1(format), args);
    va_end(args);
    return 0;
}

} // namespace

static_assert(offsetof(WLogFile, fd) == 0);
static_assert(sizeof(WLogFile::fd) == 4);

TEST_F(Log, AZeroFilledOneWritesToDescriptor0UnderAnEmptyTitle) {
    ZeroFilledLog memory;
    WLogFile& log = memory.get();
    EXPECT_EQ(log.fd, 0);
    EXPECT_TRUE(log.title.isNull());
    {
        const Redirected input(0, file.name);
        messageV(log, false, "hello %d", 5);
        messageV(log, true, "with time");
        printV(log, "raw");
    }
    EXPECT_THAT(logged(), MatchesRegex(": hello 5\n" + stamp + " : with time\nraw"));
    EXPECT_EQ(log.closeLog(), -1);
    EXPECT_EQ(log.fd, 0);
}

TEST_F(Log, OpensANewFile) {
    std::ofstream(file.name) << "old";
    EXPECT_EQ(Korvex::IOLogOpen(file.name.c_str(), newFile, "title", "module"), 1);
    EXPECT_GE(__kx_glog.fd, 2);
    EXPECT_THAT(logged(), MatchesRegex(stamp + " title: module; has been loaded.\n"));
}

TEST_F(Log, AppendsToAFile) {
    std::ofstream(file.name) << "old\n";
    EXPECT_EQ(Korvex::IOLogOpen(file.name.c_str(), appending, "title", nullptr), 1);
    EXPECT_THAT(logged(), MatchesRegex("old\n" + stamp + " title: has been loaded.\n"));
    std::ofstream(file.name, std::ios::app) << "another writer\n";
    IOLog("at the end");
    EXPECT_THAT(linesOf(file.name).back(), MatchesRegex(stamp + " title: at the end"));
}

TEST_F(Log, ANewFileGoesBeforeAppending) {
    std::ofstream(file.name) << "old";
    Korvex::IOLogOpen(file.name.c_str(), newFile | appending, "", "");
    EXPECT_THAT(logged(), MatchesRegex(stamp + " : has been loaded.\n"));
    std::filesystem::resize_file(file.name, 0);
    IOLog("x");
    EXPECT_EQ(logged().front(), '\0') << "it does not append: the position stays";
}

TEST_F(Log, EveryoneMayReadAndWriteTheFileWhateverTheMask) {
    const mode_t mask = umask(077);
    openQuietly();
    umask(mask);
    struct stat status {};
    ASSERT_EQ(stat(file.name.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0666U);
}

TEST_F(Log, TheFileCarriesASharedLockAndIsNotInherited) {
    openQuietly();
    EXPECT_NE(fcntl(__kx_glog.fd, F_GETFD) & FD_CLOEXEC, 0);
    const int other = open(file.name.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), -1);
    EXPECT_EQ(flock(other, LOCK_SH | LOCK_NB), 0);
    close(other);
    EXPECT_EQ(fcntl(__kx_glog.fd, F_GETFL) & O_ACCMODE, O_RDWR);
}

TEST_F(Log, AnEmptyPathMeansLogfileLog) {
    Korvex::IOLogOpen("", newFile, nullptr, nullptr);
    EXPECT_THAT(contentsOf("logfile.log"), MatchesRegex(stamp + " : has been loaded.\n"));
    std::filesystem::remove("logfile.log");
}

TEST_F(Log, TheFlagForTheTemporaryFolderKeepsTheFileName) {
    const PrivateTmp tmp;
    for (const char* path : {"x/y/kxqts-test.log", "/kxqts-test.log"}) {
        Korvex::IOLogOpen(path, inTmp | newFile, "", "");
        EXPECT_THAT(contentsOf("/tmp/kxqts-test.log"),
                    MatchesRegex(stamp + " : has been loaded.\n"));
        std::filesystem::remove("/tmp/kxqts-test.log");
        EXPECT_EQ(Korvex::IOLogClose(), 0);
    }
}

TEST_F(Log, TheFlagForTheTemporaryFolderWithoutASlashMeansLogfileLog) {
    const PrivateTmp tmp;
    for (const char* path : {"y.log", ""}) {
        Korvex::IOLogOpen(path, inTmp | newFile, "", "");
        EXPECT_THAT(contentsOf("/tmp/logfile.log"), MatchesRegex(stamp + " : has been loaded.\n"));
        std::filesystem::remove("/tmp/logfile.log");
        EXPECT_EQ(Korvex::IOLogClose(), 0);
    }
    EXPECT_FALSE(std::filesystem::exists("y.log"));
}

TEST_F(Log, APathThatEndsWithASlashCannotBeOpenedInTheTemporaryFolder) {
    const Redirected output(1, file.name);
    Korvex::IOLogOpen("x/", inTmp | newFile, "", "");
    EXPECT_EQ(__kx_glog.fd, 1);
}

TEST_F(Log, WithoutFlagsOnlyTheTitleChanges) {
    openQuietly();
    const int before = __kx_glog.fd;
    EXPECT_EQ(Korvex::IOLogOpen(file.name.c_str(), 0, "other", "module"), 1);
    EXPECT_EQ(__kx_glog.fd, before);
    EXPECT_EQ(__kx_glog.title, "other");
    EXPECT_EQ(Korvex::IOLogOpen(file.name.c_str(), inTmp, "third", "module"), 1);
    EXPECT_EQ(__kx_glog.title, "third");
    for (const unsigned unknown : {~(off | inTmp | newFile | appending), 1U, 8U}) {
        EXPECT_EQ(Korvex::IOLogOpen("other.log", unknown, "fourth", "module"), 1);
        EXPECT_EQ(__kx_glog.fd, before);
        EXPECT_FALSE(std::filesystem::exists("other.log"));
    }
    EXPECT_EQ(__kx_glog.title, "fourth");
    EXPECT_EQ(logged(), "");
}

TEST_F(Log, LoggingOffChangesNothing) {
    openQuietly();
    const int before = __kx_glog.fd;
    EXPECT_EQ(Korvex::IOLogOpen("other.log", off | newFile | appending, "other", "module"), 1);
    EXPECT_EQ(__kx_glog.fd, before);
    EXPECT_EQ(__kx_glog.title, "title");
    EXPECT_FALSE(std::filesystem::exists("other.log"));
    EXPECT_EQ(logged(), "");
}

TEST_F(Log, AFileThatCannotBeOpenedMeansStandardOutputAndNoLine) {
    const Redirected output(1, file.name);
    EXPECT_EQ(Korvex::IOLogOpen("no/such/folder.log", newFile, "title", "module"), 1);
    EXPECT_EQ(__kx_glog.fd, 1);
    EXPECT_EQ(logged(), "");
    IOLog("to standard output");
    EXPECT_THAT(logged(), MatchesRegex(stamp + " title: to standard output\n"));
    EXPECT_EQ(Korvex::IOLogClose(), 0) << "the descriptor less one";
    EXPECT_EQ(__kx_glog.fd, 1);
}

TEST_F(Log, TheFileNeverTakesTheNumberOfAStandardDescriptor) {
    const int input = fcntl(0, F_DUPFD_CLOEXEC, 10);
    close(0);
    Korvex::IOLogOpen(file.name.c_str(), newFile, "", "");
    EXPECT_GE(__kx_glog.fd, 2);
    EXPECT_NE(fcntl(__kx_glog.fd, F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_EQ(fcntl(0, F_GETFD), -1) << "and leaves that number free";
    dup2(input, 0);
    close(input);
}

TEST_F(Log, TheFileMayTakeTheNumberOfStandardError) {
    const int standardError = fcntl(2, F_DUPFD_CLOEXEC, 10);
    close(2);
    Korvex::IOLogOpen(file.name.c_str(), newFile, "", "");
    EXPECT_EQ(__kx_glog.fd, 2);
    EXPECT_EQ(Korvex::IOLogClose(), 0);
    dup2(standardError, 2);
    close(standardError);
}

TEST_F(Log, OpeningAgainReplacesTheDescriptorWithoutClosingIt) {
    openQuietly();
    const int first = __kx_glog.fd;
    const ScratchFile other;
    Korvex::IOLogOpen(other.name.c_str(), newFile, "", "");
    EXPECT_NE(__kx_glog.fd, first);
    EXPECT_NE(fcntl(first, F_GETFD), -1);
    close(first);
}

TEST_F(Log, UsingTheCurrentOneOpensOnlyWhenNoFileIsOpen) {
    for (const int start : {-1, 0, 1}) {
        __kx_glog.fd = start;
        EXPECT_TRUE(Korvex::IOLogOpenUseCurrent(file.name.c_str(), newFile, "first", nullptr));
        EXPECT_GE(__kx_glog.fd, 2);
        const int opened = __kx_glog.fd;
        QString title = QStringLiteral("second");
        EXPECT_FALSE(Korvex::IOLogOpenUseCurrent("other.log", newFile, "second", nullptr));
        EXPECT_FALSE(
            Korvex::IOLogOpenUseCurrent(QStringLiteral("other.log"), newFile, &title, nullptr));
        EXPECT_EQ(__kx_glog.fd, opened);
        EXPECT_EQ(__kx_glog.title, "first");
        EXPECT_FALSE(std::filesystem::exists("other.log"));
        EXPECT_EQ(Korvex::IOLogClose(), 0);
    }
    QString module = QStringLiteral("m\u00F6dule");
    EXPECT_TRUE(
        Korvex::IOLogOpenUseCurrent(QString::fromStdString(file.name), newFile, nullptr, &module));
    EXPECT_THAT(logged(), MatchesRegex(stamp + " : m\xF6"
                                               "dule; has been loaded.\n"));
}

TEST_F(Log, ClosingWritesALineAndThenNothingMore) {
    openQuietly();
    const int descriptor = __kx_glog.fd;
    EXPECT_EQ(Korvex::IOLogClose(), 0);
    EXPECT_EQ(__kx_glog.fd, -1);
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
    const std::string unloaded = logged();
    EXPECT_THAT(unloaded, MatchesRegex(stamp + " title: has been unloaded.\n"));
    IOLog("lost");
    Korvex::IOPrint("lost");
    EXPECT_EQ(Korvex::IOLogClose(), -1);
    EXPECT_EQ(logged(), unloaded);
}

TEST_F(Log, ClosingADescriptorThatIsGoneFailsAsCloseDoes) {
    openQuietly();
    close(__kx_glog.fd);
    EXPECT_EQ(Korvex::IOLogClose(), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(__kx_glog.fd, -1);
}

TEST_F(Log, LinesAboutAnotherLogGoToTheLogOfTheProcess) {
    openQuietly();
    const ScratchFile other;
    WLogFile log;
    EXPECT_EQ(log.openLog(QString::fromStdString(other.name), QStringLiteral("other"),
                          QStringLiteral("module"), newFile),
              1);
    EXPECT_GE(log.fd, 2);
    EXPECT_EQ(log.title, "other");
    EXPECT_EQ(log.closeLog(), 0);
    EXPECT_EQ(contentsOf(other.name), "");
    EXPECT_THAT(logged(), MatchesRegex(stamp + " title: module; has been loaded.\n" + stamp +
                                       " title: has been unloaded.\n"));
}

TEST_F(Log, TheTitleIsExchanged) {
    QString before;
    Korvex::IOLogSetTitle(QStringLiteral("one"), &before);
    Korvex::IOLogSetTitle(QStringLiteral("two"), &before);
    EXPECT_EQ(before, "one");
    Korvex::IOLogSetTitle(QStringLiteral("three"), nullptr);
    EXPECT_EQ(__kx_glog.title, "three");
    QString same = QStringLiteral("four");
    Korvex::IOLogSetTitle(same, &same);
    EXPECT_EQ(__kx_glog.title, "four");
    EXPECT_EQ(same, "three");
}
