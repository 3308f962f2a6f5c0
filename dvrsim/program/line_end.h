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

// The DVR's end of a serial line. It never blocks and has no thread: its owner waits for its
// descriptor, or for PollInterval(), and calls HandleReady.
class LineEnd {
  public:
    // Called with received bytes.
    using Receiver = std::function<void(std::span<const std::uint8_t>)>;
    // Called with one line of text when the device disappears or is back.
    using StatusHandler = std::function<void(const std::string&)>;

    virtual ~LineEnd() = default;

    // The path that the other end opens, or that of the device.
    virtual const std::string& path() const = 0;
    // -1 while there is nothing to poll and only PollInterval() counts.
    virtual int descriptor() const = 0;
    // Host time after which HandleReady must be called in any case.
    virtual std::optional<std::chrono::milliseconds> PollInterval() const = 0;
    virtual void HandleReady(const Receiver& receive) = 0;
    // Drops the bytes that the line cannot accept.
    virtual void Send(std::span<const std::uint8_t> bytes) = 0;
    // Whether the other end is connected, as far as the host knows.
    virtual bool Connected() const = 0;
    // Returns false if they cannot be read.
    virtual bool ReadSettings(serial::Settings& settings) const = 0;
};

// Creates a pseudo-terminal. Returns null, with one line in `problem`, on failure.
std::unique_ptr<LineEnd> MakePseudoTerminal(std::string& problem);

// Opens a serial device at 460800 baud, 8N1, raw. Returns null, with one line in `problem`, on
// failure. If the device disappears later, tries to open it again; `report` gets both events.
std::unique_ptr<LineEnd> OpenDevice(const std::string& path, LineEnd::StatusHandler report,
                                    std::string& problem);

}  // namespace dvrsim
