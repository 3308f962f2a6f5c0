#include "dvrsim/program/line_end.h"

#include <poll.h>
#include <unistd.h>

#include <array>

#include "control/descriptor.h"
#include "serial/pseudo_terminal.h"

namespace dvrsim {
namespace {

using control::Descriptor;

// The host does not notify when the other end is opened.
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

constexpr serial::Settings kSettings{.baud = 460800};

// Returns 0 or an error number, with one line in `problem`.
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
        return tty_.IsOpen() ? std::nullopt : std::optional(serial::kReopenInterval);
    }

    void HandleReady(const Receiver& receive) override {
        if (!tty_.IsOpen()) {
            TryReopen();
            return;
        }
        std::array<std::uint8_t, 4096> buffer;
        const std::optional<std::size_t> count = tty_.Receive(buffer);
        if (!count) {
            tty_.Close();
            report_(tty_.WentAwayText());
        } else if (*count > 0) {
            receive({buffer.data(), *count});
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
            report_(tty_.IsBackText());
        }
    }

    serial::Tty tty_;
    const std::string path_;
    const StatusHandler report_;
};

}  // namespace

std::unique_ptr<LineEnd> MakePseudoTerminal(std::string& problem) {
    serial::PseudoTerminal made;
    if (!serial::MakePseudoTerminal(made, problem))
        return nullptr;
    // Not kept open: it would hide whether another program has the tty open, and an exclusive use
    // that a killed program leaves behind would never end.
    close(made.near_end);
    return std::make_unique<PseudoTerminal>(Descriptor(made.far_end), std::move(made.path));
}

std::unique_ptr<LineEnd> OpenDevice(const std::string& path, LineEnd::StatusHandler report,
                                    std::string& problem) {
    serial::Tty tty;
    if (OpenTty(tty, path, problem) != 0)
        return nullptr;
    return std::make_unique<SerialDevice>(std::move(tty), path, std::move(report));
}

}  // namespace dvrsim
