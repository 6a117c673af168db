#include "platform/linux/mountlibrary.h"

#include "platform/linux/symbol.h"

#include <dlfcn.h>

namespace Korvex {

namespace {

bool findTable(void* library, MountLibrary& mount) {
    return findSymbol(library, "mnt_new_table", mount.newTable) &&
           findSymbol(library, "mnt_unref_table", mount.unrefTable) &&
           findSymbol(library, "mnt_table_parse_file", mount.parseFile) &&
           findSymbol(library, "mnt_new_iter", mount.newIterator) &&
           findSymbol(library, "mnt_free_iter", mount.freeIterator) &&
           findSymbol(library, "mnt_table_next_fs", mount.next) &&
           findSymbol(library, "mnt_fs_get_id", mount.id) &&
           findSymbol(library, "mnt_fs_get_devno", mount.device) &&
           findSymbol(library, "mnt_fs_get_target", mount.target) &&
           findSymbol(library, "mnt_fs_get_source", mount.source) &&
           findSymbol(library, "mnt_fs_get_fstype", mount.type) &&
           findSymbol(library, "mnt_fs_get_vfs_options", mount.options) &&
           findSymbol(library, "mnt_fs_is_netfs", mount.isNetwork);
}

bool findContext(void* library, MountLibrary& mount) {
    return findSymbol(library, "mnt_new_context", mount.newContext) &&
           findSymbol(library, "mnt_free_context", mount.freeContext) &&
           findSymbol(library, "mnt_context_set_source", mount.setSource) &&
           findSymbol(library, "mnt_context_set_target", mount.setTarget) &&
           findSymbol(library, "mnt_context_set_options", mount.setOptions) &&
           findSymbol(library, "mnt_context_enable_force", mount.enableForce) &&
           findSymbol(library, "mnt_context_mount", mount.mount) &&
           findSymbol(library, "mnt_context_umount", mount.unmount) &&
           findSymbol(library, "mnt_context_syscall_called", mount.syscallCalled) &&
           findSymbol(library, "mnt_context_get_syscall_errno", mount.syscallError) &&
           findSymbol(library, "mnt_context_get_status", mount.status);
}

/// \return Whether all is there.
bool load(MountLibrary& mount) {
    void* const library = dlopen("libmount.so.1", RTLD_NOW | RTLD_LOCAL);
    return library && findTable(library, mount) && findContext(library, mount);
}

} // namespace

const MountLibrary* MountLibrary::loaded() {
    static MountLibrary mount;
    static const bool isWhole = load(mount);
    return isWhole ? &mount : nullptr;
}

} // namespace Korvex
