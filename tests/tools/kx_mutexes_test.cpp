#include "common/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <fstream>
#include <semaphore.h>
#include <sys/stat.h>
#include <unistd.h>

using KxTest::ProgramResult;
using KxTest::runOnTerminal;
using KxTest::runProgram;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::string kx = KX_PROGRAM;

/// A named semaphore that is gone when the test ends.
class NamedSemaphore {
public:
    NamedSemaphore(std::string toMake, unsigned count)
        : name(std::move(toMake)),
          semaphore(sem_open(name.c_str(), O_CREAT | O_EXCL, 0600, count)) {
        if (semaphore == SEM_FAILED)
            throw std::runtime_error("no semaphore " + name);
    }
    ~NamedSemaphore() {
        close();
        sem_unlink(name.c_str());
    }
    NamedSemaphore(const NamedSemaphore&) = delete;
    NamedSemaphore& operator=(const NamedSemaphore&) = delete;

    void close() {
        if (semaphore)
            sem_close(semaphore);
        semaphore = nullptr;
    }
    [[nodiscard]] int count() const {
        int value = -1;
        sem_getvalue(semaphore, &value);
        return value;
    }

private:
    std::string name;
    sem_t* semaphore;
};

} // namespace

TEST(KxMutexes, ListsNamesWithTheirCountsAndWhoHasThemOpen) {
    const NamedSemaphore taken("/kx-taken", 0);
    NamedSemaphore spare("/kx-spare", 3);
    spare.close();
    const ProgramResult result = runProgram({kx, "mutexes"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, ContainsRegex("^NAME +COUNT +STATE +OWNER +MADE +OPEN IN\n"));
    EXPECT_THAT(result.output, ContainsRegex("/kx-taken +0  taken +[^ ]+ +[-0-9]+ [:0-9]+ +" +
                                             std::to_string(getpid()) + "\n"));
    EXPECT_THAT(result.output, ContainsRegex("/kx-spare +3  free +.* [-?]\n"));
}

TEST(KxMutexes, ListsOnlyTheNamesAskedFor) {
    const NamedSemaphore one("/kx-one", 1);
    const NamedSemaphore two("/kx-two", 1);
    const ProgramResult result = runProgram({kx, "mutexes", "kx-two"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("/kx-two"));
    EXPECT_THAT(result.output, Not(HasSubstr("/kx-one")));
    const ProgramResult missing = runProgram({kx, "mutexes", "/kx-three"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.errors, "kx mutexes: there is no mutex /kx-three\n");
}

TEST(KxMutexes, RemovesOneOnRequest) {
    NamedSemaphore left("/kx-left", 0);
    left.close();
    EXPECT_EQ(runProgram({kx, "mutexes", "--remove", "/kx-left"}).status, 0);
    EXPECT_EQ(sem_open("/kx-left", 0), SEM_FAILED);
    const ProgramResult again = runProgram({kx, "mutexes", "--remove=kx-left"});
    EXPECT_EQ(again.status, 1);
    EXPECT_THAT(again.errors, HasSubstr("there is no mutex /kx-left"));
}

TEST(KxMutexes, RemovesWhatIsOpenOnlyWhenForced) {
    const NamedSemaphore held("/kx-held", 1);
    const ProgramResult refused = runProgram({kx, "mutexes", "--remove", "kx-held"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("open in process " + std::to_string(getpid())));
    EXPECT_EQ(access("/dev/shm/sem.kx-held", F_OK), 0);
    EXPECT_EQ(runProgram({kx, "mutexes", "--remove", "kx-held", "--force"}).status, 0);
    EXPECT_NE(access("/dev/shm/sem.kx-held", F_OK), 0);
}

TEST(KxMutexes, ReleasesOneWhoseOwnerWasKilled) {
    const NamedSemaphore taken("/kx-orphan", 0);
    EXPECT_EQ(runProgram({kx, "mutexes", "--release", "kx-orphan"}).status, 0);
    EXPECT_EQ(taken.count(), 1);
}

TEST(KxMutexes, FilesThatAreNoSemaphoresAreShownAsUnreadable) {
    const std::string path = "/dev/shm/sem.kx-\x1b[2J";
    std::ofstream(path).put('x');
    mkfifo("/dev/shm/sem.kx-fifo", 0600);
    const ProgramResult result = runProgram({kx, "mutexes"});
    const ProgramResult released = runProgram({kx, "mutexes", "--release", "kx-\x1b[2J"});
    unlink(path.c_str());
    unlink("/dev/shm/sem.kx-fifo");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, ContainsRegex("/kx-\\\\x1B\\[2J +\\?  unreadable"));
    EXPECT_THAT(result.output, Not(HasSubstr("kx-fifo")));
    EXPECT_EQ(released.status, 1);
}

TEST(KxMutexes, RemovingAndReleasingExcludeEachOther) {
    EXPECT_EQ(runProgram({kx, "mutexes", "--remove", "a", "--release", "a"}).status, 2);
    EXPECT_EQ(runProgram({kx, "mutexes", "--remove", "a", "b"}).status, 2);
}

TEST(KxMutexes, ColoursAreForTerminalsOnlyAndNotWithNoColor) {
    const NamedSemaphore mutex("/kx-colour", 1);
    const KxTest::Environment plain{{"TERM", "xterm"}, {"NO_COLOR", ""}};
    EXPECT_THAT(runOnTerminal({kx, "mutexes"}, plain).output, HasSubstr("\x1b[32mfree\x1b[0m"));
    EXPECT_THAT(runProgram({kx, "mutexes"}, plain).output, Not(HasSubstr("\x1b")));
    const KxTest::Environment without{{"TERM", "xterm"}, {"NO_COLOR", "1"}};
    EXPECT_THAT(runOnTerminal({kx, "mutexes"}, without).output, Not(HasSubstr("\x1b")));
    const KxTest::Environment dumb{{"TERM", "dumb"}, {"NO_COLOR", ""}};
    EXPECT_THAT(runOnTerminal({kx, "mutexes"}, dumb).output, Not(HasSubstr("\x1b")));
}

TEST(KxMutexes, TheShellCompletesTheirNames) {
    const NamedSemaphore mutex("/kx-complete", 1);
    EXPECT_EQ(runProgram({kx, "--complete", "mutexes", "--remove", "/kx-c"}).output,
              "/kx-complete\n");
}
