#include "unit/line/frame_monitor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "control/words.h"
#include "tests/support/cases.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::Direction;
using enum unit::Direction;

class Monitored {
  public:
    void Take(std::chrono::microseconds time, std::span<const std::uint8_t> bytes,
              Direction direction = kToUnit) {
        const std::string start = direction == kToUnit ? "to unit  " : "to DVR  ";
        for (const unit::LineEntry& entry : monitor_.Take(time, direction, bytes)) {
            EXPECT_TRUE(entry.Text().starts_with(start)) << entry.Text();
            texts += (texts.empty() ? "" : " / ") + entry.Text().substr(start.size());
        }
    }

    std::string texts;

  private:
    unit::LineMonitor monitor_;
};

std::vector<std::uint8_t> Bytes(std::string hex) {
    std::erase_if(hex, [](char character) { return character == ' ' || character == '\n'; });
    return control::ReadBytes(hex).value();
}

TEST(LineMonitor, ShowsFramesDamageAndStrayBytesForAnyChunks) {
    const auto cases = CasesFrom(LINE_CASES "/frame-monitor.txt");
    EXPECT_EQ(cases.size(), 17U);
    for (const auto& [input, texts] : cases) {
        SCOPED_TRACE(input);
        const Direction direction = input.starts_with("to DVR") ? kToDvr : kToUnit;
        const std::vector<std::uint8_t> bytes = Bytes(input.substr(std::strlen("to unit")));
        for (std::size_t split = 0; split <= bytes.size() && !HasFailure(); ++split) {
            Monitored line;
            line.Take(10ms, std::span(bytes).first(split), direction);
            line.Take(20ms, std::span(bytes).subspan(split), direction);
            EXPECT_EQ(line.texts, texts);
        }
    }
}

TEST(LineMonitor, EndsStrayRunsAtAGap) {
    Monitored line;
    line.Take(0ms, Bytes("0102"));
    line.Take(49ms, Bytes("03"));
    line.Take(98ms, Bytes("05"), kToDvr);
    EXPECT_EQ(line.texts, "");
    line.Take(99ms, Bytes("04"));
    EXPECT_EQ(line.texts, "3 stray bytes  01 02 03");
    line.Take(20s, Bytes("A55A80 0010 0000 018F"));
    EXPECT_TRUE(line.texts.ends_with(" / 1 stray byte  04 / IND  DVR_RunningState  -  ok"));
    // An endless run of stray bytes is split.
    Monitored endless;
    for (int chunk = 0; chunk < 100; ++chunk)
        endless.Take(1ms, std::vector<std::uint8_t>(100, 7));
    EXPECT_EQ(std::ranges::count(endless.texts, '/'), 8);
    EXPECT_TRUE(endless.texts.starts_with("1024 stray bytes"));
}

}  // namespace
}  // namespace tests
