// Starting programs: what is checked, what they are given, and what a failed start leaves.

#include "common/noplaceleft.h"
#include "system/children.h"

#include <KxQts/files/file.h>
#include <KxQts/winapi/files.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace fs = std::filesystem;

using KxTest::Child;
using KxTest::outputOf;
using KxTest::shell;
using KxTest::start;

namespace {

/// Makes a file in the working folder that may be executed.
std::string program(const std::string& name, const std::string& contents, mode_t mode = 0755) {
    std::ofstream(name) << contents;
    chmod(name.c_str(), mode);
    return fs::absolute(name).string();
}

void expectNoStart(const std::string& commandLine, const char* directory = nullptr) {
    errno = 0;
    Child child = start(commandLine, nullptr, directory);
    EXPECT_FALSE(child.started) << commandLine;
    EXPECT_EQ(errno, 14) << commandLine;
    EXPECT_EQ(child.information.hProcess, nullptr);
    EXPECT_EQ(KxTest::knownProcesses(), 0u);
    if (child.started)
        CloseHandle(child.process());
}

} // namespace

TEST(CreateProcess, NeedsBothStructures) {
    char command[] = "true";
    STARTUPINFOA startupInfo{};
    PROCESS_INFORMATION information{};
    information.dwThreadId = 7;
    errno = 0;
    EXPECT_FALSE(CreateProcessA(nullptr, command, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                nullptr, &information));
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(information.dwThreadId, 7u);
    errno = 0;
    EXPECT_FALSE(CreateProcessA(nullptr, command, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                &startupInfo, nullptr));
    EXPECT_EQ(errno, 22);
    wchar_t wide[] = L"true";
    EXPECT_FALSE(CreateProcessW(nullptr, wide, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                nullptr, &information));
    EXPECT_EQ(errno, 22);
}

TEST(CreateProcess, WithoutMemoryTheErrorIs12) {
    const KxTest::NoPlaceLeft exhausted;
    errno = 0;
    EXPECT_FALSE(start("true").started);
    EXPECT_EQ(errno, 12);
}

TEST(CreateProcess, AStartThatFailsClearsWhatIsKnownOfTheProcess) {
    char command[] = "/no/such/program";
    STARTUPINFOA startupInfo{};
    int some = 0;
    PROCESS_INFORMATION information{&some, &some, 7, 7};
    EXPECT_FALSE(CreateProcessA(nullptr, command, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                &startupInfo, &information));
    EXPECT_EQ(information.hProcess, nullptr);
    EXPECT_EQ(information.hThread, nullptr);
    EXPECT_EQ(information.dwProcessId, 0u);
    EXPECT_EQ(information.dwThreadId, 0u);
}

TEST(CreateProcess, TheTypedFormTakesTheSame) {
    STARTUPINFOW startupInfo{};
    PROCESS_INFORMATION information{};
    const QString line = QStringLiteral("/bin/sh -c \"echo $KX; pwd\"");
    QString command = line;
    errno = 0;
    EXPECT_FALSE(createProcess(QString(), command, nullptr, nullptr, false, 0, {}, QString(),
                               nullptr, &information));
    EXPECT_EQ(errno, 22);
    EXPECT_FALSE(createProcess(QString(), command, nullptr, nullptr, false, 0, {}, QString(),
                               &startupInfo, nullptr));
    ASSERT_TRUE(createProcess(QStringLiteral("ignored"), command, nullptr, nullptr, true, 1,
                              {QStringLiteral("KX=1")}, QStringLiteral("/"), &startupInfo,
                              &information));
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(command, line) << "not written to";
    auto* process = static_cast<WProcess*>(information.hProcess);
    EXPECT_TRUE(WProcess::wait(process, INFINITE));
    EXPECT_EQ(process->readAllStandardOutput(), "1\n/\n");
    EXPECT_TRUE(CloseHandle(process));
}

