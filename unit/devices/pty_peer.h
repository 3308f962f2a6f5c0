#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <thread>

#include "serial/pseudo_terminal.h"

namespace unit {

// A device of this process at the far end of a pseudo-terminal, whose near end is opened by path.
// `receive` gets the bytes that come in, on the host thread. Host thread, while the platform is
// booted.
class PtyPeer {
  public:
    explicit PtyPeer(std::function<void(std::span<const std::uint8_t>)> receive);
    ~PtyPeer();
    PtyPeer(const PtyPeer&) = delete;
    PtyPeer& operator=(const PtyPeer&) = delete;

    // The tty's path; empty when the host has no pseudo-terminal left, and `problem` says why.
    const std::string& path() const { return terminal_.path; }
    const std::string& problem() const { return problem_; }

    // Bytes that the tty cannot take now are lost.
    void Send(std::span<const std::uint8_t> bytes);

  private:
    void ReadUntilStopped();

    const std::function<void(std::span<const std::uint8_t>)> receive_;
    // The near end stays open, so that the far end sees no hang-up between two openings.
    serial::PseudoTerminal terminal_;
    int stop_event_ = -1;
    std::string problem_;
    std::thread reader_;
};

}  // namespace unit
