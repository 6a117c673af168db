#include <KxQts/disk/volumeinfo.h>

#include <KxQts/errors.h>

#include <cerrno>

namespace {

/// Callers tell a missing call from a failed one by this number and ask the library's own calls.
int unsupported() {
    errno = Korvex::Error::Unsupported;
    return 0;
}

} // namespace

int getVolumeInformation(const QString&, QString&, unsigned int*, unsigned int*, unsigned int*,
                         QString&) {
    return unsupported();
}

unsigned int getDriveType(const QString&) {
    unsupported();
    return DRIVE_UNKNOWN;
}

int getDiskFreeSpace(const QString&, unsigned int*, unsigned int*, unsigned int*, unsigned int*) {
    return unsupported();
}

unsigned int formatMessage(unsigned int, const void*, unsigned int, unsigned int, QString&,
                           va_list*) {
    unsupported();
    return 0;
}

int initializeHfsPlus(const QString&, const QString&, const QString*) {
    return 0;
}
