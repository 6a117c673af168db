#include <KxQts/files/profile.h>

#include "platform/withoutmemory.h"

#include <KxQts/registry/registry.h>

#include <QFileInfo>

#include <cerrno>
#include <cstring>

namespace {

/// Closes a registry key with its holder.
class Key {
public:
    Key() = default;
    ~Key() {
        if (handle)
            RegCloseKey(handle);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    void* handle = nullptr;
};

QString profileName(const QString& fileName) {
    return QFileInfo(fileName).fileName();
}

QString sectionPath(const QString& fileName, const QString& section) {
    const QString name = profileName(fileName);
    return section.isEmpty() ? name : name + QLatin1Char('/') + section;
}

QByteArray unitsOf(const QString& text) {
    return {reinterpret_cast<const char*>(text.utf16()), text.size() * 2};
}

QString textOf(const QByteArray& units) {
    QString text(units.size() / 2, Qt::Uninitialized);
    std::memcpy(text.data(), units.constData(), static_cast<std::size_t>(text.size()) * 2);
    return text;
}

QString namesIn(const QString& appId, void* key) {
    QString names;
    QString name;
    for (unsigned i = 0; regEnumKey(appId, key, i, name) == ERROR_SUCCESS; ++i)
        names += name;
    return names;
}

unsigned read(const QString& appId, const QString& section, const QString& name, QString& result,
              const QString& fileName) {
    Key key;
    if (const unsigned error =
            regOpenKeyEx(appId, HKEY_LOCAL_MACHINE, sectionPath(fileName, section), 0,
                         KEY_QUERY_VALUE, &key.handle);
        error != ERROR_SUCCESS)
        return error;
    if (section.isEmpty() || name.isEmpty()) {
        result = namesIn(appId, key.handle);
        return ERROR_SUCCESS;
    }
    QByteArray units;
    const unsigned error = regQueryValueEx(key.handle, name, nullptr, nullptr, units);
    // The blank behind a value makes a character of an odd last byte, which data may have.
    if (error == ERROR_SUCCESS)
        result = textOf(units + unitsOf(QStringLiteral(" ")));
    return error;
}

unsigned change(const QString& appId, const QString& section, const QString& name,
                const QString& value, void* key) {
    if (name.isEmpty())
        return regDeleteKey(appId, key, section);
    if (value.isEmpty())
        return regDeleteValue(key, name);
    return regSetValueEx(key, name, 0, REG_SZ, unitsOf(value));
}

unsigned write(const QString& appId, const QString& section, const QString& name,
               const QString& value, const QString& fileName) {
    const QString path = sectionPath(fileName, name.isEmpty() ? QString() : section);
    Key key;
    unsigned disposition = 0;
    const unsigned error =
        regCreateKeyEx(appId, HKEY_LOCAL_MACHINE, path, 0, QString(), REG_OPTION_NON_VOLATILE,
                       KEY_ALL_ACCESS, nullptr, &key.handle, &disposition);
    return error != ERROR_SUCCESS ? error : change(appId, section, name, value, key.handle);
}

} // namespace

int getPrivateProfileString(const QString& appId, const QString& section, const QString& key,
                            const QString& defaultValue, QString& result,
                            const QString& fileName) try {
    QString found;
    const bool missing = read(appId, section, key, found, fileName) != ERROR_SUCCESS;
    // A default is taken as it stands.
    result = missing ? defaultValue : found.trimmed();
    return static_cast<int>(result.size());
} catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return 0;
}

bool writePrivateProfileString(const QString& appId, const QString& section, const QString& key,
                               const QString& value, const QString& fileName) try {
    // Programs ask so for a cache to be written; there is none, and nothing is to be removed.
    if (section.isEmpty() && key.isEmpty())
        return true;
    const unsigned error = write(appId, section, key, value, fileName);
    if (error != ERROR_SUCCESS)
        errno = static_cast<int>(error);
    return error == ERROR_SUCCESS;
} catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return false;
}
