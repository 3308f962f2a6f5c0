#include "unit/devices/scaler.h"

#include <algorithm>

#include "unit/devices/request_record.h"

namespace unit {
namespace {

enum Code : DWORD {
    kSwitchToScaler = 0x80012068,
    kSwitchToGraphics = 0x8001206C,
    kSetAlpha = 0x80012070,
    kSetColorKey = 0x80012078,
    kChangeDisplayWindow = 0x800120B0,
    kSetWindow = 0x001B001B,
};

struct ColorKey {
    std::uint32_t color;
    std::uint8_t enable;
    std::uint8_t padding[3];
};
static_assert(sizeof(ColorKey) == 8);

class ScalerStream final : public platform::device::Stream {
  public:
    explicit ScalerStream(std::shared_ptr<Scaler> scaler) : scaler_(std::move(scaler)) {
        scaler_->CountHandle(1);
    }

    DWORD IoControl(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                    DWORD& returned) override {
        return scaler_->Request(code, input, output, returned);
    }

    void HandleClosed() override { scaler_->CountHandle(-1); }

  private:
    const std::shared_ptr<Scaler> scaler_;
};

}  // namespace

DWORD Scaler::Open(DWORD, DWORD, std::shared_ptr<platform::device::Stream>& stream) {
    stream = std::make_shared<ScalerStream>(shared_from_this());
    return ERROR_SUCCESS;
}

ScalerState Scaler::state() const {
    const std::scoped_lock lock(mutex_);
    return state_;
}

void Scaler::CountHandle(int change) {
    const std::scoped_lock lock(mutex_);
    state_.open_handles += change;
}

DWORD Scaler::Request(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                      DWORD& returned) {
    // Every request except the window's has one word of output.
    const std::size_t output_size = code == kSetWindow ? 0 : sizeof(std::uint32_t);
    {
        const std::scoped_lock lock(mutex_);
        const ScalerState before = state_;
        DWORD error = Apply(code, input);
        if (error == ERROR_SUCCESS && output.size() != output_size)
            error = ERROR_INVALID_PARAMETER;
        if (error != ERROR_SUCCESS) {
            state_ = before;
            return error;
        }
    }
    std::ranges::fill(output, std::byte{0});
    returned = static_cast<DWORD>(output.size());
    changed_();
    return ERROR_SUCCESS;
}

DWORD Scaler::Apply(DWORD code, std::span<const std::byte> input) {
    std::uint32_t value = 0;
    ColorKey key{};
    switch (code) {
        case kSwitchToScaler:
        case kSwitchToGraphics:
            state_.scaler_path = code == kSwitchToScaler;
            return ReadRecord(input, value);
        case kSetAlpha:
            return ReadRecord(input, state_.alpha);
        case kChangeDisplayWindow:
            return ReadRecord(input, state_.selector);
        case kSetWindow:
            return ReadRecord(input, state_.window);
        case kSetColorKey: {
            const DWORD error = ReadRecord(input, key);
            state_.key_enabled = key.enable != 0;
            state_.key_color = key.color;
            return error;
        }
        default:
            return ERROR_NOT_SUPPORTED;
    }
}

}  // namespace unit
