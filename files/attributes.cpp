#include <KxQts/files/attributes.h>

#include "platform/withoutmemory.h"

#include <KxQts/errors.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <limits>

namespace Error = Korvex::Error;

namespace {

constexpr unsigned int rootId = 0;
constexpr unsigned long long unitsPerSecond = 10'000'000;
constexpr int wordBits = 32;

constexpr QFile::Permissions writablePermissions =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser | QFile::ReadGroup;
constexpr QFile::Permissions readOnlyPermissions =
    QFile::ReadOwner | QFile::ReadUser | QFile::ReadGroup;

/// Callers only ask whether they may work with a file: there is one answer for every reason why
/// not, and folders are no case of their own.
unsigned int attributesOf(const QFileInfo& file) {
    const bool normal = file.exists() && file.isReadable() && file.isWritable() &&
                        !file.isHidden() && file.ownerId() != rootId;
    return normal ? FILE_ATTRIBUTE_NORMAL : INVALID_FILE_ATTRIBUTES;
}

/// All ones for times that 32 unsigned bits of seconds cannot tell. The file's information has no
/// time for the very beginning of 1970.
unsigned int secondsOf(const QDateTime& time) {
    constexpr unsigned int outOfRange = std::numeric_limits<unsigned int>::max();
    const qint64 seconds = time.isValid() ? time.toSecsSinceEpoch() : 0;
    return seconds < 0 || seconds > outOfRange ? outOfRange : static_cast<unsigned int>(seconds);
}

FILETIME fileTimeOf(const QDateTime& time) {
    const auto units = static_cast<unsigned long long>(unixTimeToWinTime(secondsOf(time)));
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> wordBits)};
}

QDateTime creationTimeOf(const QFileInfo& file) {
    const QDateTime birth = file.birthTime();
    return birth.isValid() ? birth : file.metadataChangeTime();
}

WIN32_FILE_ATTRIBUTE_DATA dataOf(const QFileInfo& file, unsigned int attributes) {
    const auto size = static_cast<unsigned long long>(file.size());
    return {attributes,
            fileTimeOf(creationTimeOf(file)),
            fileTimeOf(file.lastRead()),
            fileTimeOf(file.lastModified()),
            static_cast<DWORD>(size >> wordBits),
            static_cast<DWORD>(size)};
}

} // namespace

unsigned int getFileAttributes(const QString& path) {
    return Korvex::keepingErrorNumber(INVALID_FILE_ATTRIBUTES, [&] {
        const int error = errno;
        const unsigned int attributes = attributesOf(QFileInfo(path));
        errno = error;
        return attributes;
    });
}

bool getFileAttributesEx(const QString&, _GET_FILEEX_INFO_LEVELS, void*) {
    return false;
}

int getFileAttributesData(const QString& path, void* data) try {
    if (!data) {
        errno = Error::InvalidParameter;
        return FALSE;
    }
    const int error = errno;
    const QFileInfo file(path);
    const unsigned int attributes = attributesOf(file);
    const bool normal = attributes != INVALID_FILE_ATTRIBUTES;
    if (normal)
        *static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data) = dataOf(file, attributes);
    errno = normal ? Error::None : error;
    return normal ? TRUE : FALSE;
} catch (const std::bad_alloc&) {
    errno = Error::NoMemory;
    return FALSE;
}

long long unixTimeToWinTime(unsigned int seconds) {
    return static_cast<long long>(seconds * unitsPerSecond);
}

bool setFileAttributes(const QString& path, unsigned int attributes) try {
    const bool writable = (attributes & FILE_ATTRIBUTE_NORMAL) != 0;
    if (writable && attributes != FILE_ATTRIBUTE_NORMAL) {
        errno = Error::InvalidParameter;
        return false;
    }
    const bool exists = QFileInfo::exists(path);
    errno = Error::NotFound;
    if (!exists ||
        !QFile::setPermissions(path, writable ? writablePermissions : readOnlyPermissions))
        return false;
    errno = Error::NotFound; // callers find it after a success too
    return true;
} catch (const std::bad_alloc&) {
    errno = Error::NoMemory;
    return false;
}
