#include "registryshow.h"

#include "output.h"

#include <QByteArray>
#include <QDateTime>

#include <vector>

namespace Kx {

namespace {

std::string quoted(const QString& text) {
    return '"' + printable(text.toStdString()) + '"';
}

std::string shownNumber(CFNumberRef number) {
    SInt32 small = 0;
    long long large = 0;
    double real = 0;
    if (CFNumberIsFloatType(number)) {
        CFNumberGetValue(number, kCFNumberDoubleType, &real);
        return "real    " + QString::number(real, 'g', 17).toStdString();
    }
    if (CFNumberGetValue(number, kCFNumberSInt32Type, &small))
        return "dword   " + std::to_string(small);
    const bool fits = CFNumberGetValue(number, kCFNumberLongLongType, &large) != 0;
    return fits ? "number  " + std::to_string(large)
                : "number  " + std::to_string(static_cast<unsigned long long>(large));
}

std::string shownData(CFDataRef data) {
    constexpr qsizetype shownBytes = 32;
    const QByteArray bytes(reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                           static_cast<qsizetype>(CFDataGetLength(data)));
    std::string text = "binary  " + bytes.left(shownBytes).toHex(' ').toStdString();
    if (bytes.size() > shownBytes)
        text += " ... (" + std::to_string(bytes.size()) + " bytes)";
    return text;
}

std::string shownDate(CFDateRef date) {
    constexpr double beginning2001 = 978307200;
    constexpr double milliseconds = 1000;
    const double time = (CFDateGetAbsoluteTime(date) + beginning2001) * milliseconds;
    return "date    " + QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(time), Qt::UTC)
                            .toString(Qt::ISODate)
                            .toStdString();
}

bool isContainer(CFTypeRef value) {
    return CFGetTypeID(value) == CFDictionaryGetTypeID() ||
           CFGetTypeID(value) == CFArrayGetTypeID();
}

/// A line of the tree that waits to be printed.
struct Line {
    std::size_t depth;
    QString name;
    CFTypeRef value;
};

std::vector<Line> contentsOf(const Line& line) {
    std::vector<Line> contents;
    if (CFGetTypeID(line.value) == CFArrayGetTypeID()) {
        const auto* array = static_cast<CFArrayRef>(line.value);
        for (CFIndex i = 0; i < CFArrayGetCount(array); ++i)
            contents.push_back(
                {line.depth + 1, QString::number(i), CFArrayGetValueAtIndex(array, i)});
        return contents;
    }
    const auto* dictionary = static_cast<CFDictionaryRef>(line.value);
    const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count);
    std::vector<const void*> values(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
    for (std::size_t i = 0; i < count; ++i)
        contents.push_back({line.depth + 1, textOf(keys[i]), values[i]});
    return contents;
}

void printLine(const Line& line) {
    const std::string indent(line.depth * 2, ' ');
    const std::string name = printable(line.name.toStdString());
    if (isContainer(line.value))
        print(indent + styled(name, Style::Heading) +
              (CFGetTypeID(line.value) == CFArrayGetTypeID() ? "[]\n" : "/\n"));
    else
        print(indent + name + "  " + styled(shownValue(line.value), Style::Plain) + '\n');
}

} // namespace

std::string shownValue(CFTypeRef value) {
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFStringGetTypeID())
        return "sz      " + quoted(textOf(value));
    if (type == CFNumberGetTypeID())
        return shownNumber(static_cast<CFNumberRef>(value));
    if (type == CFDataGetTypeID())
        return shownData(static_cast<CFDataRef>(value));
    if (type == CFDateGetTypeID())
        return shownDate(static_cast<CFDateRef>(value));
    if (type == CFBooleanGetTypeID())
        return std::string("boolean ") + (value == kCFBooleanTrue ? "true" : "false");
    return isContainer(value) ? "a key" : "another type";
}

void printTree(const QString& name, const Object& value) {
    // Keys may be nested deeper than a stack reaches.
    std::vector<Line> waiting{{0, name, value.get()}};
    while (!waiting.empty()) {
        const Line line = waiting.back();
        waiting.pop_back();
        printLine(line);
        if (!isContainer(line.value))
            continue;
        const std::vector<Line> contents = contentsOf(line);
        waiting.insert(waiting.end(), contents.rbegin(), contents.rend());
    }
}

} // namespace Kx
