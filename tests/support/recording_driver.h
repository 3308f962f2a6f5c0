#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/device/stream_driver.h"

namespace tests {

// A stream driver that writes down what it is asked: the code, the input, and "->" with the size of
// the output if there is one, in hex: "80012070 3F 00 00 00 ->4".
class RecordingDriver final : public platform::device::StreamDriver {
  public:
    DWORD Open(DWORD access, DWORD share_mode,
               std::shared_ptr<platform::device::Stream>& stream) override;

    DWORD open_answer = ERROR_SUCCESS;
    DWORD request_answer = ERROR_SUCCESS;
    // Called first; may change the answer.
    std::function<void(DWORD access, DWORD share_mode)> on_open;
    int opens = 0;  // those that failed too
    int open_handles = 0;
    std::vector<std::string> requests;
};

}  // namespace tests
