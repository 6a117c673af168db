#include "faults/sweep.h"
#include "registry/prefsfixture.h"

#include <KxQts/files/knowndirectories.h>
#include <KxQts/files/paths.h>
#include <KxQts/winapi/knowndirectories.h>
#include <KxQts/winapi/modules.h>
#include <KxQts/winapi/profiles.h>

#include <array>
#include <cstring>

using namespace KxTest;

namespace {

class ProfileFaults : public RegistryTest {
protected:
    static void forget() {
        removeAll();
        Korvex::WPrefs(nullptr, nullptr, true);
    }
};

constexpr int badKey = 1010;

} // namespace

TEST_F(ProfileFaults, WritingAndReadingAProfile) {
    sweep(fileFaults() + memoryFaults(),
          {.name = "profile",
           .prepare = [] { removeAll(); },
           .run =
               [] {
                   std::array<char, 20> value{};
                   return WritePrivateProfileStringA("section", "name", "value", "file.ini") &&
                          GetPrivateProfileStringA("section", "name", "", value.data(),
                                                   value.size(), "file.ini") == 5 &&
                          std::strcmp(value.data(), "value") == 0 &&
                          WritePrivateProfileStringA("section", nullptr, nullptr, "file.ini");
               },
           .forget = forget,
           .reports = {badKey, Reported::untouched}});
}

TEST_F(ProfileFaults, DirectoriesOfTheApplication) {
    sweep(fileFaults() + memoryFaults(),
          {.name = "directories", .run = [] {
               std::array<char, 1000> path{};
               std::array<wchar_t, 1000> wide{};
               QString text;
               return GetApplicationDirectoryA(path.data(), path.size()) > 0 &&
                      GetApplicationDirectoryW(wide.data(), wide.size()) > 0 &&
                      getApplicationFullPath(text) && getWindowsDirectory(text) &&
                      getTempPath(text) && getSystemDirectory(text);
           }});
}

TEST_F(ProfileFaults, TakingPathsApart) {
    const QString path = QStringLiteral("/a/b.c");
    sweep(fileFaults() + memoryFaults(), {.name = "paths", .run = [=] {
                                              QString drive;
                                              QString folder;
                                              QString name;
                                              QString extension;
                                              splitPath(path, drive, folder, name, extension);
                                              QString made;
                                              makePath(made, drive, folder, name, extension);
                                              return made == path;
                                          }});
}
