/// \file
/// Child processes.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

#define STILL_ACTIVE 259u ///< The exit code of a process that has not ended

#define DEBUG_PROCESS 0x00000001u
#define CREATE_SUSPENDED 0x00000004u
#define DETACHED_PROCESS 0x00000008u
#define CREATE_NEW_CONSOLE 0x00000010u
#define NORMAL_PRIORITY_CLASS 0x00000020u
#define IDLE_PRIORITY_CLASS 0x00000040u
#define HIGH_PRIORITY_CLASS 0x00000080u
#define REALTIME_PRIORITY_CLASS 0x00000100u
#define CREATE_NEW_PROCESS_GROUP 0x00000200u
#define CREATE_UNICODE_ENVIRONMENT 0x00000400u
#define BELOW_NORMAL_PRIORITY_CLASS 0x00004000u
#define ABOVE_NORMAL_PRIORITY_CLASS 0x00008000u
#define CREATE_BREAKAWAY_FROM_JOB 0x01000000u
#define CREATE_DEFAULT_ERROR_MODE 0x04000000u
#define CREATE_NO_WINDOW 0x08000000u

#define STARTF_USESHOWWINDOW 0x00000001u
#define STARTF_USESIZE 0x00000002u
#define STARTF_USEPOSITION 0x00000004u
#define STARTF_USESTDHANDLES 0x00000100u

#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_NORMAL 1
#define SW_SHOWMINIMIZED 2
#define SW_SHOWMAXIMIZED 3
#define SW_MAXIMIZE 3
#define SW_SHOWNOACTIVATE 4
#define SW_SHOW 5
#define SW_MINIMIZE 6
#define SW_SHOWMINNOACTIVE 7
#define SW_SHOWNA 8
#define SW_RESTORE 9
#define SW_SHOWDEFAULT 10

/// Must be given when a process is started, and is otherwise not read.
typedef struct _STARTUPINFOA {
    DWORD cb;
    LPSTR lpReserved;
    LPSTR lpDesktop;
    LPSTR lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    LPBYTE lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
} STARTUPINFOA, *LPSTARTUPINFOA;

/// \copydoc STARTUPINFOA
typedef struct _STARTUPINFOW {
    DWORD cb;
    LPWSTR lpReserved;
    LPWSTR lpDesktop;
    LPWSTR lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    LPBYTE lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
} STARTUPINFOW, *LPSTARTUPINFOW;

/// What is known of a process that was started.
typedef struct _PROCESS_INFORMATION {
    HANDLE hProcess;   ///< Closed by the caller with `CloseHandle`
    HANDLE hThread;    ///< Always null
    DWORD dwProcessId; ///< The system's process id
    DWORD dwThreadId;  ///< Always 0
} PROCESS_INFORMATION, *PPROCESS_INFORMATION, *LPPROCESS_INFORMATION;

/// Starts a program.
///
/// \param lpCommandLine Program and arguments. Blanks separate them, double quotes group, three
/// double quotes in a row stand for one; backslashes mean nothing. A program without a slash is
/// looked for in `PATH`. Not written to.
/// \param lpEnvironment Strings of the form NAME=VALUE, each ended by a zero, with an empty one at
/// the end: 8-bit for the A form, wide for the W form, whatever the flags say. Null or empty: the
/// environment of the caller.
/// \param lpCurrentDirectory Where the program starts; null or empty for the caller's.
/// \param lpStartupInfo Must not be null; not read.
/// \param lpProcessInformation Receives the handle and the process id.
/// \param lpApplicationName,lpProcessAttributes,lpThreadAttributes,bInheritHandles,dwCreationFlags
/// Ignored. Standard input, output and error of the program are pipes that nobody reads; no other
/// descriptor of the library is inherited.
/// \return `TRUE` with `errno` 0. `FALSE` with `errno` 22 without one of the two structures, 12
/// without memory, 14 when the program did not start within 10 seconds.
/// \par The end of the process
/// It is noticed when the thread that started it waits with `WProcess::wait`, when the handle is
/// closed, or by the event loop of that thread where there is one. A process may run on after its
/// handle was closed; the library collects it when it ends. The end of the caller ends no child.
/// \par Threads
/// A handle is used by the thread that made it; any thread may close it.
KXQTS_C_API BOOL CreateProcessA(LPCSTR lpApplicationName, LPSTR lpCommandLine,
                                LPSECURITY_ATTRIBUTES lpProcessAttributes,
                                LPSECURITY_ATTRIBUTES lpThreadAttributes, BOOL bInheritHandles,
                                DWORD dwCreationFlags, LPVOID lpEnvironment,
                                LPCSTR lpCurrentDirectory, LPSTARTUPINFOA lpStartupInfo,
                                LPPROCESS_INFORMATION lpProcessInformation);
/// \copydoc CreateProcessA
KXQTS_C_API BOOL CreateProcessW(LPCWSTR lpApplicationName, LPWSTR lpCommandLine,
                                LPSECURITY_ATTRIBUTES lpProcessAttributes,
                                LPSECURITY_ATTRIBUTES lpThreadAttributes, BOOL bInheritHandles,
                                DWORD dwCreationFlags, LPVOID lpEnvironment,
                                LPCWSTR lpCurrentDirectory, LPSTARTUPINFOW lpStartupInfo,
                                LPPROCESS_INFORMATION lpProcessInformation);

/// Gives the exit code of a process object that is tagged "QProcess".
///
/// \param lpExitCode Receives `STILL_ACTIVE` while the process starts or runs, else its exit code.
/// \return `TRUE`. `FALSE` with `errno` 22 when an argument is null and for every other handle,
/// those of `CreateProcessA` and `CreateProcessW` included: they are tagged "WProcess".
KXQTS_C_API BOOL GetExitCodeProcess(HANDLE h, LPDWORD lpExitCode);

/// Not supported: nothing is started. All arguments are ignored.
/// \return Null, with `errno` 50.
KXQTS_C_API HINSTANCE ShellExecuteA(HWND hwnd, LPCSTR operation, LPCSTR file, LPCSTR parameters,
                                    LPCSTR directory, INT showCommand);
/// \copydoc ShellExecuteA
KXQTS_C_API HINSTANCE ShellExecuteW(HWND hwnd, LPCWSTR operation, LPCWSTR file, LPCWSTR parameters,
                                    LPCWSTR directory, INT showCommand);
