// Identifiers of disks and volumes: any text read as a node, any number written as one, and any
// list of volumes searched for them.

#include "common/input.h"
#include "common/ownworld.h"
#include "common/require.h"
#include "disk/volumewalk.h"
#include "fakes/diskarbiter.h"
#include "fakes/volumetable.h"
#include "platform/disknames.h"

#include <KxQts/disk/diskobjects.h>
#include <KxQts/disk/volumeid.h>

using KxFuzz::Input;
using KxFuzz::require;
using KxTest::FakeVolumeTable;

namespace {

const QString mark = QStringLiteral("left alone");

/// The digit at a place; −1 for none.
int digitAt(const QString& text, qsizetype place) {
    const QChar character = place < text.size() ? text[place] : QChar();
    return character >= QLatin1Char('0') && character <= QLatin1Char('9')
               ? character.unicode() - u'0'
               : -1;
}

/// One digit each, at fixed places.
void checkNode(const QString& node) {
    QString numbers = node;
    numbers.remove(QStringLiteral("/dev/disk"));
    const int disk = digitAt(numbers, 0);
    const int slice = digitAt(numbers, 2);
    unsigned short id = 0xABCD;
    require(getDeviceAndVolumeFromBSDNode(node, &id) == (disk >= 0 && slice >= 0));
    require(id == (disk < 0 ? 0 : slice < 0 ? disk : disk | slice << 8));
    require(!getDeviceAndVolumeFromBSDNode(node, nullptr));
}

void checkNumber(KX_DEV_VOL_UNION id, int property) {
    QString node;
    getBSDNodeFromID(id, node);
    require(node == QStringLiteral("/dev/disk") + QString::number(id.value & 0xFF) + 's' +
                        QString::number(id.value >> 8 & 0xFF));
    unsigned short again = 0;
    const bool isShort = id.deviceNumber < 10;
    // Of a disk with three digits the third is taken for the slice.
    require(getDeviceAndVolumeFromBSDNode(node, &again) == (isShort || id.deviceNumber > 99));
    require(!isShort || id.volumeNumber > 9 || again == (id.value & 0xFFFF));
    require(Korvex::partialIdOf(node.mid(5).toStdString()) == (id.value & 0xFFFF));
    const int bit = getFlaggedPropertyFromVolumeID(id, static_cast<VOLUME_PROPERTIES>(property));
    const auto place = static_cast<unsigned>(property) % 32;
    require(bit == static_cast<int>(place < 16 ? id.value >> (16 + place) & 1 : 0));
}

/// Devices that are named otherwise belong to no disk; of the others, what follows does not count.
void checkDevice(const std::string& device) {
    const auto id = Korvex::partialIdOf(device);
    require(!id || device.starts_with("disk"));
    require(id == Korvex::partialIdOf(device + "#"));
    if (const auto node = Korvex::diskNode(device))
        require(node->name() == device);
}

void addVolumes(Input& input, FakeVolumeTable& table) {
    for (std::size_t count = input.below(6); count > 0; --count) {
        const unsigned shape = input.number<std::uint8_t>();
        const QString name = input.qtText();
        Korvex::Volume& volume = table.add(name, input.text(), "/Volumes/" + name.toStdString());
        volume.backing.isNetworked = shape % 8 == 1;
        volume.backing.error = shape % 8 == 2 ? -static_cast<int>(shape) : 0;
        volume.error = shape % 8 == 3 ? -static_cast<int>(shape) : 0;
        volume.rootError = shape % 8 == 4 ? -static_cast<int>(shape) : 0;
    }
}

/// The first volume that a search by name or node may find, or what ends it.
template <class Matches>
std::pair<int, const Korvex::Volume*> searched(const FakeVolumeTable& table, Matches matches) {
    for (const Korvex::Volume& volume : table.list) {
        if (volume.error == -35)
            break;
        if (volume.error != 0)
            continue;
        if (volume.backing.error != 0)
            return {volume.backing.error, nullptr};
        if (!volume.backing.isNetworked && matches(volume))
            return {0, &volume};
    }
    return {1, nullptr};
}

void checkSearches(const FakeVolumeTable& table, const QString& name, const QString& node) {
    QString found = mark;
    const auto [byName, named] =
        searched(table, [&](const Korvex::Volume& volume) { return volume.name == name; });
    require(getBSDNodeFromVolumeName(name, found) == byName);
    require(named ? found == "/dev/" + QString::fromLatin1(named->backing.device.c_str())
                  : found == mark || found == QLatin1String("/dev/"));
    unsigned short id = 0;
    unsigned short expected = 0;
    const bool isParsed = named && getDeviceAndVolumeFromBSDNode(found, &expected);
    require(getDeviceAndVolumeFromVolumeName(name, &id) == isParsed && id == expected);

    found = mark;
    const auto [byNode, onNode] = searched(table, [&](const Korvex::Volume& volume) {
        return node.contains(QString::fromLatin1(volume.backing.device.c_str()).left(5));
    });
    require(getVolumeNameFromBSDNode(node, found) == byNode);
    require(found == (onNode ? onNode->name : mark));
}

void checkProperties(const FakeVolumeTable& table, KX_DEV_VOL_UNION id) {
    QString root = mark;
    QString name = mark;
    QString again = mark;
    const int result = volumePropsFromDvID(id, root, name);
    require(getVolumeNameFromDvID(id, again) == result && again == name);
    if (result != 0 || name == mark)
        return require(result == 0 || (root == mark && name == mark));
    const auto isIt = [&](const Korvex::Volume& volume) {
        return volume.name == name && Korvex::partialIdOf(volume.backing.device) ==
                                          static_cast<unsigned short>(id.value & 0xFFFF);
    };
    require(std::any_of(table.list.begin(), table.list.end(), isIt));
}

/// A path lies where its nearest ancestor does that is there.
void checkPath(FakeVolumeTable& table, const QString& path, const std::string& there,
               const std::string& device) {
    table.places[there] = {0, KxTest::onDevice(device)};
    KX_DEV_VOL_UNION id{0x12345678};
    const int result = convertPathToPartialDvID(path, id);
    const auto expected = Korvex::partialIdOf(device);
    const bool isThere = table.places.contains(table.asked.back());
    require(result == (!isThere ? 2 : expected ? 0 : 87));
    require(id.value == (result == 0 ? *expected : 0x12345678U));
    require(path.toLatin1().startsWith(table.asked.back().c_str()));
}

void checkDisks(KX_DEV_VOL_UNION id, const std::string& name) {
    KxTest::FakeArbiter arbiter;
    arbiter.addDisk(name);
    const std::string whole = "disk" + std::to_string(id.deviceNumber);
    const std::string asked =
        id.volumeNumber == 0 ? whole : whole + 's' + std::to_string(id.volumeNumber);
    const Korvex::Reference<Korvex::WDiskProps> props(Korvex::createFromDvID(id));
    require((props != nullptr) == (name == asked));
    const Korvex::Reference<Korvex::WDiskManager> manager(Korvex::diskManagerFromDvID(id));
    require((manager != nullptr) == (name == asked));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    KxFuzz::makeOwnWorld();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const KX_DEV_VOL_UNION id{input.number<std::uint32_t>()};
    const int property = input.number<std::uint8_t>() - 128;
    const QString node = input.qtText();
    const QString name = input.qtText();
    const std::string device = input.text();
    FakeVolumeTable table;
    addVolumes(input, table);
    checkNode(node);
    checkNumber(id, property);
    checkSearches(table, name, node);
    checkProperties(table, id);
    checkPath(table, name, input.text(), device);
    checkDisks(id, device);
    checkDevice(device);
    return 0;
}
