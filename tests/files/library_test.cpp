#include <KxQts/files/library.h>
#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/modules.h>

#include "common/noplaceleft.h"
#include "modules/emptyfolder.h"
#include "modules/modulefolder.h"
#include "platform/lock.h"

#include <QString>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <string>

using Korvex::WLibrary;
using KxTest::isMapped;
using KxTest::ModuleFolder;

namespace {

QString text(const std::string& path) {
    return QString::fromStdString(path);
}

int countOf(HMODULE module) {
    return static_cast<WLibrary*>(module)->refCount;
}

int answerOf(HMODULE module) {
    const FARPROC answer = GetProcAddress(module, "kxtestAnswer");
    return answer ? reinterpret_cast<int (*)()>(reinterpret_cast<void*>(answer))() : 0;
}

std::size_t loadedLibraries() {
    const Korvex::LockGuard guard(WLibrary::sCritSect);
    return WLibrary::sLibList.size();
}

} // namespace

TEST(Library, IsTaggedAndKnowsItsDefaultFolder) {
    EXPECT_EQ(WLibrary::sWLibraryObjName, QString("WLibrary"));
    EXPECT_EQ(WLibrary::sWLibraryDefPath, QString("/usr/local/lib/Korvex"));
}

TEST(Library, IsLoadedOnceAndUnloadedWithItsLastReference) {
    const ModuleFolder folder;
    const std::string path = folder.add("libOnce.dylib", KXTEST_MODULE);
    HMODULE first = loadLibrary(text(path));
    HMODULE second = loadLibrary(text(path));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_EQ(loadedLibraries(), 1u);
    EXPECT_TRUE(FreeLibrary(first));
    EXPECT_EQ(countOf(second), 1);
    EXPECT_EQ(answerOf(second), 42);
    EXPECT_TRUE(FreeLibrary(second));
    EXPECT_EQ(loadedLibraries(), 0u);
    EXPECT_FALSE(isMapped(path));
    EXPECT_FALSE(FreeLibrary(second)) << "given up already";
}

TEST(Library, ComesWithItsTagItsNameAndItsPlaceInTheList) {
    const ModuleFolder folder;
    const std::string paths[] = {folder.add("libB.dylib", KXTEST_MODULE),
                                 folder.add("libA.dylib", KXTEST_MODULE)};
    HMODULE modules[] = {loadLibrary(text(paths[0])), loadLibrary(text(paths[1]))};
    for (int i : {0, 1}) {
        auto* library = WLibrary::getWLibraryObject(modules[i]);
        ASSERT_NE(library, nullptr);
        EXPECT_EQ(library, modules[i]);
        EXPECT_EQ(library->objectName(), QString("WLibrary"));
        EXPECT_TRUE(library->isLoaded());
        const Korvex::LockGuard guard(WLibrary::sCritSect);
        EXPECT_EQ(WLibrary::sLibList.at(static_cast<std::size_t>(i)), library);
    }
    QString name;
    EXPECT_TRUE(WLibrary::findLibrary(modules[1], name));
    EXPECT_EQ(name, text(paths[1]));
    EXPECT_TRUE(WLibrary::freeLibrary(modules[1]));
    EXPECT_FALSE(WLibrary::findLibrary(modules[1], name));
    EXPECT_EQ(WLibrary::getWLibraryObject(modules[1]), nullptr);
    EXPECT_EQ(name, text(paths[1])) << "left alone";
    EXPECT_TRUE(WLibrary::freeLibrary(modules[0]));
}

TEST(Library, GetModuleHandleCountsAsAReference) {
    const ModuleFolder folder;
    const std::string path = folder.add("libCounted.dylib", KXTEST_MODULE);
    HMODULE module = loadLibrary(text(path));
    EXPECT_EQ(GetModuleHandleA(path.c_str()), module);
    EXPECT_EQ(GetModuleHandleW(text(path).toStdWString().c_str()), module);
    EXPECT_EQ(countOf(module), 3);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_TRUE(isMapped(path));
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(isMapped(path));
}

