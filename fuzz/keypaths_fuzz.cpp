// Registry keys over any property list and any path: what a path leads to is what a plain walk over
// the objects finds, what is written is read back, and nothing else changes.

#include "common/input.h"
#include "common/memorypreferences.h"
#include "common/require.h"
#include "platform/corefoundation/object.h"

#include <KxQts/registry/prefs.h>

using Korvex::WPrefs;
using Korvex::Cf::isA;
using Korvex::Cf::Owned;
using Korvex::Cf::Type;
using KxFuzz::Input;
using KxFuzz::MemoryPreferences;
using KxFuzz::require;

namespace {

constexpr unsigned long anyType = ~0UL;
const QString appId = QStringLiteral("some.domain");

bool isContainer(CFTypeRef value) {
    return isA(value, Type::Dictionary) || isA(value, Type::Array);
}

CFTypeRef step(CFTypeRef container, const QString& name) {
    if (isA(container, Type::Dictionary)) {
        const Owned<CFStringRef> key(createCFString(name));
        return CFDictionaryGetValue(static_cast<CFDictionaryRef>(container), key.get());
    }
    bool isNumber = false;
    const int index = name.toInt(&isNumber);
    const auto* array = static_cast<CFArrayRef>(container);
    return isNumber && index >= 0 && index < CFArrayGetCount(array)
               ? CFArrayGetValueAtIndex(array, index)
               : nullptr;
}

/// The walk, as plainly as it can be written.
CFTypeRef walk(CFTypeRef container, const QString& path, bool any) {
    if (path.isEmpty())
        return nullptr;
    const auto slash = path.indexOf(QLatin1Char('/'));
    const QString head = slash > 0 ? path.left(slash) : path;
    const QString rest = slash > 0 ? path.mid(slash + 1) : QString();
    const CFTypeRef value = step(container, head);
    if (!isContainer(value) || (slash < 0 && any))
        return value;
    return walk(value, rest, any);
}

/// The first name of a path of a domain differs from the others in what ends there.
CFTypeRef walkDomain(CFTypeRef domain, const QString& path, unsigned long typeId) {
    const auto slash = path.indexOf(QLatin1Char('/'));
    const QString head = slash > 0 ? path.left(slash) : path;
    const CFTypeRef top = path.isEmpty() ? nullptr : step(domain, head);
    if (isContainer(top) && slash > 0 && slash + 1 < path.size())
        return walk(top, path.mid(slash + 1), typeId == anyType);
    if (typeId != anyType && (isContainer(top) || !top || CFGetTypeID(top) != typeId))
        return nullptr;
    return top;
}

bool same(CFTypeRef one, CFTypeRef other) {
    return !one || !other ? one == other : CFEqual(one, other) != 0;
}

Owned<CFTypeRef> contentsOf(MemoryPreferences& store) {
    const auto document = store.open({appId, MemoryPreferences::Domain::Scope::AnyUser});
    return Owned<CFTypeRef>(document ? document->copy(document->top()) : nullptr);
}

/// Paths inside the arrays at the top, whose first names are indexes.
void checkArrays(CFTypeRef domain, const QString& path) {
    const auto look = [](const void*, const void* value, void* context) {
        if (!isA(value, Type::Array))
            return;
        const QString& index = *static_cast<const QString*>(context);
        const auto* array = static_cast<CFArrayRef>(value);
        for (const unsigned long type : {anyType, CFStringGetTypeID()}) {
            const Owned<CFTypeRef> found(getCFArrayKeyValue(array, index, type));
            require(same(found.get(), walk(array, index, type == anyType)));
        }
    };
    const QString places[] = {path, QStringLiteral("0/") + path, QStringLiteral("1")};
    for (QString place : places)
        CFDictionaryApplyFunction(static_cast<CFDictionaryRef>(domain), look, &place);
}

void checkReading(WPrefs& prefs, CFTypeRef domain, const QString& path) {
    for (const unsigned long type :
         {anyType, CFStringGetTypeID(), CFNumberGetTypeID(), CFDictionaryGetTypeID()}) {
        const Owned<CFTypeRef> found(prefs.getObjectOfType(path, type, kCFPreferencesAnyUser));
        require(same(found.get(), domain ? walkDomain(domain, path, type) : nullptr));
        const auto* dictionary = static_cast<CFDictionaryRef>(domain);
        const Owned<CFTypeRef> inside(getCFDictionaryKeyValue(dictionary, path, type));
        require(same(inside.get(), domain ? walk(domain, path, type == anyType) : nullptr));
    }
}

/// Names of top-level values are not paths.
void checkSyncProperty(WPrefs& prefs, MemoryPreferences& store, const QString& name,
                       CFTypeRef value) {
    if (!prefs.setSyncProperty(name, value, kCFPreferencesAnyUser))
        return;
    const Owned<CFTypeRef> found(prefs.getSyncProperty(name, kCFPreferencesAnyUser));
    const Owned<CFTypeRef> contents = contentsOf(store);
    require(same(found.get(), value) && same(step(contents.get(), name), value));
    require(prefs.setSyncProperty(name, nullptr, kCFPreferencesAnyUser));
    const Owned<CFTypeRef> none(prefs.getSyncProperty(name, kCFPreferencesAnyUser));
    require(!none);
}

/// Writes by path in the store and in objects, which must come to the same.
void checkWriting(WPrefs& prefs, MemoryPreferences& store, const QString& path, CFTypeRef value) {
    const Owned<CFTypeRef> before = contentsOf(store);
    const bool isStored = prefs.putObject(path, value, kCFPreferencesAnyUser);
    require(!isStored || !path.isEmpty());
    const Owned<CFTypeRef> after = contentsOf(store);
    if (!isStored)
        return require(same(before.get(), after.get()));
    const Owned<CFMutableDictionaryRef> expected(
        CFDictionaryCreateMutableCopy(nullptr, 0, static_cast<CFDictionaryRef>(before.get())));
    require(setCFDictionaryKeyValue(expected.get(), path, value));
    require(same(expected.get(), after.get()));
    const Owned<CFTypeRef> again(prefs.getObjectOfType(path, anyType, kCFPreferencesAnyUser));
    require(same(again.get(), value));
}

void checkTypedValues(WPrefs& prefs, const QString& path, const QString& text, int number) {
    const QByteArray bytes = text.toUtf8();
    QString textRead;
    QByteArray bytesRead;
    int numberRead = 0;
    bool boolRead = false;
    bool isOdd = (number & 1) != 0;
    const auto* const user = kCFPreferencesAnyUser;
    if (prefs.setProfileString(path, user, &text))
        require(prefs.getProfileString(path, user, textRead) && textRead == text);
    if (prefs.setProfileInt(path, user, &number))
        require(prefs.getProfileInt(path, user, numberRead) && numberRead == number &&
                !prefs.getProfileBool(path, user, boolRead));
    if (prefs.setProfileBool(path, user, &isOdd))
        require(prefs.getProfileBool(path, user, boolRead) && boolRead == isOdd);
    if (prefs.setProfileBinary(path, user, &bytes))
        require(prefs.getProfileBinary(path, user, bytesRead) && bytesRead == bytes &&
                !prefs.getProfileString(path, user, textRead));
    if (prefs.setProfileInt(path, user, nullptr))
        require(!prefs.getProfileInt(path, user, numberRead));
}

/// The values of a key by their names, in the types of the registry.
void checkKey(WPrefs& key, const QString& name, unsigned type, const QByteArray& data) {
    unsigned typeRead = 0;
    QByteArray read;
    const bool isStored = key.setValue(name, type, data);
    if (isStored) {
        require(key.queryValue(name, &typeRead, read));
        require(typeRead == (type == 11 ? 3 : type));
        const auto size = type == 4 ? 4 : type == 1 ? data.size() / 2 * 2 : data.size();
        require(read == data.left(size));
        require(key.deleteValue(name) && !key.queryValue(name, nullptr, read) && read.isEmpty());
    }
    unsigned count = 0;
    int kind = 0;
    QString entry;
    while (key.enumKey(count, entry, &kind))
        ++count;
    require(entry.isEmpty() && !key.enumKey(count + 1, entry, nullptr));
    if (key.deleteKey(name))
        require(!key.deleteKey(name));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const QString path = input.qtText();
    const QString keyPath = input.qtText();
    const QString text = input.qtText();
    const auto number = input.number<int>();
    const unsigned type = input.number<std::uint8_t>() % 12;
    MemoryPreferences store(input.rest());
    WPrefs prefs(&appId, &keyPath, true);
    const Owned<CFTypeRef> domain = contentsOf(store);
    checkReading(prefs, domain.get(), path);
    checkReading(prefs, domain.get(), keyPath);
    if (domain)
        checkArrays(domain.get(), path);
    const Owned<CFStringRef> value(createCFString(text));
    checkWriting(prefs, store, path, value.get());
    checkWriting(prefs, store, keyPath, nullptr);
    checkSyncProperty(prefs, store, keyPath, value.get());
    checkTypedValues(prefs, path, text, number);
    checkKey(prefs, text, type, path.toUtf8() + QByteArray(number & 7, '\1'));
    return 0;
}
