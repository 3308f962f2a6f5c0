#include "dvrsim/program/line_end.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "control/descriptor.h"

namespace dvrsim {
namespace {

using control::Descriptor;

// How often to look whether somebody has opened the other end: the host does not tell.
constexpr auto kOpenPollInterval = std::chrono::milliseconds(20);

class PseudoTerminal final : public LineEnd {
  public:
    PseudoTerminal(Descriptor far_end, std::string path)
        : far_end_(std::move(far_end)), path_(std::move(path)) {}

    const std::string& path() const override { return path_; }
    int descriptor() const override { return connected_ ? far_end_.get() : -1; }
    std::optional<std::chrono::milliseconds> PollInterval() const override {
        return connected_ ? std::nullopt : std::optional(kOpenPollInterval);
    }

    void HandleReady(const Receiver& receive) override {
        pollfd watched{far_end_.get(), POLLIN, 0};
        poll(&watched, 1, 0);
        connected_ = (watched.revents & POLLHUP) == 0;
        if ((watched.revents & POLLIN) == 0)
            return;
        std::array<std::uint8_t, 4096> buffer;
        const ssize_t count = read(far_end_.get(), buffer.data(), buffer.size());
        if (count > 0)
            receive({buffer.data(), static_cast<std::size_t>(count)});
    }

    void Send(std::span<const std::uint8_t> bytes) override {
        if (connected_)
            static_cast<void>(!write(far_end_.get(), bytes.data(), bytes.size()));
    }

    bool Connected() const override { return connected_; }

    bool ReadSettings(serial::Settings& settings) const override {
        return serial::ReadSettings(far_end_.get(), settings) == 0;
    }

  private:
    const Descriptor far_end_;
    const std::string path_;
    bool connected_ = false;
};

constexpr auto kReopenInterval = std::chrono::milliseconds(500);
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
    SerialDevice(serial::Tty tty, std::string path, StatusHandler report)
        : tty_(std::move(tty)), path_(std::move(path)), report_(std::move(report)) {}

    const std::string& path() const override { return path_; }
    int descriptor() const override { return tty_.descriptor(); }
    std::optional<std::chrono::milliseconds> PollInterval() const override {
        return tty_.IsOpen() ? std::nullopt : std::optional(kReopenInterval);
    }

    void HandleReady(const Receiver& receive) override {
        if (!tty_.IsOpen()) {
            TryReopen();
            return;
        }
        std::array<std::uint8_t, 4096> buffer;
        const ssize_t count = read(tty_.descriptor(), buffer.data(), buffer.size());
        if (count > 0) {
            receive({buffer.data(), static_cast<std::size_t>(count)});
        } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            tty_.Close();
            report_(path_ + ": the serial device went away");
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
    void TryReopen() {
        serial::Tty found;
        std::string ignored;
        if (OpenTty(found, path_, ignored) == 0) {
            tty_ = std::move(found);
            report_(path_ + ": the serial device is back");
        }
    }

    serial::Tty tty_;
    const std::string path_;
    const StatusHandler report_;
};

}  // namespace

std::unique_ptr<LineEnd> MakePseudoTerminal(std::string& problem) {
    Descriptor far_end(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    std::array<char, 128> name{};
    if (!far_end || grantpt(far_end.get()) != 0 || unlockpt(far_end.get()) != 0 ||
        ptsname_r(far_end.get(), name.data(), name.size()) != 0) {
        problem = std::string("no pseudo-terminal: ") + std::strerror(errno);
        return nullptr;
    }
    // Nothing that the DVR sends may be echoed back to it, whoever opens the other end. It is not
    // kept open here: then nobody could not be told from somebody, and an exclusive use that a
    // killed one leaves behind would never end.
    const Descriptor near_end(open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios raw{};
    if (!near_end || tcgetattr(near_end.get(), &raw) != 0) {
        problem = std::string(name.data()) + ": " + std::strerror(errno);
        return nullptr;
    }
    cfmakeraw(&raw);
    tcsetattr(near_end.get(), TCSANOW, &raw);
    return std::make_unique<PseudoTerminal>(std::move(far_end), name.data());
}

std::unique_ptr<LineEnd> OpenDevice(const std::string& path, LineEnd::StatusHandler report,
                                    std::string& problem) {
    serial::Tty tty;
    if (OpenTty(tty, path, problem) != 0)
        return nullptr;
    return std::make_unique<SerialDevice>(std::move(tty), path, std::move(report));
}

}  // namespace dvrsim
