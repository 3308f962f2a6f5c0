#include "unit/recording/moment_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "control/words.h"
#include "platform/kernel/call_faults.h"
#include "platform/kernel/text.h"

namespace unit {
namespace {

using platform::kernel::FromUtf8;

constexpr std::int64_t kMostByte = 0xFF;
constexpr std::int64_t kMostWord = 0xFFFFFFFF;
constexpr std::int64_t kMostNumber = std::numeric_limits<std::int64_t>::max();
constexpr double kSlowest = 0.1;
constexpr double kFastest = 1000;

BYTE ReadByte(WordReader& words) {
    return static_cast<BYTE>(words.Number(0, kMostByte));
}

platform::PowerSupply ReadSupply(WordReader& words) {
    platform::PowerSupply supply;
    words.Expect("line");
    supply.ac_line_status = ReadByte(words);
    words.Expect("battery");
    supply.battery_flag = ReadByte(words);
    words.Expect("percent");
    supply.battery_life_percent = ReadByte(words);
    return supply;
}

Moment ReadLine(WordReader& words) {
    constexpr std::string_view kWays[] = {"to-unit", "to-dvr"};
    const Direction direction = words.OneOf(kWays) == 0 ? Direction::kToUnit : Direction::kToDvr;
    std::string problem;
    auto pieces = ReadPieces(words.Rest(), problem);
    if (!pieces)
        throw WrongWord(problem);
    return LineBurst{direction, std::move(*pieces)};
}

Moment ReadFinger(WordReader& words) {
    using platform::window::Touch;
    constexpr std::string_view kTouches[] = {"down", "move", "up"};
    constexpr Touch kMeaning[] = {Touch::kDown, Touch::kMove, Touch::kUp};
    const Touch touch = kMeaning[words.OneOf(kTouches)];
    const auto x = static_cast<int>(words.Number(0, platform::window::kScreenWidth - 1));
    const auto y = static_cast<int>(words.Number(0, platform::window::kScreenHeight - 1));
    return FingerMoved{touch, x, y};
}

Moment ReadSupplyChange(WordReader& words) {
    return SupplyChanged{ReadSupply(words)};
}

Moment ReadCard(WordReader& words) {
    constexpr std::string_view kMoves[] = {"in", "out"};
    if (words.OneOf(kMoves) == 1)
        return CardMoved{false, {}};
    return CardMoved{true, words.Text("the path of a folder")};
}

Moment ReadDvr(WordReader& words) {
    words.Expect("reset");
    return DvrReset{};
}

Moment ReadRequest(WordReader& words) {
    return PowerRequested{FromUtf8(words.Text("the name of an event"))};
}

Moment ReadDriver(WordReader& words) {
    using Call = DriverCalled::Call;
    constexpr std::string_view kCalls[] = {"open", "control", "close"};
    constexpr Call kMeaning[] = {Call::kOpen, Call::kControl, Call::kClose};
    DriverCalled called{
        FromUtf8(words.Text("the name of a stream driver")), Call::kOpen, 0, {}, ERROR_SUCCESS};
    called.call = kMeaning[words.OneOf(kCalls)];
    if (called.call == Call::kClose)
        return called;
    if (called.call == Call::kControl) {
        called.code = static_cast<DWORD>(words.Number(0, kMostWord));
        while (!words.Has("->")) {
            constexpr char kAllowed[] = "a byte as two hexadecimal digits, or ->";
            WordReader before = words;
            const auto bytes = control::ReadBytes(words.Text(kAllowed));
            if (!bytes || bytes->size() != 1)
                before.Refuse(kAllowed);
            called.input.push_back(std::byte{bytes->front()});
        }
    } else {
        words.Expect("->");
    }
    called.error = static_cast<DWORD>(words.Number(0, kMostWord));
    return called;
}

Moment ReadBroadcast(WordReader& words) {
    BroadcastPosted broadcast{};
    const std::string& message = words.Text("the name of a message, or its number");
    const auto number = control::ReadNumber(message);
    if (number && *number >= 0 && *number <= kMostWord)
        broadcast.message = static_cast<UINT>(*number);
    else
        broadcast.name = FromUtf8(message);
    broadcast.wparam = static_cast<WPARAM>(words.Number(0, kMostWord));
    broadcast.lparam = static_cast<LPARAM>(words.Number(0, kMostWord));
    return broadcast;
}

Moment ReadScreen(WordReader& words) {
    SettledScreen screen;
    screen.digest = words.Hexadecimal64();
    const auto texts = words.Rest();
    screen.texts.assign(texts.begin(), texts.end());
    return screen;
}

Moment ReadUnseen(WordReader& words) {
    words.Expect("since");
    return ScreenUnseen{ReadTime(words)};
}

Moment ReadHal(WordReader& words) {
    constexpr std::string_view kStates[] = {"works", "refuses"};
    return BoardFaultSwitched{BoardFaultSwitched::Fault::kHalRefuses, words.OneOf(kStates) == 1};
}

Moment ReadBatteryDriver(WordReader& words) {
    constexpr std::string_view kStates[] = {"works", "fails"};
    return BoardFaultSwitched{BoardFaultSwitched::Fault::kBatteryDriverFails,
                              words.OneOf(kStates) == 1};
}

Moment ReadClock(WordReader& words) {
    words.Expect("forward");
    return ClockJumped{ReadTime(words)};
}

Moment ReadLineFault(WordReader& words) {
    return FaultApplied{words.Text("what the fault did")};
}

Moment ReadFailedCall(WordReader& words) {
    constexpr char kAllowed[] = "the name of a call that can fail, such as CreateFileW";
    const WordReader before = words;
    CallFailed failed{words.Text(kAllowed), 0, 0};
    if (std::ranges::count(platform::kernel::FailableCallNames(), failed.call) == 0)
        before.Refuse(kAllowed);
    failed.number = static_cast<std::uint64_t>(words.Number(1, kMostNumber));
    words.Expect("->");
    failed.error = static_cast<DWORD>(words.Number(0, kMostWord));
    return failed;
}

Moment ReadLost(WordReader& words) {
    return EventsLost{static_cast<std::uint64_t>(words.Number(1, kMostNumber))};
}

struct MomentWord {
    std::string_view word;
    Moment (*read)(WordReader&);
};
constexpr MomentWord kMoments[] = {
    {"line", ReadLine},
    {"finger", ReadFinger},
    {"supply", ReadSupplyChange},
    {"card", ReadCard},
    {"dvr", ReadDvr},
    {"request", ReadRequest},
    {"driver", ReadDriver},
    {"suspend", [](WordReader&) -> Moment { return SuspendChanged{true}; }},
    {"wake", [](WordReader&) -> Moment { return SuspendChanged{false}; }},
    {"broadcast", ReadBroadcast},
    {"screen", ReadScreen},
    {"unseen", ReadUnseen},
    {"hal", ReadHal},
    {"battery-driver", ReadBatteryDriver},
    {"clock", ReadClock},
    {"line-fault", ReadLineFault},
    {"failed-call", ReadFailedCall},
    {"close", [](WordReader&) -> Moment { return ClosingBegan{}; }},
    {"lost", ReadLost},
    {"end", [](WordReader&) -> Moment { return RecordingEnded{}; }},
};

void ReadMode(WordReader& words, RecordingHeader& header) {
    using platform::kernel::Mode;
    constexpr std::string_view kModes[] = {"simulated", "free"};
    if (words.OneOf(kModes) == 0) {
        header.kernel.mode = Mode::kSimulated;
        header.kernel.preempt = words.Has("preempt");
        header.kernel.waiting_repaints = words.Has("waiting-repaints");
        return;
    }
    header.kernel.mode = Mode::kFreeRunning;
    words.Expect("speed");
    WordReader before = words;
    const std::string& speed = words.Text("a number from 0.1 to 1000");
    const char* const end = speed.data() + speed.size();
    const auto [rest, error] = std::from_chars(speed.data(), end, header.kernel.speed);
    if (error != std::errc() || rest != end || !(header.kernel.speed >= kSlowest) ||
        header.kernel.speed > kFastest)
        before.Refuse("a number from 0.1 to 1000");
    header.kernel.waiting_repaints = words.Has("waiting-repaints");
}

struct HeaderWord {
    std::string_view word;
    void (*read)(WordReader&, RecordingHeader&);
};
constexpr HeaderWord kHeader[] = {
    {"program",
     [](WordReader& words, RecordingHeader& header) {
         header.program = words.Text("the version of the program");
     }},
    {"mode", ReadMode},
    {"seed",
     [](WordReader& words, RecordingHeader& header) {
         header.kernel.seed = static_cast<std::uint64_t>(words.Number(0, kMostNumber));
     }},
    {"start", [](WordReader& words, RecordingHeader& header) { header.start = ReadTime(words); }},
    {"supply",
     [](WordReader& words, RecordingHeader& header) { header.supply = ReadSupply(words); }},
    {"missing-bitmap",
     [](WordReader& words, RecordingHeader& header) {
         header.missing_bitmaps.push_back(static_cast<WORD>(words.Number(1, 0xFFFF)));
     }},
    {"begin", [](WordReader&, RecordingHeader&) {}},
};

template <class Row, std::size_t kRows>
constexpr auto WordsOf(const Row (&table)[kRows]) {
    std::array<std::string_view, kRows> words;
    std::ranges::transform(table, words.begin(), [](const auto& row) { return row.word; });
    return words;
}

}  // namespace

Moment ReadMoment(WordReader words) {
    static constexpr auto kWords = WordsOf(kMoments);
    Moment moment = kMoments[words.OneOf(kWords)].read(words);
    words.Finish();
    return moment;
}

std::size_t ReadHeaderLine(WordReader words, RecordingHeader& header) {
    const std::size_t index = words.OneOf(HeaderWords());
    kHeader[index].read(words, header);
    words.Finish();
    return index;
}

std::span<const std::string_view> HeaderWords() {
    static constexpr auto kWords = WordsOf(kHeader);
    return kWords;
}

std::chrono::microseconds ReadTime(WordReader& words) {
    constexpr char kAllowed[] = "a time in seconds with six decimals, such as 21.704512";
    constexpr std::int64_t kMostSeconds = 1'000'000'000;
    const WordReader before = words;
    const std::string& word = words.Text(kAllowed);
    const std::size_t point = word.find('.');
    std::int64_t seconds = 0;
    std::int64_t parts = 0;
    const auto read = [](std::string_view digits, std::int64_t& number) {
        if (digits.empty() ||
            !std::ranges::all_of(digits, [](char digit) { return digit >= '0' && digit <= '9'; }))
            return false;
        const char* const end = digits.data() + digits.size();
        return std::from_chars(digits.data(), end, number).ec == std::errc();
    };
    const std::string_view all = word;
    if (point == std::string::npos || all.size() - point != 7 ||
        !read(all.substr(0, point), seconds) || !read(all.substr(point + 1), parts) ||
        seconds > kMostSeconds)
        before.Refuse(kAllowed);
    return std::chrono::seconds(seconds) + std::chrono::microseconds(parts);
}

}  // namespace unit
