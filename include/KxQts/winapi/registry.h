/// \file
/// The registry: predefined keys, types of values, and the one call with C linkage. The others take
/// Qt's types and are in `KxQts/registry/registry.h`.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/errors.h>
#include <KxQts/winapi/types.h>

typedef DWORD ACCESS_MASK;
typedef ACCESS_MASK REGSAM; ///< Rights to a key, which are ignored
typedef LONG LSTATUS;       ///< What the registry calls return on Windows

/// \name Predefined keys
/// Their values are as on Windows with 32 bits, whatever the width of a pointer. Only two have a
/// store: the current user's, and the machine's. The others are refused, `HKEY_USERS` because it is
/// not among those known here.
/// @{
#define HKEY_CLASSES_ROOT ((HKEY)(ULONG_PTR)0x80000000u)
#define HKEY_CURRENT_USER ((HKEY)(ULONG_PTR)0x80000001u)
#define HKEY_LOCAL_MACHINE ((HKEY)(ULONG_PTR)0x80000002u)
#define HKEY_USERS ((HKEY)(ULONG_PTR)0x80000003u)
#define HKEY_PERFORMANCE_DATA ((HKEY)(ULONG_PTR)0x80000004u)
#define HKEY_CURRENT_CONFIG ((HKEY)(ULONG_PTR)0x80000005u)
#define HKEY_DYN_DATA ((HKEY)(ULONG_PTR)0x80000006u)
#define HKEY_PERFORMANCE_TEXT ((HKEY)(ULONG_PTR)0x80000050u)
#define HKEY_PERFORMANCE_NLSTEXT ((HKEY)(ULONG_PTR)0x80000060u)
/// @}

/// \name Types of values
/// Those not marked are refused when a value is set.
/// @{
#define REG_NONE 0u
#define REG_SZ 1u ///< Stored: UTF-16 code units, two bytes each, no terminator
#define REG_EXPAND_SZ 2u
#define REG_BINARY 3u ///< Stored: bytes
#define REG_DWORD 4u  ///< Stored: a number of four bytes in host order
#define REG_DWORD_LITTLE_ENDIAN 4u
#define REG_DWORD_BIG_ENDIAN 5u
#define REG_LINK 6u
#define REG_MULTI_SZ 7u
#define REG_QWORD 11u ///< Stored as bytes: it reads back as `REG_BINARY`
#define REG_QWORD_LITTLE_ENDIAN 11u
/// @}

#define REG_CREATED_NEW_KEY 1u     ///< Disposition of a key that was not there
#define REG_OPENED_EXISTING_KEY 2u ///< Disposition of one that was

#define REG_OPTION_NON_VOLATILE 0u
#define REG_OPTION_VOLATILE 1u ///< Ignored

#define KEY_QUERY_VALUE 0x0001u
#define KEY_SET_VALUE 0x0002u
#define KEY_CREATE_SUB_KEY 0x0004u
#define KEY_ENUMERATE_SUB_KEYS 0x0008u
#define KEY_NOTIFY 0x0010u
#define KEY_CREATE_LINK 0x0020u
#define KEY_WOW64_64KEY 0x0100u
#define KEY_WOW64_32KEY 0x0200u
#define KEY_READ 0x20019u
#define KEY_WRITE 0x20006u
#define KEY_EXECUTE 0x20019u
#define KEY_ALL_ACCESS 0xF003Fu

/// Closes a key that was opened or created.
///
/// \return 0, also for the predefined keys other than `HKEY_USERS`, which need no closing. 6 for
/// everything else: what was closed before, and the key that an open with an empty name gives,
/// which the library keeps. `errno` is left alone.
/// \par Threads
/// Any thread may close a key; calls that use it at that moment finish.
KXQTS_C_API DWORD RegCloseKey(HKEY hKey);
