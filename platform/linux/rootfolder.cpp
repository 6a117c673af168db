#include "platform/rootfolder.h"

#include <QDir>
#include <QFile>

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace Korvex {

namespace {

QByteArray fromEnvironment(const char* name) {
    return QByteArray(secure_getenv(name));
}

QByteArray homeOfAccount() {
    constexpr std::size_t roomForAnEntry = 16384;
    std::array<char, roomForAnEntry> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    const bool isRead = getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0;
    return isRead && found ? QByteArray(found->pw_dir) : QByteArray();
}

/// Without the slashes at its end, so that an absolute path can be put behind it.
QByteArray trimmed(QByteArray path) {
    while (path.endsWith('/'))
        path.chop(1);
    return path;
}

QByteArray findRoot() {
    const QByteArray root = fromEnvironment("KXQTS_ROOT");
    if (root.isEmpty() || root.startsWith('/'))
        return trimmed(root);
    return trimmed(QFile::encodeName(QDir::currentPath()) + '/' + root);
}

QByteArray findHome() {
    const QByteArray home = fromEnvironment("HOME");
    return trimmed(home.startsWith('/') ? home : homeOfAccount());
}

} // namespace

const QByteArray& rootFolder() {
    static const QByteArray root = findRoot();
    return root;
}

const QByteArray& homeFolder() {
    static const QByteArray home = findHome();
    return home;
}

} // namespace Korvex
