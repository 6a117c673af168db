#include "messages/defaultlog.h"

#include <KxQts/messages/processhandler.h>
#include <KxQts/support/log.h>
#include <KxQts/support/text.h>

namespace Korvex {

namespace {

/// Holds a reference to a message for a scope. A message that nobody else has one to goes with it.
class Reference {
public:
    explicit Reference(infoMessage& toHold) : message(toHold) { message.retain(); }
    ~Reference() { message.release(); }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;

private:
    infoMessage& message;
};

int passOn(infoMessage* message, int level) {
    if (!message)
        return 0;
    const Reference reference(*message);
    if (message->level == 0)
        message->level = level;
    return callProcessRequest(level + 1, message);
}

void fillIfEmpty(QString& text, QLatin1String placeholder) {
    if (text.isEmpty())
        text = placeholder;
}

} // namespace

engineHandler::engineHandler() {
    openDefaultLog();
}

bool engineHandler::installProcessHandler(IProcessHandler* handler) {
    return installCustomHandler(sLevel, handler);
}

bool engineHandler::removeProcessHandler(IProcessHandler* handler) {
    return removeCustomHandler(sLevel, handler);
}

int engineHandler::processRequest(infoMessage* message) {
    return passOn(message, sLevel);
}

bool layerHandler::installProcessHandler(IProcessHandler* handler) {
    return installCustomHandler(sLevel, handler);
}

bool layerHandler::removeProcessHandler(IProcessHandler* handler) {
    return removeCustomHandler(sLevel, handler);
}

int layerHandler::processRequest(infoMessage* message) {
    return passOn(message, sLevel);
}

bool guiHandler::installProcessHandler(IProcessHandler* handler) {
    return installCustomHandler(sLevel, handler);
}

bool guiHandler::removeProcessHandler(IProcessHandler* handler) {
    return removeCustomHandler(sLevel, handler);
}

int guiHandler::processRequest(infoMessage* message) {
    if (!message)
        return 0;
    const Reference reference(*message);
    fillIfEmpty(message->title, QLatin1String("<empty title>"));
    fillIfEmpty(message->message, QLatin1String("<empty message>"));
    IOLog("%s: %s\n", WCString(message->title).str, WCString(message->message).str);
    return 0;
}

} // namespace Korvex
