#pragma once

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

// Of an open terminal device; 0 or the error's number.
int ReadSettings(int descriptor, Settings& settings);

// A terminal device of the host, opened raw, without waiting, and for this process alone. Not
// locked: one thread at a time.
class Tty {
  public:
    Tty() = default;
    ~Tty() { Close(); }
    Tty(const Tty&) = delete;
    Tty& operator=(const Tty&) = delete;
    Tty(Tty&& other) noexcept;
    Tty& operator=(Tty&& other) noexcept;

    // 0, or the error's number with one line in `problem` that tells what to do about it where
    // that is known. What had arrived before is dropped.
    int Open(const std::string& path, std::string& problem);
    void Close();

    bool IsOpen() const { return descriptor_ >= 0; }
    // -1 while closed.
    int descriptor() const { return descriptor_; }

    // 0 or the error's number.
    int Read(Settings& settings) const { return ReadSettings(descriptor_, settings); }
    // 0, or the error's number. Devices pass over what they cannot do without an error: the
    // settings are read back, and where they differ `problem` says so in one line (EINVAL).
    int Apply(const Settings& settings, std::string& problem) const;

  private:
    int descriptor_ = -1;
    std::string path_;
};

}  // namespace serial
