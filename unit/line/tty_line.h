#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "platform/device/serial_line.h"
#include "serial/tty.h"

namespace unit {

// A terminal device of the host ("/dev/ttyUSB0", the end of a pseudo-terminal) as the line. Only
// for a free-running unit, because the other end keeps the host's time.
//
// When the device goes away, the line stays open: nothing arrives, and nothing is accepted. A
// device that comes back at the path gets the line's settings, and the line continues.
class TtyLine final : public platform::device::SerialLine {
  public:
    // `problem` is given one line when the device cannot be opened or set up, goes away, or comes
    // back. Called on any thread, without locks.
    TtyLine(std::string path, std::function<void(const std::string&)> problem);
    ~TtyLine() override;

    DWORD Open(Receiver receiver) override;
    void Close() override;
    DWORD ReadSettings(DCB& settings) override;
    DWORD ApplySettings(const DCB& settings) override;
    std::size_t Transmit(std::span<const std::uint8_t> bytes) override;
    void OnWritable(std::function<void()> on_writable) override;

  private:
    void ReadUntilClosed(const Receiver& receiver);
    void TryReopen();
    void CloseLostDevice();
    void ReportWritable();

    const std::string path_;
    const std::function<void(const std::string&)> problem_;
    // Guards the members below, and keeps the device open during a write.
    std::mutex mutex_;
    std::function<void()> on_writable_;
    bool open_ = false;
    // Closed while the device is away. Only the reader opens and closes it while the line is open.
    serial::Tty tty_;
    serial::Settings settings_;
    bool wants_writable_ = false;
    // Wakes the reader: the line was closed, or a writer waits.
    int reader_event_ = -1;
    std::thread reader_;
};

}  // namespace unit
