#include "platform/linux/opticalmedium.h"

#include "platform/descriptor.h"

#include <array>
#include <cstdint>
#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>

namespace Korvex {

namespace {

constexpr unsigned timeLimit = 3000; // milliseconds

} // namespace

OpticalMedium opticalMediumOf(unsigned profile) {
    if (profile >= 0x08 && profile <= 0x0A)
        return OpticalMedium::CD;
    const bool isSingleLayer = profile >= 0x10 && profile <= 0x1B;
    const bool isDoubleLayer = profile == 0x2A || profile == 0x2B;
    return isSingleLayer || isDoubleLayer ? OpticalMedium::DVD : OpticalMedium::None;
}

OpticalMedium opticalMediumIn(const std::string& node) {
    const Descriptor drive(open(node.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    std::array<std::uint8_t, 8> answer{}; // the head alone, which has the profile at its end
    std::array<std::uint8_t, 10> getConfiguration{0x46, 0x01, 0, 0, 0, 0, 0, 0, answer.size(), 0};
    sg_io_hdr_t request{};
    request.interface_id = 'S';
    request.dxfer_direction = SG_DXFER_FROM_DEV;
    request.cmd_len = getConfiguration.size();
    request.cmdp = getConfiguration.data();
    request.dxfer_len = answer.size();
    request.dxferp = answer.data();
    request.timeout = timeLimit;
    if (!drive.isOpen() || ioctl(drive.get(), SG_IO, &request) != 0 || request.status != 0)
        return OpticalMedium::None;
    return opticalMediumOf(static_cast<unsigned>(answer[6]) << 8 | answer[7]);
}

} // namespace Korvex
