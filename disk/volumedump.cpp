#include <KxQts/disk/volumeid.h>
#include <KxQts/platformtypes.h>
#include <KxQts/registry/prefs.h>

#include "disk/volumewalk.h"
#include "platform/corefoundation/object.h"
#include "platform/devicetree.h"

#include <array>
#include <cstdio>

using Korvex::DeviceAncestry;
using Korvex::DeviceTreeEntry;
using Korvex::Volume;
using Korvex::VolumeWalk;

namespace {

void printHeading(const Volume& volume) {
    std::array<char, 256> name{};
    const Korvex::Cf::Owned<CFStringRef> text(createCFString(volume.name));
    // What is no valid text, or too long, leaves the empty name.
    if (text)
        CFStringGetCString(text.get(), name.data(), static_cast<CFIndex>(name.size()),
                           kCFStringEncodingUTF8);
    std::printf("Volume \"%s\" (vRefNum %d), BSD node /dev/%s, ", name.data(), volume.reference,
                volume.backing.device.c_str());
}

/// \return Whether there is a way to go.
bool hasWay(const DeviceAncestry& ancestry) {
    using Result = DeviceAncestry::Result;
    if (ancestry.result == Result::NoQuery)
        std::fputs("IOBSDNameMatching returned a NULL dictionary.\n", stderr);
    if (ancestry.result == Result::NoQuery || ancestry.result == Result::NoDevice)
        std::fputs("IOServiceGetMatchingService returned IO_OBJECT_NULL.\n", stderr);
    if (ancestry.result == Result::WalkFailed)
        std::fprintf(stderr, "IORegistryEntryCreateIterator returned 0x%08x\n",
                     static_cast<unsigned>(ancestry.error));
    if (ancestry.result == Result::NothingToWalk)
        std::fputs("IORegistryEntryCreateIterator returned a NULL iterator\n", stderr);
    return ancestry.result == Result::Found;
}

bool isWholeMedium(const DeviceTreeEntry& entry) {
    if (!entry.isMedium)
        return false;
    if (!entry.isWhole)
        std::fputs("Could not retrieve Whole property\n", stderr);
    return entry.isWhole.value_or(false);
}

void printKind(const DeviceTreeEntry& entry) {
    if (entry.isCD)
        std::fputs("is a CD\n", stdout);
    else if (entry.isDVD)
        std::fputs("is a DVD\n", stdout);
    else
        std::printf("is of class %s\n", entry.className.c_str());
}

void printWholeMedium(const DeviceAncestry& ancestry) {
    for (const DeviceTreeEntry& entry : ancestry.entries) {
        if (isWholeMedium(entry)) {
            printKind(entry);
            return;
        }
    }
}

void print(const Volume& volume) {
    if (volume.backing.error != 0) {
        std::fprintf(stderr, "PBHGetVolParmsSync returned %lu.\n",
                     static_cast<unsigned long>(volume.backing.error));
        return;
    }
    if (volume.backing.isNetworked)
        return;
    printHeading(volume);
    const DeviceAncestry ancestry = Korvex::deviceTree().ancestryOf(volume.backing.device);
    if (hasWay(ancestry))
        printWholeMedium(ancestry);
}

} // namespace

int printAllVolumesInfo() {
    for (const Volume& volume : VolumeWalk()) {
        if (volume.error == nsvErr)
            break;
        if (volume.error == 0)
            print(volume);
    }
    return 0;
}
