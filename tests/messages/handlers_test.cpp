#include "messages/handlers.h"

#include <KxQts/messages/processhandler.h>

#include "common/virtualslot.h"
#include "messages/scopedhandler.h"

#include <QPointer>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using KxTest::ScopedHandler;

namespace {

infoMessage* message() {
    return infoMessage::Instance("title", "text", nullptr, Korvex::messageModeInformation,
                                 QMessageBox::Ok, Qt::NonModal);
}

struct Level {
    int number;
    IProcessHandler* (*inPlace)();
    IProcessHandler* builtIn;
};

const std::vector<Level> levels{
    {1, getEngineProcessHandler, &g_EngineHandler},
    {2, getLayerProcessHandler, &g_LayerHandler},
    {3, getGuiProcessHandler, &g_GuiHandler},
};

int nothing(infoMessage*) {
    return 0;
}

/// What another static initialiser gets from the handlers, whichever of the two is made first.
const int answerBeforeMain = [] {
    const ScopedHandler gui(3, [](infoMessage* received) { return 70 + received->level; });
    return callProcessRequest(1, message());
}();

} // namespace

TEST(ProcessHandlers, HaveTheirLevels) {
    EXPECT_EQ(engineHandler::sLevel, 1);
    EXPECT_EQ(layerHandler::sLevel, 2);
    EXPECT_EQ(guiHandler::sLevel, 3);
}

TEST(ProcessHandlers, HaveTheirOperationsInOrder) {
    EXPECT_EQ(KxTest::virtualSlot(&IProcessHandler::installProcessHandler), 2u);
    EXPECT_EQ(KxTest::virtualSlot(&IProcessHandler::removeProcessHandler), 3u);
    EXPECT_EQ(KxTest::virtualSlot(&IProcessHandler::processRequest), 4u);
    EXPECT_EQ(KxTest::virtualSlot(&infoMessage::retain), 2u);
    EXPECT_EQ(KxTest::virtualSlot(&infoMessage::release), 3u);
}

TEST(ProcessHandlers, AreThereForOtherStaticInitialisers) {
    EXPECT_EQ(answerBeforeMain, 71);
}

TEST(ProcessHandlers, AreTheBuiltInOnesUntilOthersAreInstalled) {
    for (const Level& level : levels)
        EXPECT_EQ(level.inPlace(), level.builtIn) << level.number;
}

TEST(ProcessHandlers, FirstHandlerKeepsItsPlaceUntilItIsRemoved) {
    for (const Level& level : levels) {
        ScopedHandler first(level.number, nothing);
        ScopedHandler second(level.number, nothing);
        EXPECT_TRUE(first.inPlace);
        EXPECT_FALSE(second.inPlace);
        EXPECT_EQ(level.inPlace(), &first);
        EXPECT_FALSE(removeCustomHandler(level.number, &second));
        EXPECT_EQ(level.inPlace(), &first);
        EXPECT_TRUE(removeCustomHandler(level.number, &first));
        EXPECT_EQ(level.inPlace(), level.builtIn);
        EXPECT_FALSE(removeCustomHandler(level.number, &first)) << "not in place any more";
    }
}

TEST(ProcessHandlers, OtherLevelsAndNullAreRefused) {
    ScopedHandler handler(0, nothing);
    EXPECT_FALSE(handler.inPlace);
    for (int level : {-1, 0, 4, 1000}) {
        EXPECT_FALSE(installCustomHandler(level, &handler));
        EXPECT_FALSE(removeCustomHandler(level, &handler));
    }
    for (int level : {1, 2, 3}) {
        EXPECT_FALSE(installCustomHandler(level, nullptr));
        EXPECT_FALSE(removeCustomHandler(level, nullptr));
    }
}

TEST(ProcessHandlers, BuiltInOnesInstallAtTheirOwnLevel) {
    for (const Level& level : levels) {
        ScopedHandler handler(0, nothing);
        EXPECT_TRUE(level.builtIn->installProcessHandler(&handler));
        EXPECT_EQ(level.inPlace(), &handler);
        EXPECT_FALSE(level.builtIn->installProcessHandler(&handler));
        EXPECT_TRUE(level.builtIn->removeProcessHandler(&handler));
        EXPECT_FALSE(level.builtIn->removeProcessHandler(&handler));
        EXPECT_FALSE(level.builtIn->installProcessHandler(nullptr));
        EXPECT_EQ(level.inPlace(), level.builtIn);
    }
}

