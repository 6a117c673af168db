#include <KxQts/files/file.h>

#include "files/filehandle.h"
#include "handles/addresses.h"
#include "handles/disposal.h"
#include "platform/filesharing.h"

#include <KxQts/errors.h>
#include <KxQts/handles/storage.h>

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace Error = Korvex::Error;

namespace {

// Open-mode bits beyond Qt's own that tell later readers of the mode how the file was asked for. Qt
// has other uses for these values, so a file object must never act on them.
constexpr int sharedLockBit = 0x40;
constexpr int deleteOnCloseBit = 0x80;

/// A file object at an address of the library's own.
class OwnFile final : public QFile, public Korvex::HandleStorage {
public:
    using QFile::QFile;
};

struct Opening {
    int flags = 0;
    int error = 0;
};

Opening openingFor(const QFile& file, unsigned int disposition) {
    switch (disposition) {
    case CREATE_NEW:
        // Never creates: callers rely on a missing file being an error here too.
        return {0, file.exists() ? Error::Exists : 0};
    case CREATE_ALWAYS: // keeps the contents of an existing file
    case OPEN_ALWAYS:
        return {O_CREAT, 0};
    case OPEN_EXISTING:
        return {0, file.exists() ? 0 : Error::NotFound};
    case TRUNCATE_EXISTING:
        return {O_TRUNC, file.exists() ? 0 : Error::NotFound};
    default:
        return {0, Error::InvalidArgument};
    }
}

int accessFlags(unsigned int access) {
    if ((access & GENERIC_WRITE) == 0)
        return O_RDONLY;
    return (access & GENERIC_READ) != 0 ? O_RDWR : O_WRONLY;
}

QIODevice::OpenMode modeFor(int flags) {
    QIODevice::OpenMode mode = QIODevice::ReadOnly;
    if ((flags & O_WRONLY) != 0)
        mode = QIODevice::WriteOnly;
    else if ((flags & O_RDWR) != 0)
        mode = QIODevice::ReadWrite;
    if ((flags & O_TRUNC) != 0)
        mode |= QIODevice::Truncate;
    return mode;
}

/// Makes the file object carry bits that Qt would act on if they were given when it is opened.
void addToMode(QFile& file, int bits) {
    struct Access : QFile {
        using QFile::setOpenMode;
    };
    const int mode = static_cast<int>(file.openMode()) | bits;
    (file.*(&Access::setOpenMode))(QIODevice::OpenMode(QFlag(mode)));
}

/// Makes a descriptor the file object's own. \return 0, or the file object's error number.
int adopt(QFile& file, int descriptor, int flags, int carriedBits) {
    if (!file.open(descriptor, modeFor(flags), QFileDevice::AutoCloseHandle)) {
        const int error = file.error();
        close(descriptor);
        return error;
    }
    addToMode(file, carriedBits);
    return 0;
}

/// \return 0, or what `errno` is to say.
int openFile(QFile& file, unsigned int access, unsigned int share, unsigned int disposition,
             unsigned int attributes) {
    const Opening opening = openingFor(file, disposition);
    if (opening.error != 0)
        return opening.error;
    const int flags = opening.flags | accessFlags(access);
    const bool shared = (share & (FILE_SHARE_READ | FILE_SHARE_WRITE)) != 0;
    const int descriptor =
        Korvex::openShared(file.fileName().toLatin1().constData(), flags, shared);
    if (descriptor < 0)
        return errno;
    const int carriedBits = (shared ? sharedLockBit : 0) |
                            ((attributes & FILE_FLAG_DELETE_ON_CLOSE) != 0 ? deleteOnCloseBit : 0);
    return adopt(file, descriptor, flags, carriedBits);
}

long long seekTarget(const QFile& file, long long distance, unsigned int method) {
    long long start = 0;
    if (method == FILE_CURRENT)
        start = file.pos();
    else if (method == FILE_END)
        start = file.size();
    long long target = -1; // where no file can be
    return __builtin_add_overflow(start, distance, &target) ? -1 : target;
}

} // namespace

QFile* createFile(QFile* file, unsigned int access, unsigned int share, _SECURITY_ATTRIBUTES*,
                  unsigned int disposition, unsigned int flags, void*) {
    if (!file) {
        errno = Error::NoMemory;
        return nullptr;
    }
    std::unique_ptr<QFile> owned(file);
    file->setObjectName(Korvex::fileTag);
    const int error = openFile(*file, access, share, disposition, flags);
    if (error == 0)
        Korvex::HandleAddresses::forgetClosed(file);
    else
        owned.reset();
    errno = error;
    return owned.release();
}

QFile* createFile(const QString& path, unsigned int access, unsigned int share,
                  _SECURITY_ATTRIBUTES* security, unsigned int disposition, unsigned int flags,
                  void* templateFile) {
    return createFile(Korvex::makeHandle<OwnFile>(path), access, share, security, disposition,
                      flags, templateFile);
}

bool setFilePointer(void* handle, long long distance, long long* newPosition, unsigned int method) {
    QFile* file = Korvex::fileBehind(handle);
    const long long target = file && method <= FILE_END ? seekTarget(*file, distance, method) : -1;
    if (target < 0 || !file->seek(target)) {
        errno = Error::InvalidArgument;
        return false;
    }
    *newPosition = target;
    errno = 0;
    return true;
}
