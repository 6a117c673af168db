#include "messages/handlers.h"

#include <array>

namespace Korvex {

// Constants as far as initialisation goes, so that the constructors of other objects find them
// whatever the order.
constinit Lock hookLock;
constinit engineHandler g_EngineHandler(engineHandler::BuiltIn{});
constinit layerHandler g_LayerHandler;
constinit guiHandler g_GuiHandler;

constinit std::atomic<IProcessHandler*> pEngineHandler{&g_EngineHandler};
constinit std::atomic<IProcessHandler*> pLayerHandler{&g_LayerHandler};
constinit std::atomic<IProcessHandler*> pGuiHandler{&g_GuiHandler};

namespace {

struct Slot {
    std::atomic<IProcessHandler*>& handler;
    IProcessHandler* builtIn;
};

constinit const std::array<Slot, 3> handlerSlots{{{pEngineHandler, &g_EngineHandler},
                                                  {pLayerHandler, &g_LayerHandler},
                                                  {pGuiHandler, &g_GuiHandler}}};

/// Null for what is no level.
const Slot* slotOf(int level) {
    const bool known = level >= engineHandler::sLevel && level <= guiHandler::sLevel;
    return known ? &handlerSlots.at(static_cast<std::size_t>(level - 1)) : nullptr;
}

} // namespace

} // namespace Korvex

bool installCustomHandler(int level, IProcessHandler* handler) {
    const Korvex::Slot* slot = Korvex::slotOf(level);
    if (!slot || !handler)
        return false;
    IProcessHandler* expected = slot->builtIn;
    return slot->handler.compare_exchange_strong(expected, handler);
}

bool removeCustomHandler(int level, IProcessHandler* handler) {
    const Korvex::Slot* slot = Korvex::slotOf(level);
    if (!slot || !handler)
        return false;
    return slot->handler.compare_exchange_strong(handler, slot->builtIn);
}

int callProcessRequest(int level, infoMessage* message) {
    const Korvex::Slot* slot = Korvex::slotOf(level);
    IProcessHandler* handler = slot && message ? slot->handler.load() : nullptr;
    return handler ? handler->processRequest(message) : 0;
}

IProcessHandler* getEngineProcessHandler() {
    return Korvex::pEngineHandler;
}

IProcessHandler* getLayerProcessHandler() {
    return Korvex::pLayerHandler;
}

IProcessHandler* getGuiProcessHandler() {
    return Korvex::pGuiHandler;
}
