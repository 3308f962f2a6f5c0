#pragma once

#include <windows.h>

#include <memory>
#include <mutex>
#include <string>

#include "platform/device/serial_line.h"
#include "platform/device/serial_port.h"
#include "platform/device/stream_driver.h"
#include "unit/line/frame_splitter.h"
#include "unit/recording/output_book.h"

namespace unit {

// The line of a replay: nobody is at its other end. What the program sends is held against the
// recording. Any thread; the book must outlive it.
class ReplayLine final : public platform::device::SerialLine {
  public:
    explicit ReplayLine(OutputBook& book) : book_(book) {}

    // Recorded bytes arrive. Hardware's thread.
    void Deliver(std::span<const std::uint8_t> bytes);

    DWORD Open(Receiver receiver) override;
    void Close() override;
    DWORD ReadSettings(DCB& settings) override;
    DWORD ApplySettings(const DCB& settings) override;
    std::size_t Transmit(std::span<const std::uint8_t> bytes) override;
    void OnWritable(std::function<void()>) override {}

  private:
    OutputBook& book_;
    std::mutex mutex_;
    Receiver port_;
    DCB settings_{};
    FrameSplitter splitter_;
};

// The driver of "COM9:" over such a line: opens as it did in the recording.
class ReplaySerialDriver final : public platform::device::StreamDriver {
  public:
    ReplaySerialDriver(OutputBook& book, std::wstring name, std::shared_ptr<ReplayLine> line)
        : book_(book), name_(std::move(name)), driver_(std::move(line)) {}

    DWORD Open(DWORD access, DWORD share_mode,
               std::shared_ptr<platform::device::Stream>& stream) override;

  private:
    OutputBook& book_;
    const std::wstring name_;
    platform::device::SerialDriver driver_;
};

// A driver that answers each request as it did in the recording, and does nothing.
class ReplayDriver final : public platform::device::StreamDriver {
  public:
    ReplayDriver(OutputBook& book, std::wstring name) : book_(book), name_(std::move(name)) {}

    DWORD Open(DWORD access, DWORD share_mode,
               std::shared_ptr<platform::device::Stream>& stream) override;

  private:
    OutputBook& book_;
    const std::wstring name_;
};

}  // namespace unit
