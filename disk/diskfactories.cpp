#include "platform/corefoundation/object.h"
#include "platform/diskarbiter.h"

#include <KxQts/disk/diskobjects.h>
#include <KxQts/support/text.h>

#include <new>

namespace Korvex {

namespace {

/// A disk and the session it was made in; two empty references when there is no such disk.
struct DiskInSession {
    Reference<__DASession> session;
    Reference<__DADisk> disk;
};

DiskInSession diskOfName(const char* bsdName) {
    DiskInSession made;
    made.session.reset(bsdName ? diskArbiter().createSession() : nullptr);
    if (made.session)
        made.disk.reset(made.session->createDisk(bsdName));
    return made;
}

/// Unlike in a device node's path, no slice is named for the whole disk.
QString nameOf(KX_DEV_VOL_UNION id) {
    const QString whole = QStringLiteral("disk%1").arg(id.deviceNumber);
    return id.volumeNumber == 0 ? whole : whole + QStringLiteral("s%1").arg(id.volumeNumber);
}

} // namespace

WDiskProps* createFromBSDName(const char* bsdName) {
    const DiskInSession made = diskOfName(bsdName);
    Cf::Owned<CFDictionaryRef> description(made.disk ? made.disk->copyDescription() : nullptr);
    auto* props = description ? new (std::nothrow) WDiskProps(description.get()) : nullptr;
    if (props)
        (void)description.release(); // the object's now
    return props;
}

WDiskProps* createFromBSDName(const QString& bsdName) {
    return createFromBSDName(WCString(bsdName).str);
}

WDiskProps* createFromDvID(KX_DEV_VOL_UNION id) {
    return createFromBSDName(nameOf(id));
}

WDiskManager* diskManagerFromBSDName(const char* bsdName) {
    DiskInSession made = diskOfName(bsdName);
    if (!made.disk)
        return nullptr;
    auto* manager = new (std::nothrow) WDiskManager(made.disk.get(), made.session.get());
    if (manager) {
        (void)made.disk.release(); // the object's now
        (void)made.session.release();
    }
    return manager;
}

WDiskManager* diskManagerFromBSDName(const QString& bsdName) {
    return diskManagerFromBSDName(WCString(bsdName).str);
}

WDiskManager* diskManagerFromDvID(KX_DEV_VOL_UNION id) {
    return diskManagerFromBSDName(nameOf(id));
}

} // namespace Korvex
