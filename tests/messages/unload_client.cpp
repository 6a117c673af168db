// A client of the library that is itself a library.

#include <KxQts/messages/localization.h>

extern "C" __attribute__((visibility("default"))) int kxtestLookUp(const char* resource) {
    QString text;
    return setTranslationFileName(QString::fromLatin1(resource)) &&
                   getLocalizedStringByStringID(1, text) == 1001
               ? 0
               : 1;
}
