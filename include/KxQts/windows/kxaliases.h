/// \file
/// The names without `A` or `W` at the end, which stand for the form that the program is built for.
///
/// Only headers of this folder include this one: a program that does not ask for `<windows.h>`
/// keeps these names for itself. A pair of calls that the library exports has its line here; a test
/// sees to it.
#pragma once

#ifdef UNICODE
#define KXQTS_ALIAS(name) name##W
#else
#define KXQTS_ALIAS(name) name##A
#endif

#define CopyFile KXQTS_ALIAS(CopyFile)
#define CreateDirectory KXQTS_ALIAS(CreateDirectory)
#define CreateEvent KXQTS_ALIAS(CreateEvent)
#define CreateFile KXQTS_ALIAS(CreateFile)
#define CreateMutex KXQTS_ALIAS(CreateMutex)
#define CreateProcess KXQTS_ALIAS(CreateProcess)
#define DeleteFile KXQTS_ALIAS(DeleteFile)
#define FindFirstFile KXQTS_ALIAS(FindFirstFile)
#define FormatMessage KXQTS_ALIAS(FormatMessage)
#define GetApplicationDirectory KXQTS_ALIAS(GetApplicationDirectory)
#define GetComputerName KXQTS_ALIAS(GetComputerName)
#define GetDateFormat KXQTS_ALIAS(GetDateFormat)
#define GetDiskFreeSpace KXQTS_ALIAS(GetDiskFreeSpace)
#define GetDriveType KXQTS_ALIAS(GetDriveType)
#define GetFileAttributes KXQTS_ALIAS(GetFileAttributes)
#define GetFileAttributesEx KXQTS_ALIAS(GetFileAttributesEx)
#define GetModuleFileName KXQTS_ALIAS(GetModuleFileName)
#define GetModuleHandle KXQTS_ALIAS(GetModuleHandle)
#define GetPrivateProfileString KXQTS_ALIAS(GetPrivateProfileString)
#define GetShortPathName KXQTS_ALIAS(GetShortPathName)
#define GetSystemDirectory KXQTS_ALIAS(GetSystemDirectory)
#define GetTempPath KXQTS_ALIAS(GetTempPath)
#define GetTimeFormat KXQTS_ALIAS(GetTimeFormat)
#define GetVolumeInformation KXQTS_ALIAS(GetVolumeInformation)
#define GetWindowsDirectory KXQTS_ALIAS(GetWindowsDirectory)
#define MoveFile KXQTS_ALIAS(MoveFile)
#define RegisterEventSource KXQTS_ALIAS(RegisterEventSource)
#define RemoveDirectory KXQTS_ALIAS(RemoveDirectory)
#define ReportEvent KXQTS_ALIAS(ReportEvent)
#define SetFileAttributes KXQTS_ALIAS(SetFileAttributes)
#define ShellExecute KXQTS_ALIAS(ShellExecute)
#define WritePrivateProfileString KXQTS_ALIAS(WritePrivateProfileString)

// Structures that hold text of one form or the other
#define STARTUPINFO KXQTS_ALIAS(STARTUPINFO)
#define LPSTARTUPINFO KXQTS_ALIAS(LPSTARTUPINFO)
