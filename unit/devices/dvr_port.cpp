#include "unit/devices/dvr_port.h"

#include "platform/kernel/scheduler.h"
#include "unit/line/tty_line.h"

namespace unit {

namespace kernel = platform::kernel;

DvrPort::DvrPort(const Options& options, std::shared_ptr<LineFaults> faults,
                 std::function<void(const std::string&)> say, LineTap::Observer observer)
    : say_(std::move(say)) {
    if (options.line == Line::kMemory || options.line == Line::kPseudoTerminal) {
        dvrsim::Host& host = *this;
        dvr_ = std::make_unique<dvrsim::Dvr>(host, options.dvr);
    }
    if (options.line == Line::kTty && !options.reset_command.empty())
        reset_command_ =
            std::make_unique<HostCommand>("the reset command", options.reset_command, say_);
    if (auto line = MakeLine(options))
        tap_ = std::make_shared<LineTap>(std::move(line), std::move(faults), std::move(observer));
}

DvrPort::~DvrPort() = default;

std::shared_ptr<platform::device::SerialLine> DvrPort::MakeLine(const Options& options) {
    if (options.line == Line::kNone)
        return nullptr;
    if (options.line == Line::kTty)
        return std::make_shared<TtyLine>(options.tty, say_);
    const auto to_dvr = [this](std::span<const std::uint8_t> bytes) { Receive(bytes); };
    if (options.line == Line::kMemory) {
        memory_line_ = std::make_shared<MemoryLine>(kDvrBaudRate, to_dvr);
        return memory_line_;
    }
    pty_ = std::make_unique<PtyPeer>(to_dvr);
    if (!pty_->path().empty())
        return std::make_shared<TtyLine>(pty_->path(), say_);
    say_(pty_->problem());
    return nullptr;
}

std::shared_future<std::string> DvrPort::Reset() {
    if (reset_command_)
        return reset_command_->Start();
    if (dvr_)
        dvr_->Reset();
    else
        say_("The program resets the DVR: switch the DVR's power off and on.");
    std::promise<std::string> done;
    done.set_value({});
    return done.get_future().share();
}

void DvrPort::SetPlugged(bool plugged) {
    plugged_ = plugged;
    if (tap_)
        tap_->SetPlugged(plugged);
}

void DvrPort::Inject(Direction direction, std::span<const std::uint8_t> bytes) {
    if (tap_)
        tap_->Inject(direction, bytes);
}

void DvrPort::Receive(std::span<const std::uint8_t> bytes) {
    // Bytes that are on the wire when the plug is pulled are lost.
    if (plugged_)
        dvr_->Receive(bytes);
}

void DvrPort::Transmit(std::span<const std::uint8_t> bytes) {
    if (memory_line_)
        memory_line_->Send(bytes);
    else if (pty_ && plugged_)
        pty_->Send(bytes);
}

std::chrono::microseconds DvrPort::Now() const {
    return kernel::Now();
}

std::uint64_t DvrPort::After(std::chrono::microseconds delay, std::function<void()> action) {
    return kernel::After(delay, std::move(action));
}

void DvrPort::Cancel(std::uint64_t id) {
    kernel::Cancel(id);
}

}  // namespace unit
