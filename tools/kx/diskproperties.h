#pragma once

#include <KxQts/disk/diskobjects.h>

#include <memory>
#include <string>

namespace Kx {

/// What the library knows of a disk, by the published names of properties. What is not known is
/// empty, 0 or false.
class DiskProperties {
public:
    explicit DiskProperties(const std::string& diskName);

    [[nodiscard]] bool areKnown() const { return props != nullptr; }
    [[nodiscard]] std::string text(const char* key) const; ///< A string, or a path
    [[nodiscard]] unsigned long long number(const char* key) const;
    [[nodiscard]] bool flag(const char* key) const;

private:
    struct Release {
        void operator()(Korvex::WDiskProps* object) const { object->release(); }
    };
    std::unique_ptr<Korvex::WDiskProps, Release> props;
};

/// "0x00000201"
[[nodiscard]] std::string identifierText(unsigned disk, unsigned slice);

/// "1.5 GiB"
[[nodiscard]] std::string sizeText(unsigned long long bytes);

} // namespace Kx
