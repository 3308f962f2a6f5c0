#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <sstream>
#include <string>

#include "control/words.h"
#include "platform/kernel/scheduler.h"
#include "tests/support/platform_fixture.h"
#include "unit/line/fault_text.h"
#include "unit/line/frame_text.h"
#include "unit/line/line_tap.h"

namespace tests {

// Frames with names: the indications of 57 percent and of a card, an acknowledgement about the
// card.
constexpr std::pair<std::string_view, std::string_view> kNamedFrames[] = {
    {"PERCENT", "A5 5A 80 00 2E 00 01 39 01 E7"},
    {"CARD", "A5 5A 80 00 26 00 03 01 00 5A 02 03"},
    {"ACK", "A5 5A 20 80 26 00 03 01 00 5A 02 23"},
};

inline std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from)) != std::string::npos;)
        text.replace(at, from.size(), to);
    return text;
}

// Bytes that passed, by microseconds since the start: "0: A5 5A / 300: PERCENT". Bytes of one time
// are one chunk.
class PassedBytes {
  public:
    void Add(std::chrono::microseconds time, std::span<const std::uint8_t> bytes) {
        if (bytes.empty())
            return;
        if (text_.empty() || time != last_)
            text_ += (text_.empty() ? "" : " / ") + std::to_string(time.count()) + ":";
        last_ = time;
        text_ += " " + unit::HexText(bytes);
    }
    std::string text() const {
        std::string text = text_;
        for (const auto& [name, bytes] : kNamedFrames)
            text = Replaced(std::move(text), bytes, name);
        return text;
    }

  private:
    std::string text_;
    std::chrono::microseconds last_{};
};

// The far end of a line, controlled by a test.
class TestLine final : public platform::device::SerialLine {
  public:
    Receiver receiver;
    std::function<void()> on_writable;
    std::function<void(std::span<const std::uint8_t>)> sent;
    std::size_t space = std::numeric_limits<std::size_t>::max();

    DWORD Open(Receiver to_port) override {
        receiver = std::move(to_port);
        return ERROR_SUCCESS;
    }
    void Close() override { receiver = nullptr; }
    DWORD ReadSettings(DCB&) override { return ERROR_SUCCESS; }
    DWORD ApplySettings(const DCB&) override { return ERROR_SUCCESS; }
    std::size_t Transmit(std::span<const std::uint8_t> bytes) override {
        const std::size_t taken = std::min(space, bytes.size());
        space -= taken;
        sent(bytes.first(taken));
        return taken;
    }
    void OnWritable(std::function<void()> call) override { on_writable = std::move(call); }
};

// A tap between a port and a test's far end, on a simulated unit.
class TappedLine {
  public:
    explicit TappedLine(const std::vector<const char*>& rules = {}) {
        far->sent = [this](std::span<const std::uint8_t> bytes) { dvr.Add(Time(), bytes); };
        Open();
        for (const char* const rule : rules)
            Add(rule);
    }
    ~TappedLine() { tap->Close(); }

    void Open() {
        tap->Open([this](std::span<const std::uint8_t> bytes) { program.Add(Time(), bytes); });
    }

    void Add(const std::string& text) const {
        std::string problem;
        const auto rule = unit::ParseFaultRule(text, problem);
        ASSERT_TRUE(rule) << problem;
        EXPECT_EQ(unit::ToText(*rule), text) << "the rule as text";
        faults->Add(*rule);
    }

    // Sends chunks from the far end or the program at their times, in the format of PassedBytes.
    void Send(unit::Direction direction, std::string chunks, bool byte_by_byte = false) {
        for (const auto& [name, bytes] : kNamedFrames)
            chunks = Replaced(std::move(chunks), name, bytes);
        std::istringstream list(chunks);
        for (std::string chunk; std::getline(list, chunk, '/');)
            platform::kernel::At(start_ + std::chrono::microseconds(std::stoi(chunk)), [=, this] {
                std::string hex = chunk.substr(chunk.find(':') + 1);
                std::erase(hex, ' ');
                const std::vector<std::uint8_t> bytes = control::ReadBytes(hex).value();
                const std::size_t step = byte_by_byte ? 1 : bytes.size();
                for (std::size_t from = 0; from < bytes.size(); from += step)
                    SendNow(direction, std::span(bytes).subspan(from, step));
            });
    }

    void RunFor(std::chrono::milliseconds time) { platform.RunFor(time); }

    Platform platform;
    PassedBytes program;  // received
    PassedBytes dvr;      // received
    PassedBytes observed_to_unit;
    PassedBytes observed_to_dvr;
    const std::shared_ptr<unit::LineFaults> faults = std::make_shared<unit::LineFaults>();
    const std::shared_ptr<TestLine> far = std::make_shared<TestLine>();
    const std::shared_ptr<unit::LineTap> tap = std::make_shared<unit::LineTap>(
        far, faults, [this](unit::Direction direction, std::span<const std::uint8_t> bytes) {
            (direction == unit::Direction::kToUnit ? observed_to_unit : observed_to_dvr)
                .Add(Time(), bytes);
        });

  private:
    std::chrono::microseconds Time() const { return platform::kernel::Now() - start_; }

    void SendNow(unit::Direction direction, std::span<const std::uint8_t> bytes) const {
        if (direction == unit::Direction::kToDvr)
            tap->Transmit(bytes);
        else if (far->receiver)
            far->receiver(bytes);
    }

    const std::chrono::microseconds start_ = platform::kernel::Now();
};

}  // namespace tests
