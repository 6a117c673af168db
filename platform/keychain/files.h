#pragma once

#include "platform/descriptor.h"

#include <string>
#include <string_view>
#include <sys/types.h>

/// Files that are read whole, and written so that nobody ever sees half of one.
namespace Korvex::WholeFile {

/// Reads what is left of a file. \return 0, or the system's error number: `EFBIG` for more than
/// \a limit bytes.
[[nodiscard]] int read(int descriptor, std::size_t limit, std::string& bytes);

/// What a file is written as.
struct Attributes {
    mode_t mode = 0600;
    /// Whose it is to be, where the process may give files away; −1 for the process's own.
    uid_t owner = static_cast<uid_t>(-1);
    gid_t group = static_cast<gid_t>(-1);
};

/// Writes a file to the disk and puts it in the place of the one of that name, if there is one.
/// \param folder An open folder. \return 0, or the system's error number; then nothing has changed.
[[nodiscard]] int replace(int folder, const std::string& name, std::string_view bytes,
                          Attributes attributes);

/// The same for a name that must be free: `EEXIST` when it is not.
[[nodiscard]] int create(int folder, const std::string& name, std::string_view bytes,
                         Attributes attributes);

/// A path as its folder, open, and the name in it.
struct Place {
    /// \return 0, or the system's error number: `EISDIR` for a path that can only be a folder.
    [[nodiscard]] int find(const std::string& path);

    Descriptor folder;
    std::string name;
};

} // namespace Korvex::WholeFile
