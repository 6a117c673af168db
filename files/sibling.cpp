#include "files/sibling.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstdio>

namespace Korvex {

namespace {

QString folderOf(const QFileInfo& path) {
    const QString folder = QDir(path.path()).canonicalPath();
    return folder.isEmpty() ? path.path() : folder;
}

QString siblingOf(const QString& file) {
    return folderOf(QFileInfo(file)) + QLatin1String("/.kxqts-") +
           QUuid::createUuid().toString(QUuid::Id128);
}

} // namespace

QString entryPath(const QString& path) {
    const QFileInfo entry(path);
    return folderOf(entry) + QLatin1Char('/') + entry.fileName();
}

bool renameOver(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

TemporarySibling::TemporarySibling(const QString& file)
    : name(siblingOf(file)), systemName(QFile::encodeName(name)) {}

TemporarySibling::~TemporarySibling() {
    const int error = errno;
    std::remove(systemName.constData());
    errno = error;
}

SetAside::SetAside(const QString& file)
    : place(QFile::encodeName(entryPath(file))),
      refuge(QFile::encodeName(siblingOf(file))),
      aside(std::rename(place.constData(), refuge.constData()) == 0) {}

SetAside::~SetAside() {
    const int error = errno;
    if (aside)
        std::rename(refuge.constData(), place.constData());
    errno = error;
}

bool SetAside::drop() {
    if (aside)
        aside = std::remove(refuge.constData()) != 0;
    return !aside;
}

} // namespace Korvex
