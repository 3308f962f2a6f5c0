#include <unistd.h>

#include <array>
#include <cerrno>

#include "dvrsim/program/line_end.h"

namespace dvrsim {
namespace {

constexpr auto kLookForDevice = std::chrono::milliseconds(500);
constexpr serial::Settings kSettings{.baud = 460800};

// 0 or the error's number, with one line in `problem`.
int OpenTty(serial::Tty& tty, const std::string& path, std::string& problem) {
    int error = tty.Open(path, problem);
    if (error == 0)
        error = tty.Apply(kSettings, problem);
    return error;
}

class SerialDevice final : public LineEnd {
  public:
    SerialDevice(serial::Tty tty, std::string path, Teller tell)
        : tty_(std::move(tty)), path_(std::move(path)), tell_(std::move(tell)) {}

    const std::string& path() const override { return path_; }
    int descriptor() const override { return tty_.descriptor(); }
    std::optional<std::chrono::milliseconds> LookAgain() const override {
        return tty_.IsOpen() ? std::nullopt : std::optional(kLookForDevice);
    }

    void HandleReady(const Receiver& receive) override {
        if (!tty_.IsOpen()) {
            LookForIt();
            return;
        }
        std::array<std::uint8_t, 4096> buffer;
        const ssize_t count = read(tty_.descriptor(), buffer.data(), buffer.size());
        if (count > 0) {
            receive({buffer.data(), static_cast<std::size_t>(count)});
        } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            tty_.Close();
            tell_(path_ + ": the serial device went away");
        }
    }

    void Send(std::span<const std::uint8_t> bytes) override {
        if (tty_.IsOpen())
            static_cast<void>(!write(tty_.descriptor(), bytes.data(), bytes.size()));
    }

    bool Connected() const override { return tty_.IsOpen(); }

    bool ReadSettings(serial::Settings& settings) const override {
        return tty_.IsOpen() && tty_.Read(settings) == 0;
    }

  private:
    void LookForIt() {
        serial::Tty found;
        std::string ignored;
        if (OpenTty(found, path_, ignored) == 0) {
            tty_ = std::move(found);
            tell_(path_ + ": the serial device is back");
        }
    }

    serial::Tty tty_;
    const std::string path_;
    const Teller tell_;
};

}  // namespace

std::unique_ptr<LineEnd> OpenDevice(const std::string& path, LineEnd::Teller tell,
                                    std::string& problem) {
    serial::Tty tty;
    if (OpenTty(tty, path, problem) != 0)
        return nullptr;
    return std::make_unique<SerialDevice>(std::move(tty), path, std::move(tell));
}

}  // namespace dvrsim
