#pragma once

#include <libmount/libmount.h>

namespace Korvex {

/// The library that knows about mounting, loaded when it is first asked for.
struct MountLibrary {
    decltype(&::mnt_new_table) newTable = nullptr;
    decltype(&::mnt_unref_table) unrefTable = nullptr;
    decltype(&::mnt_table_parse_file) parseFile = nullptr;
    decltype(&::mnt_new_iter) newIterator = nullptr;
    decltype(&::mnt_free_iter) freeIterator = nullptr;
    decltype(&::mnt_table_next_fs) next = nullptr;
    decltype(&::mnt_fs_get_id) id = nullptr;
    decltype(&::mnt_fs_get_devno) device = nullptr;
    decltype(&::mnt_fs_get_target) target = nullptr;
    decltype(&::mnt_fs_get_source) source = nullptr;
    decltype(&::mnt_fs_get_fstype) type = nullptr;
    decltype(&::mnt_fs_get_vfs_options) options = nullptr;
    decltype(&::mnt_fs_is_netfs) isNetwork = nullptr;
    decltype(&::mnt_new_context) newContext = nullptr;
    decltype(&::mnt_free_context) freeContext = nullptr;
    decltype(&::mnt_context_set_source) setSource = nullptr;
    decltype(&::mnt_context_set_target) setTarget = nullptr;
    decltype(&::mnt_context_set_options) setOptions = nullptr;
    decltype(&::mnt_context_enable_force) enableForce = nullptr;
    decltype(&::mnt_context_mount) mount = nullptr;
    decltype(&::mnt_context_umount) unmount = nullptr;
    decltype(&::mnt_context_syscall_called) syscallCalled = nullptr;
    decltype(&::mnt_context_get_syscall_errno) syscallError = nullptr;
    decltype(&::mnt_context_get_status) status = nullptr;

    /// Null where the library is not installed.
    static const MountLibrary* loaded();
};

} // namespace Korvex
