/// \file
/// Where a file's data lies on its disk.
#pragma once

#include <KxQts/disk/volumeid.h>
#include <KxQts/export.h>

#include <QString>

/// A run of consecutive blocks.
struct BLK_CHUNK {
    /// The first block, counted in media blocks from the start of the volume's own device.
    long long startBlock;
    long long blockCount; ///< At least 1
};
static_assert(sizeof(BLK_CHUNK) == 16);

/// Tells which blocks of which device a file occupies, in the order of the file.
///
/// Data that was just written is brought to the disk first. The last block counts as a whole one,
/// an empty file is one block at 0, and space that was set aside and not written to yet counts like
/// data. Ask with a capacity of 0 first, for the count. Any thread may call; a map is true as long
/// as nobody writes to the file or moves its data.
/// \param path The file. Links are followed.
/// \param volume Receives the partial identifier of the file's volume, on some failures too.
/// \param fileSize Receives the length in bytes, on some failures too.
/// \param chunkCount In: how many runs \a chunks has room for. Out: how many there are, on success
/// and when there is too little room.
/// \param chunks May be null for a capacity of 0.
/// \return 0, or
/// | result             | meaning                                                              |
/// |--------------------|----------------------------------------------------------------------|
/// | 22                 | a capacity that is too small and not 0, or no place for the runs      |
/// | 2, 87, or negative | the file's volume is not known, see \ref convertPathToPartialDvID     |
/// | 19                 | there is no such disk                                                |
/// | 1168, 66           | the size of its blocks is not known                                  |
/// | −1                 | no map: a hole, no plain file, data that does not lie in blocks of    |
/// |                    | its own (compressed, in the node), a file system that does not tell   |
/// | else               | `errno` as left by opening the file or asking for its length          |
KXQTS_EXPORT int getFileSectorInfo(const QString& path, KX_DEV_VOL_UNION& volume,
                                   long long& fileSize, unsigned int& chunkCount,
                                   BLK_CHUNK* chunks);
