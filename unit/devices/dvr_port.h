#pragma once

#include <functional>
#include <memory>
#include <string>

#include "dvrsim/dvr.h"
#include "platform/device/serial_line.h"
#include "unit/devices/host_command.h"
#include "unit/devices/pty_peer.h"
#include "unit/line/line_tap.h"
#include "unit/line/memory_line.h"

namespace unit {

// Where the DVR is attached: the simulated one on a memory line or behind a pseudo-terminal, a real
// one on a tty of the host, or none. All on the hardware's thread, while the platform is booted.
class DvrPort final : private dvrsim::Host {
  public:
    enum class Line { kMemory, kPseudoTerminal, kTty, kNone };

    struct Options {
        Line line = Line::kMemory;
        // For kTty.
        std::string tty;
        // The host's command line that resets the DVR there; the operator is told to when empty.
        std::string reset_command;
        dvrsim::Options dvr;
    };

    // `bytes` hears the line as the program does; see LineTap.
    DvrPort(const Options& options, std::function<void(const std::string&)> say,
            LineTap::Listener bytes = {});
    ~DvrPort() override;

    // What the serial driver of "COM9:" drives; null when there is no DVR, or the host gave
    // no pseudo-terminal.
    std::shared_ptr<platform::device::SerialLine> line() const { return tap_; }

    // The simulated DVR, or null when another or none is attached.
    dvrsim::Dvr* dvr() { return dvr_.get(); }

    // The reset wire: resets the simulated DVR; for a real one the reset command is run, or the
    // operator is told to.
    void Reset();

    // The faults of the line, simulated or real. Any thread.
    LineFaults& faults() { return *faults_; }
    // Puts bytes on the line beside what its ends send.
    void Inject(Direction direction, std::span<const std::uint8_t> bytes);

    // Pulls the DVR's serial plug or puts it back.
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
    const std::shared_ptr<LineFaults> faults_ = std::make_shared<LineFaults>();
    std::shared_ptr<LineTap> tap_;
    std::unique_ptr<dvrsim::Dvr> dvr_;
    std::unique_ptr<PtyPeer> pty_;
    std::unique_ptr<HostCommand> reset_command_;
    bool plugged_ = true;
};

}  // namespace unit
