#include <KxQts/disk/diskobjects.h>
#include <KxQts/disk/volumeid.h>
#include <KxQts/errors.h>
#include <KxQts/support/log.h>
#include <KxQts/support/text.h>

#include "disk/volumewalk.h"
#include "platform/diskarbiter.h"

#include <optional>

using Korvex::IOLog;
using Korvex::narrowed;
using Korvex::partialIdOf;
using Korvex::VolumeBacking;
namespace Error = Korvex::Error;

namespace {

constexpr int mountPathProperty = 30;

/// The identifier of what is backed so, or the error that stands for there being none.
int identify(const VolumeBacking& backing, unsigned short& id) {
    if (backing.isNetworked)
        return Error::InvalidParameter;
    const auto scanned = partialIdOf(backing.device);
    if (!scanned)
        return Error::InvalidParameter;
    id = *scanned;
    return Error::None;
}

/// Makes a path that of its parent. \return False when it has none that could be looked at.
bool toParent(QString& path) {
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    if (slash < 0 || path.size() == 1)
        return false;
    path.truncate(slash == 0 ? 1 : slash);
    return true;
}

using Place = Korvex::VolumeTable::Place;

/// Where the nearest ancestor of a path lies that exists, the path itself included.
std::optional<Place> placeOfNearest(QString path) {
    for (;;) {
        const WCString bytes(path);
        if (auto place = Korvex::volumeTable().placeOf(bytes))
            return place;
        if (!toParent(path)) {
            IOLog("cannot get FSRef from [%s].", bytes.str);
            return std::nullopt;
        }
    }
}

} // namespace

int convertPathToPartialDvID(const QString& path, KX_DEV_VOL_UNION& id) {
    const std::optional<Place> place = placeOfNearest(path);
    if (!place)
        return Error::NotFound;
    if (place->error != 0) {
        IOLog("cannot get CatalogInfo from [%s].", WCString(path).str);
        return narrowed(place->error);
    }
    if (place->backing.error != 0)
        return place->backing.error;
    unsigned short partial = 0;
    const int result = identify(place->backing, partial);
    if (result == Error::None)
        id.value = partial;
    return result;
}

int convertDvIDToPath(KX_DEV_VOL_UNION id, QString& path) {
    const Korvex::Reference<Korvex::WDiskProps> props(Korvex::createFromDvID(id));
    if (!props)
        return Error::ElementNotFound;
    return static_cast<int>(props->getQStringProperty(mountPathProperty, path));
}

void getBSDNodeFromID(const KX_DEV_VOL_UNION& id, QString& node) {
    // The slice is written for whole disks too, unlike in the names of disk objects.
    node = QStringLiteral("/dev/disk%1s%2").arg(id.deviceNumber).arg(id.volumeNumber);
}

bool getDeviceAndVolumeFromBSDNode(const QString& node, unsigned short* id) {
    if (!id)
        return false;
    QString numbers = node;
    numbers.remove(QLatin1String("/dev/disk"));
    bool isNumber = false;
    // One digit each: programs count on longer numbers being refused.
    *id = static_cast<unsigned short>(numbers.mid(0, 1).toUShort(&isNumber, 10) & 0xFF);
    if (isNumber)
        *id = static_cast<unsigned short>(*id | numbers.mid(2, 1).toUShort(&isNumber, 10) << 8);
    return isNumber;
}

bool getDeviceAndVolumeFromVolumeName(const QString& volumeName, unsigned short* id) {
    QString node;
    return getBSDNodeFromVolumeName(volumeName, node) == Error::None &&
           getDeviceAndVolumeFromBSDNode(node, id);
}

int getFlaggedPropertyFromVolumeID(const KX_DEV_VOL_UNION& id, VOLUME_PROPERTIES p) {
    constexpr unsigned lastBit = 31;
    const unsigned flags = id.volumeFlags;
    return static_cast<int>(flags >> (static_cast<unsigned>(p) & lastBit) & 1U);
}
