#pragma once

#include <windows.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/device/stream_driver.h"
#include "platform/kernel/clock.h"

namespace tests {

// A stream driver that writes down what it is asked: the code, a blank, and the input in hex.
class RecordingDriver final : public platform::device::StreamDriver {
  public:
    struct Request {
        platform::kernel::Time time;
        std::string text;
    };

    DWORD Open(DWORD access, DWORD share_mode,
               std::shared_ptr<platform::device::Stream>& stream) override;

    // The texts since the last call.
    std::vector<std::string> Take();

    DWORD open_answer = ERROR_SUCCESS;
    DWORD request_answer = ERROR_SUCCESS;
    std::vector<Request> requests;
    int open_handles = 0;
};

}  // namespace tests
