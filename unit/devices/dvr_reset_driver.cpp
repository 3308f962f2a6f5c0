#include "unit/devices/dvr_reset_driver.h"

#include <cstdint>

#include "unit/devices/request_record.h"

namespace unit {
namespace {

constexpr DWORD kControl = 0x0881;
constexpr std::uint8_t kReset = 2;

class ResetStream final : public platform::device::Stream {
  public:
    explicit ResetStream(std::function<void()> reset) : reset_(std::move(reset)) {}

    DWORD IoControl(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                    DWORD&) override {
        if (code != kControl)
            return ERROR_NOT_SUPPORTED;
        std::uint8_t request = 0;
        if (!output.empty() || ReadRecord(input, request) != ERROR_SUCCESS || request != kReset)
            return ERROR_INVALID_PARAMETER;
        reset_();
        return ERROR_SUCCESS;
    }

  private:
    const std::function<void()> reset_;
};

}  // namespace

DWORD DvrResetDriver::Open(DWORD, DWORD, std::shared_ptr<platform::device::Stream>& stream) {
    stream = std::make_shared<ResetStream>(reset_);
    return ERROR_SUCCESS;
}

}  // namespace unit
