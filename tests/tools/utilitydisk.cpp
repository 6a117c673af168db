#include "tools/utilitydisk.h"

#include "common/ownroot.h"
#include "platform/descriptor.h"
#include "platform/linux/mounts.h"

#include <QCryptographicHash>
#include <QFile>

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <linux/fs.h>
#include <sstream>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace KxTest {

namespace {

constexpr unsigned long long firstStart = mebibyte;
constexpr unsigned long long firstSize = 48 * mebibyte;
constexpr unsigned long long otherStart = 80 * mebibyte;
constexpr unsigned long long otherSize = 16 * mebibyte;
constexpr unsigned long long sector = 512;

std::string entryOf(unsigned long long start, unsigned long long size) {
    return "start=" + std::to_string(start / sector) + ",size=" + std::to_string(size / sector) +
           '\n';
}

std::string pattern() {
    return std::string(otherSize, '\x5A');
}

/// A number of a table that sfdisk has written out; 0 when there is none.
unsigned long long fieldOf(const std::string& line, const std::string& field) {
    const std::size_t found = line.find(field);
    return found == std::string::npos ? 0 : std::strtoull(&line[found + field.size()], nullptr, 10);
}

} // namespace

ProgramResult runUtility(std::vector<std::string> operands) {
    operands.insert(operands.begin(), "/usr/sbin/diskutil");
    return runProgram(operands);
}

unsigned long long sizeIn(const std::string& text, const std::string& label) {
    std::size_t found = text.find(label);
    found = found == std::string::npos ? found : text.find('(', found);
    return found == std::string::npos ? 0 : std::strtoull(&text[found + 1], nullptr, 10);
}

std::string mountPointsOf(const Korvex::DiskNode& node) {
    std::string places;
    for (const Korvex::Mount& mount : Korvex::mountsOf(node, Korvex::mounts()))
        places += mount.target + ' ';
    return places;
}

std::string mountOptions(const std::string& folder) {
    std::ifstream table("/proc/self/mounts");
    std::string source;
    std::string target;
    std::string type;
    std::string options;
    while (table >> source >> target >> type >> options && target != folder)
        std::getline(table, source);
    return target == folder ? options : "";
}

std::string checksumOf(const std::string& path) {
    QFile file(QString::fromStdString(path));
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file)
               ? hash.result().toHex().toStdString()
               : "";
}

UtilityDisk::UtilityDisk() : disk(LoopDisk::isPossible() ? 128 * mebibyte : 0) {}

UtilityDisk::~UtilityDisk() {
    for (const Korvex::Mount& mount : Korvex::mounts()) {
        if (mount.source.starts_with(disk.path()) && disk.isAttached())
            umount2(mount.target.c_str(), MNT_DETACH);
    }
    std::error_code ignored;
    fs::remove_all(volumes(), ignored);
}

void UtilityDisk::SetUp() {
    if (!LoopDisk::isPossible() || !hasOwnRoot())
        GTEST_SKIP() << "attaching disks needs root's rights and loop devices";
    ASSERT_TRUE(disk.isAttached());
    placeDiskUtility(KXQTS_DISKUTIL);
}

void UtilityDisk::partition(const std::string& tableType) {
    const std::string table = "label: " + tableType + '\n' + entryOf(firstStart, firstSize) +
                              entryOf(otherStart, otherSize);
    const ProgramResult written = runProgram(
        {"/usr/sbin/sfdisk", "-q", "--no-reread", "--no-tell-kernel", disk.path()}, {}, table);
    ASSERT_EQ(written.status, 0) << written.errors;
    ASSERT_TRUE(disk.addPartition(1, firstStart, firstSize));
    ASSERT_TRUE(disk.addPartition(2, otherStart, otherSize));
    ASSERT_TRUE(disk.write(otherStart, pattern().data(), otherSize));
}

void UtilityDisk::makeVolume(const std::string& label) const {
    const ProgramResult made =
        runProgram({"/usr/sbin/mkfs.ext4", "-q", "-F", "-L", label, slicePath()});
    ASSERT_EQ(made.status, 0) << made.errors;
}

void UtilityDisk::wipe(unsigned long long place, unsigned long long size) const {
    std::fstream slice(slicePath(), std::ios::in | std::ios::out | std::ios::binary);
    slice.seekp(static_cast<std::streamoff>(place));
    ASSERT_TRUE(slice << std::string(size, '\0') << std::flush);
}

void UtilityDisk::writeData(const std::string& folder, unsigned long long size) {
    const std::string path = folder + "/data";
    std::ifstream random("/dev/urandom");
    std::string bytes(size, '\0');
    random.read(bytes.data(), static_cast<std::streamsize>(size));
    std::ofstream(path) << bytes;
    checksum = checksumOf(path);
    ASSERT_FALSE(checksum.empty());
    ASSERT_EQ(fs::file_size(path), size);
}

bool UtilityDisk::hasData(const std::string& folder) const {
    return !checksum.empty() && checksumOf(folder + "/data") == checksum;
}

bool UtilityDisk::isOtherSliceIntact() const {
    const Korvex::Descriptor medium(open(disk.path().c_str(), O_RDONLY | O_CLOEXEC));
    ioctl(medium.get(), BLKFLSBUF, 0); // what others have written through another node
    std::string bytes(otherSize, '\0');
    if (pread(medium.get(), bytes.data(), otherSize, otherStart) != ssize_t{otherSize})
        return false;
    return bytes == pattern() && sizeInTable(2) == otherSize;
}

unsigned long long UtilityDisk::sizeInTable(unsigned slice) const {
    std::istringstream table(runProgram({"/usr/sbin/sfdisk", "-d", disk.path()}).output);
    std::string line;
    while (std::getline(table, line)) {
        if (line.starts_with(disk.partitionPath(slice) + ' '))
            return fieldOf(line, "size=") * sector;
    }
    return 0;
}

unsigned long long UtilityDisk::sizeInKernel() const {
    std::ifstream file("/sys/class/block/" + node().systemName + "/size");
    unsigned long long sectors = 0;
    file >> sectors;
    return sectors * sector;
}

bool UtilityDisk::isClean() const {
    return runProgram({"/usr/sbin/e2fsck", "-f", "-n", slicePath()}).status == 0;
}

Korvex::DiskNode UtilityDisk::node(unsigned slice) const {
    for (const Korvex::DiskNode& each : Korvex::diskNodes()) {
        if (each.path == (slice == 0 ? disk.path() : disk.partitionPath(slice)))
            return each;
    }
    ADD_FAILURE() << "the disk is not there";
    return {};
}

std::string UtilityDisk::volumes(const std::string& name) {
    const std::string folder = std::string(std::getenv("KXQTS_ROOT")) + "/Volumes";
    return name.empty() ? folder : folder + '/' + name;
}

} // namespace KxTest
