#include "platform/linux/filepreferences.h"

#include "platform/linux/domainlock.h"
#include "platform/replaceable.h"
#include "platform/rootfolder.h"

#include <QFile>
#include <QFileInfo>

#include <new>
#include <unistd.h>

namespace Korvex {

using PropertyList::ByteView;
using PropertyList::Document;

namespace {

QByteArray folderPath(PreferenceDomain::Scope scope) {
    const QByteArray& above =
        scope == PreferenceDomain::Scope::AnyUser ? rootFolder() : homeFolder();
    return above + "/Library/Preferences";
}

/// Empty for an identifier that cannot be a file's name.
QByteArray filePath(const PreferenceDomain& domain) {
    const QByteArray id = QFile::encodeName(domain.id);
    if (id.isEmpty() || id.contains('\0'))
        return QByteArray();
    return (id.startsWith('/') ? rootFolder() + id : folderPath(domain.scope) + '/' + id) +
           ".plist";
}

} // namespace

/// A domain's file and, as long as the file does not change, what is in it.
class FilePreferences::Domain {
public:
    Domain(const PreferenceDomain& domain, bool safeOnPowerLoss,
           const PropertyList::Limits& withLimits)
        : file(filePath(domain), domain.scope), safe(safeOnPowerLoss), limits(withLimits) {}

    bool read(const Reader& reader) {
        const LockGuard guard(state);
        if (!refresh())
            return false;
        reader(*document);
        return true;
    }

    bool change(const Changer& changer) {
        // Readers in this process go on while another process is waited for.
        const LockGuard others(writing);
        const DomainLock everyone(file);
        if (!everyone.isHeld())
            return false;
        const LockGuard guard(state);
        if (!refresh())
            return false;
        if (!swept)
            everyone.sweep();
        swept = true;
        // What is not stored in the end, however it comes to that, is read again.
        std::unique_ptr<Document> changing = std::move(document);
        const bool wanted = changer(*changing);
        if (changing->isChanged() && !(wanted && store(everyone, *changing)))
            return false;
        document = std::move(changing);
        return wanted;
    }

private:
    bool refresh() KXQTS_REQUIRES(state) {
        const std::optional<FileIdentity> now = file.identify();
        if (!now)
            return false;
        if (document && isSettled && *now == identity)
            return true;
        document.reset();
        return now->exists ? load() : begin();
    }

    bool begin() KXQTS_REQUIRES(state) {
        document = std::make_unique<Document>(limits);
        identity = FileIdentity();
        isSettled = true;
        return true;
    }

    bool load() KXQTS_REQUIRES(state) {
        const std::optional<DomainFile::Contents> contents = file.read(limits.bytes);
        if (!contents)
            return false;
        document = Document::read(contents->bytes, limits);
        identity = contents->identity;
        isSettled = contents->isSettled;
        return document != nullptr;
    }

    bool store(const DomainLock& everyone, Document& changed) KXQTS_REQUIRES(state) {
        const FileIdentity old = identity;
        std::optional<FileIdentity> stored;
        if (!changed.write([&](ByteView head, ByteView tail) {
                stored = everyone.replace(old, head, tail, safe);
                return stored.has_value();
            }))
            return false;
        identity = *stored;
        isSettled = true;
        return true;
    }

    const DomainFile file;
    const bool safe;
    const PropertyList::Limits limits;
    Lock writing;
    bool swept KXQTS_GUARDED_BY(writing) = false;
    Lock state;
    std::unique_ptr<Document> document KXQTS_GUARDED_BY(state); // null: to be read
    FileIdentity identity KXQTS_GUARDED_BY(state);
    bool isSettled KXQTS_GUARDED_BY(state) = false;
};

FilePreferences::FilePreferences(PowerLoss onPowerLoss, const PropertyList::Limits& withLimits)
    : powerLoss(onPowerLoss), limits(withLimits) {}

FilePreferences::~FilePreferences() = default;

FilePreferences::Domain& FilePreferences::known(const PreferenceDomain& domain) {
    const LockGuard guard(lock);
    std::shared_ptr<Domain>& entry = domains[domain];
    if (!entry) {
        const bool machine = domain.scope == PreferenceDomain::Scope::AnyUser && geteuid() == 0;
        const bool safe =
            powerLoss == PowerLoss::Safe || (powerLoss == PowerLoss::SafeForMachine && machine);
        entry = std::make_shared<Domain>(domain, safe, limits);
    }
    return *entry;
}

bool FilePreferences::synchronize(const PreferenceDomain& domain) {
    return read(domain, [](const PropertyList::Tree&) {});
}

bool FilePreferences::read(const PreferenceDomain& domain, const Reader& reader) {
    const TerminationDeferred untilDone;
    const ErrorNumberKept meanwhile;
    try {
        return known(domain).read(reader);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool FilePreferences::change(const PreferenceDomain& domain, const Changer& changer) {
    const TerminationDeferred untilDone; // a call that opens a file may have opened it and yet end
    const ErrorNumberKept meanwhile;
    try {
        return known(domain).change(changer);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

std::optional<QString> FilePreferences::folder(PreferenceDomain::Scope scope) {
    const ErrorNumberKept meanwhile;
    const QString path = QFile::decodeName(folderPath(scope));
    return QFileInfo(path).isDir() ? std::optional(path) : std::nullopt;
}

Preferences& systemPreferences() {
    // Never deleted: threads that outlive main may still ask for it.
    static FilePreferences* const files = new FilePreferences;
    return inForce<Preferences>(*files);
}

} // namespace Korvex
