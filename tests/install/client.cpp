// A client in C++ that knows only the installed tree: uses both faces of the library, and Qt.

#include <KxQts/KxQts.h>

#include <QFileInfo>
#include <QHostAddress>

#include <cstdio>

namespace {

bool holds(bool condition, const char* what) {
    if (!condition)
        std::fprintf(stderr, "failed: %s\n", what);
    return condition;
}

bool fileWorks() {
    const QString path = QStringLiteral("client.txt");
    QFile* file = createFile(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (!holds(file != nullptr, "a file can be created"))
        return false;
    DWORD written = 0;
    const bool good =
        holds(WriteFile(file, "text", 4, &written, nullptr) == TRUE, "the file takes text") &&
        holds(written == 4, "all of it") &&
        holds(file->objectName() == "QFile", "it bears its tag");
    return holds(CloseHandle(file) == TRUE, "the file can be closed") && good;
}

bool eventWorks() {
    auto* event = static_cast<Korvex::WEvent*>(CreateEventA(nullptr, FALSE, TRUE, nullptr));
    const bool good = holds(event->objectName() == Korvex::WEvent::sObjName, "it bears its tag") &&
                      holds(Korvex::WEvent::wait(event, 0) == WAIT_OBJECT_0, "it is signalled");
    return holds(CloseHandle(event) == TRUE, "the event can be closed") && good;
}

bool libraryKnowsItself() {
    const char* const path = Korvex::getModulePath();
    return holds(path && QFileInfo(QString::fromLocal8Bit(path)).fileName() == "libKxQts.so",
                 "the library knows where it was loaded from");
}

bool messageBoxIsKnown() {
    return holds(QMessageBox::Ok == 0x400, "the message-box enumerations can be used");
}

bool networkIsLinked() {
    return holds(QHostAddress(QHostAddress::LocalHost).isLoopback(), "Qt's network module works");
}

} // namespace

int main() {
    const bool works = fileWorks() && eventWorks() && libraryKnowsItself();
    return works && messageBoxIsKnown() && networkIsLinked() ? 0 : 1;
}
