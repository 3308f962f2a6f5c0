#pragma once

#include <functional>
#include <future>
#include <memory>
#include <string>

#include "dvrsim/dvr.h"
#include "platform/device/serial_line.h"
#include "unit/devices/host_command.h"
#include "unit/devices/pty_peer.h"
#include "unit/line/line_tap.h"
#include "unit/line/memory_line.h"

namespace unit {

// The DVR port: the simulated DVR on a memory line or behind a pseudo-terminal, a real one on a tty
// of the host, or nothing. Host thread, while the platform is booted.
class DvrPort final : private dvrsim::Host {
  public:
    enum class Line { kMemory, kPseudoTerminal, kTty, kNone };

    struct Options {
        Line line = Line::kMemory;
        // For kTty.
        std::string tty;
        // The host's command line that resets that DVR; if empty, the operator is asked to.
        std::string reset_command;
        dvrsim::Options dvr;
    };

    // `say` is given one line for the operator. `observer` sees the line as the program does; see
    // LineTap.
    DvrPort(const Options& options, std::shared_ptr<LineFaults> faults,
            std::function<void(const std::string&)> say, LineTap::Observer observer);
    ~DvrPort() override;

    // The line of the serial driver "COM9:"; null without a DVR, or when the host has no
    // pseudo-terminal left.
    std::shared_ptr<platform::device::SerialLine> line() const { return tap_; }

    // The simulated DVR, or null.
    dvrsim::Dvr* dvr() { return dvr_.get(); }

    // The reset wire: resets the simulated DVR, or runs the reset command of a real one, or asks
    // the operator. The result is the problem of the reset command, or empty.
    std::shared_future<std::string> Reset();

    // Puts bytes on the line as if its other end had sent them.
    void Inject(Direction direction, std::span<const std::uint8_t> bytes);

    // Pulls out the DVR's serial plug, or plugs it in.
    void SetPlugged(bool plugged);
    bool plugged() const { return plugged_; }

  private:
    // dvrsim::Host
    std::chrono::microseconds Now() const override;
    std::uint64_t After(std::chrono::microseconds delay, std::function<void()> action) override;
    void Cancel(std::uint64_t id) override;
    void Transmit(std::span<const std::uint8_t> bytes) override;

    std::shared_ptr<platform::device::SerialLine> MakeLine(const Options& options);
    void Receive(std::span<const std::uint8_t> bytes);

    const std::function<void(const std::string&)> say_;
    std::shared_ptr<MemoryLine> memory_line_;
    std::shared_ptr<LineTap> tap_;
    std::unique_ptr<dvrsim::Dvr> dvr_;
    std::unique_ptr<PtyPeer> pty_;
    std::unique_ptr<HostCommand> reset_command_;
    bool plugged_ = true;
};

}  // namespace unit
