#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace serial {

enum class Parity { kNone, kOdd, kEven };

struct Settings {
    unsigned baud = 9600;
    unsigned data_bits = 8;  // 5 to 8
    Parity parity = Parity::kNone;
    unsigned stop_bits = 1;      // 1 or 2
    bool hardware_flow = false;  // RTS/CTS

    bool operator==(const Settings&) const = default;
};

// "460800 baud, 8N1, no flow control"
std::string Describe(const Settings& settings);

// Reads the settings of an open terminal device; 0 or the error's number.
int ReadSettings(int descriptor, Settings& settings);

// Why a terminal device could not be opened, in one line. For a missing permission it names the
// group that may open the device and how to join it.
std::string OpenProblem(const std::string& path, int error);

// Poll interval, of the host's time, for a device that went away.
inline constexpr std::chrono::milliseconds kReopenInterval{500};

// A terminal device of the host, opened raw, non-blocking and for this process alone. Not locked.
class Tty {
  public:
    Tty() = default;
    ~Tty() { Close(); }
    Tty(const Tty&) = delete;
    Tty& operator=(const Tty&) = delete;
    Tty(Tty&& other) noexcept;
    Tty& operator=(Tty&& other) noexcept;

    // Discards what arrived before. 0, or the error's number with one line in `problem`.
    int Open(const std::string& path, std::string& problem);
    void Close();

    bool IsOpen() const { return descriptor_ >= 0; }
    // -1 while closed.
    int descriptor() const { return descriptor_; }

    // 0 or the error's number.
    int Read(Settings& settings) const { return ReadSettings(descriptor_, settings); }
    // 0, or the error's number. A device ignores what it does not support without an error, so the
    // settings are read back; a difference is EINVAL with one line in `problem`.
    int Apply(const Settings& settings, std::string& problem) const;

    // Reads bytes that have arrived and returns their number; 0 when there are none now. Empty
    // when the device went away: the caller closes it.
    std::optional<std::size_t> Receive(std::span<std::uint8_t> buffer) const;

    // One line each for the operator.
    std::string WentAwayText() const { return path_ + ": the serial device went away"; }
    std::string IsBackText() const { return path_ + ": the serial device is back"; }

  private:
    int descriptor_ = -1;
    std::string path_;
};

}  // namespace serial
