#pragma once

#include <windows.h>

#include <memory>
#include <mutex>
#include <string>

#include "platform/device/serial_line.h"
#include "platform/device/serial_port.h"
#include "platform/device/stream_driver.h"
#include "unit/line/frame_splitter.h"
#include "unit/recording/expected_output.h"

namespace unit {

// The line of a replay, without a peer. Compares what the program sends with the recording. Any
// thread; the expected output must outlive it.
class ReplayLine final : public platform::device::SerialLine {
  public:
    explicit ReplayLine(ExpectedOutput& expected) : expected_(expected) {}

    // Recorded bytes arrive. Host thread.
    void Deliver(std::span<const std::uint8_t> bytes);

    DWORD Open(Receiver receiver) override;
    void Close() override;
    DWORD ReadSettings(DCB& settings) override;
    DWORD ApplySettings(const DCB& settings) override;
    std::size_t Transmit(std::span<const std::uint8_t> bytes) override;
    void OnWritable(std::function<void()>) override {}

  private:
    ExpectedOutput& expected_;
    std::mutex mutex_;
    Receiver port_;
    DCB settings_{};
    FrameSplitter splitter_;
};

// The driver of "COM9:" over such a line. An open returns what it returned in the recording.
class ReplaySerialDriver final : public platform::device::StreamDriver {
  public:
    ReplaySerialDriver(ExpectedOutput& expected, std::wstring name,
                       std::shared_ptr<ReplayLine> line)
        : expected_(expected), name_(std::move(name)), driver_(std::move(line)) {}

    DWORD Open(DWORD access, DWORD share_mode,
               std::shared_ptr<platform::device::Stream>& stream) override;

  private:
    ExpectedOutput& expected_;
    const std::wstring name_;
    platform::device::SerialDriver driver_;
};

// A driver that does nothing; each request returns what it returned in the recording.
class ReplayDriver final : public platform::device::StreamDriver {
  public:
    ReplayDriver(ExpectedOutput& expected, std::wstring name)
        : expected_(expected), name_(std::move(name)) {}

    DWORD Open(DWORD access, DWORD share_mode,
               std::shared_ptr<platform::device::Stream>& stream) override;

  private:
    ExpectedOutput& expected_;
    const std::wstring name_;
};

}  // namespace unit
