#include <KxQts/messages/infomessage.h>
#include <KxQts/messages/localization.h>

#include <QPointer>

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr auto buttons = QMessageBox::Ok | QMessageBox::Cancel;
int ownerObject = 0;

/// Makes a message with the same last arguments as all others here.
template <class... Leading>
std::unique_ptr<infoMessage> make(const Leading&... leading) {
    return std::unique_ptr<infoMessage>(
        infoMessage::Instance(leading..., static_cast<void*>(&ownerObject),
                              Korvex::messageModeWarning, buttons, Qt::ApplicationModal));
}

/// The message calls with a resource library whose texts say what they were asked for.
class TranslatedMessage : public testing::Test {
protected:
    TranslatedMessage() { EXPECT_TRUE(setTranslationFileName(KXTEST_RESOURCE)); }
    ~TranslatedMessage() override { staticDestructor(); }

    static QString text(int index) {
        QString out;
        EXPECT_EQ(infoMessage::GetLocalizedStringByIndex(index, out), 1000 + index);
        return out;
    }
};

} // namespace

TEST(InfoMessage, StartsWithoutReferencesAndKeepsWhatItIsGiven) {
    const infoMessage message(&ownerObject, Korvex::messageModeCritical, buttons, Qt::WindowModal);
    EXPECT_EQ(message.refCount, 0);
    EXPECT_TRUE(message.title.isNull());
    EXPECT_TRUE(message.message.isNull());
    EXPECT_EQ(message.owner, &ownerObject);
    EXPECT_EQ(message.mode, Korvex::messageModeCritical);
    EXPECT_EQ(message.level, 0);
    EXPECT_EQ(message.buttons, buttons);
    EXPECT_EQ(message.reserved, 0);
    EXPECT_EQ(message.modality, Qt::WindowModal);
}

TEST(InfoMessage, IconFollowsFromTheMode) {
    const std::vector<std::pair<int, QMessageBox::Icon>> expected{
        {1, QMessageBox::Information}, {2, QMessageBox::Warning}, {3, QMessageBox::Critical},
        {4, QMessageBox::Question},    {0, QMessageBox::NoIcon},  {5, QMessageBox::NoIcon},
        {-1, QMessageBox::NoIcon},
    };
    for (const auto& [mode, icon] : expected) {
        const infoMessage message(nullptr, messageMode(mode), QMessageBox::NoButton, Qt::NonModal);
        EXPECT_EQ(message.icon, icon) << mode;
        EXPECT_EQ(int(message.mode), mode);
    }
}

TEST(InfoMessage, CountsReferencesAndGoesWithTheLastOne) {
    const QPointer<infoMessage> message = make(QString("text")).release();
    EXPECT_EQ(message->retain(), 1);
    EXPECT_EQ(message->retain(), 2);
    EXPECT_EQ(message->release(), 1);
    EXPECT_FALSE(message.isNull());
    EXPECT_EQ(message->release(), 0);
    EXPECT_TRUE(message.isNull());
}

TEST(InfoMessage, ThatNobodyHasAReferenceToStaysWhenOneIsGivenUp) {
    const auto message = make(QString("text"));
    EXPECT_EQ(message->release(), -1);
    EXPECT_EQ(message->retain(), 0);
    EXPECT_EQ(message->message, QString("text"));
}

TEST(InfoMessage, BeginsWithTheBaseThatCounts) {
    const auto message = make(QString("text"));
    EXPECT_EQ(static_cast<void*>(static_cast<IRefCounter*>(message.get())),
              static_cast<void*>(message.get()));
    EXPECT_NE(static_cast<void*>(static_cast<QObject*>(message.get())),
              static_cast<void*>(message.get()));
}

TEST(InfoMessage, GoesThroughTheBaseThatCounts) {
    const QPointer<infoMessage> message = make(QString("text")).release();
    IRefCounter* counter = message;
    counter->retain();
    EXPECT_EQ(counter->release(), 0);
    EXPECT_TRUE(message.isNull());
}

TEST(InfoMessage, CountIsSafeForManyThreads) {
    const auto message = make(QString("text"));
    message->retain();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&message] {
            for (int round = 0; round < 1000; ++round) {
                message->retain();
                message->release();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(message->refCount, 1);
}

TEST(InfoMessage, TextsAreTakenAsTheyAre) {
    const auto one = make(QString("text"));
    EXPECT_TRUE(one->title.isEmpty());
    EXPECT_EQ(one->message, QString("text"));
    EXPECT_EQ(one->refCount, 0);
    EXPECT_EQ(one->owner, &ownerObject);
    EXPECT_EQ(one->mode, Korvex::messageModeWarning);
    EXPECT_EQ(one->buttons, buttons);
    EXPECT_EQ(one->icon, QMessageBox::Warning);
    EXPECT_EQ(one->modality, Qt::ApplicationModal);
    const auto two = make(QString("title"), QString("text"));
    EXPECT_EQ(two->title, QString("title"));
    EXPECT_EQ(two->message, QString("text"));
}

TEST(InfoMessage, LiteralAsSecondTextIsATextAndNoTruthValue) {
    const std::unique_ptr<infoMessage> message(infoMessage::Instance(
        "title", "text", nullptr, Korvex::messageModeInformation, QMessageBox::Ok, Qt::NonModal));
    EXPECT_EQ(message->title, QString("title"));
    EXPECT_EQ(message->message, QString("text"));
}

TEST_F(TranslatedMessage, TextsComeFromTheResourceLibrary) {
    const auto one = make(5);
    EXPECT_TRUE(one->title.isEmpty());
    EXPECT_EQ(one->message, text(5));
    const auto both = make(6, 7);
    EXPECT_EQ(both->title, text(6));
    EXPECT_EQ(both->message, text(7));
    const auto second = make(QString("title"), 8);
    EXPECT_EQ(second->title, QString("title"));
    EXPECT_EQ(second->message, text(8));
    const auto first = make(9, QString("text"));
    EXPECT_EQ(first->title, text(9));
    EXPECT_EQ(first->message, QString("text"));
}

TEST_F(TranslatedMessage, SourceFormGivesTheTextOfIndexMinusOne) {
    for (bool unused : {false, true}) {
        const auto message = make(QString("source"), unused);
        EXPECT_TRUE(message->title.isEmpty());
        EXPECT_EQ(message->message, text(-1));
    }
}

TEST_F(TranslatedMessage, WithoutATextHasNone) {
    EXPECT_TRUE(setTranslationFileName("/etc/passwd"));
    const auto message = make(5, 6);
    EXPECT_TRUE(message->title.isNull());
    EXPECT_TRUE(message->message.isNull());
    QString out = "before";
    EXPECT_EQ(infoMessage::GetLocalizedStringByIndex(5, out), 2);
    EXPECT_TRUE(out.isNull());
}
