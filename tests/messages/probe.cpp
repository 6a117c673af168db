// Uses the library as a client:
//
// text INDEX [RESOURCE]  looks a text up and prints the result, and the text in brackets unless
//                        it is null; says "refused" first when it cannot use the resource library;
// engine                 makes an engine handler of its own;
// nothing                does nothing.
//
// It has sent a message before main.

#include <KxQts/messages/localization.h>
#include <KxQts/messages/processhandler.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

const int answerBeforeMain = callProcessRequest(
    1, infoMessage::Instance("early", "sent before main", nullptr, Korvex::messageModeInformation,
                             QMessageBox::Ok, Qt::NonModal));

int printText(int index, const char* resource) {
    if (resource && !setTranslationFileName(QString::fromLatin1(resource)))
        std::printf("refused, ");
    QString text = QStringLiteral("before");
    const int result = getLocalizedStringByStringID(index, text);
    std::printf("%d", result);
    if (!text.isNull())
        std::printf(" [%s]", text.toUtf8().constData());
    return EXIT_SUCCESS;
}

int makeEngineHandler() {
    const engineHandler another;
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view action = argc > 1 ? argv[1] : "";
    if (action == "text" && argc > 2)
        return printText(std::atoi(argv[2]), argc > 3 ? argv[3] : nullptr);
    if (action == "engine")
        return makeEngineHandler();
    return action == "nothing" ? answerBeforeMain : EXIT_FAILURE;
}
