#include "registryfiles.h"

#include "command.h"
#include "inifile.h"
#include "output.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace Kx {

namespace {

QByteArray readAll(const std::string& name) {
    QFile file(QString::fromStdString(name));
    const bool opened =
        name == "-" ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    QByteArray bytes = opened ? file.readAll() : QByteArray();
    if (!opened || file.error() != QFileDevice::NoError)
        throw Failure("cannot read " + name + ": " + file.errorString().toStdString());
    return bytes;
}

void writeAll(const std::string& name, const QByteArray& bytes) {
    if (name == "-")
        return print({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    QFile file(QString::fromStdString(name));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(bytes) != bytes.size() || !file.flush())
        throw Failure("cannot write " + name + ": " + file.errorString().toStdString());
}

Object dictionaryOf(const RegistryKey& key) {
    Object found = key.read();
    if (!found || !isDictionary(found))
        throw Failure("there is no key " + key.name().toStdString());
    return found;
}

/// What a key holds, to be added to; empty for a new key.
Object mutableCopy(const RegistryKey& key) {
    const Object found = key.read();
    if (found && isDictionary(found))
        return owned(
            CFDictionaryCreateMutableCopy(nullptr, 0, static_cast<CFDictionaryRef>(found.get())));
    return owned(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                           &kCFTypeDictionaryValueCallBacks));
}

CFMutableDictionaryRef asMutable(const Object& object) {
    return static_cast<CFMutableDictionaryRef>(const_cast<void*>(object.get()));
}

std::vector<std::pair<QString, CFTypeRef>> entriesOf(CFTypeRef dictionary) {
    std::vector<std::pair<QString, CFTypeRef>> entries;
    const auto add = [](const void* key, const void* value, void* context) {
        static_cast<std::vector<std::pair<QString, CFTypeRef>>*>(context)->emplace_back(textOf(key),
                                                                                        value);
    };
    CFDictionaryApplyFunction(static_cast<CFDictionaryRef>(dictionary), add, &entries);
    return entries;
}

/// \return Sub-keys; what is no text cannot be in a profile.
std::vector<std::pair<QString, CFTypeRef>> addValues(IniSection& section, CFTypeRef dictionary) {
    std::vector<std::pair<QString, CFTypeRef>> keys;
    for (const auto& entry : entriesOf(dictionary)) {
        if (CFGetTypeID(entry.second) == CFStringGetTypeID())
            section.values.emplace_back(entry.first, textOf(entry.second));
        else if (CFGetTypeID(entry.second) == CFDictionaryGetTypeID())
            keys.push_back(entry);
        else
            throw Failure(printable(entry.first.toStdString()) + " is no text");
    }
    return keys;
}

std::vector<IniSection> sectionsOf(CFTypeRef profile) {
    std::vector<IniSection> sections(1);
    for (const auto& [name, key] : addValues(sections.front(), profile)) {
        IniSection section{name, {}};
        if (!addValues(section, key).empty())
            throw Failure("the section " + printable(name.toStdString()) + " has keys in it");
        sections.push_back(section);
    }
    return sections;
}

RegistryKey profileKey(const std::optional<std::string>& application, const std::string& profile) {
    if (profile.empty() || profile.find('/') != std::string::npos)
        throw UsageError("a profile is a file's name without its folder");
    return RegistryKey("HKLM/" + profile, application);
}

} // namespace

void exportPropertyList(const RegistryKey& key, const std::string& file) {
    const Object dictionary = dictionaryOf(key);
    const Object bytes = owned(CFPropertyListCreateData(
        nullptr, dictionary.get(), kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    if (!bytes)
        throw Failure("cannot export " + key.name().toStdString());
    const auto* data = static_cast<CFDataRef>(bytes.get());
    writeAll(file, {reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                    static_cast<qsizetype>(CFDataGetLength(data))});
}

void importPropertyList(const RegistryKey& key, const std::string& file) {
    const QByteArray bytes = readAll(file);
    const Object data = owned(
        CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.constData()), bytes.size()));
    const Object read = owned(CFPropertyListCreateWithData(
        nullptr, static_cast<CFDataRef>(data.get()), 0, nullptr, nullptr));
    if (!read)
        throw Failure(file + " is no property list with a dictionary");
    if (key.isRoot())
        return key.write(read);
    const Object merged = mutableCopy(key);
    for (const auto& [name, value] : entriesOf(read.get()))
        CFDictionarySetValue(asMutable(merged), stringObject(name).get(), value);
    key.write(merged);
}

void exportProfile(const std::optional<std::string>& application, const std::string& profile,
                   const std::string& file) {
    const Object found = dictionaryOf(profileKey(application, profile));
    writeAll(file, iniText(sectionsOf(found.get())).toUtf8());
}

void importProfile(const std::optional<std::string>& application, const std::string& file,
                   const std::string& profile) {
    const RegistryKey key = profileKey(application, profile);
    const Object merged = mutableCopy(key);
    for (const IniSection& section : readIni(readAll(file))) {
        for (const auto& [name, value] : section.values) {
            const QString path =
                section.name.isEmpty() ? name : section.name + QLatin1Char('/') + name;
            setCFDictionaryKeyValue(asMutable(merged), path, stringObject(value).get());
        }
    }
    key.write(merged);
}

} // namespace Kx
