// Asks the user a question through the chain of handlers: message RESOURCE-LIBRARY
//
// The engine sends the message. It passes the built-in handlers of engine and layer and ends at the
// handler of the user interface: first at one of this program, then at the built-in one.

#include <KxQts/KxQts.h>

#include <cstdio>

namespace {

enum Text { Title, Question, AllWell, Yes };

constexpr int engine = 1;
constexpr int userInterface = 3;

/// Shows messages on the terminal and answers every question with yes.
class Terminal final : public IProcessHandler {
public:
    bool installProcessHandler(IProcessHandler*) override { return false; }
    bool removeProcessHandler(IProcessHandler*) override { return false; }

    int processRequest(infoMessage* message) override {
        std::printf("[%s]\n%s\n", qUtf8Printable(message->title), qUtf8Printable(message->message));
        if (!message->buttons.testFlag(QMessageBox::Yes))
            return QMessageBox::Ok;
        QString answer;
        getLocalizedStringByStringID(Yes, answer);
        std::printf("> %s\n", qUtf8Printable(answer));
        return QMessageBox::Yes;
    }
};

int ask() {
    return callProcessRequest(
        engine, infoMessage::Instance(Title, Question, nullptr, Korvex::messageModeQuestion,
                                      QMessageBox::Yes | QMessageBox::No, Qt::ApplicationModal));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || !setTranslationFileName(QString::fromLocal8Bit(argv[1]))) {
        std::fputs("usage: message RESOURCE-LIBRARY\n", stderr);
        return 2;
    }

    Terminal terminal;
    installCustomHandler(userInterface, &terminal);
    const int answer = ask();
    removeCustomHandler(userInterface, &terminal);
    std::printf("The engine was told %d, which is %s.\n", answer,
                answer == QMessageBox::Yes ? "yes" : "something else");

    // Nobody to ask now: the message ends in the log.
    callProcessRequest(engine, infoMessage::Instance(Title, AllWell, nullptr,
                                                     Korvex::messageModeInformation,
                                                     QMessageBox::Ok, Qt::NonModal));
    return answer == QMessageBox::Yes ? 0 : 1;
}
