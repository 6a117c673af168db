#include "platform/textencoding.h"

#include "platform/linux/localetextencoding.h"
#include "platform/replaceable.h"

namespace Korvex {

namespace {

/// Keeps the encoding usable for whoever converts text after the library's last destructor.
union SystemEncoding {
    constexpr SystemEncoding() : encoding() {}
    ~SystemEncoding() {}
    SystemEncoding(const SystemEncoding&) = delete;
    SystemEncoding& operator=(const SystemEncoding&) = delete;

    LocaleTextEncoding encoding;
};

constinit SystemEncoding ofUser;

/// Leaves nothing behind when the library is unloaded.
struct Unloading {
    constexpr Unloading() = default;
    ~Unloading() { ofUser.encoding.releaseConverters(); }
    Unloading(const Unloading&) = delete;
    Unloading& operator=(const Unloading&) = delete;
} const unloading;

} // namespace

TextEncoding& systemTextEncoding() {
    return inForce<TextEncoding>(ofUser.encoding);
}

} // namespace Korvex
