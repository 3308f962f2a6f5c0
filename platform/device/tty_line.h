#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "platform/device/serial_line.h"
#include "serial/tty.h"

namespace platform::device {

// A terminal device of the host ("/dev/ttyUSB0", the end of a pseudo-terminal) as the line. Only
// for a free-running unit: what is at its other end keeps the host's time.
//
// A device that goes away while the line is open leaves it open and silent: nothing arrives and
// nothing is taken. When a device is at the path again, it gets the line's settings, and the line
// goes on.
class TtyLine final : public SerialLine {
  public:
    // `problem` hears in one line why the device could not be opened or set up, that it went away,
    // and that it is back. Called on any thread, without locks.
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
    void LookForDevice();
    void LoseDevice();
    void ReportWritable();

    const std::string path_;
    const std::function<void(const std::string&)> problem_;
    // Guards what follows, and the device against being closed in the middle of its use.
    std::mutex mutex_;
    std::function<void()> on_writable_;
    bool open_ = false;
    // Closed while the device is away. Only the reader opens and closes it while the line is open.
    serial::Tty tty_;
    serial::Settings settings_;
    bool wants_writable_ = false;
    // Ends the reader's poll: to close, or to watch for a writable line.
    int reader_event_ = -1;
    std::thread reader_;
};

}  // namespace platform::device
