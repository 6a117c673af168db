#include "common/scratchfile.h"
#include "faults/sweep.h"
#include "platform/keychain/files.h"

#include <KxQts/errors.h>
#include <KxQts/files/library.h>
#include <KxQts/support/log.h>
#include <KxQts/winapi/modules.h>

#include <gtest/gtest.h>

#include <array>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>

using namespace KxTest;
namespace fs = std::filesystem;

namespace {

/// The path of something that can be loaded.
QString moduleToLoad() {
    Dl_info place{};
    EXPECT_NE(dladdr(dlsym(RTLD_DEFAULT, KX_FAULTS_SYMBOL), &place), 0);
    return QString::fromLocal8Bit(place.dli_fname);
}

constexpr unsigned newFile = 2;

const std::string longText(50'000, 'k');

} // namespace

TEST(SupportFaults, Log) {
    const QString path = QString::fromStdString((fs::current_path() / "log").string());
    const QString title = QStringLiteral("title");
    sweep(fileFaults() + processFaults() + memoryFaults(),
          {.name = "log",
           .prepare = [] { fs::remove("log"); },
           .run =
               [=] {
                   Korvex::WLogFile log;
                   log.openLog(path, title, title, newFile);
                   const bool isOpen = log.fd > 1;
                   return isOpen && log.closeLog() == 0;
               },
           .verify = [](bool succeeded) { EXPECT_TRUE(!succeeded || fs::exists("log")); }});
}

TEST(SupportFaults, Module) {
    const QString path = moduleToLoad();
    sweep(fileFaults() + processFaults() + memoryFaults(),
          {.name = "module",
           .run =
               [=] {
                   const HMODULE module = loadLibrary(path);
                   if (!module)
                       return false;
                   std::array<char, 1000> name{};
                   const bool isFound = GetProcAddress(module, KX_FAULTS_SYMBOL) &&
                                        GetModuleFileNameA(module, name.data(), name.size()) > 0;
                   return FreeLibrary(module) && isFound;
               },
           // Without memory to unload it safely, a module that is given up stays.
           .forget =
               [=] {
                   const HMODULE module = loadLibrary(path);
                   while (FreeLibrary(module)) {
                   }
               },
           // Qt's list of libraries keeps an entry that an exception has kept from being used.
           .leaks = {"setFileNameAndVersion"}});
}

// What a keychain is written with. Deriving its keys takes its time on purpose.
TEST(SupportFaults, KeychainFile) {
    const Korvex::Descriptor folder(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto isNewOrOld = [](bool succeeded) {
        const std::string now = contentsOf("chain");
        EXPECT_TRUE(now == longText || (!succeeded && (now == "old" || !fs::exists("chain"))));
        // A temporary name that cannot be removed stays; nothing else does.
        EXPECT_LE(std::distance(fs::directory_iterator(fs::current_path()), {}), 4);
    };
    const std::string name = "chain";
    const Korvex::WholeFile::Attributes attributes{
        .mode = 0600, .owner = geteuid(), .group = getegid()};
    Scenario scenario{.name = "keychain file",
                      .prepare = [] { std::ofstream("chain") << "old"; },
                      .run =
                          [&] {
                              return Korvex::WholeFile::replace(folder.get(), name, longText,
                                                                attributes) == 0;
                          },
                      .verify = isNewOrOld};
    sweep(fileFaults(), scenario);
    scenario.prepare = [] { fs::remove("chain"); };
    scenario.run = [&] {
        return Korvex::WholeFile::create(folder.get(), name, longText, attributes) == 0;
    };
    sweep(fileFaults(), scenario);
    fs::remove("chain");
}
