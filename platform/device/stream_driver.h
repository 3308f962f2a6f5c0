#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <span>

#include "platform/kernel/object.h"

namespace platform::device {

// One open handle on a stream driver. Its functions run on the program's calling thread, without
// locks, and return ERROR_SUCCESS or the last error.
class Stream : public kernel::Object {
  public:
    virtual DWORD Read(std::span<std::byte> buffer, DWORD& done);
    virtual DWORD Write(std::span<const std::byte> bytes, DWORD& done);
    virtual DWORD IoControl(DWORD code, std::span<const std::byte> input,
                            std::span<std::byte> output, DWORD& returned);
};

// A driver that the device manager has loaded under a name such as "COM9:".
class StreamDriver {
  public:
    virtual ~StreamDriver() = default;

    // Opens another handle; ERROR_SUCCESS with `stream` set, or the last error.
    virtual DWORD Open(DWORD access, DWORD share_mode, std::shared_ptr<Stream>& stream) = 0;
};

}  // namespace platform::device
