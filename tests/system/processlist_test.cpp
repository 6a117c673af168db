#include "common/memory.h"
#include "fakes/processtable.h"

#include <KxQts/system/processlist.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <new>

using KxTest::ScriptedProcessTable;

namespace {

struct Listed {
    Listed() { error = GetBSDProcessList(&list, &count); }
    ~Listed() { delete[] list; }
    Listed(const Listed&) = delete;
    Listed& operator=(const Listed&) = delete;

    kinfo_proc* list = nullptr;
    unsigned long count = 77;
    int error = 0;
};

/// Counts processes by a name.
struct Running {
    explicit Running(const char* name) {
        error = checkApplicationAlreadyRunning(name, &running, &count);
    }
    bool running = true;
    int count = 77;
    int error = 0;
};

} // namespace

TEST(ProcessList, HasARecordForEachProcess) {
    ScriptedProcessTable table;
    table.add(7, "Tool").hasEnded = true;
    table.add(8, "a name of more than sixteen").user = 12;
    const Listed processes;
    EXPECT_EQ(processes.error, 0);
    ASSERT_EQ(processes.count, 2u);
    EXPECT_EQ(processes.list[0].kp_proc.p_pid, 7);
    EXPECT_STREQ(processes.list[0].kp_proc.p_comm, "Tool");
    EXPECT_EQ(processes.list[0].kp_proc.p_stat, SZOMB);
    EXPECT_EQ(processes.list[0].kp_eproc.e_ppid, 1);
    EXPECT_STREQ(processes.list[1].kp_proc.p_comm, "a name of more t");
    EXPECT_EQ(processes.list[1].kp_proc.p_stat, SRUN);
    EXPECT_EQ(processes.list[1].kp_eproc.e_uid, 12u);
}

TEST(ProcessList, OfARealMachineHasTheCaller) {
    const Listed processes;
    EXPECT_EQ(processes.error, 0);
    bool found = false;
    for (unsigned long i = 0; i < processes.count; ++i)
        found |= processes.list[i].kp_proc.p_pid == getpid() &&
                 processes.list[i].kp_proc.p_comm == std::string("test_system");
    EXPECT_TRUE(found);
}

TEST(ProcessList, FailsWithTheSystemsError) {
    ScriptedProcessTable table;
    table.add(7, "Tool");
    table.readError = EACCES;
    const Listed processes;
    EXPECT_EQ(processes.error, EACCES);
    EXPECT_EQ(processes.count, 0u);
    EXPECT_EQ(processes.list, nullptr);
}

TEST(ProcessList, NeedsBothArguments) {
    kinfo_proc* list = nullptr;
    unsigned long count = 77;
    EXPECT_EQ(GetBSDProcessList(&list, nullptr), 22);
    EXPECT_EQ(GetBSDProcessList(nullptr, &count), 22);
    EXPECT_EQ(count, 77u);
    EXPECT_EQ(list, nullptr);
}

TEST(ProcessList, NeedsMemory) {
    ScriptedProcessTable table;
    table.add(7, "Tool");
    const KxTest::FailingAllocation next;
    const Listed processes;
    EXPECT_EQ(processes.error, 12);
    EXPECT_EQ(processes.count, 0u);
}

TEST(ProcessList, NeedsMemoryForReadingTheTableToo) {
    class Endless : public ScriptedProcessTable {
        [[nodiscard]] int read(std::vector<Korvex::ProcessEntry>&) override {
            throw std::bad_alloc();
        }
    };
    const Endless table;
    const Listed processes;
    EXPECT_EQ(processes.error, 12);
    EXPECT_EQ(processes.count, 0u);
    EXPECT_EQ(checkApplicationAlreadyRunning("Tool", nullptr, nullptr), 12);
}

TEST(RunningApplication, IsCountedByAPartOfItsNameInAnyCase) {
    ScriptedProcessTable table;
    table.add(7, "Tool");
    table.add(8, "mytoolbox");
    table.add(9, "Too");
    const Running tool("Tool");
    EXPECT_EQ(tool.error, 0);
    EXPECT_TRUE(tool.running);
    EXPECT_EQ(tool.count, 2);
}

TEST(RunningApplication, WithATrailingDIsNotCounted) {
    ScriptedProcessTable table;
    table.add(7, "ToolD");
    table.add(8, "toold");
    table.add(9, "Tool ToolDaemon");
    const Running daemons("Tool");
    EXPECT_EQ(daemons.error, 0);
    EXPECT_FALSE(daemons.running);
    EXPECT_EQ(daemons.count, 0);
    EXPECT_EQ(Running("ToolD").count, 3);
    table.add(10, "Tool");
    EXPECT_EQ(Running("Tool").count, 1);
}

TEST(RunningApplication, OfNoNameIsEveryOneWithoutAD) {
    ScriptedProcessTable table;
    table.add(7, "Tool");
    table.add(8, "daemon");
    EXPECT_EQ(Running("").count, 1);
}

TEST(RunningApplication, NameHasAtMost255Bytes) {
    ScriptedProcessTable table;
    table.add(7, "Tool");
    EXPECT_EQ(Running(std::string(255, 'x').c_str()).error, 0);
    const Running tooLong(std::string(256, 'x').c_str());
    EXPECT_EQ(tooLong.error, -1);
    EXPECT_EQ(tooLong.count, 77) << "nothing is stored";
    EXPECT_EQ(Running(nullptr).error, -1);
}

TEST(RunningApplication, WithoutAnyProcessSaysSo) {
    const ScriptedProcessTable table;
    testing::internal::CaptureStdout();
    const Running none("Tool");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "checkApplicationAlreadyRunning: procList == NULL.");
    EXPECT_EQ(none.error, -1);
    EXPECT_FALSE(none.running);
    EXPECT_EQ(none.count, 0);
}

TEST(RunningApplication, PassesErrorsOfTheListOn) {
    ScriptedProcessTable table;
    table.readError = EIO;
    EXPECT_EQ(Running("Tool").error, EIO);
}

TEST(RunningApplication, StoresWhatIsAskedFor) {
    ScriptedProcessTable table;
    table.add(7, "Tool");
    EXPECT_EQ(checkApplicationAlreadyRunning("Tool", nullptr, nullptr), 0);
}
