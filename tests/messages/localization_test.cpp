#include <KxQts/files/library.h>
#include <KxQts/messages/localization.h>
#include <KxQts/winapi/modules.h>

#include "common/program.h"
#include "common/virtualslot.h"
#include "modules/emptyfolder.h"
#include "modules/moduleevents.h"
#include "modules/modulefolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

using KxTest::isMapped;
using KxTest::ModuleFolder;
using KxTest::runProgram;

namespace {

/// What the probe prints for a text in a locale, with or without a resource library named.
std::string printed(const std::string& locale, std::vector<std::string> words) {
    words.insert(words.begin(), KXTEST_PROBE);
    const KxTest::ProgramResult result = runProgram(words, {{"LC_ALL", locale}, {"LANGUAGE", ""}});
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
}

/// Resource libraries of a test's own. None is loaded before or after the test.
class Localization : public testing::Test {
protected:
    ~Localization() override { staticDestructor(); }

    std::string useCopyOf(const std::string& library) {
        std::string path = folder.add("resource" + std::to_string(++copies) + ".dylib", library);
        EXPECT_TRUE(setTranslationFileName(QString::fromStdString(path)));
        return path;
    }

    ModuleFolder folder;

private:
    int copies = 0;
};

int entryCalls(const std::string& path) {
    HMODULE module = GetModuleHandleA(path.c_str());
    const auto* calls = reinterpret_cast<const std::atomic<int>*>(
        reinterpret_cast<void*>(GetProcAddress(module, "kxtestEntryCalls")));
    const int count = calls ? calls->load() : -1;
    FreeLibrary(module);
    return count;
}

} // namespace

TEST_F(Localization, TextsComeFromTheResourceLibraryByIndex) {
    const std::string path = useCopyOf(KXTEST_RESOURCE);
    QString text = "before";
    EXPECT_EQ(getLocalizedStringByStringID(7, text), 1007);
    EXPECT_TRUE(text.startsWith("text 7 in")) << text.toStdString();
    const QString source = "source";
    EXPECT_EQ(queryTranslate(-1, text, &source), 999);
    EXPECT_TRUE(text.startsWith("text -1 in")) << "the source is not looked at";
    EXPECT_EQ(entryCalls(path), 1);
}

TEST(LocalizationResource, IsAskedThroughTheFirstOperationOfItsClass) {
    EXPECT_EQ(KxTest::virtualSlot(&Korvex::ITextResource::getText), 0u)
        << "resource libraries may bring a class of their own";
}

TEST(LocalizationLanguage, IsTheSystemsAndEnglishForAllOthers) {
    const std::vector<std::string> words{"text", "3", KXTEST_RESOURCE};
    EXPECT_EQ(printed("en_US.UTF-8", words), "1003 [text 3 in language 0]");
    EXPECT_EQ(printed("fr_FR.UTF-8", words), "1003 [text 3 in language 1]");
    EXPECT_EQ(printed("fr_CA.UTF-8", words), "1003 [text 3 in language 1]");
    EXPECT_EQ(printed("de_DE.UTF-8", words), "1003 [text 3 in language 2]");
    EXPECT_EQ(printed("de_AT", words), "1003 [text 3 in language 2]");
    EXPECT_EQ(printed("es_ES.UTF-8", words), "1003 [text 3 in language 0]");
    EXPECT_EQ(printed("C", words), "1003 [text 3 in language 0]");
}

TEST(LocalizationDefault, ResourceLibraryLiesInTheSystemDirectory) {
    const KxTest::EmptyFolderOver machine("/usr/local/lib");
    ASSERT_TRUE(machine.mounted) << std::strerror(errno);
    EXPECT_EQ(printed("C", {"text", "5"}), "2") << "without one: 2 and a null text";
    std::filesystem::create_directory("/usr/local/lib/Korvex");
    std::filesystem::copy_file(KXTEST_RESOURCE, "/usr/local/lib/Korvex/libZrRes.dylib");
    EXPECT_EQ(printed("C", {"text", "5"}), "1005 [text 5 in language 0]");
    EXPECT_EQ(printed("C", {"text", "5", "/nowhere/libZrRes.dylib"}),
              "refused, 1005 [text 5 in language 0]")
        << "a name that is refused leaves the default in force";
}

TEST_F(Localization, FileThatCannotBeOpenedIsRefusedAndTheNameBeforeStays) {
    useCopyOf(KXTEST_RESOURCE);
    EXPECT_FALSE(setTranslationFileName("/nowhere/libZrRes.dylib"));
    EXPECT_FALSE(setTranslationFileName(QString()));
    QString text;
    EXPECT_EQ(getLocalizedStringByStringID(1, text), 1001);
}

TEST_F(Localization, NameIsTriedInLatin1) {
    useCopyOf(KXTEST_RESOURCE);
    const QString unusual = QString::fromStdString(folder.path().string()) + "/r\u00E9source.dylib";
    (void)folder.add("r\u00E9source.dylib", KXTEST_RESOURCE);
    EXPECT_FALSE(setTranslationFileName(unusual)) << "that file's name is UTF-8";
    (void)folder.add("r\xE9source.dylib", KXTEST_RESOURCE);
    EXPECT_TRUE(setTranslationFileName(unusual));
}

