/// \file
/// Messages to the user.
#pragma once

#include <KxQts/export.h>
#include <KxQts/refcounter.h>

#include <QMessageBox>
#include <QObject>
#include <QString>

#include <atomic>

namespace Korvex {

/// What kind of message it is. The library derives the icon from it; all else is for the handler
/// that shows the message, and other values are handed on as they are.
enum messageMode : int {
    messageModePlain = 0, ///< No icon
    messageModeInformation = 1,
    messageModeWarning = 2,
    messageModeCritical = 3,
    messageModeQuestion = 4,
};

/// A message to the user: texts, and how to show them.
///
/// A message counts its references, starting with none: whoever takes one and gives it up again is
/// the last to have the message. The built-in handlers do so, so a message that was sent through
/// them is gone when the call returns, unless its maker took a reference before. Counting is for
/// any thread; everything else is for one thread at a time.
class KXQTS_EXPORT infoMessage : public IRefCounter, public QObject {
public:
    using Buttons = QFlags<QMessageBox::StandardButton>;

    /// Makes a message without texts. \param messageOwner See \ref owner.
    infoMessage(void* messageOwner, messageMode kind, Buttons offered,
                Qt::WindowModality windowModality);
    ~infoMessage() override;

    infoMessage(const infoMessage&) = delete;
    infoMessage& operator=(const infoMessage&) = delete;

    /// Makes a message with a text and no title. All these calls give null when there is no memory.
    /// The caller owns the message until it is sent, or gives it up with \ref release after a
    /// \ref retain.
    static infoMessage* Instance(const QString& text, void* owner, messageMode mode,
                                 Buttons buttons, Qt::WindowModality modality);
    /// Makes a message with a title and a text.
    static infoMessage* Instance(const QString& title, const QString& text, void* owner,
                                 messageMode mode, Buttons buttons, Qt::WindowModality modality);
    /// The same; without it, a literal as second argument would be taken for the truth value of the
    /// next form.
    static infoMessage* Instance(const QString& title, const char* text, void* owner,
                                 messageMode mode, Buttons buttons, Qt::WindowModality modality) {
        return Instance(title, QString(text), owner, mode, buttons, modality);
    }
    /// Makes a message with the text of index −1 and no title. The source is handed to the lookup,
    /// which finds texts by index only; the truth value has no meaning.
    static infoMessage* Instance(const QString& source, bool, void* owner, messageMode mode,
                                 Buttons buttons, Qt::WindowModality modality);
    /// Makes a message with the text of an index and no title.
    static infoMessage* Instance(int textId, void* owner, messageMode mode, Buttons buttons,
                                 Qt::WindowModality modality);
    /// Makes a message with title and text from the resource library.
    static infoMessage* Instance(int titleId, int textId, void* owner, messageMode mode,
                                 Buttons buttons, Qt::WindowModality modality);
    /// Makes a message with a title and a text from the resource library.
    static infoMessage* Instance(const QString& title, int textId, void* owner, messageMode mode,
                                 Buttons buttons, Qt::WindowModality modality);
    /// Makes a message with a title from the resource library and a text.
    static infoMessage* Instance(int titleId, const QString& text, void* owner, messageMode mode,
                                 Buttons buttons, Qt::WindowModality modality);

    /// Clears \a out and looks a text up, see \ref queryTranslate.
    static int GetLocalizedStringByIndex(int index, QString& out);

    int retain() override;
    /// Gives up a reference. The message deletes itself when the count becomes 0, and only then:
    /// one that nobody has a reference to goes to −1 and stays.
    int release() override;

    std::atomic<int> refCount{0};
    QString title;
    QString message;
    void* owner; ///< A window or context of whoever made the message; the library does not use it
    messageMode mode;
    int level = 0; ///< Where the message entered the chain of handlers; 0 until it has
    Buttons buttons;
    QMessageBox::Icon icon; ///< Derived from the mode when the message is made
    int reserved = 0;
    Qt::WindowModality modality;
};

} // namespace Korvex

using Korvex::infoMessage;
using Korvex::messageMode;
