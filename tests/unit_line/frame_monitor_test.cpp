#include "unit/line/frame_monitor.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "control/words.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::Direction;
using enum unit::Direction;

// Bytes of a direction and their texts, a line each.
struct MonitorCase {
    const char* bytes;
    const char* texts;
    Direction direction = kToUnit;
};

const MonitorCase kMonitorCases[] = {
    {"A55A 80 002E 0012 39 31342E30392E30312E56312E30322E3033 0559",
     "IND  FW_Upgrade_Version  57 '14.09.01.V1.02.03'  ok"},
    {"A55A 80 002E 0001 39 01E7", "IND  FW_Upgrade_Version  57  ok"},
    {"A55A 20 8010 0001 02 01B2", "ACK  DVR_RunningState query  2 normal  ok"},
    {"A55A 20 8010 0001 09 01B9", "ACK  DVR_RunningState query  9 unknown  ok"},
    {"A55A 80 0026 0003 01005A 0203", "IND  StorageCardStatus  1 plug-in 90%  ok"},
    {"A55A 80 0026 0002 015A 0202", "IND  StorageCardStatus  1 plug-in 90%  ok"},
    {"A55A 80 0026 0001 00 01A6", "IND  StorageCardStatus  0 plug-out  ok"},
    {"A55A 20 8011 0001 02 01B3", "ACK  DVR_Mode query  2 play  ok"},
    {"A55A 80 0022 0008 3100303132333435 0309", "IND  Video_Record  recording '012345'  ok"},
    {"A55A 80 0017 0002 C0DE 0336", "IND  Play_DeleteFile  C0 DE  ok"},
    {"A55A 10 001C 0001 00 012C", "REQ  System_Reboot  00  ok", kToDvr},
    {"A55A 10 0010 0000 011F", "REQ  DVR_RunningState  -  ok", kToDvr},
    {"A55A 44 0FFF 0000 0251", "0x44  0x0FFF  -  ok"},
    // Damaged frames are shown; the next frame is found where the program finds it.
    {"A55A 80 002E 0001 38 01E7  A55A 80 002E 0001 39 01E7",
     "IND  FW_Upgrade_Version  56  checksum bad: 01E7, must be 01E6\n"
     "IND  FW_Upgrade_Version  57  ok"},
    {"A55A 80 002E 0041  A55A 80 002E 0001 39 01E7",
     "IND  FW_Upgrade_Version  length 65 is impossible\n"
     "IND  FW_Upgrade_Version  57  ok"},
    // A byte is lost: the frame takes the first byte of the next frame as its own.
    {"A55A 80 002E 0001 39 01 A55A 80 002E 0001 39 01E7 00 A55A 80 002E 0001 39 01E7",
     "IND  FW_Upgrade_Version  57  checksum bad: 01A5, must be 01E7\n"
     "10 stray bytes  5A 80 00 2E 00 01 39 01 E7 00\n"
     "IND  FW_Upgrade_Version  57  ok"},
    {"00 A5 A5 5A 80 0010 0000 018F", "2 stray bytes  00 A5\nIND  DVR_RunningState  -  ok"},
};

class Monitored {
  public:
    void Take(std::chrono::microseconds time, std::string hex, Direction direction = kToUnit) {
        std::erase(hex, ' ');
        Take(time, control::ReadBytes(hex).value(), direction);
    }
    void Take(std::chrono::microseconds time, std::span<const std::uint8_t> bytes,
              Direction direction = kToUnit) {
        const std::string start = direction == kToUnit ? "to unit  " : "to DVR  ";
        for (const unit::LineEntry& entry : monitor_.Take(time, direction, bytes)) {
            EXPECT_TRUE(entry.Text().starts_with(start)) << entry.Text();
            texts += (texts.empty() ? "" : "\n") + entry.Text().substr(start.size());
        }
    }

    std::string texts;

  private:
    unit::LineMonitor monitor_;
};

TEST(LineMonitor, ShowsFramesDamageAndStrayBytesForAnyChunks) {
    for (const MonitorCase& c : kMonitorCases) {
        SCOPED_TRACE(c.bytes);
        std::string hex = c.bytes;
        std::erase(hex, ' ');
        for (std::size_t split = 0; split <= hex.size() && !HasFailure(); split += 2) {
            Monitored line;
            line.Take(10ms, hex.substr(0, split), c.direction);
            line.Take(20ms, hex.substr(split), c.direction);
            EXPECT_EQ(line.texts, c.texts);
        }
    }
}

TEST(LineMonitor, EndsStrayRunsAtAGap) {
    Monitored line;
    line.Take(0ms, "0102");
    line.Take(49ms, "03");
    line.Take(98ms, "05", kToDvr);
    EXPECT_EQ(line.texts, "");
    line.Take(99ms, "04");
    EXPECT_EQ(line.texts, "3 stray bytes  01 02 03");
    line.Take(20s, "A55A80 0010 0000 018F");
    EXPECT_TRUE(line.texts.ends_with("\n1 stray byte  04\nIND  DVR_RunningState  -  ok"));
    // An endless run of stray bytes is split.
    Monitored endless;
    for (int chunk = 0; chunk < 100; ++chunk)
        endless.Take(1ms, std::vector<std::uint8_t>(100, 7));
    EXPECT_EQ(std::ranges::count(endless.texts, '\n'), 8);
    EXPECT_TRUE(endless.texts.starts_with("1024 stray bytes"));
}

}  // namespace
}  // namespace tests
