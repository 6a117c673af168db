// A resource library. Its texts say what they were asked for.

#include <KxQts/messages/localization.h>

#include <atomic>

namespace {

class Resource final : public Korvex::ITextResource {
public:
    int getText(int index, QString& out, int language) override {
        out = QStringLiteral("text %1 in language %2").arg(index).arg(language);
        return 1000 + index;
    }
};

} // namespace

extern "C" {

std::atomic<int> kxtestEntryCalls{0};

void kxtestModuleEntered() __attribute__((weak));

Korvex::ITextResource* getZRRes() {
    ++kxtestEntryCalls;
    if (kxtestModuleEntered)
        kxtestModuleEntered();
#ifdef KXTEST_NO_TEXTS
    return nullptr;
#else
    static Resource resource;
    return &resource;
#endif
}
}
