#include <KxQts/messages/processhandler.h>
#include <KxQts/support/log.h>

#include "common/scratchfile.h"

#include <QPointer>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using KxTest::contentsOf;
using KxTest::ScratchFile;

namespace {

/// A log in a file of its own. Afterwards the process's log is as it was at the start.
class LoggedMessage : public testing::Test {
protected:
    LoggedMessage() {
        Korvex::IOLogOpen(file.name.c_str(), 2, "Title", nullptr);
        start = contentsOf(file.name).size();
    }
    ~LoggedMessage() override {
        Korvex::IOLogClose();
        Korvex::__kx_glog.fd = 0;
        Korvex::__kx_glog.title = QString();
    }

    /// What was logged, without the time that each line starts with.
    [[nodiscard]] std::string logged() const {
        const std::string text = contentsOf(file.name).substr(start);
        return text.size() < timeLength ? text : text.substr(timeLength);
    }

    static infoMessage* message(const QString& title, const QString& text) {
        return infoMessage::Instance(title, text, nullptr, Korvex::messageModeWarning,
                                     QMessageBox::Ok, Qt::NonModal);
    }

private:
    static constexpr std::size_t timeLength = sizeof "Mar 05 14:03:59 " - 1;

    const ScratchFile file;
    std::size_t start = 0;
};

} // namespace

TEST_F(LoggedMessage, IsOneLineWithTheLogsTitleAndItsOwn) {
    EXPECT_EQ(callProcessRequest(1, message("subject", "text")), 0);
    EXPECT_EQ(logged(), "Title: subject: text\n\n");
}

TEST_F(LoggedMessage, ThatIsEmptySaysSoAndIsGoneAfterwards) {
    const QPointer<infoMessage> empty = message({}, {});
    EXPECT_EQ(callProcessRequest(1, empty), 0);
    EXPECT_EQ(logged(), "Title: <empty title>: <empty message>\n\n");
    EXPECT_TRUE(empty.isNull());
}

TEST_F(LoggedMessage, GetsTheTextsThatStandForEmptyOnes) {
    const std::unique_ptr<infoMessage> kept(message("subject", {}));
    kept->retain();
    EXPECT_EQ(callProcessRequest(3, kept.get()), 0);
    EXPECT_EQ(kept->title, QString("subject"));
    EXPECT_EQ(kept->message, QString("<empty message>"));
    EXPECT_EQ(kept->refCount, 1);
    EXPECT_EQ(kept->level, 0) << "the user interface sets none";
}

TEST_F(LoggedMessage, IsNeverTakenForAFormat) {
    callProcessRequest(2, message("%n 100%", "%s %d %ls %"));
    EXPECT_EQ(logged(), "Title: %n 100%: %s %d %ls %\n\n");
}

TEST_F(LoggedMessage, IsWrittenInLatin1) {
    callProcessRequest(3, message(QString::fromLatin1("\xE9"), QString::fromUtf16(u"\u20AC")));
    EXPECT_EQ(logged(), "Title: \xE9: ?\n\n");
}