TEST(Library, GetModuleHandleLoadsNothingAndLeavesErrnoAlone) {
    const ModuleFolder folder;
    const std::string path = folder.add("libUnloaded.dylib", KXTEST_MODULE);
    for (const std::string& name : {path, std::string("/nowhere/Foo.bundle"), std::string()}) {
        errno = 99;
        EXPECT_EQ(GetModuleHandleA(name.c_str()), nullptr) << name;
        EXPECT_EQ(GetModuleHandleW(text(name).toStdWString().c_str()), nullptr) << name;
        EXPECT_EQ(errno, 99) << name;
    }
    EXPECT_EQ(GetModuleHandleA(nullptr), nullptr);
    EXPECT_EQ(GetModuleHandleW(nullptr), nullptr);
    EXPECT_FALSE(isMapped(path));
}

TEST(Library, OfABundleIsTheExecutableInIt) {
    const ModuleFolder folder;
    for (const std::string suffix : {".bundle", ".app", ".framework", ".plugin", ".1.bundle"}) {
        const std::string bundle = (folder.path() / ("Foo" + suffix)).string();
        const std::string executable =
            folder.add("Foo" + suffix + "/Contents/MacOS/Foo", KXTEST_MODULE);
        HMODULE module = loadLibrary(text(bundle));
        ASSERT_NE(module, nullptr) << suffix;
        QString name;
        EXPECT_TRUE(WLibrary::findLibrary(module, name));
        EXPECT_EQ(name, text(executable));
        EXPECT_EQ(GetModuleHandleA(bundle.c_str()), module);
        EXPECT_TRUE(FreeLibrary(module));
        EXPECT_TRUE(FreeLibrary(module));
    }
}

TEST(Library, OfABundleInTheCurrentFolderNeedsNoSlash) {
    const ModuleFolder folder;
    (void)folder.add("Foo.bundle/Contents/MacOS/Foo", KXTEST_MODULE);
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    HMODULE module = loadLibrary("Foo.bundle");
    std::filesystem::current_path(before);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(answerOf(module), 42);
    EXPECT_TRUE(FreeLibrary(module));
}

TEST(Library, FileWithABundlesSuffixIsALibraryAsAnyOther) {
    const ModuleFolder folder;
    const std::string path = folder.add("Flat.bundle", KXTEST_MODULE);
    HMODULE module = loadLibrary(text(path));
    EXPECT_EQ(answerOf(module), 42);
    EXPECT_TRUE(FreeLibrary(module));
    std::filesystem::create_directory(folder.path() / "Empty.bundle");
    EXPECT_EQ(loadLibrary(text((folder.path() / "Empty.bundle").string())), nullptr);
}

TEST(Library, BareNameIsJoinedToTheDefaultFolderWithoutASeparator) {
    const ModuleFolder folder;
    const std::string library = folder.add("libX.dylib", KXTEST_MODULE);
    const KxTest::EmptyFolderOver machine("/usr/local/lib");
    ASSERT_TRUE(machine.mounted) << std::strerror(errno);
    std::filesystem::create_directory("/usr/local/lib/Korvex");
    std::filesystem::copy_file(library, "/usr/local/lib/Korvex/libX.dylib");
    EXPECT_EQ(loadLibrary("libX.dylib"), nullptr);
    std::filesystem::copy_file(library, "/usr/local/lib/KorvexlibX.dylib");
    HMODULE module = loadLibrary("libX.dylib");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(GetModuleHandleA("/usr/local/lib/KorvexlibX.dylib"), module);
    EXPECT_EQ(GetModuleHandleA("libX.dylib"), module);
    for (int reference = 0; reference < 3; ++reference)
        EXPECT_TRUE(FreeLibrary(module));
}

TEST(Library, IsKnownByTheTextItWasLoadedByAndByTheFileThatWasFound) {
    const ModuleFolder folder;
    const std::string file = folder.add("libtried.so", KXTEST_MODULE);
    const std::string askedFor = (folder.path() / "tried").string();
    HMODULE module = loadLibrary(text(askedFor));
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(loadLibrary(text(askedFor)), module);
    EXPECT_EQ(GetModuleHandleA(askedFor.c_str()), module);
    EXPECT_EQ(loadLibrary(text(file)), module);
    QString name;
    EXPECT_TRUE(WLibrary::findLibrary(module, name));
    EXPECT_EQ(name, text(file));
    EXPECT_EQ(GetModuleHandleA((folder.path() / "." / "libtried.so").c_str()), nullptr)
        << "texts are compared, not files";
    for (int reference = 0; reference < 4; ++reference)
        EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(isMapped(file));
}

