#include "unit/recording/recording.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "tests/support/cases.h"
#include "tests/support/process.h"
#include "unit/events/event_queue.h"
#include "unit/events/event_text.h"
#include "unit/recording/recording_file.h"
#include "unit/recording/screen_comparison.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;
using unit::RecordingFile;
using enum unit::Direction;

std::string TextOf(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

// A recording with every kind of event.
std::string EveryKind() {
    return TextOf(RECORDINGS "/every-kind.recording");
}
std::string Header() {
    const std::string all = EveryKind();
    return all.substr(0, all.find("begin\n") + 6);
}

class Recordings : public Process {
  protected:
    std::optional<unit::Recording> Read(const std::string& text) {
        std::ofstream(Path("file"), std::ios::binary) << text;
        problem_.clear();
        return unit::ReadRecording(Path("file"), problem_);
    }

    // Without the name of the file.
    std::string Problem(const std::string& text) {
        EXPECT_FALSE(Read(text)) << text.substr(0, 200);
        const std::string start = Path("file") + ":";
        EXPECT_TRUE(problem_.starts_with(start)) << problem_;
        return problem_.substr(std::min(problem_.size(), start.size()));
    }

    // Writes a recording of these events; returns what the file said when it ended early.
    std::string Write(const std::vector<unit::TimedEvent>& events) {
        std::string said;
        {
            RecordingFile file(unit::WhenFull::kWait,
                               [&](const std::string& line) { said = line; });
            unit::RecordingHeader header;
            header.program = "1.0";
            EXPECT_TRUE(file.Open(Path("file"), header, problem_)) << problem_;
            for (const unit::TimedEvent& timed : events)
                file.Put(timed.time, timed.event);
        }
        return said;
    }

    std::string problem_;
};

TEST_F(Recordings, EachKindOfEventIsReadAsItIsWritten) {
    const auto recording = Read(Header() + "# a comment\n" + EveryKind().substr(Header().size()));
    ASSERT_TRUE(recording) << problem_;
    EXPECT_TRUE(recording->complete);
    std::string written = unit::HeaderText(recording->header);
    for (const unit::RecordedEvent& recorded : recording->events)
        written += unit::TimeText(recorded.time) + " " + unit::EventLine(recorded.event) + "\n";
    EXPECT_EQ(written, EveryKind());
    EXPECT_EQ(recording->events.front().line, 10);
}

TEST_F(Recordings, ALastLineWithoutEndIsIgnored) {
    const auto recording = Read(Header() + "20.500000 finger down 1 1\n20.600000 finger up 1 1");
    ASSERT_TRUE(recording) << problem_;
    EXPECT_FALSE(recording->complete);
    EXPECT_EQ(recording->events.size(), 1U);
}

// As when a slow host shows a screen in two parts.
TEST_F(Recordings, AScreenThatComesBackInAFreeRunIsNoDifference) {
    std::string text = Header();
    const std::size_t mode = text.find("mode ");
    text.replace(mode, text.find('\n', mode) - mode, "mode free speed 1");
    const auto recording = Read(text +
                                "21.000000 screen 0000000000000001 A\n"
                                "22.000000 screen 0000000000000002 B\n29.000000 end\n");
    ASSERT_TRUE(recording) << problem_;
    for (const bool comes_back : {true, false}) {
        unit::Lag lag;
        unit::ScreenComparison screens(*recording, lag);
        screens.Compare(21s, {1, {"A"}});
        screens.Compare(22s, {2, {"B"}});
        screens.Compare(23s, {3, {"B", "C"}});
        if (comes_back)
            screens.Compare(23s + 100ms, {2, {"B"}});
        screens.Check(28s);
        EXPECT_EQ(screens.difference().has_value(), !comes_back);
    }
}

TEST_F(Recordings, OtherFilesAndIncompleteHeadersAreRefused) {
    auto cases = CasesFrom(RECORDINGS "/refused-headers.txt");
    ASSERT_EQ(cases.size(), 8U);
    const std::string is_no_recording = cases[2].second;
    cases.emplace_back("\x89PNG\r\n\x1a\n", is_no_recording);
    for (const auto& [text, problem] : cases)
        EXPECT_EQ(Problem(text), problem) << text;
}

TEST_F(Recordings, DamagedEventsAreRefused) {
    auto cases = CasesFrom(RECORDINGS "/refused-events.txt");
    EXPECT_EQ(cases.size(), 21U);
    std::string comments;
    while (comments.size() < unit::kMaxRecordingBytes)
        comments += "#" + std::string(16'000, '.') + "\n";
    cases.insert(cases.end(),
                 {{"20.000000 \x1B[2J\xFF\n", "'?[2J?' is not allowed"},
                  {std::string(20'000, 'x'),
                   "the line is longer than 16384 bytes, the limit for a line of a recording"},
                  {comments, "the recording is longer than 67108864 bytes"}});
    for (const auto& [text, problem] : cases) {
        const std::string found = Problem(Header() + text);
        EXPECT_TRUE(found.substr(found.find(": ") + 2).starts_with(problem)) << found;
    }
    // A terabyte of zero bytes after the header.
    Read(Header());
    ASSERT_EQ(truncate(Path("file").c_str(), off_t{1} << 40), 0);
    EXPECT_FALSE(unit::ReadRecording(Path("file"), problem_));
    EXPECT_TRUE(problem_.starts_with(Path("file") + ":9: the line is longer than 16384 bytes"));
}

TEST_F(Recordings, BytesThatFollowOneAnotherCloselyAreOneEvent) {
    using Bytes = std::vector<std::uint8_t>;
    const Bytes many(200, 1);
    std::string many_text;
    for (int count = 0; count < 200; ++count)
        many_text += " 01";
    // 460800 baud: a byte takes 21.7013888... us; rounded up, the Nth of a run that began at 0 has
    // passed at 22, 44, 66, 87, 109 us.
    const struct {
        unit::Direction direction;
        std::vector<std::pair<microseconds, Bytes>> arrivals;
        std::string lines;
    } cases[] = {
        {kToUnit,
         {{22us, {0xA5}}, {44us, {0x5A}}, {66us, {0x80}}, {87us, {0}}, {109us, {0x10}}},
         "0.000022 line to-unit wire A5 5A 80 00 10\n"},
        // One microsecond off the wire's pace.
        {kToUnit,
         {{22us, {0xA5}}, {44us, {0x5A}}, {67us, {0x80}}},
         "0.000022 line to-unit A5 +22 5A +23 80\n"},
        {kToUnit,
         {{5us, {1, 2}}, {5us, {3}}, {1405us, {4}}, {3405us, {5}}},
         "0.000005 line to-unit 01 02 03 +1400 04 +2000 05\n"},
        // A longer pause, more than 256 bytes, and bytes that the program sends.
        {kToUnit,
         {{0us, {1}}, {2001us, {2}}},
         "0.000000 line to-unit 01\n0.002001 line to-unit 02\n"},
        {kToUnit,
         {{0us, many}, {1us, many}},
         "0.000000 line to-unit" + many_text + "\n0.000001 line to-unit" + many_text + "\n"},
        {kToDvr, {{0us, {1}}, {0us, {2}}}, "0.000000 line to-dvr 01\n0.000000 line to-dvr 02\n"},
    };
    for (const auto& c : cases) {
        std::vector<unit::TimedEvent> events;
        std::vector<std::pair<microseconds, std::uint8_t>> expected;
        for (const auto& [time, bytes] : c.arrivals) {
            events.push_back({time, unit::LineBytes{c.direction, bytes}});
            for (const std::uint8_t byte : bytes)
                expected.emplace_back(time, byte);
        }
        Write(events);
        const std::string text = TextOf(Path("file"));
        EXPECT_EQ(text.substr(text.find("begin\n") + 6), c.lines);
        // The reader restores every byte with its time.
        std::vector<std::pair<microseconds, std::uint8_t>> read;
        const auto recording = unit::ReadRecording(Path("file"), problem_);
        ASSERT_TRUE(recording) << problem_;
        for (const unit::RecordedEvent& recorded : recording->events)
            std::get<unit::LineBytes>(recorded.event).ForEachChunk([&](auto after, auto bytes) {
                for (const std::uint8_t byte : bytes)
                    read.emplace_back(recorded.time + after, byte);
            });
        EXPECT_EQ(read, expected);
    }
}

TEST_F(Recordings, ATextWithALineEndStaysOnItsLine) {
    EXPECT_EQ(Write({{0us, unit::ScreenSettled{1, {"A\nB"}}}}), "");
    const auto recording = unit::ReadRecording(Path("file"), problem_);
    ASSERT_TRUE(recording) << problem_;
    const auto& screen = std::get<unit::ScreenSettled>(recording->events.back().event);
    EXPECT_EQ(screen.texts, std::vector<std::string>{"A B"});
}

TEST(EventQueue, CountsWhatItDropsOrWaitsWhenItIsFull) {
    const auto fill = [](unit::EventQueue& queue) {
        for (int count = 0; count < 65536; ++count)
            queue.Put(0us, unit::DvrReset{});
    };
    unit::EventQueue dropping(unit::WhenFull::kDrop);
    fill(dropping);
    dropping.Put(0us, unit::DvrReset{});
    dropping.Close();
    const auto events = dropping.Take(0ms).events;
    EXPECT_EQ(std::get<unit::EventsLost>(events.back().event).count, 1U);

    unit::EventQueue waiting(unit::WhenFull::kWait);
    fill(waiting);
    std::atomic<bool> put{false};
    std::thread putter([&] {
        waiting.Put(0us, unit::DvrReset{});
        put = true;
    });
    std::this_thread::sleep_for(10ms);
    EXPECT_FALSE(put);
    waiting.Take(0ms);
    putter.join();
}

TEST_F(Recordings, EndAtTheirLimits) {
    const unit::TimedEvent long_event{0us, unit::FaultApplied{std::string(16'000, 'x')}};
    EXPECT_EQ(Write(std::vector(unit::kMaxRecordingBytes / 16'000, long_event)),
              Path("file") + ": the recording ends here, at its limit of 67108864 bytes");
    const auto size = std::filesystem::file_size(Path("file"));
    EXPECT_LE(size, unit::kMaxRecordingBytes);
    EXPECT_GT(size, unit::kMaxRecordingBytes - 32'000);

    std::string events = Header();
    for (int count = 0; count < 2'000'001; ++count)
        events += "20.000000 close\n";
    EXPECT_EQ(Problem(events), "2000009: the recording has more than 2000000 events");
}

}  // namespace
}  // namespace tests