TEST_F(Localization, NameGivenAfterTheFirstLookupHasNoEffect) {
    const std::string first = useCopyOf(KXTEST_RESOURCE);
    QString text;
    EXPECT_EQ(getLocalizedStringByStringID(1, text), 1001);
    const std::string second = useCopyOf(KXTEST_RESOURCE);
    EXPECT_EQ(getLocalizedStringByStringID(2, text), 1002);
    EXPECT_TRUE(isMapped(first));
    EXPECT_FALSE(isMapped(second));
}

TEST_F(Localization, LibraryWithoutTheEntryPointIsFreedAndTheNextLookupTriesAgain) {
    const std::string path = useCopyOf(KXTEST_MODULE);
    QString text = "before";
    EXPECT_EQ(queryTranslate(1, text, nullptr), 2);
    EXPECT_EQ(text, QString("before")) << "left alone";
    EXPECT_EQ(getLocalizedStringByStringID(1, text), 2);
    EXPECT_TRUE(text.isNull());
    EXPECT_FALSE(isMapped(path));
    useCopyOf(KXTEST_RESOURCE);
    EXPECT_EQ(getLocalizedStringByStringID(1, text), 1001);
}

TEST_F(Localization, FileThatIsNoLibraryAndLibraryWithoutTextsGiveTwo) {
    EXPECT_TRUE(setTranslationFileName("/etc/passwd"));
    QString text;
    EXPECT_EQ(getLocalizedStringByStringID(1, text), 2);
    const std::string path = useCopyOf(KXTEST_EMPTY_RESOURCE);
    EXPECT_EQ(getLocalizedStringByStringID(1, text), 2);
    EXPECT_FALSE(isMapped(path));
}

TEST_F(Localization, ResourceLibraryIsUnloadedOnceAndLoadedAgainWhenNeeded) {
    const std::string path = useCopyOf(KXTEST_RESOURCE);
    QString text;
    EXPECT_EQ(getLocalizedStringByStringID(1, text), 1001);
    EXPECT_TRUE(isMapped(path));
    staticDestructor();
    staticDestructor();
    EXPECT_FALSE(isMapped(path));
    EXPECT_EQ(getLocalizedStringByStringID(1, text), 1001);
}

TEST(LocalizationUnload, UnloadingTheLibraryUnloadsTheResourceLibrary) {
    // The lists of handles live as long as the process; a leak check at its end finds them.
    const KxTest::ProgramResult result =
        runProgram({KXTEST_UNLOAD_PROBE, KXTEST_UNLOAD_CLIENT, KXTEST_LIBRARY, KXTEST_RESOURCE},
                   {{"ASAN_OPTIONS", "detect_leaks=0"}});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "before: library 1, resource 1\nafter: library 0, resource 0\n"
                             "log before 1, after 0\n");
}

TEST_F(Localization, FirstLookupsOfManyThreadsUseOneResource) {
    constexpr int threads = 8;
    for (int round = 0; round < 20; ++round) {
        const std::string path = useCopyOf(KXTEST_RESOURCE);
        std::barrier start(threads);
        std::vector<std::thread> workers;
        for (int i = 0; i < threads; ++i)
            workers.emplace_back([&start, i] {
                start.arrive_and_wait();
                QString text;
                EXPECT_EQ(getLocalizedStringByStringID(i, text), 1000 + i);
            });
        for (std::thread& worker : workers)
            worker.join();
        EXPECT_EQ(entryCalls(path), 1);
        staticDestructor();
        EXPECT_FALSE(isMapped(path));
    }
}

TEST_F(Localization, InitialiserOfTheResourceLibraryMayLookTextsUp) {
    const std::string path = useCopyOf(KXTEST_RESOURCE);
    int inside = 0;
    const KxTest::ModuleEventsScope events({[&inside] {
                                                QString text;
                                                inside = getLocalizedStringByStringID(1, text);
                                            },
                                            {}});
    QString text;
    EXPECT_EQ(getLocalizedStringByStringID(2, text), 1002);
    EXPECT_EQ(inside, 1001);
    EXPECT_EQ(entryCalls(path), 1);
    staticDestructor();
    EXPECT_FALSE(isMapped(path));
}

TEST_F(Localization, EntryPointOfTheResourceLibraryFindsNoTextsYet) {
    const std::string path = useCopyOf(KXTEST_RESOURCE);
    int inside = 0;
    QString text = "before";
    const auto lookUp = [&] { inside = queryTranslate(1, text, nullptr); };
    const KxTest::ModuleEventsScope events({{}, {}, lookUp});
    QString outside;
    EXPECT_EQ(getLocalizedStringByStringID(2, outside), 1002);
    EXPECT_EQ(inside, 2);
    EXPECT_EQ(text, QString("before")) << "left alone";
    EXPECT_EQ(entryCalls(path), 1);
    staticDestructor();
    EXPECT_FALSE(isMapped(path)) << "what the inner lookup has loaded is freed";
}
