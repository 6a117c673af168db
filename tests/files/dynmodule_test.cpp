#include <KxQts/files/dynmodule.h>

#include "modules/modulefolder.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <filesystem>
#include <string>

using Korvex::DynModule;
using KxTest::isMapped;
using KxTest::ModuleFolder;

namespace {

int answerOf(DynModule& module) {
    void* answer = module.GetProcAddress("kxtestAnswer");
    return answer ? reinterpret_cast<int (*)()>(answer)() : 0;
}

} // namespace

TEST(DynModule, HasNothingAtFirst) {
    DynModule module;
    EXPECT_EQ(module.state, 0);
    EXPECT_EQ(module.GetProcAddress("kxtestAnswer"), nullptr);
    EXPECT_FALSE(module.Free());
}

TEST(DynModule, LoadsAFileAsAModuleAndFreesIt) {
    const ModuleFolder folder;
    const std::string path = folder.add("plain.bundle", KXTEST_MODULE);
    DynModule module;
    EXPECT_EQ(module.Load(path.c_str()), 2);
    EXPECT_EQ(module.state, 2);
    EXPECT_NE(module.module, nullptr);
    EXPECT_NE(module.objectFileImage, nullptr);
    EXPECT_EQ(answerOf(module), 42);
    EXPECT_TRUE(module.Free());
    EXPECT_EQ(module.state, 0);
    EXPECT_FALSE(isMapped(path));
    EXPECT_EQ(module.GetProcAddress("kxtestAnswer"), nullptr);
    EXPECT_FALSE(module.Free());
}

TEST(DynModule, FindsTheCNameWithoutAnUnderscore) {
    const ModuleFolder folder;
    DynModule module;
    module.Load(folder.add("plain.dylib", KXTEST_MODULE).c_str());
    EXPECT_EQ(answerOf(module), 42);
    EXPECT_EQ(module.GetProcAddress("_kxtestAnswer"), nullptr);
    EXPECT_EQ(module.GetProcAddress("kxtestNoSuchFunction"), nullptr);
    EXPECT_EQ(module.GetProcAddress(std::string(5000, 'x').c_str()), nullptr);
    EXPECT_EQ(module.GetProcAddress(nullptr), nullptr);
    EXPECT_TRUE(module.Free());
}

TEST(DynModule, KeepsItsSymbolsToItself) {
    const ModuleFolder folder;
    DynModule module;
    module.Load(folder.add("private.dylib", KXTEST_MODULE).c_str());
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "kxtestAnswer"), nullptr);
    EXPECT_TRUE(module.Free());
}

TEST(DynModule, FreesWhatItHadBeforeItLoadsAnother) {
    const ModuleFolder folder;
    const std::string first = folder.add("first.dylib", KXTEST_MODULE);
    const std::string second = folder.add("second.dylib", KXTEST_MODULE);
    DynModule module;
    EXPECT_EQ(module.Load(first.c_str()), 2);
    EXPECT_EQ(module.Load(second.c_str()), 2);
    EXPECT_FALSE(isMapped(first));
    EXPECT_TRUE(isMapped(second));
    EXPECT_EQ(module.Load("/nowhere/third.dylib"), 0) << "the second is gone all the same";
    EXPECT_FALSE(isMapped(second));
}

TEST(DynModule, DoesNotLoadWhatCannotBeBoundAtOnce) {
    const ModuleFolder folder;
    const std::string path = folder.add("unresolved.dylib", KXTEST_UNRESOLVED);
    DynModule module;
    EXPECT_EQ(module.Load(path.c_str()), 0);
    EXPECT_FALSE(isMapped(path));
}

TEST(DynModule, RefusesFilesThatAreNoLibraries) {
    DynModule module;
    EXPECT_EQ(module.Load(nullptr), 0);
    EXPECT_EQ(module.Load(""), 0);
    EXPECT_EQ(module.Load("/"), 0);
    EXPECT_EQ(module.Load("/etc/passwd"), 0);
    EXPECT_EQ(module.state, 0);
}

TEST(DynModule, LooksForABareNameHereAndThenWhereTheSystemKeepsLibraries) {
    const ModuleFolder folder;
    (void)folder.add("bare.dylib", KXTEST_MODULE);
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    DynModule module;
    EXPECT_EQ(module.Load("bare.dylib"), 2);
    EXPECT_EQ(answerOf(module), 42);
    EXPECT_NE(module.Load("libm.so.6"), 0);
    EXPECT_NE(module.GetProcAddress("cos"), nullptr);
    module.Free();
    std::filesystem::current_path(before);
}

TEST(DynModule, ImageThatIsMarkedNeverToBeUnloadedStays) {
    const ModuleFolder folder;
    const std::string path = folder.add("permanent.dylib", KXTEST_PERMANENT);
    DynModule module;
    EXPECT_EQ(module.Load(path.c_str()), 1);
    EXPECT_NE(module.image, nullptr);
    EXPECT_EQ(module.module, nullptr);
    EXPECT_FALSE(module.Free()) << "no symbol was found yet";
    EXPECT_EQ(module.GetProcAddress("kxtestNoSuchFunction"), nullptr);
    EXPECT_EQ(module.module, nullptr);
    EXPECT_EQ(answerOf(module), 42);
    EXPECT_NE(module.module, nullptr);
    EXPECT_FALSE(module.Free()) << "it cannot be unlinked";
    EXPECT_EQ(module.state, 1);
    EXPECT_EQ(module.Load("/nowhere/other.dylib"), 1) << "what cannot be freed is kept";
    EXPECT_EQ(answerOf(module), 42);
    EXPECT_TRUE(isMapped(path));
}

TEST(DynModule, ModuleTakesThePlaceOfAnImageThatStays) {
    const ModuleFolder folder;
    DynModule module;
    EXPECT_EQ(module.Load(folder.add("permanent.dylib", KXTEST_PERMANENT).c_str()), 1);
    EXPECT_EQ(answerOf(module), 42);
    EXPECT_EQ(module.Load(folder.add("plain.dylib", KXTEST_MODULE).c_str()), 2);
    EXPECT_EQ(answerOf(module), 42);
    EXPECT_TRUE(module.Free());
    EXPECT_EQ(module.Load(folder.add("permanent2.dylib", KXTEST_PERMANENT).c_str()), 1);
    EXPECT_EQ(module.module, nullptr);
}
