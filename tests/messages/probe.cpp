// Uses the library as a client: `text INDEX [RESOURCE]` looks a text up and prints the result, and
// the text in brackets unless it is null.

#include <KxQts/messages/localization.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

int printText(int index, const char* resource) {
    if (resource && !setTranslationFileName(QString::fromLatin1(resource)))
        return EXIT_FAILURE;
    QString text = QStringLiteral("before");
    const int result = getLocalizedStringByStringID(index, text);
    std::printf("%d", result);
    if (!text.isNull())
        std::printf(" [%s]", text.toUtf8().constData());
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view action = argc > 1 ? argv[1] : "";
    if (action == "text" && argc > 2)
        return printText(std::atoi(argv[2]), argc > 3 ? argv[3] : nullptr);
    return EXIT_FAILURE;
}