TEST(Library, ThatCannotBeLoadedIsNotRegistered) {
    const ModuleFolder folder;
    std::ofstream(folder.path() / "libText.dylib") << "no library";
    errno = 0;
    EXPECT_EQ(loadLibrary(text((folder.path() / "libNone.dylib").string())), nullptr);
    EXPECT_EQ(errno, ENOENT) << "as the loader left it";
    EXPECT_EQ(loadLibrary(text((folder.path() / "libText.dylib").string())), nullptr);
    EXPECT_EQ(loadLibrary(QString()), nullptr);
    EXPECT_EQ(loadedLibraries(), 0u);
}

TEST(Library, ThatThereIsNoMemoryForIsNotLoaded) {
    const ModuleFolder folder;
    const std::string path = folder.add("libNoMemory.dylib", KXTEST_MODULE);
    const KxTest::NoPlaceLeft exhausted;
    EXPECT_EQ(loadLibrary(text(path)), nullptr);
    EXPECT_EQ(loadedLibraries(), 0u);
    EXPECT_FALSE(isMapped(path));
}

TEST(Library, SymbolsAreFoundByTheirCName) {
    const ModuleFolder folder;
    HMODULE module = loadLibrary(text(folder.add("libSymbols.dylib", KXTEST_MODULE)));
    EXPECT_EQ(answerOf(module), 42);
    EXPECT_EQ(GetProcAddress(module, "kxtestNoSuchFunction"), nullptr);
    errno = 99;
    EXPECT_EQ(GetProcAddress(module, nullptr), nullptr);
    EXPECT_EQ(GetProcAddress(nullptr, "kxtestAnswer"), nullptr);
    EXPECT_EQ(errno, 99);
    EXPECT_TRUE(FreeLibrary(module));
}

TEST(Library, OtherHandlesAreNoModules) {
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    std::array<char, 8> buffer{'x'};
    std::array<wchar_t, 8> wide{L'x'};
    for (HANDLE foreign : {event, HANDLE(), INVALID_HANDLE_VALUE}) {
        errno = 99;
        EXPECT_FALSE(FreeLibrary(foreign));
        EXPECT_EQ(GetProcAddress(foreign, "kxtestAnswer"), nullptr);
        EXPECT_EQ(errno, 99);
        EXPECT_EQ(GetModuleFileNameA(foreign, buffer.data(), buffer.size()), 0u);
        EXPECT_EQ(errno, 0);
        EXPECT_EQ(buffer[0], 'x');
        errno = 99;
        EXPECT_EQ(GetModuleFileNameW(foreign, wide.data(), wide.size()), 0u);
        EXPECT_EQ(errno, 0);
        EXPECT_EQ(wide[0], L'x');
        EXPECT_EQ(WLibrary::getWLibraryObject(foreign), nullptr);
        QString name = "before";
        EXPECT_FALSE(WLibrary::findLibrary(foreign, name));
        EXPECT_EQ(name, QString("before"));
        EXPECT_FALSE(WLibrary::freeLibrary(foreign));
    }
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Library, ObjectThatAClientMakesIsAModuleWithoutAPlaceInTheList) {
    const ModuleFolder folder;
    WLibrary own(text(folder.add("libOwn.dylib", KXTEST_MODULE)));
    EXPECT_EQ(own.refCount, 1);
    ASSERT_TRUE(own.load());
    EXPECT_EQ(WLibrary::getWLibraryObject(&own), &own);
    EXPECT_EQ(answerOf(&own), 42);
    QString name;
    EXPECT_FALSE(WLibrary::findLibrary(&own, name));
    EXPECT_FALSE(FreeLibrary(&own));
    EXPECT_EQ(GetModuleHandleA(own.fileName().toLatin1().constData()), nullptr);
    EXPECT_TRUE(own.unload());
}

