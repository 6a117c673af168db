#include "takenoff.h"

#include "failure.h"
#include "text.h"

#include <cstdlib>
#include <libmount/libmount.h>
#include <memory>
#include <new>
#include <string_view>
#include <sys/sysmacros.h>

namespace DiskUtil {

namespace {

struct Free {
    void operator()(libmnt_table* table) const { mnt_unref_table(table); }
    void operator()(libmnt_iter* iterator) const { mnt_free_iter(iterator); }
    void operator()(char* text) const { std::free(text); }
};

MountRequest requestOf(libmnt_fs* entry) {
    const std::unique_ptr<char, Free> options(mnt_fs_strdup_options(entry));
    if (!options)
        throw std::bad_alloc();
    return {mnt_fs_get_srcpath(entry), mnt_fs_get_target(entry), mnt_fs_get_fstype(entry),
            options.get()};
}

/// How to mount again what is mounted of a device, in the order of mounting.
std::vector<MountRequest> mountsOf(const Korvex::DiskNode& node) {
    const std::unique_ptr<libmnt_table, Free> table(
        mnt_new_table_from_file("/proc/self/mountinfo"));
    const std::unique_ptr<libmnt_iter, Free> iterator(mnt_new_iter(MNT_ITER_FORWARD));
    if (!table || !iterator)
        throw std::bad_alloc();
    std::vector<MountRequest> found;
    libmnt_fs* entry = nullptr;
    while (mnt_table_next_fs(table.get(), iterator.get(), &entry) == 0) {
        if (mnt_fs_get_devno(entry) != makedev(node.major, node.minor))
            continue;
        if (const char* const root = mnt_fs_get_root(entry); root && std::string_view(root) != "/")
            throw Failure(node.name() + " is in use: a part of it is mounted at " +
                          printable(mnt_fs_get_target(entry)));
        found.push_back(requestOf(entry));
        found.back().source = node.path;
    }
    return found;
}

} // namespace

TakenOff::TakenOff(const Korvex::DiskNode& node) {
    const std::vector<MountRequest> mounts = mountsOf(node);
    try {
        takeOff(mounts);
    } catch (const Failure&) {
        putBack();
        throw;
    }
}

TakenOff::~TakenOff() {
    try {
        putBack();
    } catch (const std::exception&) { // another failure is being told already
    }
}

void TakenOff::takeOff(const std::vector<MountRequest>& mounts) {
    for (auto mount = mounts.rbegin(); mount != mounts.rend(); ++mount) {
        unmountNow(mount->target);
        off.push_back(*mount);
    }
}

void TakenOff::putBack() {
    while (!off.empty()) {
        const MountRequest next = off.back();
        off.pop_back();
        mountNow(next);
    }
}

} // namespace DiskUtil
