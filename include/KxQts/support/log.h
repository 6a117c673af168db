/// \file
/// The library's log: one text file that the library and the program write lines to.
///
/// 8-bit text is Latin-1 in both directions: title, format and `%s` arguments reach the log byte
/// for byte. Formats are those of `QString::asprintf`: numbers look the same in every locale, `%ls`
/// is UTF-16, and a conversion that is unknown (`%I64d`) is put out as it stands. A null text is
/// the empty one, widths and precisions above 65535 mean 65535, and `%n` stores nothing. Logging
/// never fails its caller and leaves `errno` alone; what cannot be written is lost.
///
/// No lock is taken. Each text is written in one go, so lines of concurrent threads and processes
/// stay whole in a file that was opened for appending. Opening, closing and changing the title
/// while another thread logs is for the program to avoid.
#pragma once

#include <KxQts/export.h>

#include <QString>

#include <cstdarg>

namespace Korvex {

/// A log and the title in front of its lines. A zero-filled one is as good as a constructed one.
class KXQTS_EXPORT WLogFile {
public:
    /// Opens the log.
    ///
    /// \param path The file. Empty means "logfile.log".
    /// \param newTitle What the title becomes.
    /// \param module Who opens the log; may be empty.
    /// \param flags A sum of these:
    /// | flag   | meaning                                                                    |
    /// |--------|----------------------------------------------------------------------------|
    /// | 0x8000 | no logging: nothing happens, not even the title changes                    |
    /// | 0x4000 | the file lies in "/tmp"; its name is what follows the last slash of        |
    /// |        | \a path, or "logfile.log" when there is no slash                           |
    /// | 2      | empties the file if there is one; goes before 4                            |
    /// | 4      | keeps what the file holds and appends to it                                |
    /// With neither 2 nor 4 only the title changes.
    ///
    /// The file is readable and writable for everyone, whatever the process's mask, and carries a
    /// shared advisory lock. Success writes the line "has been loaded.", with \a module in front if
    /// there is one; without success the log goes to standard output. A log that is open already is
    /// not closed: its descriptor is replaced.
    /// \return 1, always.
    int openLog(const QString& path, const QString& newTitle, const QString& module,
                unsigned int flags);

    /// Writes the line "has been unloaded." and closes the log.
    /// \return 0, or −1 with `errno` as left by `close`. Without a file: the value of `fd` less one
    /// when that is 0 or 1, and −1 when it is −1; nothing is written or changed then.
    int closeLog();

    /// Changes the title. \param oldTitle Receives the one before; may be null.
    void setTitle(const QString& newTitle, QString* oldTitle);

    /// Writes a line: the local time if asked for, the title, a colon and the formatted text.
    ///
    /// The time looks like "Mar 05 14:03:59", with the month's name in the program's locale. Time
    /// and title are part of the format: a percent sign in a title is read as a conversion.
    void messageV(bool withTime, const QString& format, va_list args);

    /// Writes formatted text as it is, without a newline.
    void printV(const QString& format, va_list args);

    int fd = 0; ///< −1 when closed; 0 and 1 are the standard descriptors, never a file of the log's
    QString title; ///< In front of every line
};

/// The log of the process. Writes to descriptor 0 until it is opened; nothing once it is closed.
///
/// The lines about opening and closing go here, whichever log is opened or closed.
extern KXQTS_EXPORT WLogFile __kx_glog;

/// Writes a line with time and title to the log of the process.
KXQTS_EXPORT void IOLog(const char* fmt, ...);
/// The same as `IOLog`.
KXQTS_EXPORT void IOTxt(const char* fmt, ...);
/// The same as `IOLog`, if \a enabled.
KXQTS_EXPORT void IOLog1(bool enabled, const char* fmt, ...);
/// Writes text to the log of the process as it is: no time, no title, no newline.
KXQTS_EXPORT void IOPrint(const char* fmt, ...);
/// The same as `IOPrint`, if \a enabled.
KXQTS_EXPORT void IOPrint1(bool enabled, const char* fmt, ...);

/// Opens the log of the process, see \ref WLogFile::openLog. Null stands for the empty text.
KXQTS_EXPORT int IOLogOpen(const char* path, unsigned int flags, const char* title,
                           const char* module);
/// See the other form. Null stands for the empty text.
KXQTS_EXPORT int IOLogOpen(const QString& path, unsigned int flags, QString* title,
                           QString* module);

/// Opens the log of the process unless a file is open already.
/// \return Whether `IOLogOpen` was called.
KXQTS_EXPORT bool IOLogOpenUseCurrent(const char* path, unsigned int flags, const char* title,
                                      const char* module);
/// See the other form. Null stands for the empty text.
KXQTS_EXPORT bool IOLogOpenUseCurrent(const QString& path, unsigned int flags, QString* title,
                                      QString* module);

/// Changes the title of the process's log. \param oldTitle Receives the one before; may be null.
KXQTS_EXPORT void IOLogSetTitle(const QString& title, QString* oldTitle);

/// Closes the log of the process, see \ref WLogFile::closeLog.
KXQTS_EXPORT int IOLogClose();

} // namespace Korvex