TEST(Library, IsNeitherClosedNorWaitedForAsAHandle) {
    const ModuleFolder folder;
    HMODULE module = loadLibrary(text(folder.add("libHandle.dylib", KXTEST_MODULE)));
    errno = 0;
    EXPECT_FALSE(CloseHandle(module));
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(WaitForSingleObject(module, 0), WAIT_FAILED);
    EXPECT_EQ(countOf(module), 1);
    EXPECT_TRUE(FreeLibrary(module));
}

namespace {

/// A module whose file name holds a Latin-1 character and one beyond 16 bits.
class NamedModule : public testing::Test {
protected:
    NamedModule() {
        const QString unusual = QString::fromUcs4(U"lib\u00E9\U0001F600.dylib");
        path = text(folder.add(unusual.toStdString(), KXTEST_MODULE));
        module = loadLibrary(path);
    }
    ~NamedModule() override { EXPECT_TRUE(FreeLibrary(module)); }

    ModuleFolder folder;
    QString path;
    HMODULE module = nullptr;
};

} // namespace

TEST_F(NamedModule, NameIsLatin1InTheEightBitForm) {
    const QByteArray expected = path.toLatin1();
    const auto length = static_cast<DWORD>(expected.size());
    std::string buffer(length + 2, '#');
    errno = 99;
    EXPECT_EQ(GetModuleFileNameA(module, buffer.data(), length + 1), length);
    EXPECT_EQ(errno, 0);
    EXPECT_STREQ(buffer.c_str(), expected.constData());
    EXPECT_EQ(buffer.back(), '#');
}

TEST_F(NamedModule, NameThatDoesNotFitIsCutAndTerminated) {
    const QByteArray expected = path.toLatin1();
    const auto length = static_cast<DWORD>(expected.size());
    for (DWORD size : {length, length - 1, DWORD(1)}) {
        std::string buffer(length + 2, '#');
        errno = 0;
        EXPECT_EQ(GetModuleFileNameA(module, buffer.data(), size), size - 1);
        EXPECT_EQ(errno, 122);
        EXPECT_EQ(buffer.substr(0, size - 1), expected.left(size - 1).toStdString());
        EXPECT_EQ(buffer[size - 1], '\0');
        EXPECT_EQ(buffer[size], '#');
    }
}

TEST_F(NamedModule, NameCountsWideCharactersInTheWideForm) {
    const std::wstring expected = path.toStdWString();
    const auto length = static_cast<DWORD>(expected.size());
    std::wstring buffer(length + 2, L'#');
    errno = 99;
    EXPECT_EQ(GetModuleFileNameW(module, buffer.data(), length + 1), length);
    EXPECT_EQ(errno, 0);
    EXPECT_STREQ(buffer.c_str(), expected.c_str());
    for (DWORD size : {length, DWORD(1)}) {
        buffer.assign(length + 2, L'#');
        errno = 0;
        EXPECT_EQ(GetModuleFileNameW(module, buffer.data(), size), size - 1);
        EXPECT_EQ(errno, 122);
        EXPECT_EQ(buffer.substr(0, size - 1), expected.substr(0, size - 1));
        EXPECT_EQ(buffer[size - 1], L'\0');
        EXPECT_EQ(buffer[size], L'#');
    }
}

TEST_F(NamedModule, NameIsNotWrittenIntoNothing) {
    char narrow = '#';
    wchar_t wide = L'#';
    errno = 0;
    EXPECT_EQ(GetModuleFileNameA(module, &narrow, 0), 0u);
    EXPECT_EQ(errno, 122);
    errno = 0;
    EXPECT_EQ(GetModuleFileNameW(module, &wide, 0), 0u);
    EXPECT_EQ(errno, 122);
    EXPECT_EQ(narrow, '#');
    EXPECT_EQ(wide, L'#');
    EXPECT_EQ(GetModuleFileNameA(module, nullptr, 100), 0u);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(GetModuleFileNameW(module, nullptr, 100), 0u);
    EXPECT_EQ(errno, 0);
}
