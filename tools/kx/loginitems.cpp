#include "command.h"
#include "registrykey.h"
#include "table.h"

#include <array>

namespace Kx {

namespace {

constexpr std::array options{
    Option{"add", "PATH", "Add a program to a list"},
    Option{"remove", "PATH", "Remove a program from a list"},
    Option{"machine", "", "Change the machine's list, not the user's"},
};

CFStringRef asString(const Object& object) {
    return static_cast<CFStringRef>(object.get());
}

/// A value of a preference domain.
Object valueOf(const char* domain, const char* key) {
    return owned(
        CFPreferencesCopyAppValue(asString(stringObject(key)), asString(stringObject(domain))));
}

/// A value inside an object by its path; empty for none.
Object inside(const Object& object, const QString& path) {
    if (!isDictionary(object))
        return {};
    return owned(
        Korvex::getCFDictionaryKeyValue(static_cast<CFDictionaryRef>(object.get()), path, ~0UL));
}

std::string textIn(const Object& object, const QString& path) {
    const Object text = inside(object, path);
    return CFGetTypeID(text.get()) == CFStringGetTypeID() ? textOf(text.get()).toStdString() : "-";
}

/// Adds the items of a list to the table. \param factsPath Where an item has its path.
void show(Table& table, const std::string& list, const Object& items, const QString& factsPath) {
    if (CFGetTypeID(items.get()) != CFArrayGetTypeID())
        return;
    const auto* array = static_cast<CFArrayRef>(items.get());
    for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
        const Object item = owned(CFRetain(CFArrayGetValueAtIndex(array, i)));
        table.add({list, textIn(item, factsPath + "Path"), textIn(item, factsPath + "Hide"),
                   textIn(item, "Name")});
    }
}

void showPrivileged(Table& table) {
    const Object list = valueOf("/Library/Preferences/com.apple.loginitems", "privilegedlist");
    const std::string controller = textIn(list, "Controller");
    show(table, "privileged", inside(list, QString::fromStdString(controller)),
         "CustomItemProperties/com.apple.loginitem.legacyprefs/");
}

void showAll() {
    constexpr const char* key = "AutoLaunchedApplicationDictionary";
    Table table({{"LIST"}, {"PATH"}, {"HIDE"}, {"NAME"}});
    show(table, "user", valueOf("loginwindow", key), "");
    show(table, "machine", valueOf("/Library/Preferences/loginwindow", key), "");
    showPrivileged(table);
    if (!table.isEmpty())
        table.print();
}

/// The name of a program in the privileged list.
QString nameFor(const QString& path) {
    const QString last = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    const qsizetype dot = last.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? last.left(dot) : last;
}

void change(const std::string& program, Korvex::AutoLaunchedItemAction action, bool machine) {
    const QString path = QString::fromStdString(program);
    bool found = false;
    if (!Korvex::checkAddRemoveLoginItem(path, nameFor(path), found, action, nullptr, 0, nullptr, 0,
                                         machine))
        throw Failure(program + (found || action == Korvex::AutoLaunchedItemAdd
                                     ? ": the list cannot be written"
                                     : " is not in the list"));
}

int run(const Arguments& arguments) {
    const auto toAdd = arguments.argumentOf("add");
    const auto toRemove = arguments.argumentOf("remove");
    const bool machine = arguments.has("machine");
    if (!arguments.operands().empty())
        throw UsageError("too many operands");
    if (toAdd && toRemove)
        throw UsageError("--add and --remove exclude each other");
    if (machine && !toAdd && !toRemove)
        throw UsageError("--machine goes with --add and --remove");
    if (toAdd)
        change(*toAdd, Korvex::AutoLaunchedItemAdd, machine);
    else if (toRemove)
        change(*toRemove, Korvex::AutoLaunchedItemRemove, machine);
    else
        showAll();
    return Exit::Success;
}

} // namespace

extern const Command loginItems;
constinit const Command loginItems{
    .name = "login-items",
    .operands = "",
    .summary = "List the login items that programs have registered",
    .details = "These are the lists of the preference domains loginwindow and "
               "com.apple.loginitems. Sessions\n"
               "of Linux desktops do not read them: they start what is in ~/.config/autostart and\n"
               "/etc/xdg/autostart.",
    .options = options,
    .run = run,
};

} // namespace Kx
