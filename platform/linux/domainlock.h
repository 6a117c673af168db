#pragma once

#include "platform/linux/domainfile.h"

namespace Korvex {

/// Keeps all others, threads and processes, from changing a domain while it lives.
class DomainLock {
public:
    /// Waits until the domain is free. Makes its folder when there is none.
    explicit DomainLock(const DomainFile& toChange);
    ~DomainLock();

    DomainLock(const DomainLock&) = delete;
    DomainLock& operator=(const DomainLock&) = delete;

    /// False when the folder or the lock file cannot be made or opened.
    [[nodiscard]] bool isHeld() const { return held; }

    /// Removes what processes that were killed while they changed this domain have left.
    void sweep() const;

    /// Replaces the file by one of these bytes, all at once: whoever opens it sees the old one or
    /// the new one whole.
    /// \param old The file as it is; its owner is the new one's too.
    /// \param safe Whether the new file has reached the disk before this returns, and before the
    /// old one is gone.
    /// \return The new file's identity; nothing when that failed, and then the old file is there.
    [[nodiscard]] std::optional<FileIdentity> replace(const FileIdentity& old,
                                                      PropertyList::ByteView head,
                                                      PropertyList::ByteView tail, bool safe) const;

private:
    [[nodiscard]] Descriptor openLock() const;
    void giveOwner(const FileIdentity& old, int descriptor) const;

    const DomainFile& file;
    Descriptor folder;
    Descriptor lock;
    bool held = false;
};

} // namespace Korvex
