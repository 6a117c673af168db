#pragma once

#include <QByteArray>
#include <QString>

/// What replacing a file safely needs: a name beside it that nobody else uses.
namespace Korvex {

/// The absolute path of an entry of a folder, without links on the way to it, so that it stays good
/// whatever becomes of those. As it is given where there is no such folder.
[[nodiscard]] QString entryPath(const QString& path);

/// Renames a file, replacing what has the new name in the same step.
/// \return False with `errno` as left by the system.
[[nodiscard]] bool renameOver(const QString& from, const QString& to);

/// A name in the folder of a file, for what shall take that file's place. What has been put there
/// and not been renamed is removed again; `errno` is left alone by that.
class TemporarySibling {
public:
    explicit TemporarySibling(const QString& file);
    ~TemporarySibling();

    TemporarySibling(const TemporarySibling&) = delete;
    TemporarySibling& operator=(const TemporarySibling&) = delete;

    [[nodiscard]] const QString& path() const { return name; }

private:
    const QString name;
    const QByteArray systemName;
};

/// Moves a file out of the way for a while. It comes back at the end of the scope, unless it was
/// dropped, which removes it. Both leave `errno` alone when they succeed.
class SetAside {
public:
    explicit SetAside(const QString& file);
    ~SetAside();

    SetAside(const SetAside&) = delete;
    SetAside& operator=(const SetAside&) = delete;

    [[nodiscard]] bool isAside() const { return aside; }
    /// \return Whether it is removed; it comes back all the same where it could not be.
    bool drop();

private:
    const QByteArray place;
    const QByteArray refuge;
    bool aside;
};

} // namespace Korvex
