/// \file
/// What this machine and its system are: names, releases, model, dates and times.
///
/// Every question is put to the system anew. Results are false when the system does not tell, and
/// the output is as it was then unless the call says otherwise. `errno` is left alone but by the
/// calls that return an error number. Any thread may ask.
#pragma once

#include <KxQts/corefoundation.h>
#include <KxQts/export.h>
#include <KxQts/winapi/systeminfo.h>

#include <QString>

/// \name Names
/// @{

/// The name of this host as the network knows it. \return True, always.
KXQTS_EXPORT bool getComputerName(QString& name);

/// The name that this host was given: "System/Network/HostNames/LocalHostName" of the machine's
/// preference domain "SystemConfiguration/preferences", and the name that the system is set up
/// with on a machine that has nothing in that domain.
/// \param name Is emptied first. \return False also when the domain cannot be read.
KXQTS_EXPORT bool getHostName(QString& name);

/// The short name of the user that the calling process acts for, by the account database.
KXQTS_EXPORT bool getUserName(QString& name);
/// @}

/// \name Kernel release
/// The tests look at nothing but the first two characters of the release. One digit and a point
/// fail them all, the "newer" ones included.
/// @{

/// The kernel's release in numbers. \param patch Null if it is of no interest.
/// \return Whether there are three numbers. \a major and \a minor may be written even if there are
/// not.
KXQTS_EXPORT bool getOSKernelVersion(unsigned& major, unsigned& minor, unsigned* patch);

/// The kernel's release as a text.
KXQTS_EXPORT bool getOSKernelReleaseString(QString& release);

/// Whether the release begins with a number of two digits above 9.
KXQTS_EXPORT bool isNewerThenLeopard();
/// Whether the release begins with a number of two digits above 10.
KXQTS_EXPORT bool isNewerThenSnowLeopard();
/// Whether the release begins with "10".
KXQTS_EXPORT bool isSnowLeopard();
/// Whether the release begins with "11".
KXQTS_EXPORT bool isLion();
/// @}

namespace Korvex {

/// The same as \ref getOSKernelReleaseString.
KXQTS_EXPORT bool getOSKernelRelease(QString& release);
/// Whether the kernel's release begins with "11".
KXQTS_EXPORT bool isMacOsxLion();
/// Whether the kernel's release begins with "12".
KXQTS_EXPORT bool isMacOsxMountainLion();

} // namespace Korvex

/// \name Product version
/// They are what the preference domain "/System/Library/CoreServices/SystemVersion" states under
/// "ProductVersion" and "ProductBuildVersion", so that an installation can state them. Where there
/// is nothing in that domain, they are `VERSION_ID` and `BUILD_ID` of the system's `os-release`;
/// many distributions have no build.
/// @{

/// The version of the system, and its build. \param build Null if it is of no interest.
/// \return False as well when the build is asked for and there is none; \a version is set then.
KXQTS_EXPORT bool getProductVersion(QString& version, QString* build);

/// The second and third numbers of the version. \return **False for a version of two numbers.** One
/// or both outputs may be written even then.
KXQTS_EXPORT bool getSystemVersionNumber(unsigned& minor, unsigned& patch);

/// The build in its parts, of 10K549: 10, 'K' and 549.
/// \param letter **Only its low byte is written**; set it to 0 before.
/// \return Whether the build has these three parts. What comes before a missing one is written.
KXQTS_EXPORT bool getSystemBuildNumber(unsigned& major, unsigned& letter, unsigned& number);
/// @}

/// Copies a string object. Text that is all ASCII is copied as it is; of any other text **one unit
/// more** than the string has is copied, the zero behind it.
/// \return False for null.
KXQTS_EXPORT bool CFStringToQString(QString& out, CFStringRef s);

/// \name The machine
/// @{

/// What its maker calls this kind of machine.
KXQTS_EXPORT bool getModel(QString& model);

/// The machine's serial number, which on Linux only root may see.
/// \param serial Is emptied first; stays empty when the number is not ASCII or has more than 255
/// characters.
KXQTS_EXPORT bool getSerialNumber(QString& serial);
/// @}

/// \name The running program
/// @{

/// The folder of its bundle: the ".app" folder around the executable, or else the folder that the
/// executable lies in.
KXQTS_EXPORT bool getBundlePath(QString& path);
/// The path of its executable.
KXQTS_EXPORT bool getBundleExecutablePath(QString& path);
/// @}

/// Whether memory that is swapped out is encrypted: every active swap lies on devices of dm-crypt,
/// or none is active.
/// \return 0; the system's error number with \a encrypted left alone.
KXQTS_EXPORT int getSecureVirtualMemoryState(bool& encrypted);

/// The mode bits of a file, its type among them.
/// \return 0; the system's error number with \a mode left alone.
KXQTS_EXPORT int getFileMode(const char* file, unsigned short& mode);

/// Gives a time of day as text: "14:07:09". **Not the date.**
/// \param locale,flags,format Ignored.
/// \param time The time in question; null for the current local time.
/// \return True, always.
KXQTS_EXPORT bool getDateFormat(LCID locale, DWORD flags, const SYSTEMTIME* time,
                                const QString& format, QString& out);
/// The same as \ref getDateFormat.
KXQTS_EXPORT bool getTimeFormat(LCID locale, DWORD flags, const SYSTEMTIME* time,
                                const QString& format, QString& out);
