#include "tests/support/recording_driver.h"

#include <iomanip>
#include <sstream>

namespace tests {
namespace {

class RecordedStream final : public platform::device::Stream {
  public:
    explicit RecordedStream(RecordingDriver& driver) : driver_(driver) { ++driver_.open_handles; }
    RecordedStream(const RecordedStream&) = delete;
    RecordedStream& operator=(const RecordedStream&) = delete;
    ~RecordedStream() override { --driver_.open_handles; }

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

}  // namespace

DWORD RecordingDriver::Open(DWORD access, DWORD share_mode,
                            std::shared_ptr<platform::device::Stream>& stream) {
    if (on_open)
        on_open(access, share_mode);
    ++opens;
    if (open_answer == ERROR_SUCCESS)
        stream = std::make_shared<RecordedStream>(*this);
    return open_answer;
}

}  // namespace tests
