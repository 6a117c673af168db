#include "mountcontext.h"

#include "failure.h"
#include "text.h"

#include <array>
#include <libmount/libmount.h>
#include <memory>
#include <new>

namespace DiskUtil {

namespace {

using Context = std::unique_ptr<libmnt_context, decltype(&mnt_free_context)>;

Context newContext(const std::string& target) {
    Context context(mnt_new_context(), mnt_free_context);
    if (!context || mnt_context_set_target(context.get(), target.c_str()) != 0)
        throw std::bad_alloc();
    return context;
}

/// Throws what went wrong, if something did.
void requireSuccess(const Context& context, int result, const std::string& what) {
    std::array<char, 512> text{};
    if (mnt_context_get_excode(context.get(), result, text.data(), text.size()) == 0)
        return;
    throw Failure(what + ": " + (text[0] == '\0' ? "the system refuses" : printable(text.data())));
}

} // namespace

void mountNow(const MountRequest& request) {
    const Context context = newContext(request.target);
    if (mnt_context_set_source(context.get(), request.source.c_str()) != 0 ||
        mnt_context_set_options(context.get(), request.options.c_str()) != 0 ||
        (!request.type.empty() && mnt_context_set_fstype(context.get(), request.type.c_str()) != 0))
        throw std::bad_alloc();
    // The request is complete: what the machine's table says about the device or the folder does
    // not count.
    mnt_context_set_optsmode(context.get(), MNT_OMODE_NOTAB);
    requireSuccess(context, mnt_context_mount(context.get()),
                   "cannot mount " + request.source + " at " + printable(request.target));
}

void unmountNow(const std::string& target) {
    const Context context = newContext(target);
    requireSuccess(context, mnt_context_umount(context.get()),
                   "cannot unmount " + printable(target));
}

} // namespace DiskUtil
