#pragma once

#include <windows.h>

#include <functional>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "platform/device/stream_driver.h"

namespace tests {

// A stream driver that records its requests in hex: the code, the input, and "->" with the size of
// the output if there is one: "80012070 3F 00 00 00 ->4".
class RecordingDriver final : public platform::device::StreamDriver {
  public:
    DWORD Open(DWORD access, DWORD share_mode,
               std::shared_ptr<platform::device::Stream>& stream) override {
        if (on_open)
            on_open(access, share_mode);
        ++opens;
        if (open_answer == ERROR_SUCCESS)
            stream = std::make_shared<Recorded>(*this);
        return open_answer;
    }

    DWORD open_answer = ERROR_SUCCESS;
    DWORD request_answer = ERROR_SUCCESS;
    // Called first; may change the results.
    std::function<void(DWORD access, DWORD share_mode)> on_open;
    int opens = 0;  // including failed ones
    int open_handles = 0;
    std::vector<std::string> requests;

  private:
    class Recorded final : public platform::device::Stream {
      public:
        explicit Recorded(RecordingDriver& driver) : driver_(driver) { ++driver_.open_handles; }
        Recorded(const Recorded&) = delete;
        Recorded& operator=(const Recorded&) = delete;
        ~Recorded() override { --driver_.open_handles; }

        DWORD IoControl(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                        DWORD&) override {
            std::ostringstream text;
            text << std::hex << std::uppercase << std::setfill('0') << std::setw(4) << code;
            for (const std::byte byte : input)
                text << ' ' << std::setw(2) << std::to_integer<int>(byte);
            if (!output.empty())
                text << " ->" << output.size();
            driver_.requests.push_back(text.str());
            return driver_.request_answer;
        }

      private:
        RecordingDriver& driver_;
    };
};

}  // namespace tests
