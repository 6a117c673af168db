/// \file
/// Disks and volumes by their numbers, their device nodes and their names.
///
/// A disk is called diskN, a slice of it diskNsM; their numbers stay while the disk is attached and
/// are the same in every program. Volumes are the mounted file systems that lie on such a device,
/// in the order in which they were mounted, each once; network file systems are listed among them.
/// Results are 0 or a Windows error number; a negative one is the platform's own. Outputs are
/// written on success only unless stated otherwise. Any thread may call anything here. Paths in
/// 8-bit form are Latin-1 in both directions. Diagnostics go to the library's log.
#pragma once

#include <KxQts/export.h>

#include <QString>

#include <cstdint>

/// A disk or volume in 32 bits. The low half, the partial identifier, is what names it.
union KX_DEV_VOL_UNION {
    std::uint32_t value;
    __extension__ struct {
        std::uint8_t deviceNumber; ///< N of diskN
        std::uint8_t volumeNumber; ///< M of diskNsM; 0 means the whole disk
        std::uint16_t volumeFlags; ///< One bit a property
    };
};
static_assert(sizeof(KX_DEV_VOL_UNION) == 4);

/// A property of a volume, as the place of its bit in `volumeFlags`. What a bit means is up to the
/// program that sets it: the library only reads them.
enum VOLUME_PROPERTIES : int {
    VOLUME_PROPERTY_FIRST = 0,
    VOLUME_PROPERTY_LAST = 15,
};

/// Finds the volume that holds a path. What does not exist lies where its nearest ancestor that
/// does exist lies.
/// \param id Receives the partial identifier; `volumeFlags` is 0.
/// \return 2 when no ancestor exists (a relative path without a slash has none); 87 for a path on a
/// network volume and on what is no volume.
KXQTS_EXPORT int convertPathToPartialDvID(const QString& path, KX_DEV_VOL_UNION& id);

/// Gives the mount point of a volume.
/// \return 1168 when there is no such disk, or it is not mounted; 66 for a mount point of more than
/// 259 bytes.
KXQTS_EXPORT int convertDvIDToPath(KX_DEV_VOL_UNION id, QString& path);

/// Gives mount point and name of a volume. The search goes over the first 126 volumes and **ends
/// with 87 at a network volume** that stands before the one looked for.
/// \return −35 when there is none, but 0 when the 126th volume is there and another one; −2110 for a
/// mount point of more than 259 bytes.
KXQTS_EXPORT int volumePropsFromDvID(KX_DEV_VOL_UNION id, QString& rootPath, QString& volumeName);

/// Gives the name of a volume, as \ref volumePropsFromDvID does.
KXQTS_EXPORT int getVolumeNameFromDvID(KX_DEV_VOL_UNION id, QString& volumeName);

/// Gives the device node of a volume. **The slice is always written**: "/dev/disk1s0" for a whole
/// disk.
KXQTS_EXPORT void getBSDNodeFromID(const KX_DEV_VOL_UNION& id, QString& node);

/// Gives the name of a volume, as \ref getVolumeNameFromBSDNode does for its node.
KXQTS_EXPORT int getVolumeNameFromID(const KX_DEV_VOL_UNION& id, QString& volumeName);

/// Finds the device node of the first local volume of a name, letter case included.
/// \param node On failure receives "/dev/" if there is any local volume.
/// \return 1 when there is none.
KXQTS_EXPORT int getBSDNodeFromVolumeName(const QString& volumeName, QString& node);

/// Gives the name of the first local volume on the disk of a node. **Five characters are
/// compared**: every slice of a disk matches, and disk10 matches disk1.
/// \return 1 when there is none.
KXQTS_EXPORT int getVolumeNameFromBSDNode(const QString& node, QString& volumeName);

/// Reads the numbers of a node "/dev/diskNsM". **Both have a single digit**: of "/dev/disk12s3" the
/// result is false and \a id is 1.
/// \param id Receives the partial identifier, or what of it could be read.
/// \return Whether both were read.
KXQTS_EXPORT bool getDeviceAndVolumeFromBSDNode(const QString& node, unsigned short* id);

/// Finds the numbers of the first local volume of a name, with the limits of
/// \ref getDeviceAndVolumeFromBSDNode.
KXQTS_EXPORT bool getDeviceAndVolumeFromVolumeName(const QString& volumeName, unsigned short* id);

/// One bit of `volumeFlags`: 0 or 1. Of \a p the low five bits count; there is nothing behind bit
/// 15.
KXQTS_EXPORT int getFlaggedPropertyFromVolumeID(const KX_DEV_VOL_UNION& id, VOLUME_PROPERTIES p);

/// Prints all local volumes with their nodes and what their disks are to standard output, and what
/// goes wrong to standard error. \return 0.
KXQTS_EXPORT int printAllVolumesInfo();
