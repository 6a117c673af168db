#include <KxQts/messages/processhandler.h>

#include "common/scratchfile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using KxTest::contentsOf;
using KxTest::ScratchFile;

namespace {

constexpr const char* traceFile = "traceLog.txt";

void trace(layerHandler& handler, int mode, int level, const QString& text) {
    infoMessage message(nullptr, messageMode(mode), QMessageBox::NoButton, Qt::NonModal);
    message.level = level;
    message.message = text;
    handler.traceToLog(&message);
}

std::string onlyEntry(int mode, int level) {
    layerHandler handler;
    trace(handler, mode, level, "text");
    return handler.trace.join('|').toLatin1().toStdString();
}

} // namespace

TEST(LayerTrace, WritesModeAndLevelAsCharacters) {
    EXPECT_EQ(onlyEntry('A', 'B'), "--- A --- B --- text");
    EXPECT_EQ(onlyEntry(3, 2), "--- \x03 --- \x02 --- text");
    EXPECT_EQ(onlyEntry(0xE9, 0x141), "--- \xE9 --- A --- text") << "as 8-bit characters";
}

TEST(LayerTrace, ModeOrLevelOfZeroCutsTheEntryBeforeTheText) {
    EXPECT_EQ(onlyEntry(0, 2), "--- text");
    EXPECT_EQ(onlyEntry(1, 0), "--- \x01 --- text");
    EXPECT_EQ(onlyEntry(0x100, 1), "--- text");
}

TEST(LayerTrace, KeepsTheWholeTextAndTheOrder) {
    layerHandler handler;
    const QString text = QString::fromUtf16(u"\u20AC 5 \u2026");
    trace(handler, 'a', 'b', text);
    trace(handler, 'c', 'd', {});
    handler.traceToLog(nullptr);
    ASSERT_EQ(handler.trace.size(), 2);
    EXPECT_EQ(handler.trace.at(0), "--- a --- b --- " + text);
    EXPECT_EQ(handler.trace.at(1), "--- c --- d --- ");
}

TEST(LayerTrace, FirstFourEntriesAreSavedWithoutSeparator) {
    const ScratchFile file({traceFile}, "what was there before, and longer than what is written");
    layerHandler handler;
    for (const char* text : {"0", "1", "2", "3", "4"})
        trace(handler, 'm', 'l', text);
    EXPECT_FALSE(handler.saveLogToFile()) << "false is success";
    EXPECT_EQ(contentsOf(traceFile),
              "--- m --- l --- 0--- m --- l --- 1--- m --- l --- 2--- m --- l --- 3");
    EXPECT_EQ(handler.trace.size(), 5) << "nothing is taken out";
}

TEST(LayerTrace, IsSavedInUtf8) {
    const ScratchFile file({traceFile}, "");
    layerHandler handler;
    for (const char16_t* text : {u"\u20AC", u"\u00E9", u"", u""})
        trace(handler, 'm', 'l', QString::fromUtf16(text));
    EXPECT_FALSE(handler.saveLogToFile());
    EXPECT_EQ(
        contentsOf(traceFile),
        "--- m --- l --- \xE2\x82\xAC--- m --- l --- \xC3\xA9--- m --- l --- --- m --- l --- ");
}

TEST(LayerTrace, FileThatCannotBeOpenedGivesTrue) {
    std::filesystem::create_directory(traceFile);
    layerHandler handler;
    EXPECT_TRUE(handler.saveLogToFile()) << "also without entries";
    std::filesystem::remove(traceFile);
}

TEST(LayerTraceDeathTest, FewerThanFourEntriesStopTheProcess) {
    const ScratchFile file({traceFile}, "");
    layerHandler handler;
    for (int entries = 0; entries < 4; ++entries) {
        EXPECT_DEATH(handler.saveLogToFile(), "index out of range") << entries;
        trace(handler, 'm', 'l', "text");
    }
    EXPECT_FALSE(handler.saveLogToFile());
}
