#include <KxQts/files/file.h>

#include "files/filehandle.h"
#include "files/handlefile.h"
#include "handles/addresses.h"
#include "handles/disposal.h"
#include "platform/descriptor.h"
#include "platform/filesharing.h"
#include "platform/withoutmemory.h"

#include <KxQts/errors.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <unistd.h>

namespace Error = Korvex::Error;

namespace {

// Open-mode bits beyond Qt's own that tell later readers of the mode how the file was asked for. Qt
// has other uses for these values, so a file object must never act on them.
constexpr int sharedLockBit = 0x40;
constexpr int deleteOnCloseBit = 0x80;

/// What has to be known of a file before it is opened.
enum class Must { NotExist, Exist, BeCreated };

struct Opening {
    int flags;
    Must must;
};

std::optional<Opening> openingFor(unsigned int disposition) {
    switch (disposition) {
    case CREATE_NEW:
        return Opening{0, Must::NotExist};
    case CREATE_ALWAYS: // keeps the contents of an existing file
    case OPEN_ALWAYS:
        return Opening{O_CREAT, Must::BeCreated};
    case OPEN_EXISTING:
        return Opening{0, Must::Exist};
    case TRUNCATE_EXISTING:
        return Opening{O_TRUNC, Must::Exist};
    default:
        return std::nullopt;
    }
}

bool isAsciiText(QChar c) {
    return !c.isNull() && c.unicode() < 0x80;
}

/// Whether opening a file by its Latin-1 name also answers whether the file object's own name
/// exists: both are the same bytes, none of them zero, and it is no name that Qt keeps for
/// resources.
bool opensByTheNameItHas(const QString& name) {
    return !name.startsWith(u':') && std::all_of(name.begin(), name.end(), isAsciiText);
}

/// \return 0, or the error that keeps a file from being opened.
int errorBeforeOpening(const QFile& file, Must must) {
    if (must == Must::NotExist)
        return file.exists() ? Error::Exists : Error::None;
    if (must == Must::Exist && !opensByTheNameItHas(file.fileName()))
        return file.exists() ? Error::None : Error::NotFound;
    return Error::None;
}

/// \return The error of a failed opening: a file that has to exist and does not is always "not
/// found".
int errorOfOpening(const QFile& file, Must must, int error) {
    return must == Must::Exist && !file.exists() ? Error::NotFound : error;
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
    // The file object takes the descriptor over when there is nothing left that needs memory.
    Korvex::Descriptor held(descriptor);
    if (!file.open(held.get(), modeFor(flags), QFileDevice::AutoCloseHandle))
        return file.error();
    (void)held.release();
    addToMode(file, carriedBits);
    return 0;
}

/// \return 0, or what `errno` is to say.
int openFile(QFile& file, unsigned int access, unsigned int share, unsigned int disposition,
             unsigned int attributes) {
    const std::optional<Opening> opening = openingFor(disposition);
    if (!opening)
        return Error::InvalidArgument;
    if (const int error = errorBeforeOpening(file, opening->must))
        return error;
    const int flags = opening->flags | accessFlags(access);
    const bool shared = (share & (FILE_SHARE_READ | FILE_SHARE_WRITE)) != 0;
    const int descriptor =
        Korvex::openShared(file.fileName().toLatin1().constData(), flags, shared);
    if (descriptor < 0)
        return errorOfOpening(file, opening->must, errno);
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
                  unsigned int disposition, unsigned int flags, void*) try {
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
} catch (const std::bad_alloc&) {
    errno = Error::NoMemory;
    return nullptr;
}

QFile* createFile(const QString& path, unsigned int access, unsigned int share,
                  _SECURITY_ATTRIBUTES* security, unsigned int disposition, unsigned int flags,
                  void* templateFile) {
    return createFile(Korvex::makeHandle<Korvex::HandleFile>(path), access, share, security,
                      disposition, flags, templateFile);
}

bool setFilePointer(void* handle, long long distance, long long* newPosition,
                    unsigned int method) try {
    QFile* file = Korvex::fileBehind(handle);
    const long long target = file && method <= FILE_END ? seekTarget(*file, distance, method) : -1;
    if (target < 0 || !file->seek(target)) {
        errno = Error::InvalidArgument;
        return false;
    }
    *newPosition = target;
    errno = 0;
    return true;
} catch (const std::bad_alloc&) {
    errno = Error::NoMemory;
    return false;
}
