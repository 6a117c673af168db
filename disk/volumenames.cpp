#include <KxQts/disk/volumeid.h>
#include <KxQts/errors.h>
#include <KxQts/platformtypes.h>
#include <KxQts/support/log.h>

#include "disk/volumewalk.h"

#include <optional>

using Korvex::IOLog;
using Korvex::narrowed;
using Korvex::partialIdOf;
using Korvex::Volume;
using Korvex::VolumeWalk;
namespace Error = Korvex::Error;

namespace {

constexpr char propsPrefix[] = "volumePropsFromDvID() -";
constexpr std::size_t longestRoot = 259;
constexpr qsizetype comparedCharacters = 5;

int rootOf(const Volume& volume, QString& rootPath) {
    const int error = volume.rootError != 0              ? volume.rootError
                      : volume.root.size() > longestRoot ? int{pathTooLongErr}
                                                         : 0;
    if (error != 0)
        IOLog("%s FSRefMakePath(%d) error %d.", propsPrefix, volume.reference, error);
    else
        rootPath = QString::fromLatin1(volume.root.c_str());
    return error;
}

/// What a volume means for the search for an identifier; nothing: look further.
std::optional<int> match(const Volume& volume, KX_DEV_VOL_UNION id, QString& rootPath,
                         QString& volumeName) {
    if (volume.backing.error != 0)
        return volume.backing.error;
    // A volume that is on no disk ends the search: programs rely on 87 to fall back to other ways.
    const auto partial =
        volume.backing.isNetworked ? std::nullopt : partialIdOf(volume.backing.device);
    if (!partial)
        return Error::InvalidParameter;
    if (*partial != (id.value & 0xFFFF))
        return std::nullopt;
    const int error = rootOf(volume, rootPath);
    if (error == Error::None)
        volumeName = volume.name;
    return error;
}

/// Looks at the local volumes in order. \a look gives a result, or nothing to look further.
template <class Look>
int search(Look look) {
    for (const Volume& volume : VolumeWalk()) {
        if (volume.error == nsvErr)
            break;
        if (volume.error != 0)
            continue;
        if (volume.backing.error != 0)
            return narrowed(volume.backing.error);
        if (!volume.backing.isNetworked && look(volume))
            return Error::None;
    }
    return Error::InvalidFunction;
}

} // namespace

int volumePropsFromDvID(KX_DEV_VOL_UNION id, QString& rootPath, QString& volumeName) {
    constexpr std::size_t lastIndex = 126;
    const VolumeWalk walk;
    int result = 0;
    for (std::size_t index = 1; index <= lastIndex; ++index) {
        const Volume& volume = walk.at(index);
        result = volume.error;
        if (result == 0) {
            if (const auto found = match(volume, id, rootPath, volumeName))
                return *found;
        } else if (result != nsvErr) {
            IOLog("%s FSGetVolumeInfo(%d) returned error %d.", propsPrefix, static_cast<int>(index),
                  result);
        }
    }
    return result;
}

int getVolumeNameFromDvID(KX_DEV_VOL_UNION id, QString& volumeName) {
    QString rootPath;
    return volumePropsFromDvID(id, rootPath, volumeName);
}

int getVolumeNameFromID(const KX_DEV_VOL_UNION& id, QString& volumeName) {
    QString node;
    getBSDNodeFromID(id, node);
    return getVolumeNameFromBSDNode(node, volumeName);
}

int getBSDNodeFromVolumeName(const QString& volumeName, QString& node) {
    return search([&](const Volume& volume) {
        node = QStringLiteral("/dev/");
        if (volume.name != volumeName)
            return false;
        node += QString::fromLatin1(volume.backing.device.c_str());
        return true;
    });
}

int getVolumeNameFromBSDNode(const QString& node, QString& volumeName) {
    return search([&](const Volume& volume) {
        // So few characters that every slice of a disk matches, which callers count on.
        const QString device = QString::fromLatin1(volume.backing.device.c_str());
        if (!node.contains(device.left(comparedCharacters)))
            return false;
        volumeName = volume.name;
        return true;
    });
}
