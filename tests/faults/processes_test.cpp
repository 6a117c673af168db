#include "common/child.h"
#include "faults/sweep.h"
#include "platform/linux/processtable.h"
#include "platform/replaceable.h"
#include "system/children.h"

#include <KxQts/errors.h>
#include <KxQts/system/commandline.h>
#include <KxQts/system/processlist.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>

using namespace KxTest;
namespace Error = Korvex::Error;

namespace {

/// Everything that can be in the way of a child.
std::vector<Fault> allFaults() {
    return processFaults() + fileFaults() + memoryFaults();
}

const QString touchProgram = QStringLiteral("/bin/touch");

/// Runs a program, which must come to its end.
bool runToItsEnd(const char* program, const void* environment, const char* folder) {
    STARTUPINFOA startup{};
    PROCESS_INFORMATION information{};
    std::array<char, 64> line{};
    std::strcpy(line.data(), program);
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0,
                        const_cast<void*>(environment), folder, &startup, &information))
        return false;
    const int error = errno;
    const bool hasEnded = WProcess::wait(static_cast<WProcess*>(information.hProcess), INFINITE);
    const bool isClosed = CloseHandle(information.hProcess);
    errno = error;
    return hasEnded && isClosed;
}

/// Two processes and no more, as a machine's own are too many to be listed thousands of times.
class FewProcesses {
public:
    FewProcesses() : inForce(table) {
        write(1, "first");
        write(2, "second");
    }

private:
    static void write(int id, const std::string& name) {
        const std::filesystem::path folder = "processes/" + std::to_string(id);
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "stat") << id << " (" << name << ") S 0"
                                       << " 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n";
        std::ofstream(folder / "status") << "Name:\t" << name << "\nUid:\t0\t0\t0\t0\n";
        std::ofstream(folder / "cgroup") << "0::/\n";
    }

    Korvex::LinuxProcessTable table{"processes"};
    Korvex::Replacement<Korvex::ProcessTable> inForce;
};

/// Qt does not look whether it was given the memory for a connection, and its environments end the
/// process without. A start that an exception ends leaves a process object that believes in a
/// child, for whose end its destructor waits.
const std::vector<const char*> fatal{"connectImpl", "QProcessEnvironment", "startCommand"};

/// Whatever happened, the library knows no process any more in the end.
void verifyNoneIsKnown(bool) {
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
}

} // namespace

TEST(ProcessFaults, RunningAProgram) {
    sweep(allFaults(), {.name = "run",
                        .run = [] { return runToItsEnd("/bin/true", nullptr, nullptr); },
                        .verify = verifyNoneIsKnown,
                        .cannotBeTold = fatal,
                        .reports = {Error::CannotStart, Error::None}});
}

TEST(ProcessFaults, RunningAProgramWithAnEnvironmentInAFolder) {
    sweep(allFaults(),
          {.name = "run in",
           .run = [] { return runToItsEnd("sh -c \"test $A = b\"", "A=b\0C=d\0", "/"); },
           .verify = verifyNoneIsKnown,
           .cannotBeTold = fatal,
           .reports = {Error::CannotStart, Error::None}});
}

// Where no thread is to be had to wait for its end, the process stays known until another one is
// closed.
TEST(ProcessFaults, ClosingAProcessThatRuns) {
    const auto closeOne = [] {
        const Child child = start("/bin/sleep 0.01");
        return child.started && CloseHandle(child.process());
    };
    sweep(processFaults(), {.name = "close running",
                            .run = closeOne,
                            .verify =
                                [=](bool) {
                                    EXPECT_TRUE(closeOne());
                                    verifyNoneIsKnown(true);
                                },
                            .reports = {Error::CannotStart},
                            .onAllThreads = true});
}

TEST(ProcessFaults, ListingProcesses) {
    const FewProcesses few;
    sweep(fileFaults() + memoryFaults(), {.name = "list", .run = [] {
                                              kinfo_proc* list = nullptr;
                                              unsigned long count = 0;
                                              const int error = GetBSDProcessList(&list, &count);
                                              const std::unique_ptr<kinfo_proc[]> owned(list);
                                              return error == 0 && count == 2;
                                          }});
}

TEST(ProcessFaults, LookingForAnApplication) {
    const FewProcesses few;
    sweep(fileFaults() + memoryFaults(),
          {.name = "running", .run = [] {
               bool isRunning = false;
               return checkApplicationAlreadyRunning("second", &isRunning, nullptr) == 0 &&
                      isRunning;
           }});
}

TEST(ProcessFaults, RunningACommandLineAsRoot) {
    EXPECT_TRUE(inChild([] {
        setRootModeFor_executeCommandLineTool();
        QStringList arguments;
        arguments.append(QStringLiteral("touched"));
        sweep(
            processFaults() + memoryFaults(),
            {.name = "command line",
             .prepare = [] { std::filesystem::remove("touched"); },
             .run =
                 [&] {
                     QString output;
                     return executeCommandLineTool(touchProgram, arguments, output, 1) == 0;
                 },
             .verify =
                 [](bool succeeded) { EXPECT_EQ(std::filesystem::exists("touched"), succeeded); }});
    }));
}
