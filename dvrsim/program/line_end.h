#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "serial/tty.h"

namespace dvrsim {

// The DVR's end of a serial line. It never blocks and has no thread: whoever owns it waits for its
// descriptor, or for the time it asks for, and calls HandleReady.
class LineEnd {
  public:
    // Hears what came in on the line.
    using Receiver = std::function<void(std::span<const std::uint8_t>)>;
    // Hears in one line what happened to the line itself.
    using StatusHandler = std::function<void(const std::string&)>;

    virtual ~LineEnd() = default;

    // What the other end opens, or what was opened here.
    virtual const std::string& path() const = 0;
    // -1 while there is nothing to wait for but time.
    virtual int descriptor() const = 0;
    // Of the host's time, until HandleReady is to be called all the same.
    virtual std::optional<std::chrono::milliseconds> PollInterval() const = 0;
    virtual void HandleReady(const Receiver& receive) = 0;
    // What the line cannot take is lost, as on one that nobody reads.
    virtual void Send(std::span<const std::uint8_t> bytes) = 0;
    // Whether the other end is there, as far as it can be known.
    virtual bool Connected() const = 0;
    // False while they cannot be read.
    virtual bool ReadSettings(serial::Settings& settings) const = 0;
};

// A new pseudo-terminal; null with one line in `problem`.
std::unique_ptr<LineEnd> MakePseudoTerminal(std::string& problem);

// A serial device at 460800 baud, 8N1, raw; null with one line in `problem`. One that goes away is
// looked for until it is back; `report` hears of both.
std::unique_ptr<LineEnd> OpenDevice(const std::string& path, LineEnd::StatusHandler report,
                                    std::string& problem);

}  // namespace dvrsim
