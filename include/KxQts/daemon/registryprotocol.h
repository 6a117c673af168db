/// \file
/// The bodies of the registry exchange's records, as the root daemon `kxqtsd` understands them.
///
/// The daemon works on the machine-wide store, the one that `HKEY_LOCAL_MACHINE` stands for. Only
/// root and members of the administrators' group are served. `registryclient.h` has functions that
/// fill and send these records.
#pragma once

#include <KxQts/daemon/registry.h>

#include <cstddef>

namespace Korvex::DaemonRegistry {

/// Command codes. Each names a key; all but `EnumerateValues` also a value of it.
enum Command : unsigned {
    ReadValue = 1,       ///< Payload of the response: the value's bytes
    SetValue = 2,        ///< Payload of the request: the bytes. A missing key is made
    DeleteValue = 3,     ///< No payload
    EnumerateValues = 4, ///< Payload of the response: the names, UTF-8, a zero byte behind each
};

/// Statuses.
enum Status : unsigned {
    Done = 0,
    Refused = 1,      ///< The daemon does not serve this user
    NoSuchValue = 2,  ///< There is no such key or value
    NotStored = 5,    ///< The value could not be written
    BadRequest = 22,  ///< An unknown command, a text without end, an empty key, a bad payload
    TooMuchData = 122 ///< The answer has more than `longestPayload` bytes
};

/// The longest payload in either direction, in bytes: what surely arrives in one piece.
inline constexpr int longestPayload = 16'384;

/// What `_D_REG_REQUEST::body` holds. Numbers are in the byte order of the machine; what is not
/// used is zero.
struct RequestBody {
    unsigned valueType; ///< `SetValue`: a registry type, 1, 3, 4 or 11
    unsigned reserved[2];
    char key[1280];  ///< The key's path, names between slashes: UTF-8, ended by a zero byte
    char name[1032]; ///< The value's name: UTF-8, ended by a zero byte; may be empty
};
static_assert(sizeof(RequestBody) == sizeof(_D_REG_REQUEST::body) &&
              offsetof(RequestBody, key) == 12 && offsetof(RequestBody, name) == 1292);

/// What `_D_REG_RESPONSE::body` holds.
struct ResponseBody {
    unsigned valueType; ///< `ReadValue`: the registry type, 1, 3 or 4
    unsigned count;     ///< `EnumerateValues`: how many names there are
    unsigned reserved[2];
};
static_assert(sizeof(ResponseBody) == sizeof(_D_REG_RESPONSE::body));

} // namespace Korvex::DaemonRegistry
