// Keeps a list of recently used files in the registry:
//
//   winreg add FILE    puts a file in front of the list
//   winreg show        prints the list
//   winreg clear       removes it
//
// The registry calls are those of Windows in Qt's types, as programs use them that have a part for
// each system.

#include <KxQts/KxQts.h>

#include <QStringList>

#include <cstdio>
#include <cstring>

namespace {

const QString keyPath = QStringLiteral("Software/Example/Winreg/Recent");
constexpr DWORD longestList = 5;

/// An open key of the user's, closed when it goes.
class Key {
public:
    explicit Key(bool create) {
        if (create)
            regCreateKeyEx(QString(), HKEY_CURRENT_USER, keyPath, 0, QString(),
                           REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &handle, nullptr);
        else
            regOpenKeyEx(QString(), HKEY_CURRENT_USER, keyPath, 0, KEY_READ, &handle);
    }
    ~Key() {
        if (handle)
            RegCloseKey(handle);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    [[nodiscard]] DWORD number(const QString& name) const {
        QByteArray data;
        unsigned type = 0;
        DWORD value = 0;
        if (regQueryValueEx(handle, name, nullptr, &type, data) == ERROR_SUCCESS &&
            type == REG_DWORD)
            std::memcpy(&value, data.constData(), sizeof value);
        return value;
    }

    [[nodiscard]] QString text(const QString& name) const {
        QByteArray data;
        if (regQueryValueEx(handle, name, nullptr, nullptr, data) != ERROR_SUCCESS)
            return QString();
        return QString(reinterpret_cast<const QChar*>(data.constData()), data.size() / 2);
    }

    [[nodiscard]] bool set(const QString& name, const QString& value) const {
        const QByteArray data(reinterpret_cast<const char*>(value.utf16()), value.size() * 2);
        return regSetValueEx(handle, name, 0, REG_SZ, data) == ERROR_SUCCESS;
    }

    [[nodiscard]] bool set(const QString& name, DWORD value) const {
        const QByteArray data(reinterpret_cast<const char*>(&value), sizeof value);
        return regSetValueEx(handle, name, 0, REG_DWORD, data) == ERROR_SUCCESS;
    }

    void* handle = nullptr;
};

QString placeName(DWORD place) {
    return QStringLiteral("File%1").arg(place);
}

QStringList recent(const Key& key) {
    QStringList files;
    for (DWORD i = 0; i < key.number(QStringLiteral("Count")); ++i)
        files += key.text(placeName(i));
    return files;
}

int show() {
    const Key key(false);
    for (const QString& file : recent(key))
        std::printf("%s\n", qUtf8Printable(file));
    return 0;
}

int add(const QString& file) {
    const Key key(true);
    QStringList files = recent(key);
    files.removeAll(file);
    files.prepend(file);
    files = files.mid(0, longestList);
    bool stored = key.set(QStringLiteral("Count"), static_cast<DWORD>(files.size()));
    for (qsizetype i = 0; i < files.size(); ++i)
        stored = key.set(placeName(static_cast<DWORD>(i)), files[i]) && stored;
    if (!stored)
        std::fprintf(stderr, "winreg: the registry cannot be written\n");
    return stored ? 0 : 1;
}

int clear() {
    const bool gone = regDeleteKey(QString(), HKEY_CURRENT_USER, keyPath) == ERROR_SUCCESS;
    std::printf("%s\n", gone ? "The list is gone." : "There was no list.");
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const QString command = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    if (command == QLatin1String("show") && argc == 2)
        return show();
    if (command == QLatin1String("add") && argc == 3)
        return add(QString::fromLocal8Bit(argv[2]));
    if (command == QLatin1String("clear") && argc == 2)
        return clear();
    std::fprintf(stderr, "usage: winreg add FILE | show | clear\n");
    return 2;
}
