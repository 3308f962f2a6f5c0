#pragma once

#include <gtest/gtest.h>

#include <map>
#include <numeric>

#include "dvrsim/card_folders.h"
#include "dvrsim/dvr.h"

namespace dvrsim {

using namespace std::chrono_literals;
using std::chrono::microseconds;
using Bytes = std::vector<std::uint8_t>;

struct Sent {
    microseconds time{};
    unsigned type = 0;
    unsigned code = 0;
    Bytes payload;

    std::string Text(std::size_t from = 0) const { return {payload.begin() + from, payload.end()}; }
    bool operator==(const Sent&) const = default;
};

// A host whose time stands still until it is moved by hand.
class HandDrivenHost final : public Host {
  public:
    ~HandDrivenHost() override { EXPECT_TRUE(Idle()) << "a DVR left something behind"; }

    microseconds Now() const override { return now_; }
    std::uint64_t After(microseconds delay, std::function<void()> action) override {
        due_.emplace(std::pair(now_ + delay, ++last_id_), std::move(action));
        return last_id_;
    }
    void Cancel(std::uint64_t id) override {
        std::erase_if(due_, [id](const auto& entry) { return entry.first.second == id; });
    }
    void Transmit(std::span<const std::uint8_t> bytes) override {
        // Read by fixed offsets, apart from the decoder under test.
        const std::size_t end = bytes.size() - 2;
        const auto sum = std::accumulate(bytes.begin(), bytes.begin() + end, 0U) & 0xFFFFU;
        EXPECT_TRUE(bytes[0] == 0xA5 && bytes[1] == 0x5A);
        EXPECT_EQ(bytes[5] * 256U + bytes[6], bytes.size() - 9);
        EXPECT_EQ(bytes[end] * 256U + bytes[end + 1], sum);
        sent.push_back(
            {now_, bytes[2], bytes[3] * 256U + bytes[4], {bytes.begin() + 7, bytes.begin() + end}});
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

    std::vector<Sent> sent;

  private:
    microseconds now_{};
    std::uint64_t last_id_ = 0;
    std::map<std::pair<microseconds, std::uint64_t>, std::function<void()>> due_;
};

inline Bytes Request(unsigned code, std::uint8_t payload = 0) {
    const auto low = [](unsigned word) { return static_cast<std::uint8_t>(word & 0xFFU); };
    Bytes bytes{0xA5, 0x5A, 0x10, low(code >> 8U), low(code), 0, 1, payload};
    const auto sum = std::accumulate(bytes.begin(), bytes.end(), 0U);
    bytes.insert(bytes.end(), {low(sum >> 8U), low(sum)});
    return bytes;
}

// A DVR on a host, with a card folder at hand.
struct Bench {
    explicit Bench(Options options = {}) : dvr(host, std::move(options)) {}

    void BootToNormal() {
        dvr.PowerOn();
        host.Run(5s);
    }
    // What the DVR sends within the duration: all of it, or that alone.
    std::vector<Sent> During(microseconds duration) {
        host.sent.clear();
        host.Run(duration);
        return host.sent;
    }
    std::vector<Sent> During(microseconds duration, unsigned type, unsigned code) {
        During(duration);
        return Only(type, code);
    }
    // The answers that come within the time a device takes for one.
    std::vector<Sent> Ask(unsigned code, std::uint8_t payload = 0) {
        dvr.Receive(Request(code, payload));
        return During(15ms, 0x20, code);
    }
    std::string AskVersion() {
        const auto answers = Ask(0x802E);
        return answers.empty() ? "" : answers[0].Text();
    }
    std::vector<Sent> Only(unsigned type, unsigned code) const {
        std::vector<Sent> found = host.sent;
        std::erase_if(found, [=](const Sent& s) { return s.type != type || s.code != code; });
        return found;
    }

    TemporaryCard card{std::nullopt};
    HandDrivenHost host;
    Dvr dvr;
};

}  // namespace dvrsim
