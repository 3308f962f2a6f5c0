#include "unit/line/frame_monitor.h"

#include <gtest/gtest.h>

#include "control/values.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::Direction;
using enum unit::Direction;

struct MonitorCase {
    Direction direction;
    const char* bytes;
    std::vector<std::string> texts;
};

const MonitorCase kMonitorCases[] = {
    {kToUnit,
     "A55A 80 002E 0012 39 31342E30392E30312E56312E30322E3033 0559",
     {"to unit  IND  FW_Upgrade_Version  57 '14.09.01.V1.02.03'  ok"}},
    {kToUnit, "A55A 80 002E 0001 39 01E7", {"to unit  IND  FW_Upgrade_Version  57  ok"}},
    {kToUnit, "A55A 20 8010 0001 02 01B2", {"to unit  ACK  DVR_RunningState query  2 normal  ok"}},
    {kToUnit, "A55A 20 8010 0001 09 01B9", {"to unit  ACK  DVR_RunningState query  9 unknown  ok"}},
    {kToUnit,
     "A55A 80 0026 0003 01005A 0203",
     {"to unit  IND  StorageCardStatus  1 plug-in 90%  ok"}},
    {kToUnit,
     "A55A 80 0026 0002 015A 0202",
     {"to unit  IND  StorageCardStatus  1 plug-in 90%  ok"}},
    {kToUnit, "A55A 80 0026 0001 00 01A6", {"to unit  IND  StorageCardStatus  0 plug-out  ok"}},
    {kToUnit, "A55A 20 8011 0001 02 01B3", {"to unit  ACK  DVR_Mode query  2 play  ok"}},
    {kToUnit,
     "A55A 80 0022 0008 3100303132333435 0309",
     {"to unit  IND  Video_Record  recording '012345'  ok"}},
    {kToUnit, "A55A 80 0017 0002 C0DE 0336", {"to unit  IND  Play_DeleteFile  C0 DE  ok"}},
    {kToDvr, "A55A 10 001C 0001 00 012C", {"to DVR  REQ  System_Reboot  00  ok"}},
    {kToDvr, "A55A 10 0010 0000 011F", {"to DVR  REQ  DVR_RunningState  -  ok"}},
    {kToUnit, "A55A 44 0FFF 0000 0251", {"to unit  0x44  0x0FFF  -  ok"}},
    // Damage is shown, and what follows it is found where the program finds it.
    {kToUnit,
     "A55A 80 002E 0001 38 01E7  A55A 80 002E 0001 39 01E7",
     {"to unit  IND  FW_Upgrade_Version  56  checksum bad: 01E7, must be 01E6",
      "to unit  IND  FW_Upgrade_Version  57  ok"}},
    {kToUnit,
     "A55A 80 002E 0041  A55A 80 002E 0001 39 01E7",
     {"to unit  IND  FW_Upgrade_Version  length 65 is impossible",
      "to unit  IND  FW_Upgrade_Version  57  ok"}},
    // A byte is lost: the frame takes the next one's first byte for its own.
    {kToUnit,
     "A55A 80 002E 0001 39 01 A55A 80 002E 0001 39 01E7 00 A55A 80 002E 0001 39 01E7",
     {"to unit  IND  FW_Upgrade_Version  57  checksum bad: 01A5, must be 01E7",
      "to unit  10 stray bytes  5A 80 00 2E 00 01 39 01 E7 00",
      "to unit  IND  FW_Upgrade_Version  57  ok"}},
    {kToUnit,
     "00 A5 A5 5A 80 0010 0000 018F",
     {"to unit  2 stray bytes  00 A5", "to unit  IND  DVR_RunningState  -  ok"}},
};

std::vector<std::uint8_t> Bytes(std::string hex) {
    std::erase(hex, ' ');
    return control::ReadBytes(hex).value();
}

class Monitored {
  public:
    void Take(std::chrono::microseconds time, Direction direction,
              const std::vector<std::uint8_t>& bytes) {
        for (const unit::LineEntry& entry : monitor_.Take(time, {direction, bytes}))
            texts.push_back(entry.Text());
    }

    std::vector<std::string> texts;

  private:
    unit::LineMonitor monitor_;
};

TEST(LineMonitor, ShowsFramesDamageAndStrayBytesAtEverySplit) {
    for (const MonitorCase& c : kMonitorCases) {
        SCOPED_TRACE(c.bytes);
        const std::vector<std::uint8_t> bytes = Bytes(c.bytes);
        for (std::size_t split = 0; split <= bytes.size() && !testing::Test::HasFailure();
             ++split) {
            Monitored line;
            const auto middle = bytes.begin() + static_cast<std::ptrdiff_t>(split);
            line.Take(10ms, c.direction, {bytes.begin(), middle});
            line.Take(20ms, c.direction, {middle, bytes.end()});
            EXPECT_EQ(line.texts, c.texts);
        }
    }
}

TEST(LineMonitor, EndsStrayRunsAtAGap) {
    Monitored line;
    line.Take(0ms, kToUnit, Bytes("0102"));
    line.Take(49ms, kToUnit, Bytes("03"));
    line.Take(98ms, kToDvr, Bytes("05"));
    EXPECT_TRUE(line.texts.empty());
    line.Take(99ms, kToUnit, Bytes("04"));
    EXPECT_EQ(line.texts, std::vector<std::string>{"to unit  3 stray bytes  01 02 03"});
    line.Take(20s, kToUnit, Bytes("A55A80 0010 0000 018F"));
    EXPECT_EQ(line.texts.at(1), "to unit  1 stray byte  04");
    EXPECT_EQ(line.texts.at(2), "to unit  IND  DVR_RunningState  -  ok");
    // A line that never rests is told in pieces.
    Monitored endless;
    for (int piece = 0; piece < 100; ++piece)
        endless.Take(1ms, kToUnit, std::vector<std::uint8_t>(100, 7));
    EXPECT_EQ(endless.texts.size(), 9U);
    EXPECT_TRUE(endless.texts.at(0).starts_with("to unit  1024 stray bytes"));
}

}  // namespace
}  // namespace tests
