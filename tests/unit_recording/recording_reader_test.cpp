#include "unit/recording/recording_reader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/support/process.h"
#include "unit/recording/moment_text.h"

namespace tests {
namespace {

constexpr char kHeader[] =
    "tolvane recording 1\n"
    "program 1.0.0.0\n"
    "mode simulated preempt\n"
    "seed 3\n"
    "start 20.000000\n"
    "supply line 1 battery 1 percent 100\n"
    "missing-bitmap 203\n"
    "begin\n";

class ReadRecording : public Process {
  protected:
    std::optional<unit::Recording> Read(const std::string& text) {
        std::ofstream(Path("file"), std::ios::binary) << text;
        problem_.clear();
        return unit::ReadRecording(Path("file"), problem_);
    }

    // Behind the name of the file.
    std::string Problem(const std::string& text) {
        EXPECT_FALSE(Read(text)) << text.substr(0, 200);
        const std::string start = Path("file") + ":";
        EXPECT_TRUE(problem_.starts_with(start)) << problem_;
        return problem_.substr(std::min(problem_.size(), start.size()));
    }

    std::string problem_;
};

TEST_F(ReadRecording, EveryKindOfLineIsReadAsItIsWritten) {
    const std::string events =
        "20.000000 driver COM9: open -> 55\n"
        "20.000000 driver DVR1: control 0x0881 02 -> 0\n"
        "20.000001 driver DVR1: close\n"
        "21.000000 line to-unit wire A5 5A\n"
        "21.000044 line to-dvr A5 5A\n"
        "22.000000 finger down 799 479\n"
        "22.500000 supply line 0 battery 8 percent 255\n"
        "23.000000 card in \"/tmp/a card\"\n"
        "23.000000 card out\n"
        "23.000000 dvr reset\n"
        "23.000000 request _Suspend_\n"
        "23.000000 suspend\n"
        "23.000000 wake\n"
        "23.000000 broadcast _Acknowledge_ 0x1 0xFFFFFFFF\n"
        "23.000000 broadcast 0x0401 0x0 0x2\n"
        "23.000000 screen 00112233445566ff \"Update Percent : 5%\" OK\n"
        "23.000000 unseen since 22.000000\n"
        "23.000000 hal refuses\n"
        "23.000000 battery-driver works\n"
        "23.000000 clock forward 3600.000000\n"
        "23.000000 line-fault \"dropped 3 bytes\"\n"
        "23.000000 failed-call CreateFileW 3 -> 5\n"
        "23.000000 lost 17\n"
        "24.000000 close\n"
        "24.100000 end\n";
    const auto recording = Read(kHeader + ("# a remark\n" + events));
    ASSERT_TRUE(recording) << problem_;
    EXPECT_TRUE(recording->complete);
    EXPECT_EQ(unit::HeaderText(recording->header), kHeader);
    std::string written;
    for (const unit::RecordedMoment& recorded : recording->moments)
        written += unit::TimeText(recorded.time) + " " + unit::MomentText(recorded.moment) + "\n";
    EXPECT_EQ(written, events);
    EXPECT_EQ(recording->moments.front().line, 10);
}

TEST_F(ReadRecording, OneCutOffEndsWithItsLastWholeLine) {
    const auto recording =
        Read(std::string(kHeader) + "20.500000 finger down 1 1\n20.600000 finger up 1 1");
    ASSERT_TRUE(recording) << problem_;
    EXPECT_FALSE(recording->complete);
    EXPECT_EQ(recording->moments.size(), 1U);
}

std::string NotAllowed(const char* word, const std::string& after, const std::string& allowed) {
    return std::string("'") + word + "' is not allowed" +
           (after.empty() ? "" : " after '" + after + "'") + "; allowed is " + allowed;
}

TEST_F(ReadRecording, WhatIsNoRecordingOrHasNoWholeHeaderIsRefused) {
    const std::string no_recording =
        "1: this is no recording; one begins with 'tolvane recording 1'";
    const std::string start = "tolvane recording 1\n";
    const std::pair<std::string, std::string> cases[] = {
        {"tolvane recording 2\n", "1: a recording of version 2; this tolvane reads version 1"},
        {"tolvane recording 0\n", no_recording},
        {"\x89PNG\r\n\x1a\n", no_recording},
        {"", "1: the recording ends before its first event; it cannot be replayed"},
        {start + "begin\n", "2: the header lacks the line 'program'"},
        {start + "seed 1\nseed 2\n", "3: 'seed' stands here a second time"},
        {start + "seed -1\n",
         "2: " + NotAllowed("-1", "seed", "a whole number from 0 to 9223372036854775807")},
        {start + "mode free speed 0\n",
         "2: " + NotAllowed("0", "mode free speed", "a number from 0.1 to 1000")},
        {start + "volume 11\n",
         "2: " + NotAllowed("volume", "",
                            "program, mode, seed, start, supply, missing-bitmap or begin")},
    };
    for (const auto& [text, problem] : cases)
        EXPECT_EQ(Problem(text), problem) << text;
}

TEST_F(ReadRecording, DamagedEventsAreRefused) {
    const std::string byte = "a byte as two hexadecimal digits";
    const std::string gap = byte + ", or + and the microseconds to the next byte";
    const std::pair<std::string, std::string> cases[] = {
        {"20 wake\n",
         NotAllowed("20", "", "a time in seconds with six decimals, such as 21.704512")},
        {"20.000000 finger up 800 1\n",
         NotAllowed("800", "finger up", "a whole number from 0 to 799")},
        {"20.000000 finger up 1 1 1\n", NotAllowed("1", "finger up 1 1", "nothing more")},
        {"20.000000 line to-dvr A5 +10\n", "something is missing; allowed is " + byte},
        {"20.000000 line to-dvr wire\n", "something is missing; allowed is " + byte},
        {"20.000000 line to-dvr +10 A5\n", NotAllowed("+10", "", byte)},
        {"20.000000 line to-dvr A5 +1 +2 5A\n", NotAllowed("+2", "", byte)},
        {"20.000000 line to-dvr A5 5\n", NotAllowed("5", "", gap)},
        {"20.000000 line to-dvr A5 5AA\n", NotAllowed("5AA", "", gap)},
        {"20.000000 line to-dvr A5 G0\n", NotAllowed("G0", "", gap)},
        {"20.000000 line to-dvr A5 +-1 00\n", NotAllowed("+-1", "", gap)},
        {"20.000000 line to-dvr A5 +9999999999 00\n", NotAllowed("+9999999999", "", gap)},
        {"20.000000 line to-dvr wire A5 +1 00\n", NotAllowed("+1", "", byte)},
        {"20.000000 driver DVR1: control 0x0881 2 -> 0\n",
         NotAllowed("2", "driver DVR1: control 0x0881", byte + ", or ->")},
        {"20.000000 screen 5f3a\n", NotAllowed("5f3a", "screen", "16 hexadecimal digits")},
        {"20.000000 failed-call Open 1 -> 5\n",
         NotAllowed("Open", "failed-call",
                    "the name of a call that can fail, such as CreateFileW")},
        {"20.000000 \x1B[2J\xFF\n",
         NotAllowed(
             "?[2J?", "",
             "line, finger, supply, card, dvr, request, driver, suspend, wake, "
             "broadcast, screen, unseen, hal, battery-driver, clock, line-fault, failed-call, "
             "close, lost or end")},
        {"19.999999 wake\n", "the time 19.999999 is earlier than that of the line before"},
        {"20.000000 screen 0123456789abcdef \"Update\n", "a quote \" is not closed"},
        {"20.000000 end\n20.000000 wake\n",
         "something follows after 'end'; allowed is nothing more"},
        {std::string(20'000, 'x'),
         "the line is longer than 16384 bytes; no line of a recording is"},
        {std::string(unit::kLongestRecording, '\n'),
         "the recording is longer than 67108864 bytes; none is"},
    };
    for (const auto& [text, problem] : cases) {
        const std::string found = Problem(kHeader + text);
        EXPECT_EQ(found.substr(found.find(": ") + 2), problem);
    }
    // A file of nothing but holes behind its header, each of them a byte 0.
    Read(kHeader);
    ASSERT_EQ(truncate(Path("file").c_str(), off_t{1} << 40), 0);
    EXPECT_FALSE(unit::ReadRecording(Path("file"), problem_));
    EXPECT_EQ(problem_,
              Path("file") + ":9: the line is longer than 16384 bytes; no line of a recording is");
}

}  // namespace
}  // namespace tests
