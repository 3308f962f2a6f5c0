#include "tests/bench/drivers.h"

#include <array>
#include <cstdio>

namespace tests {
namespace {

class RecordedStream final : public platform::device::Stream {
  public:
    explicit RecordedStream(RecordingDriver& driver) : driver_(driver) { ++driver_.open_handles; }
    RecordedStream(const RecordedStream&) = delete;
    RecordedStream& operator=(const RecordedStream&) = delete;
    ~RecordedStream() override { --driver_.open_handles; }

    DWORD IoControl(DWORD code, std::span<const std::byte> input, std::span<std::byte>,
                    DWORD&) override {
        std::array<char, 16> piece{};
        std::snprintf(piece.data(), piece.size(), "%04X", code);
        std::string text = piece.data();
        for (const std::byte byte : input) {
            std::snprintf(piece.data(), piece.size(), " %02X", std::to_integer<unsigned>(byte));
            text += piece.data();
        }
        driver_.requests.push_back({platform::kernel::Now(), text});
        return driver_.request_answer;
    }

  private:
    RecordingDriver& driver_;
};

}  // namespace

DWORD RecordingDriver::Open(DWORD, DWORD, std::shared_ptr<platform::device::Stream>& stream) {
    if (open_answer != ERROR_SUCCESS)
        return open_answer;
    stream = std::make_shared<RecordedStream>(*this);
    return ERROR_SUCCESS;
}

std::vector<std::string> RecordingDriver::Take() {
    std::vector<std::string> texts;
    for (const Request& request : requests)
        texts.push_back(request.text);
    requests.clear();
    return texts;
}

}  // namespace tests