TEST(CreateProcess, GivesTheHandleAndTheProcessId) {
    errno = 5;
    const Child child = start(shell("exit 3"));
    EXPECT_TRUE(child.started);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(child.process()->objectName(), "WProcess");
    EXPECT_EQ(child.information.hThread, nullptr);
    EXPECT_EQ(child.information.dwThreadId, 0u);
    EXPECT_EQ(child.information.dwProcessId, child.process()->processId());
    EXPECT_EQ(child.process()->refCount, 1);
    EXPECT_TRUE(WProcess::wait(child.process(), 10'000));
    EXPECT_EQ(child.process()->exitCode(), 3);
    EXPECT_TRUE(CloseHandle(child.process()));
}

TEST(CreateProcess, TakesWideText) {
    STARTUPINFOW startupInfo{};
    PROCESS_INFORMATION information{};
    wchar_t command[] = L"/bin/sh -c \"echo $KX; pwd\"";
    wchar_t environment[] = L"KX=\u00e9\u4e2d\0PATH=/bin\0";
    ASSERT_TRUE(CreateProcessW(L"ignored", command, nullptr, nullptr, TRUE, 1, environment, L"/",
                               &startupInfo, &information));
    auto* process = static_cast<WProcess*>(information.hProcess);
    EXPECT_TRUE(WProcess::wait(process, INFINITE));
    EXPECT_EQ(QString::fromUtf8(process->readAllStandardOutput()), QStringLiteral("é中\n/\n"));
    EXPECT_TRUE(CloseHandle(process));
}

TEST(CreateProcess, SplitsTheCommandLineAtBlanksOutsideOfQuotes) {
    EXPECT_EQ(outputOf("/usr/bin/printf <%s>  a \"b c\" \"\" d\"\"\"e \\f 'g h'"),
              "<a><b c><d\"e><\\f><'g><h'>");
}

TEST(CreateProcess, EightBitTextIsLatinOne) {
    EXPECT_EQ(outputOf("/usr/bin/printf \xE9"), "\xC3\xA9");
}

TEST(CreateProcess, LooksProgramsUpInThePath) {
    EXPECT_EQ(outputOf("printf found"), "found");
}

TEST(CreateProcess, TheApplicationNameIsIgnored) {
    STARTUPINFOA startupInfo{};
    PROCESS_INFORMATION information{};
    char command[] = "true";
    EXPECT_TRUE(CreateProcessA("/no/such/program", command, nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startupInfo, &information));
    EXPECT_TRUE(WProcess::wait(static_cast<WProcess*>(information.hProcess), INFINITE));
    EXPECT_TRUE(CloseHandle(information.hProcess));
}

TEST(CreateProcess, AnEnvironmentReplacesTheCallers) {
    EXPECT_EQ(outputOf("/usr/bin/env", "A=1\0B=two words\0C=x=y\0"), "A=1\nB=two words\nC=x=y\n");
}

TEST(CreateProcess, WithoutEnvironmentTheCallersIsInherited) {
    setenv("KX_INHERITED", "yes", 1);
    for (const char* none : {static_cast<const char*>(nullptr), "\0"})
        EXPECT_EQ(outputOf(shell("echo $KX_INHERITED"), none), "yes\n");
    unsetenv("KX_INHERITED");
}

TEST(CreateProcess, StartsInTheFolderAskedFor) {
    EXPECT_EQ(outputOf("/bin/pwd", nullptr, "/usr"), "/usr\n");
    EXPECT_EQ(outputOf("/bin/pwd", nullptr, ""), fs::current_path().string() + "\n");
}

TEST(CreateProcess, AProgramWithARelativePathIsLookedForFromThere) {
    fs::create_directory("sub");
    program("sub/tool", "#!/bin/sh\necho tool\n");
    EXPECT_EQ(outputOf("./tool", nullptr, "sub"), "tool\n");
    expectNoStart("./tool");
}

TEST(CreateProcess, TheChildInheritsNoDescriptorOfTheLibrary) {
    const std::string before = outputOf("/bin/ls -x /proc/self/fd");
    HANDLE file = CreateFileA("some", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    const Child other = start("/bin/cat");
    EXPECT_EQ(outputOf("/bin/ls -x /proc/self/fd"), before);
    other.process()->kill();
    EXPECT_TRUE(WProcess::wait(other.process(), INFINITE));
    EXPECT_TRUE(CloseHandle(other.process()));
    EXPECT_TRUE(CloseHandle(file));
}

TEST(CreateProcess, ProgramsThatAreNoneFailToStartAndLeaveNothing) {
    fs::create_directory("folder");
    expectNoStart("/no/such/program at all");
    expectNoStart("no-such-program-in-the-path");
    expectNoStart(fs::absolute("folder").string());
    expectNoStart(program("plain", "#!/bin/sh\n", 0644));
    expectNoStart(program("interpreted", "#! /no/such/interpreter -x\n"));
    expectNoStart(program("empty-head", "#!\n"));
    expectNoStart(program("itself", "#!" + fs::absolute("itself").string() + "\n"));
    expectNoStart("");
    expectNoStart("   ");
    expectNoStart("\"\"");
}

TEST(CreateProcess, FilesOfNoKnownFormatFailToStart) {
    const fs::path formats = "/proc/sys/fs/binfmt_misc";
    if (fs::exists(formats / "status") && std::distance(fs::directory_iterator(formats), {}) > 2)
        GTEST_SKIP() << "this machine's kernel knows formats of other programs";
    expectNoStart(program("garbage", "garbage"));
    expectNoStart(program("nothing", ""));
}

TEST(CreateProcess, AFolderThatDoesNotExistIsAFailedStart) {
    expectNoStart("/bin/true", "/no/such/folder");
    expectNoStart("/bin/true", "/bin/true");
}

TEST(CreateProcess, NullTextsAreEmptyOnes) {
    STARTUPINFOA startupInfo{};
    STARTUPINFOW wideStartupInfo{};
    PROCESS_INFORMATION information{};
    EXPECT_FALSE(CreateProcessA(nullptr, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                &startupInfo, &information));
    EXPECT_EQ(errno, 14);
    EXPECT_FALSE(CreateProcessW(nullptr, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                &wideStartupInfo, &information));
    EXPECT_EQ(errno, 14);
}

TEST(ShellExecute, StartsNothing) {
    errno = 0;
    EXPECT_EQ(ShellExecuteA(nullptr, "open", "/bin/true", "x", "/", 1), nullptr);
    EXPECT_EQ(errno, 50);
    errno = 0;
    EXPECT_EQ(ShellExecuteW(nullptr, L"open", L"/bin/true", L"x", L"/", 1), nullptr);
    EXPECT_EQ(errno, 50);
    EXPECT_EQ(ShellExecuteA(nullptr, nullptr, nullptr, nullptr, nullptr, 1), nullptr);
    EXPECT_EQ(ShellExecuteW(nullptr, nullptr, nullptr, nullptr, nullptr, 1), nullptr);
    errno = 0;
    EXPECT_EQ(shellExecute(nullptr, "open", "/bin/true", "x", "/", 1), nullptr);
    EXPECT_EQ(errno, 50);
}
