/// \file
/// Mounting, unmounting and resizing volumes with the platform's disk utility, the program
/// "/usr/sbin/diskutil".
///
/// A volume or disk is named as that program takes it: by its mount point, its device node
/// ("/dev/disk1s2", "disk1s2", the system's own name) or the name of the volume. Where a call says
/// that a shell reads the name, blanks and other characters that mean something to a shell are
/// quoted by the caller. Any thread may call, and waits until the program has ended; `errno` means
/// nothing afterwards. There are no such calls on Windows.
#pragma once

#include <KxQts/export.h>

#include <QString>
#include <QStringList>

/// Mounts or unmounts a volume, as \ref mountUnmountVolumeDisk does: with "mount" or "unmount" and
/// \a volume, which a shell reads.
KXQTS_EXPORT int mountUnmountVolume(const QString& volume, bool mount);

/// Mounts or unmounts all volumes of a disk, as \ref mountUnmountVolumeDisk does: with "mountDisk"
/// or "unmountDisk" and \a disk, which a shell reads.
KXQTS_EXPORT int mountUnmountDisk(const QString& disk, bool mount);

/// Runs the disk utility with root's rights (see `executeCommandLineTool`) until it succeeds, at
/// most 8 times with 100 ms behind each failure. The daemon is given 10 seconds each time. After
/// the last failure a line "kxzr:" with the first argument and the daemon's message is printed to
/// standard output.
/// \param args The utility's arguments, **at least one**; a shell reads them. Left as they are.
/// \return 0, or the last failure of `executeCommandLineTool`.
KXQTS_EXPORT int mountUnmountVolumeDisk(QStringList& args);

/// Changes the size of a volume with root's rights. Takes as long as moving the data takes; the
/// daemon is waited for at most 1200 seconds, and the utility runs on then.
/// \param volume A shell reads it.
/// \param newSize In bytes, rounded up to a multiple of 4096.
/// \param output The daemon's message about a failure, never what the utility printed.
/// \return The result of `executeCommandLineTool`.
KXQTS_EXPORT int resizeVolume(const QString& volume, unsigned long long newSize, QString& output);

/// Asks how large a volume is and how small it may become, with the calling process's own rights.
/// \param volume Reaches the utility as it is, no shell reads it.
/// \param currentSize, minimumSize In bytes; **0 when the utility did not tell**, which is no
/// failure. A minimum is only seen behind the current size.
/// \return The utility's exit code, after at most 30 seconds: 0 too when it has not ended by then
/// (it is ended then) and when it could not be started.
KXQTS_EXPORT int getVolumeFreeSpace(const QString& volume, unsigned long long& currentSize,
                                    unsigned long long& minimumSize);

/// Asks how much room a volume has left, through the file "/Korvex/info". Its folder must be there;
/// the file stays. **Calls at the same time overwrite each other's answer**, in other processes
/// too.
/// \param volume A shell reads it.
/// \param freeSpace In bytes; 0 when it is not known, which is no failure.
/// \return What `system` returned.
KXQTS_EXPORT int getVolumeFreeSpaceFromInfo(const QString& volume, unsigned long long& freeSpace);
