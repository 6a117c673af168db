#pragma once

#include "platform/descriptor.h"
#include "platform/preferences.h"
#include "platform/propertylist/scalars.h"

#include <QByteArray>

#include <optional>
#include <sys/stat.h>

namespace Korvex {

/// What tells one state of a file from another without reading it.
struct FileIdentity {
    bool exists = false;
    dev_t device = 0;
    ino_t node = 0;
    off_t size = 0;
    long long modified = 0; ///< Nanoseconds
    long long changed = 0;  ///< Nanoseconds
    uid_t owner = 0;
    gid_t group = 0;

    bool operator==(const FileIdentity& other) const = default;
};

/// The file of a preference domain: its folder, its name, and how it is read.
class DomainFile {
public:
    /// \param path Absolute, with its suffix; empty when the domain can have no file.
    DomainFile(const QByteArray& path, PreferenceDomain::Scope scope);

    /// \return Nothing when there is no telling; for a file that is not there, one that does not
    /// exist.
    [[nodiscard]] std::optional<FileIdentity> identify() const;

    struct Contents {
        PropertyList::Bytes bytes;
        FileIdentity identity;
        /// Whether every later change will show in the identity. A file that was changed just now
        /// may be changed again within the same tick of the clock that files are stamped with.
        bool isSettled = false;
    };

    /// Reads the whole file. \return Nothing when it is no file, larger than \a limit, or cannot be
    /// read.
    [[nodiscard]] std::optional<Contents> read(std::size_t limit) const;

    const QByteArray path;
    const QByteArray folder;
    const QByteArray name;          ///< Within the folder
    const QByteArray lockName;      ///< Of the file that is locked for a change
    const QByteArray temporaryName; ///< What the names of its temporary files begin with
    const PreferenceDomain::Scope scope;
};

/// What `stat` told about a file that exists.
[[nodiscard]] FileIdentity identityOf(const struct stat& status);

} // namespace Korvex
