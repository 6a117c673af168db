#include <KxQts/messages/infomessage.h>

#include "handles/disposal.h"
#include "platform/referencecounted.h"

#include <KxQts/messages/localization.h>

namespace Korvex {

namespace {

QMessageBox::Icon iconFor(messageMode mode) {
    switch (mode) {
    case messageModeInformation:
        return QMessageBox::Information;
    case messageModeWarning:
        return QMessageBox::Warning;
    case messageModeCritical:
        return QMessageBox::Critical;
    case messageModeQuestion:
        return QMessageBox::Question;
    case messageModePlain:
        break;
    }
    return QMessageBox::NoIcon;
}

QString translation(int index, const QString* source = nullptr) {
    QString text;
    queryTranslate(index, text, source);
    return text;
}

} // namespace

infoMessage::infoMessage(void* messageOwner, messageMode kind, Buttons offered,
                         Qt::WindowModality windowModality)
    : owner(messageOwner),
      mode(kind),
      buttons(offered),
      icon(iconFor(kind)),
      modality(windowModality) {}

infoMessage::~infoMessage() = default;

infoMessage* infoMessage::Instance(const QString& title, const QString& text, void* owner,
                                   messageMode mode, Buttons buttons, Qt::WindowModality modality) {
    auto* made = makeHandle<infoMessage>(owner, mode, buttons, modality);
    if (made) {
        made->title = title;
        made->message = text;
    }
    return made;
}

infoMessage* infoMessage::Instance(const QString& text, void* owner, messageMode mode,
                                   Buttons buttons, Qt::WindowModality modality) {
    return Instance(QString(), text, owner, mode, buttons, modality);
}

infoMessage* infoMessage::Instance(const QString& source, bool, void* owner, messageMode mode,
                                   Buttons buttons, Qt::WindowModality modality) {
    constexpr int sourceText = -1;
    return Instance(QString(), translation(sourceText, &source), owner, mode, buttons, modality);
}

infoMessage* infoMessage::Instance(int textId, void* owner, messageMode mode, Buttons buttons,
                                   Qt::WindowModality modality) {
    return Instance(QString(), translation(textId), owner, mode, buttons, modality);
}

infoMessage* infoMessage::Instance(int titleId, int textId, void* owner, messageMode mode,
                                   Buttons buttons, Qt::WindowModality modality) {
    return Instance(translation(titleId), translation(textId), owner, mode, buttons, modality);
}

infoMessage* infoMessage::Instance(const QString& title, int textId, void* owner, messageMode mode,
                                   Buttons buttons, Qt::WindowModality modality) {
    return Instance(title, translation(textId), owner, mode, buttons, modality);
}

infoMessage* infoMessage::Instance(int titleId, const QString& text, void* owner, messageMode mode,
                                   Buttons buttons, Qt::WindowModality modality) {
    return Instance(translation(titleId), text, owner, mode, buttons, modality);
}

int infoMessage::GetLocalizedStringByIndex(int index, QString& out) {
    return getLocalizedStringByStringID(index, out);
}

int infoMessage::retain() {
    return ++refCount;
}

int infoMessage::release() {
    return giveUpReference(this);
}

} // namespace Korvex
