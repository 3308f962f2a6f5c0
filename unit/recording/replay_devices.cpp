#include "unit/recording/replay_devices.h"

#include <algorithm>

#include "platform/kernel/clock.h"
#include "unit/events/event_text.h"
#include "unit/line/frame_text.h"

namespace unit {

using platform::device::Stream;
using Call = DriverCalled::Call;

namespace {

// The recorded result of the request.
DWORD ResultOf(ExpectedOutput& expected, const DriverCalled& call) {
    return expected.Compare(OutputKind::kRequest, platform::kernel::Now(), RequestLine(call));
}

class ReplayStream final : public Stream {
  public:
    ReplayStream(ExpectedOutput& expected, std::wstring name)
        : expected_(expected), name_(std::move(name)) {}

    DWORD IoControl(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                    DWORD& returned) override {
        const DWORD error = ResultOf(
            expected_, {name_, Call::kControl, code, {input.begin(), input.end()}, ERROR_SUCCESS});
        if (error != ERROR_SUCCESS)
            return error;
        std::ranges::fill(output, std::byte{0});
        returned = static_cast<DWORD>(output.size());
        return ERROR_SUCCESS;
    }

    void HandleClosed() override {
        ResultOf(expected_, {name_, Call::kClose, 0, {}, ERROR_SUCCESS});
    }

  private:
    ExpectedOutput& expected_;
    const std::wstring name_;
};

}  // namespace

void ReplayLine::Deliver(std::span<const std::uint8_t> bytes) {
    std::unique_lock lock(mutex_);
    const Receiver port = port_;
    lock.unlock();
    if (port)
        port(bytes);
}

DWORD ReplayLine::Open(Receiver receiver) {
    const std::scoped_lock lock(mutex_);
    port_ = std::move(receiver);
    return ERROR_SUCCESS;
}

void ReplayLine::Close() {
    const std::scoped_lock lock(mutex_);
    port_ = nullptr;
}

DWORD ReplayLine::ReadSettings(DCB& settings) {
    const std::scoped_lock lock(mutex_);
    settings = settings_;
    settings.DCBlength = sizeof settings;
    return ERROR_SUCCESS;
}

DWORD ReplayLine::ApplySettings(const DCB& settings) {
    const std::scoped_lock lock(mutex_);
    settings_ = settings;
    return ERROR_SUCCESS;
}

std::size_t ReplayLine::Transmit(std::span<const std::uint8_t> bytes) {
    const std::scoped_lock lock(mutex_);
    for (const std::uint8_t byte : bytes)
        if (const auto segment = splitter_.Take(byte))
            expected_.Compare(OutputKind::kFrame, platform::kernel::Now(), HexText(segment->bytes));
    return bytes.size();
}

DWORD ReplaySerialDriver::Open(DWORD access, DWORD share_mode, std::shared_ptr<Stream>& stream) {
    const DWORD error = ResultOf(expected_, {name_, Call::kOpen, 0, {}, ERROR_SUCCESS});
    return error == ERROR_SUCCESS ? driver_.Open(access, share_mode, stream) : error;
}

DWORD ReplayDriver::Open(DWORD, DWORD, std::shared_ptr<Stream>& stream) {
    const DWORD error = ResultOf(expected_, {name_, Call::kOpen, 0, {}, ERROR_SUCCESS});
    if (error == ERROR_SUCCESS)
        stream = std::make_shared<ReplayStream>(expected_, name_);
    return error;
}

}  // namespace unit
