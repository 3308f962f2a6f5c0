#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <thread>

namespace unit {

// A pseudo-terminal whose far end is a device of this process: the near end is a real tty of the
// host, to be opened by path. What comes in reaches `receive` on the hardware's thread. Made,
// used and destroyed on the hardware's thread, while the platform is booted.
class PtyPeer {
  public:
    explicit PtyPeer(std::function<void(std::span<const std::uint8_t>)> receive);
    ~PtyPeer();
    PtyPeer(const PtyPeer&) = delete;
    PtyPeer& operator=(const PtyPeer&) = delete;

    // The tty's path; empty when the host gave no pseudo-terminal, and then `problem` says why.
    const std::string& path() const { return path_; }
    const std::string& problem() const { return problem_; }

    // Bytes that the tty cannot take now are lost, as on a line nobody reads.
    void Send(std::span<const std::uint8_t> bytes);

  private:
    void ReadUntilStopped();

    const std::function<void(std::span<const std::uint8_t>)> receive_;
    int far_end_ = -1;
    // Held open so that the far end never sees a hang-up between two openings of the tty.
    int near_end_ = -1;
    int stop_event_ = -1;
    std::string path_;
    std::string problem_;
    std::thread reader_;
};

}  // namespace unit
