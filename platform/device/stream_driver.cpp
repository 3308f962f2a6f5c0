#include "platform/device/stream_driver.h"

namespace platform::device {

DWORD Stream::Read(std::span<std::byte>, DWORD&) {
    return ERROR_NOT_SUPPORTED;
}

DWORD Stream::Write(std::span<const std::byte>, DWORD&) {
    return ERROR_NOT_SUPPORTED;
}

DWORD Stream::IoControl(DWORD, std::span<const std::byte>, std::span<std::byte>, DWORD&) {
    return ERROR_NOT_SUPPORTED;
}

}  // namespace platform::device
