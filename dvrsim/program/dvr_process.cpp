#include "dvrsim/program/dvr_process.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <utility>

#include "control/terminal.h"
#include "dvrsim/protocol.h"

namespace dvrsim {
namespace {

using std::chrono::nanoseconds;

// A longer line of standard input is not a command.
constexpr std::size_t kMaxInput = control::kMaxLine;

// Blocks the signals that end the program; the loop reads them from the descriptor.
control::Descriptor OpenEndSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&set, signal);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    // A closed output, or a terminal that belongs to another job, must not end the program.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGTTIN, SIG_IGN);
    return control::Descriptor(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
}

timespec ToTimespec(nanoseconds time) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    return {seconds.count(), (time - seconds).count()};
}

template <class Number>
std::string Hexadecimal(const char* format, Number number) {
    char text[16];
    std::snprintf(text, sizeof text, format, static_cast<unsigned>(number));
    return text;
}

std::string TypeText(std::uint8_t type) {
    switch (static_cast<FrameType>(type)) {
        case FrameType::kRequest:
            return "request";
        case FrameType::kAcknowledgement:
            return "acknowledgement";
        case FrameType::kIndication:
            return "indication";
    }
    return Hexadecimal("type 0x%02X", type);
}

// "indication StorageCardStatus 01 00 2A", "request FW_Upgrade_Version query 00"
std::string TextOf(const Frame& frame) {
    const std::string name(CommandName(frame.code));
    std::string text = TypeText(frame.type) + ' ' +
                       (name.empty() ? Hexadecimal("0x%04X", frame.code) : name) +
                       ((frame.code & kQueryBit) != 0 ? " query" : "");
    for (const std::uint8_t byte : frame.payload)
        text += Hexadecimal(" %02X", byte);
    return text;
}

}  // namespace

DvrProcess::DvrProcess(const Options& options, std::unique_ptr<LineEnd> line,
                       control::SocketClaim claim)
    : verbose_(options.verbose),
      timers_(options.speed),
      line_(std::move(line)),
      dvr_(*this, options.dvr),
      cards_(options.image_card),
      context_{dvr_, timers_, *line_, cards_},
      server_(std::move(claim),
              {[this](control::SocketServer::ClientId id, const control::Request& request) {
                   server_.SendOutcome(
                       id, ProgramCommands().Execute(context_, request.line, request.folder));
               },
               [](control::SocketServer::ClientId) {}}),
      signals_(OpenEndSignals()) {
    if (options.power_on)
        dvr_.PowerOn();
}

void DvrProcess::Run() {
    while (!context_.quit) {
        PrintState();
        WaitAndHandle();
        timers_.RunDue();
    }
}

void DvrProcess::WaitAndHandle() {
    std::optional<nanoseconds> limit = timers_.UntilNext();
    const auto poll_interval = line_->PollInterval();
    if (poll_interval)
        limit = std::min(limit.value_or(*poll_interval), nanoseconds(*poll_interval));
    enum { kSignals, kInput, kServer, kLine, kCount };
    std::array<pollfd, kCount> watched{{{signals_.get(), POLLIN, 0},
                                        {input_open_ ? STDIN_FILENO : -1, POLLIN, 0},
                                        {server_.descriptor(), POLLIN, 0},
                                        {line_->descriptor(), POLLIN, 0}}};
    const timespec wait = ToTimespec(limit.value_or(nanoseconds::zero()));
    if (ppoll(watched.data(), watched.size(), limit ? &wait : nullptr, nullptr) < 0)
        return;
    if (watched[kSignals].revents != 0)
        context_.quit = true;
    if (watched[kLine].revents != 0 || poll_interval)
        line_->HandleReady([this](std::span<const std::uint8_t> bytes) { Receive(bytes); });
    if (watched[kInput].revents != 0)
        ReadInput();
    if (watched[kServer].revents != 0)
        server_.HandleReady();
}

void DvrProcess::Receive(std::span<const std::uint8_t> bytes) {
    if (!context_.plugged)
        return;
    PrintFrames(received_, '<', bytes);
    dvr_.Receive(bytes);
}

void DvrProcess::Transmit(std::span<const std::uint8_t> bytes) {
    if (!context_.plugged)
        return;
    PrintFrames(sent_, '>', bytes);
    line_->Send(bytes);
}

void DvrProcess::ReadInput() {
    std::array<char, 4096> buffer;
    const ssize_t count = read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (count <= 0) {
        // The last line can lack its line end.
        input_open_ = false;
        input_ += '\n';
    } else {
        input_.append(buffer.data(), static_cast<std::size_t>(count));
    }
    for (std::size_t end = 0; (end = input_.find('\n')) != std::string::npos && !context_.quit;) {
        const std::string line = input_.substr(0, end);
        input_.erase(0, end + 1);
        if (!std::exchange(skipping_, false))
            ExecuteInput(line);
    }
    if (input_.size() > kMaxInput && !std::exchange(skipping_, true))
        control::PrintError("dvrsim", "a line of input is too long; at most " +
                                          std::to_string(kMaxInput) + " bytes are allowed");
    if (skipping_)
        input_.clear();
}

void DvrProcess::ExecuteInput(std::string_view line) {
    const control::Outcome outcome = ProgramCommands().Execute(context_, line);
    if (!outcome.done) {
        control::PrintError("dvrsim", outcome.text);
    } else if (!outcome.text.empty()) {
        std::printf("%s\n", outcome.text.c_str());
        std::fflush(stdout);
    }
}

void DvrProcess::PrintFrames(FrameDecoder& decoder, char mark,
                             std::span<const std::uint8_t> bytes) {
    if (!verbose_)
        return;
    for (const std::uint8_t byte : bytes) {
        decoder.Take(byte);
        while (const auto frame = decoder.Next())
            std::printf("%10.3f  %c %s\n", std::chrono::duration<double>(Now()).count(), mark,
                        TextOf(*frame).c_str());
    }
    std::fflush(stdout);
}

void DvrProcess::PrintState() {
    if (!verbose_ || dvr_.GetState() == printed_state_)
        return;
    printed_state_ = dvr_.GetState();
    std::printf("%10.3f  the DVR is %s\n", std::chrono::duration<double>(Now()).count(),
                std::string(NameOf(printed_state_)).c_str());
    std::fflush(stdout);
}

}  // namespace dvrsim
