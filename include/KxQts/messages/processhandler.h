/// \file
/// Who shows a message: a chain of one handler for each kind of process.
#pragma once

#include <KxQts/export.h>
#include <KxQts/messages/infomessage.h>

#include <QStringList>

namespace Korvex {

/// Takes the messages of one level: 1 the engine, 2 the layer, 3 the user interface.
class KXQTS_EXPORT IProcessHandler {
public:
    virtual ~IProcessHandler() = default;

    /// Puts another handler in this one's place. \return Whether it is in place now.
    virtual bool installProcessHandler(IProcessHandler* handler) = 0;

    /// Takes that handler out again. \return Whether it was in place.
    virtual bool removeProcessHandler(IProcessHandler* handler) = 0;

    /// Handles a message. Several threads may call at once, and a call may still run when the
    /// handler has been taken out. \return What the sender gets.
    virtual int processRequest(infoMessage* message) = 0;
};

/// The built-in handler of the engine: hands a message on to level 2.
class KXQTS_EXPORT engineHandler : public IProcessHandler {
public:
    static constexpr int sLevel = 1;

    /// Opens the library's log, see `WLogFile`: in the folder of an installation in progress, or
    /// else beside the library. For the built-in object this happens when the library is loaded.
    engineHandler();

    /// Marks the built-in object, which is there before anything else is and opens no log itself.
    struct BuiltIn {};
    constexpr explicit engineHandler(BuiltIn) {}

    bool installProcessHandler(IProcessHandler* handler) override;
    bool removeProcessHandler(IProcessHandler* handler) override;

    /// Sets the message's level to 1 unless it has one, and hands the message on. 0 for null.
    int processRequest(infoMessage* message) override;
};

/// The built-in handler of the layer: hands a message on to level 3, and keeps a trace.
class KXQTS_EXPORT layerHandler : public IProcessHandler {
public:
    static constexpr int sLevel = 2;

    bool installProcessHandler(IProcessHandler* handler) override;
    bool removeProcessHandler(IProcessHandler* handler) override;

    /// Sets the message's level to 2 unless it has one, and hands the message on. 0 for null.
    int processRequest(infoMessage* message) override;

    /// Adds a message to the trace: its mode and its level between dashes, each as the one
    /// character that has that code (a 0 ends this part), and its text. Null is ignored. The trace
    /// has no lock.
    void traceToLog(infoMessage* message);

    /// Writes the first four entries of the trace, one behind the other, to "traceLog.txt" in the
    /// current directory, in UTF-8. What the file held before is gone. A trace of fewer entries
    /// ends the process with "index out of range".
    /// \return True when the file could **not** be opened, false once it is written.
    bool saveLogToFile();

    QStringList trace; ///< What \ref traceToLog has added
};

/// The built-in handler of the user interface: writes a message to the log of the process.
class KXQTS_EXPORT guiHandler : public IProcessHandler {
public:
    static constexpr int sLevel = 3;

    bool installProcessHandler(IProcessHandler* handler) override;
    bool removeProcessHandler(IProcessHandler* handler) override;

    /// Logs title and text; where one is empty, the message gets "<empty title>" or
    /// "<empty message>" for it. \return 0.
    int processRequest(infoMessage* message) override;
};

/// \name The built-in handlers
/// There before the first constructor of the library or of a program runs.
/// \{

/// The handler of level 1.
extern KXQTS_EXPORT engineHandler g_EngineHandler;
/// The handler of level 2.
extern KXQTS_EXPORT layerHandler g_LayerHandler;
/// The handler of level 3.
extern KXQTS_EXPORT guiHandler g_GuiHandler;
/// \}

} // namespace Korvex

using Korvex::engineHandler;
using Korvex::g_EngineHandler;
using Korvex::g_GuiHandler;
using Korvex::g_LayerHandler;
using Korvex::guiHandler;
using Korvex::IProcessHandler;
using Korvex::layerHandler;

/// Puts a handler in the place of the built-in one of a level.
///
/// It is one atomic exchange, safe from any thread. The handler stays its owner's, who keeps it
/// alive until no request runs through it any more.
/// \param level 1, 2 or 3.
/// \return Whether the handler is in place now. False for null, another level, and while the
/// built-in handler is not in place: a second handler does not displace the first.
KXQTS_EXPORT bool installCustomHandler(int level, IProcessHandler* handler);

/// Puts the built-in handler back. Does not wait for requests that run through the other one.
/// \return False for null, another level, and when \a handler is not in place.
KXQTS_EXPORT bool removeCustomHandler(int level, IProcessHandler* handler);

/// Sends a message to the handler of a level.
///
/// A message without a reference is gone after it has been through the built-in handlers, see
/// \ref Korvex::infoMessage.
/// \return What the handler returns; 0 for null and for another level than 1, 2 and 3.
KXQTS_EXPORT int callProcessRequest(int level, infoMessage* message);

/// The handler that is in place at level 1.
KXQTS_EXPORT IProcessHandler* getEngineProcessHandler();
/// The handler that is in place at level 2.
KXQTS_EXPORT IProcessHandler* getLayerProcessHandler();
/// The handler that is in place at level 3.
KXQTS_EXPORT IProcessHandler* getGuiProcessHandler();