TEST(ProcessHandlers, OtherLevelsAndNullMessagesGiveZero) {
    ScopedHandler gui(3, [](infoMessage*) { return 7; });
    const std::unique_ptr<infoMessage> kept(message());
    for (int level : {-1, 0, 4})
        EXPECT_EQ(callProcessRequest(level, kept.get()), 0);
    for (int level : {1, 2, 3})
        EXPECT_EQ(callProcessRequest(level, nullptr), 0);
    for (const Level& level : levels)
        EXPECT_EQ(level.builtIn->processRequest(nullptr), 0);
    EXPECT_EQ(callProcessRequest(3, kept.get()), 7);
}

TEST(ProcessHandlers, EmptyPlaceGivesZero) {
    const std::unique_ptr<infoMessage> kept(message());
    Korvex::pGuiHandler = nullptr;
    EXPECT_EQ(callProcessRequest(3, kept.get()), 0);
    EXPECT_EQ(getGuiProcessHandler(), nullptr);
    Korvex::pGuiHandler = &Korvex::g_GuiHandler;
}

TEST(ProcessHandlers, MessageGoesUpTheChainWithTheLevelThatItEnteredAt) {
    int seen = 0;
    const ScopedHandler gui(3, [&seen](infoMessage* received) {
        seen = received->level;
        return 40 + received->refCount;
    });
    EXPECT_EQ(callProcessRequest(1, message()), 42) << "engine and layer hold a reference each";
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(callProcessRequest(2, message()), 41);
    EXPECT_EQ(seen, 2);
    infoMessage* direct = message();
    EXPECT_EQ(callProcessRequest(3, direct), 40) << "nobody has a reference, so it stays";
    EXPECT_EQ(seen, 0);
    delete direct;
}

TEST(ProcessHandlers, LevelThatIsSetAlreadyStays) {
    infoMessage* marked = message();
    marked->level = 9;
    const ScopedHandler gui(3, [](infoMessage* received) { return received->level; });
    EXPECT_EQ(callProcessRequest(1, marked), 9);
}

TEST(ProcessHandlers, MessageIsGoneAfterTheChainUnlessItsMakerHasAReference) {
    const ScopedHandler gui(3, nothing);
    for (int level : {1, 2}) {
        const QPointer<infoMessage> forgotten = message();
        callProcessRequest(level, forgotten);
        EXPECT_TRUE(forgotten.isNull());
        const QPointer<infoMessage> kept = message();
        kept->retain();
        callProcessRequest(level, kept);
        ASSERT_FALSE(kept.isNull());
        EXPECT_EQ(kept->release(), 0);
    }
}

TEST(ProcessHandlers, HandlerMayPassOnToTheNextLevel) {
    const ScopedHandler layer(
        2, [](infoMessage* received) { return 100 + callProcessRequest(3, received); });
    const ScopedHandler gui(3, [](infoMessage*) { return 5; });
    EXPECT_EQ(callProcessRequest(1, message()), 105);
}

TEST(ProcessHandlers, HandlerMayTakeItselfOutWhileARequestRunsThroughIt) {
    ScopedHandler* self = nullptr;
    ScopedHandler gui(3, [&self](infoMessage*) {
        EXPECT_TRUE(removeCustomHandler(3, self));
        EXPECT_EQ(getGuiProcessHandler(), &Korvex::g_GuiHandler);
        return 8;
    });
    self = &gui;
    EXPECT_EQ(callProcessRequest(1, message()), 8);
}

TEST(ProcessHandlers, ManyThreadsSwapHandlersAndSendMessages) {
    constexpr int swappers = 3;
    constexpr int senders = 3;
    constexpr int rounds = 2000;
    std::atomic<int> swaps{0};
    std::atomic<int> answers{0};
    // At level 3 there is always one that answers, so that nothing is logged.
    const ScopedHandler gui(3, [&answers](infoMessage* received) {
        ++answers;
        return received->level;
    });
    std::vector<std::unique_ptr<ScopedHandler>> handlers;
    for (int i = 0; i < swappers; ++i)
        handlers.push_back(std::make_unique<ScopedHandler>(
            0, [](infoMessage* received) { return callProcessRequest(3, received); }));
    std::vector<std::thread> threads;
    for (const auto& handler : handlers)
        threads.emplace_back([&swaps, &handler] {
            for (int round = 0; round < rounds; ++round) {
                if (installCustomHandler(2, handler.get())) {
                    ++swaps;
                    EXPECT_TRUE(removeCustomHandler(2, handler.get()));
                } else {
                    EXPECT_FALSE(removeCustomHandler(2, handler.get()));
                }
            }
        });
    for (int i = 0; i < senders; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < rounds; ++round)
                EXPECT_EQ(callProcessRequest(1, message()), 1);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(answers, senders * rounds);
    EXPECT_GT(swaps, 0);
    EXPECT_EQ(getLayerProcessHandler(), &Korvex::g_LayerHandler);
}
