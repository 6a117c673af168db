#include "command.h"
#include "table.h"

#include <KxQts/KxQts.h>

#include <memory>

namespace Kx {

namespace {

Cell unknown() {
    return {"unknown", Style::Dim};
}

Cell shown(bool isKnown, const QString& text) {
    return isKnown ? Cell(text.toStdString()) : unknown();
}

/// The answer to a question that gives a text.
template <class Question>
Cell answer(Question ask) {
    QString text;
    const bool isKnown = ask(text);
    return shown(isKnown, text);
}

Cell build() {
    QString version;
    QString text;
    const bool isKnown = getProductVersion(version, &text);
    return shown(isKnown, text);
}

Cell swap() {
    bool encrypted = false;
    if (getSecureVirtualMemoryState(encrypted) != 0)
        return unknown();
    return encrypted ? Cell("encrypted or none", Style::Good) : Cell("in clear", Style::Bad);
}

Cell processCount() {
    kinfo_proc* list = nullptr;
    unsigned long count = 0;
    if (GetBSDProcessList(&list, &count) != 0)
        return unknown();
    const std::unique_ptr<kinfo_proc[]> owned(list);
    return std::to_string(count);
}

/// The releases that programs ask for by their names.
Cell releaseTests() {
    std::string names;
    const auto add = [&](bool is, const char* name) {
        if (is)
            names += (names.empty() ? "" : ", ") + std::string(name);
    };
    add(isNewerThenLeopard(), "isNewerThenLeopard");
    add(isNewerThenSnowLeopard(), "isNewerThenSnowLeopard");
    add(isSnowLeopard(), "isSnowLeopard");
    add(isLion(), "isLion");
    add(Korvex::isMacOsxMountainLion(), "isMacOsxMountainLion");
    return names.empty() ? Cell("none", Style::Dim) : Cell(names);
}

Cell timeOfDay() {
    return answer([](QString& text) { return getTimeFormat(0, 0, nullptr, QString(), text); });
}

int run(const Arguments& arguments) {
    if (!arguments.operands().empty())
        throw UsageError("too many operands");
    Table table({{"WHAT"}, {"ANSWER"}});
    table.add({Cell("computer name"), answer(getComputerName)});
    table.add({Cell("configured host name"), answer(getHostName)});
    table.add({Cell("user"), answer(getUserName)});
    table.add({Cell("kernel release"), answer(getOSKernelReleaseString)});
    table.add({Cell("release tests that are true"), releaseTests()});
    table.add({Cell("product version"),
               answer([](QString& text) { return getProductVersion(text, nullptr); })});
    table.add({Cell("product build"), build()});
    table.add({Cell("model"), answer(getModel)});
    table.add({Cell("serial number"), answer(getSerialNumber)});
    table.add({Cell("bundle of this program"), answer(getBundlePath)});
    table.add({Cell("executable"), answer(getBundleExecutablePath)});
    table.add({Cell("swapped memory"), swap()});
    table.add({Cell("processes"), processCount()});
    table.add({Cell("date and time formats"), timeOfDay()});
    table.print();
    return Exit::Success;
}

} // namespace

extern const Command system;
constinit const Command system{
    .name = "system",
    .operands = "",
    .summary = "Show what programs are told about this machine and its system",
    .details =
        "What the system does not tell is unknown: many distributions have no build, and only\n"
        "root sees the serial number.",
    .options = {},
    .run = run,
};

} // namespace Kx
