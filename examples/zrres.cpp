// A resource library: the texts of a program in English, French and German.
//
// The library that shows the texts loads this one at the first lookup, calls getZRRes and asks the
// object that it gets for texts by index.

#include <KxQts/messages/localization.h>

#include <array>

namespace {

constexpr int found = 0;
constexpr int notFound = 1;

// One row a text, one column a language.
constexpr std::array<std::array<const char16_t*, 3>, 4> texts{{
    {u"Volume check", u"V\u00E9rification du volume", u"Pr\u00FCfung des Volumes"},
    {u"The volume has errors. Repair it now?",
     u"Le volume contient des erreurs. Le r\u00E9parer maintenant ?",
     u"Das Volume enth\u00E4lt Fehler. Jetzt reparieren?"},
    {u"The volume is in order.", u"Le volume est en ordre.", u"Das Volume ist in Ordnung."},
    {u"Yes", u"Oui", u"Ja"},
}};

class Texts final : public Korvex::ITextResource {
public:
    int getText(int index, QString& out, int language) override {
        if (index < 0 || index >= static_cast<int>(texts.size()))
            return notFound;
        out = QString::fromUtf16(texts.at(index).at(language));
        return found;
    }
};

} // namespace

extern "C" Korvex::ITextResource* getZRRes() {
    static Texts all;
    return &all;
}
