// What stands for disks, volumes and runs of blocks, messages and lists: sizes, places and numbers.

#include "either.h"

#include <KxQts/KxQts.h>

#include <climits>
#include <type_traits>

namespace {

using namespace Korvex;

// An identifier is passed on in 32 bits; which field lies where is told by the test that sets bits.
static_assert(sizeof(KX_DEV_VOL_UNION) == 4);
static_assert(alignof(KX_DEV_VOL_UNION) == 4);
static_assert(offsetof(KX_DEV_VOL_UNION, value) == 0 && sizeof(KX_DEV_VOL_UNION::value) == 4);
static_assert(offsetof(KX_DEV_VOL_UNION, deviceNumber) == 0 &&
              sizeof(KX_DEV_VOL_UNION::deviceNumber) == 1);
static_assert(offsetof(KX_DEV_VOL_UNION, volumeNumber) == 1 &&
              sizeof(KX_DEV_VOL_UNION::volumeNumber) == 1);
static_assert(offsetof(KX_DEV_VOL_UNION, volumeFlags) == 2 &&
              sizeof(KX_DEV_VOL_UNION::volumeFlags) == 2);
static_assert(std::is_trivially_copyable_v<KX_DEV_VOL_UNION>);
static_assert(decltype(KX_DEV_VOL_UNION::value)(-1) > 0 &&
              decltype(KX_DEV_VOL_UNION::deviceNumber)(-1) == UCHAR_MAX &&
              decltype(KX_DEV_VOL_UNION::volumeNumber)(-1) == UCHAR_MAX &&
              decltype(KX_DEV_VOL_UNION::volumeFlags)(-1) == USHRT_MAX);
static_assert(sizeof(VOLUME_PROPERTIES) == 4);

// Runs lie back to back in an array of the caller's.
static_assert(sizeof(BLK_CHUNK) == 16 && sizeof(BLK_CHUNK[3]) == 48);
static_assert(offsetof(BLK_CHUNK, startBlock) == 0 && sizeof(BLK_CHUNK::startBlock) == 8);
static_assert(offsetof(BLK_CHUNK, blockCount) == 8 && sizeof(BLK_CHUNK::blockCount) == 8);
static_assert(decltype(BLK_CHUNK::startBlock)(-1) < 0 && decltype(BLK_CHUNK::blockCount)(-1) < 0);

// Behind the pointer to the virtual operations.
static_assert(std::is_base_of_v<IRefCounter, WDiskProps>);
static_assert(offsetof(WDiskProps, refCount) == either<4, 8> && sizeof(WDiskProps::refCount) == 4);
static_assert(offsetof(WDiskProps, description) == either<8, 16>);
static_assert(sizeof(WDiskProps) == either<12, 24>);

static_assert(std::is_base_of_v<IRefCounter, WDiskManager>);
static_assert(offsetof(WDiskManager, refCount) == either<4, 8> &&
              sizeof(WDiskManager::refCount) == 4);
static_assert(offsetof(WDiskManager, disk) == either<8, 16>);
static_assert(offsetof(WDiskManager, session) == either<12, 24>);
static_assert(sizeof(WDiskManager) == either<16, 32>);

static_assert(sizeof(dpKeys) / sizeof(dpKeys[0]) == 31);

static_assert(sizeof(messageMode) == 4 && messageMode(-1) < 0);
static_assert(sizeof(layerHandler) == sizeof(void*) + sizeof(QStringList));
static_assert(offsetof(layerHandler, trace) == sizeof(void*));

static_assert(sizeof(AutoLaunchedItemAction) == 4);
static_assert(AutoLaunchedItemCheck == 0 && AutoLaunchedItemRemove == 1 &&
              AutoLaunchedItemAdd == 2);

} // namespace
