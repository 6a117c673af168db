#include "support/enginelog.h"

#include "fakes/imagelist.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using Korvex::engineLogPath;

namespace {

const QString noFolder = QStringLiteral("no/such/folder");

QString pathFor(const std::string& library) {
    const int headers[2] = {};
    KxTest::FakeImageList images;
    images.list = {{"/bin/program", &headers[0]}, {library, &headers[1]}};
    images.own = &headers[1];
    return engineLogPath(noFolder);
}

} // namespace

TEST(EngineLog, LiesBesideTheLibraryUnderItsName) {
    EXPECT_EQ(pathFor("/usr/local/lib/Korvex/libKxQts.so"), "/usr/local/lib/Korvex/libKxQts.log");
    EXPECT_EQ(pathFor("/opt/libKxQts.so.1.2"), "/opt/libKxQts.so.1.log") << "from the last dot";
}

TEST(EngineLog, TheLastDotMayBeInAFolder) {
    EXPECT_EQ(pathFor("/opt/v1.2/libKxQts"), "/opt/v1.log");
}

TEST(EngineLog, IsEmptyWithoutADot) {
    EXPECT_EQ(pathFor("/opt/libKxQts"), "");
}

TEST(EngineLog, BytesOfThePathAreLatin1) {
    EXPECT_EQ(pathFor("/opt/gr\xC3\xB6\xDF/lib.so").toLatin1(), "/opt/gr\xC3\xB6\xDF/lib.log");
}

TEST(EngineLog, TheMainProgramIsNotLookedAt) {
    const int headers[2] = {};
    KxTest::FakeImageList images;
    images.list = {{"/bin/program.exe", &headers[0]}, {"/lib/other.so", &headers[1]}};
    images.own = &headers[0];
    EXPECT_EQ(engineLogPath(noFolder), "");
    images.list.clear();
    EXPECT_EQ(engineLogPath(noFolder), "");
}

TEST(EngineLog, LiesInTheInstallationFolderWhereThereIsOne) {
    std::filesystem::create_directory("installation");
    EXPECT_EQ(engineLogPath(QStringLiteral("installation")), "installation/KxQts.log");
    std::filesystem::remove("installation");
    std::ofstream("installation") << "a file is no folder";
    EXPECT_EQ(engineLogPath(QStringLiteral("installation")), "");
    std::filesystem::remove("installation");
}

TEST(EngineLog, TheInstallationFolderIsTheSystems) {
    std::filesystem::create_directories("root/System/Installation");
    const pid_t child = fork();
    if (child == 0) {
        const bool moved =
            (chroot("root") == 0 || (unshare(CLONE_NEWUSER) == 0 && chroot("root") == 0)) &&
            chdir("/") == 0;
        _exit(!moved ? 2 : engineLogPath() == u"/System/Installation/KxQts.log" ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0) << "2 means that this user may not change the root folder";
    std::filesystem::remove_all("root");
}

TEST(EngineLog, ALoadedLibraryFindsItself) {
    void* library = dlopen(KXQTS_ENGINE_LOG_PROBE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    auto* probe = reinterpret_cast<const char* (*)()>(dlsym(library, "engineLogPathOfProbe"));
    ASSERT_NE(probe, nullptr);
    EXPECT_EQ(probe(), std::filesystem::path(KXQTS_ENGINE_LOG_PROBE).replace_extension(".log"));
    dlclose(library);
}
