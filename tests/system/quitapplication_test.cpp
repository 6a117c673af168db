#include "fakes/processtable.h"

#include <KxQts/system/sessioncontrol.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

using KxTest::ScriptedProcessTable;

namespace {

using Ids = std::vector<int>;

/// Whom a request goes to on a machine.
Ids askedBy(ScriptedProcessTable& table, const std::string& name) {
    table.asked.clear();
    const int result = forceApplicationQuit(name.c_str());
    EXPECT_EQ(result, table.asked.empty() ? -600 : 0) << name;
    return table.asked;
}

constexpr int nobodysChild = 4'000'000; // and above: beyond the ids of real processes

} // namespace

TEST(QuitApplication, NameHasAtMost255Bytes) {
    ScriptedProcessTable table;
    table.add(nobodysChild, "x");
    EXPECT_EQ(forceApplicationQuit(std::string(256, 'x').c_str()), -1);
    EXPECT_EQ(forceApplicationQuit(nullptr), -1);
    EXPECT_EQ(table.asked, Ids{});
    EXPECT_EQ(askedBy(table, std::string(255, 'x')), Ids{nobodysChild});
}

TEST(QuitApplication, FindsThoseWhoseCutNameOccursInTheSearchedOne) {
    ScriptedProcessTable table;
    table.add(nobodysChild, "Tool");
    EXPECT_EQ(askedBy(table, "Tool"), Ids{nobodysChild});
    EXPECT_EQ(askedBy(table, "MyTOOLbox"), Ids{nobodysChild}) << "inside, in any case";
    EXPECT_EQ(askedBy(table, "Too"), Ids{nobodysChild}) << "cut to the searched name";
    EXPECT_EQ(askedBy(table, "t"), Ids{nobodysChild});
    EXPECT_EQ(askedBy(table, "Tool.app"), Ids{nobodysChild});
    EXPECT_EQ(askedBy(table, "ool"), Ids{}) << "it is cut at its end only";
    EXPECT_EQ(askedBy(table, "Tul"), Ids{});
}

TEST(QuitApplication, AsksTheFirstOnly) {
    ScriptedProcessTable table;
    table.add(nobodysChild, "other");
    table.add(nobodysChild + 1, "Tool");
    table.add(nobodysChild + 2, "Tool");
    EXPECT_EQ(askedBy(table, "Tool"), Ids{nobodysChild + 1});
}

TEST(QuitApplication, LeavesWhatIsNoApplicationAlone) {
    ScriptedProcessTable table;
    table.add(1, "Tool");
    table.add(getpid(), "Tool");
    table.add(nobodysChild, "Tool").hasEnded = true;
    table.add(nobodysChild + 1, "Tool").isKernelThread = true;
    table.add(nobodysChild + 2, "Tool").user = geteuid() + 1;
    table.add(nobodysChild + 3, "");
    EXPECT_EQ(askedBy(table, "Tool"), Ids{});
    table.add(nobodysChild + 4, "Tool");
    EXPECT_EQ(askedBy(table, "Tool"), Ids{nobodysChild + 4});
}

TEST(QuitApplication, LeavesServicesToTheServiceManagerWhenTheCallerIsRoot) {
    ScriptedProcessTable table;
    table.add(nobodysChild, "Tool").isService = true;
    EXPECT_EQ(askedBy(table, "Tool"), geteuid() == 0 ? Ids{} : Ids{nobodysChild});
}

TEST(QuitApplication, OfNoNameFindsNone) {
    ScriptedProcessTable table;
    table.add(nobodysChild, "Tool");
    EXPECT_EQ(askedBy(table, ""), Ids{});
}

TEST(QuitApplication, TellsWhyTheRequestFailed) {
    ScriptedProcessTable table;
    EXPECT_EQ(forceApplicationQuit("Tool"), -600) << "no such process";
    table.add(nobodysChild, "Tool");
    table.askError = ESRCH;
    EXPECT_EQ(forceApplicationQuit("Tool"), -600) << "it has just gone";
    table.askError = EPERM;
    EXPECT_EQ(forceApplicationQuit("Tool"), -10004);
    table.askError = EIO;
    EXPECT_EQ(forceApplicationQuit("Tool"), -10000);
    table.readError = EACCES;
    EXPECT_EQ(forceApplicationQuit("Tool"), -600);
}
