#include "common/program.h"

#include <gtest/gtest.h>

namespace {

void expectCleanEnd(const char* how, int rounds) {
    // LeakSanitizer cannot look at a program that goes on while it ends.
    const KxTest::Environment withoutLeakCheck{{"ASAN_OPTIONS", "detect_leaks=0"}};
    for (int round = 0; round < rounds; ++round) {
        const KxTest::ProgramResult result =
            KxTest::runProgram({KXQTS_UNLOADER, KXQTS_LIBRARY, how}, withoutLeakCheck);
        ASSERT_EQ(result.status, 0) << result.errors;
        ASSERT_EQ(result.errors, "");
    }
}

} // namespace

TEST(Unload, MainMayBeLeftWithThreadsRunning) {
    expectCleanEnd("exit", 20);
}

TEST(Unload, TheLibraryMayBeUnloadedWithThreadsRunning) {
    expectCleanEnd("unload", 20);
}

TEST(Unload, TheLibraryMayBeUnloadedWhileAClosedProcessRuns) {
    expectCleanEnd("collect", 3);
}
