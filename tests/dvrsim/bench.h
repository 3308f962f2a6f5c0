#pragma once

#include <stdlib.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "dvrsim/dvr.h"

namespace dvrsim {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using Bytes = std::vector<std::uint8_t>;

struct Sent {
    microseconds time{};
    std::uint8_t type = 0;
    std::uint16_t code = 0;
    Bytes payload;

    bool operator==(const Sent&) const = default;
};

// A host whose time stands still until it is moved by hand.
class HandDrivenHost final : public Host {
  public:
    microseconds Now() const override { return now_; }
    std::uint64_t After(microseconds delay, std::function<void()> action) override {
        due_.emplace(std::make_pair(now_ + delay, ++last_id_), std::move(action));
        return last_id_;
    }
    void Cancel(std::uint64_t id) override {
        std::erase_if(due_, [id](const auto& entry) { return entry.first.second == id; });
    }
    void Transmit(std::span<const std::uint8_t> bytes) override {
        // Read by fixed offsets, apart from the decoder under test.
        const std::size_t end = bytes.size() - 2;
        const auto sum = std::accumulate(bytes.begin(), bytes.begin() + end, 0U) & 0xFFFFU;
        well_formed_ = well_formed_ && bytes[0] == 0xA5 && bytes[1] == 0x5A &&
                       bytes[5] * 256U + bytes[6] == bytes.size() - 9 &&
                       bytes[end] * 256U + bytes[end + 1] == sum;
        sent.push_back({now_,
                        bytes[2],
                        static_cast<std::uint16_t>(bytes[3] * 256U + bytes[4]),
                        {bytes.begin() + 7, bytes.begin() + end}});
    }

    void Run(microseconds duration) {
        const microseconds until = now_ + duration;
        while (!due_.empty() && due_.begin()->first.first <= until) {
            auto entry = due_.extract(due_.begin());
            now_ = entry.key().first;
            entry.mapped()();
        }
        now_ = until;
    }
    bool Idle() const { return due_.empty(); }
    bool WellFormed() const { return well_formed_; }

    std::vector<Sent> sent;

  private:
    microseconds now_{};
    std::uint64_t last_id_ = 0;
    std::map<std::pair<microseconds, std::uint64_t>, std::function<void()>> due_;
    bool well_formed_ = true;
};

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "dvrsim-XXXXXX").string();
        path = mkdtemp(name.data());
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path path;
};

inline Bytes Request(std::uint16_t code, std::uint8_t payload = 0) {
    Bytes bytes{0xA5,
                0x5A,
                0x10,
                static_cast<std::uint8_t>(code >> 8U),
                static_cast<std::uint8_t>(code & 0xFFU),
                0,
                1,
                payload};
    const auto sum = std::accumulate(bytes.begin(), bytes.end(), 0U);
    bytes.push_back(static_cast<std::uint8_t>(sum >> 8U));
    bytes.push_back(static_cast<std::uint8_t>(sum & 0xFFU));
    return bytes;
}

// A DVR on a host, with a card folder at hand.
struct Bench {
    explicit Bench(Options options = {}) : dvr(host, std::move(options)) {}

    void BootToNormal() {
        dvr.PowerOn();
        host.Run(milliseconds(5000));
    }
    // What the DVR sends within the duration.
    std::vector<Sent> During(microseconds duration) {
        host.sent.clear();
        host.Run(duration);
        return host.sent;
    }
    std::vector<Sent> Only(std::uint8_t type, std::uint16_t code) const {
        std::vector<Sent> found = host.sent;
        std::erase_if(found, [=](const Sent& s) { return s.type != type || s.code != code; });
        return found;
    }

    TemporaryFolder card;
    HandDrivenHost host;
    Dvr dvr;
};

}  // namespace dvrsim
