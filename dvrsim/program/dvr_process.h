#pragma once

#include <memory>
#include <string>

#include "control/descriptor.h"
#include "control/socket_server.h"
#include "dvrsim/dvr.h"
#include "dvrsim/frame_codec.h"
#include "dvrsim/host.h"
#include "dvrsim/program/commands.h"

namespace dvrsim {

// The main loop of dvrsim: waits for the line, commands, timers and the signals that end it.
class DvrProcess final : private Host {
  public:
    struct Options {
        dvrsim::Options dvr;
        double speed = 1;
        bool power_on = true;
        // Prints every frame and every new state with the simulation's time.
        bool verbose = false;
        // The folder of "card in"; empty creates one with an update image.
        std::string image_card;
    };

    DvrProcess(const Options& options, std::unique_ptr<LineEnd> line, control::SocketClaim claim);

    // Returns on the command quit, SIGINT, SIGTERM or SIGHUP.
    void Run();

  private:
    // Host
    std::chrono::microseconds Now() const override { return timers_.Now(); }
    std::uint64_t After(std::chrono::microseconds delay, std::function<void()> action) override {
        return timers_.After(delay, std::move(action));
    }
    void Cancel(std::uint64_t id) override { timers_.Cancel(id); }
    void Transmit(std::span<const std::uint8_t> bytes) override;

    void WaitAndHandle();
    void Receive(std::span<const std::uint8_t> bytes);
    void ReadInput();
    void ExecuteInput(std::string_view line);
    void PrintFrames(FrameDecoder& decoder, char mark, std::span<const std::uint8_t> bytes);
    void PrintState();

    const bool verbose_;
    HostTimers timers_;
    std::unique_ptr<LineEnd> line_;
    Dvr dvr_;
    CardFolders cards_;
    Context context_;
    control::SocketServer server_;
    const control::Descriptor signals_;
    bool input_open_ = true;
    std::string input_;
    bool skipping_ = false;  // dropping the rest of a line that is too long
    FrameDecoder received_;
    FrameDecoder sent_;
    Dvr::State printed_state_ = Dvr::State::kOff;
};

}  // namespace dvrsim
