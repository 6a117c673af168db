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

#ifdef KXTEST_NO_TEXTS
Korvex::ITextResource* getZRRes() {
    ++kxtestEntryCalls;
    return nullptr;
}
#else
Korvex::ITextResource* getZRRes() {
    static Resource resource;
    ++kxtestEntryCalls;
    return &resource;
}
#endif
}
