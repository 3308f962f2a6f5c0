#include "unit/events/event_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <ranges>

#include "control/words.h"
#include "platform/kernel/call_faults.h"
#include "platform/kernel/text.h"
#include "unit/line/frame_text.h"
#include "unit/line/memory_line.h"

namespace unit {
namespace {

using platform::kernel::FromUtf8;
using platform::kernel::ToUtf8;
using platform::window::Touch;
using std::chrono::microseconds;
using Call = DriverCalled::Call;

constexpr std::int64_t kMaxByte = 0xFF;
constexpr std::int64_t kMaxWord = 0xFFFFFFFF;
constexpr std::int64_t kMaxNumber = std::numeric_limits<std::int64_t>::max();

template <class... Arguments>
std::string Format(const char* format, Arguments... arguments) {
    char text[96];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

// As one word of a line: texts of screens may contain line ends.
std::string Word(std::string text) {
    std::ranges::replace_if(
        text, [](char character) { return static_cast<unsigned char>(character) < ' '; }, ' ');
    return control::QuoteWord(text);
}

std::uint32_t ReadWord(WordReader& words) {
    return static_cast<std::uint32_t>(words.Number(0, kMaxWord));
}

// The bytes of the line. The chunks are separated by the microseconds between them,
//     A5 5A 80 +1400 00 11
// or follow the word "wire" when each byte came alone, at the pace of the 460800 baud line: the Nth
// in the first microsecond in which its last bit has passed.
//     wire A5 5A 80 00 11

constexpr std::string_view kDirections[] = {"to-unit", "to-dvr"};
constexpr std::string_view kWire = "wire";

// The time from a line's first byte to byte `index`, from 0, at the pace of the wire.
microseconds AfterFirst(std::size_t index) {
    return WireTime(static_cast<std::int64_t>(index) + 1, kDvrBaudRate) - WireTime(1, kDvrBaudRate);
}

bool HasWirePace(const LineBytes& line) {
    if (line.later.empty() || line.later.size() + 1 != line.bytes.size())
        return false;
    for (std::size_t index = 1; index < line.bytes.size(); ++index)
        if (line.later[index - 1].after != AfterFirst(index))
            return false;
    return true;
}

std::string WriteLine(const LineBytes& line) {
    std::string text(kDirections[line.direction == Direction::kToUnit ? 0 : 1]);
    if (HasWirePace(line))
        return text + " " + std::string(kWire) + " " + HexText(line.bytes);
    microseconds last{};
    line.ForEachChunk([&](microseconds after, std::span<const std::uint8_t> bytes) {
        if (after != last)
            text += " +" + std::to_string((after - last).count());
        last = after;
        text += " " + HexText(bytes);
    });
    return text;
}

// The microseconds to the next chunk, if the next word is such a number.
std::optional<microseconds> TakeGap(WordReader& words) {
    const std::string_view word = words.Next();
    std::int32_t value = 0;
    if (!word.starts_with('+'))
        return std::nullopt;
    const char* const end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data() + 1, end, value);
    if (error != std::errc() || rest != end || value < 0)
        return std::nullopt;
    words.Has(word);
    return microseconds(value);
}

LineBytes ReadLine(WordReader& words) {
    constexpr std::string_view kByte = "a byte as two hexadecimal digits";
    constexpr std::string_view kByteOrGap =
        "a byte as two hexadecimal digits, or + and the microseconds to the next byte";
    LineBytes line{words.OneOf(kDirections) == 0 ? Direction::kToUnit : Direction::kToDvr, {}};
    const bool wire = words.Has(kWire);
    line.bytes.reserve(words.left());
    microseconds after{};
    bool begins = true;
    do {
        if (!wire && !begins && !words.AtEnd()) {
            if (const auto gap = TakeGap(words)) {
                after += *gap;
                begins = true;
            }
        }
        const std::uint8_t byte = words.HexadecimalByte(wire || begins ? kByte : kByteOrGap);
        if (wire)
            after = AfterFirst(line.bytes.size());
        if ((begins || wire) && !line.bytes.empty())
            line.later.push_back({line.bytes.size(), after});
        line.bytes.push_back(byte);
        begins = false;
    } while (!words.AtEnd());
    return line;
}

std::string WriteFrame(const LineEntry& entry) {
    return entry.Text();
}

constexpr std::string_view kTouchWords[] = {"down", "move", "up"};
constexpr Touch kTouches[] = {Touch::kDown, Touch::kMove, Touch::kUp};

std::string WriteFinger(const FingerMoved& finger) {
    const auto index = std::ranges::find(kTouches, finger.touch) - std::begin(kTouches);
    return std::string(kTouchWords[index]) + Format(" %d %d", finger.x, finger.y);
}

FingerMoved ReadFinger(WordReader& words) {
    const Touch touch = kTouches[words.OneOf(kTouchWords)];
    const auto x = static_cast<int>(words.Number(0, platform::window::kScreenWidth - 1));
    const auto y = static_cast<int>(words.Number(0, platform::window::kScreenHeight - 1));
    return {touch, x, y};
}

std::string WriteSupply(const SupplyChanged& change) {
    return SupplyText(change.supply);
}

SupplyChanged ReadSupplyChange(WordReader& words) {
    return {ReadSupply(words)};
}

std::string WriteCard(const CardMoved& card) {
    return card.in ? "in " + Word(card.folder) : "out";
}

CardMoved ReadCard(WordReader& words) {
    constexpr std::string_view kMoves[] = {"in", "out"};
    if (words.OneOf(kMoves) == 1)
        return {false, {}};
    return {true, words.Text("the path of a folder")};
}

std::string WriteReset(const DvrReset&) {
    return "reset";
}

DvrReset ReadReset(WordReader& words) {
    words.Expect("reset");
    return {};
}

std::string WriteRequest(const PowerRequested& request) {
    return Word(ToUtf8(request.event_name));
}

PowerRequested ReadRequest(WordReader& words) {
    return {FromUtf8(words.Text("the name of an event"))};
}

constexpr std::string_view kCallWords[] = {"open", "control", "close"};
constexpr Call kCalls[] = {Call::kOpen, Call::kControl, Call::kClose};

std::string WriteDriverRequest(const DriverCalled& call) {
    const auto index = std::ranges::find(kCalls, call.call) - std::begin(kCalls);
    std::string text = Word(ToUtf8(call.driver)) + " " + std::string(kCallWords[index]);
    if (call.call != Call::kControl)
        return text;
    text += Format(" 0x%04X", call.code);
    for (const std::byte byte : call.input)
        text += Format(" %02X", std::to_integer<unsigned>(byte));
    return text;
}

std::string WriteDriver(const DriverCalled& call) {
    const std::string request = WriteDriverRequest(call);
    return call.call == Call::kClose ? request : request + Format(" -> %u", call.error);
}

DriverCalled ReadDriver(WordReader& words) {
    DriverCalled called{
        FromUtf8(words.Text("the name of a stream driver")), Call::kOpen, 0, {}, ERROR_SUCCESS};
    called.call = kCalls[words.OneOf(kCallWords)];
    if (called.call == Call::kClose)
        return called;
    if (called.call == Call::kControl) {
        called.code = ReadWord(words);
        while (!words.Has("->"))
            called.input.push_back(
                std::byte{words.HexadecimalByte("a byte as two hexadecimal digits, or ->")});
    } else {
        words.Expect("->");
    }
    called.error = ReadWord(words);
    return called;
}

std::string WriteBroadcast(const BroadcastPosted& broadcast) {
    const std::string message =
        broadcast.name.empty() ? Format("0x%04X", broadcast.message) : Word(ToUtf8(broadcast.name));
    return message + Format(" 0x%X 0x%X", static_cast<DWORD>(broadcast.wparam),
                            static_cast<DWORD>(broadcast.lparam));
}

BroadcastPosted ReadBroadcast(WordReader& words) {
    BroadcastPosted broadcast{};
    const std::string& message = words.Text("the name of a message, or its number");
    const auto number = control::ReadNumber(message);
    if (number && *number >= 0 && *number <= kMaxWord)
        broadcast.message = static_cast<UINT>(*number);
    else
        broadcast.name = FromUtf8(message);
    broadcast.wparam = ReadWord(words);
    broadcast.lparam = static_cast<LPARAM>(ReadWord(words));
    return broadcast;
}

std::string WriteLog(const LineLogged& line) {
    return line.text;
}

std::string WriteMessage(const OperatorMessage& message) {
    return message.line;
}

std::string WriteScreen(const ScreenSettled& screen) {
    std::string text = Format("%016llx", static_cast<unsigned long long>(screen.digest));
    for (const std::string& line : screen.texts)
        text += " " + Word(line);
    return text;
}

ScreenSettled ReadScreen(WordReader& words) {
    ScreenSettled screen{words.Hexadecimal64(), {}};
    while (!words.AtEnd())
        screen.texts.push_back(words.Text({}));
    return screen;
}

std::string WriteUnseen(const ScreenUnseen& unseen) {
    return "since " + TimeText(unseen.since);
}

ScreenUnseen ReadUnseen(WordReader& words) {
    words.Expect("since");
    return {ReadTime(words)};
}

std::string WriteFault(const FaultApplied& fault) {
    return Word(fault.text);
}

FaultApplied ReadFault(WordReader& words) {
    return {words.Text("what the fault did")};
}

constexpr std::string_view kHalStates[] = {"works", "refuses"};

std::string WriteHal(const HalSwitched& hal) {
    return std::string(kHalStates[hal.refuses ? 1 : 0]);
}

HalSwitched ReadHal(WordReader& words) {
    return {words.OneOf(kHalStates) == 1};
}

constexpr std::string_view kBatteryDriverStates[] = {"works", "fails"};

std::string WriteBatteryDriver(const BatteryDriverSwitched& driver) {
    return std::string(kBatteryDriverStates[driver.fails ? 1 : 0]);
}

BatteryDriverSwitched ReadBatteryDriver(WordReader& words) {
    return {words.OneOf(kBatteryDriverStates) == 1};
}

std::string WriteClock(const ClockJumped& jump) {
    return "forward " + TimeText(jump.forward);
}

ClockJumped ReadClock(WordReader& words) {
    words.Expect("forward");
    return {ReadTime(words)};
}

std::string WriteFailedCall(const CallFailed& failed) {
    return failed.call + " " + std::to_string(failed.number) + Format(" -> %u", failed.error);
}

CallFailed ReadFailedCall(WordReader& words) {
    constexpr char kAllowed[] = "the name of a call that can fail, such as CreateFileW";
    const WordReader before = words;
    CallFailed failed{words.Text(kAllowed), 0, 0};
    if (std::ranges::count(platform::kernel::FailableCallNames(), failed.call) == 0)
        before.Refuse(kAllowed);
    failed.number = static_cast<std::uint64_t>(words.Number(1, kMaxNumber));
    words.Expect("->");
    failed.error = ReadWord(words);
    return failed;
}

std::string WriteLost(const EventsLost& lost) {
    return std::to_string(lost.count);
}

EventsLost ReadLost(WordReader& words) {
    return {static_cast<std::uint64_t>(words.Number(1, kMaxNumber))};
}

// For kinds without details.
template <class Type>
std::string WriteNothing(const Type&) {
    return {};
}

template <class Type>
Type ReadNothing(WordReader&) {
    return {};
}

// A kind of event. A kind without a reader is in no recording.
struct Kind {
    std::size_t index;  // in the variant
    std::string_view word;
    bool traced;
    std::string (*write)(const Event&);
    Event (*read)(WordReader&);
};

template <class Type, class... Types>
constexpr std::size_t IndexIn(const std::variant<Types...>*) {
    constexpr bool kSame[] = {std::is_same_v<Type, Types>...};
    return std::ranges::find(kSame, true) - std::begin(kSame);
}

template <class Type, auto kWrite>
constexpr Kind WrittenRow(std::string_view word, bool traced = true) {
    return {IndexIn<Type>(static_cast<const Event*>(nullptr)), word, traced,
            [](const Event& event) { return kWrite(std::get<Type>(event)); }, nullptr};
}

template <class Type, auto kWrite, auto kRead>
constexpr Kind Row(std::string_view word, bool traced = true) {
    Kind kind = WrittenRow<Type, kWrite>(word, traced);
    kind.read = [](WordReader& words) -> Event { return kRead(words); };
    return kind;
}

template <class Type>
constexpr Kind BareRow(std::string_view word) {
    return Row<Type, WriteNothing<Type>, ReadNothing<Type>>(word);
}

constexpr Kind kKinds[] = {
    Row<LineBytes, WriteLine, ReadLine>("line", false),
    WrittenRow<LineEntry, WriteFrame>("frame"),
    Row<FingerMoved, WriteFinger, ReadFinger>("finger"),
    Row<SupplyChanged, WriteSupply, ReadSupplyChange>("supply"),
    Row<CardMoved, WriteCard, ReadCard>("card"),
    Row<DvrReset, WriteReset, ReadReset>("dvr"),
    Row<PowerRequested, WriteRequest, ReadRequest>("request"),
    Row<DriverCalled, WriteDriver, ReadDriver>("driver"),
    Row<BroadcastPosted, WriteBroadcast, ReadBroadcast>("broadcast"),
    WrittenRow<LineLogged, WriteLog>("log"),
    WrittenRow<OperatorMessage, WriteMessage>("operator"),
    WrittenRow<ScreenDrawn, WriteNothing<ScreenDrawn>>("drawn", false),
    Row<ScreenSettled, WriteScreen, ReadScreen>("screen"),
    Row<ScreenUnseen, WriteUnseen, ReadUnseen>("unseen"),
    BareRow<UnitSuspended>("suspend"),
    BareRow<UnitWoken>("wake"),
    Row<FaultApplied, WriteFault, ReadFault>("line-fault"),
    Row<HalSwitched, WriteHal, ReadHal>("hal"),
    Row<BatteryDriverSwitched, WriteBatteryDriver, ReadBatteryDriver>("battery-driver"),
    Row<ClockJumped, WriteClock, ReadClock>("clock"),
    Row<CallFailed, WriteFailedCall, ReadFailedCall>("failed-call"),
    BareRow<ClosingBegan>("close"),
    Row<EventsLost, WriteLost, ReadLost>("lost"),
    BareRow<RecordingEnded>("end"),
};
static_assert(std::size(kKinds) == kEventKinds);
static_assert(std::ranges::equal(kKinds, std::views::iota(std::size_t{0}, kEventKinds), {},
                                 &Kind::index));

constexpr auto kRecordedKinds = [] {
    std::array<const Kind*,
               std::ranges::count_if(kKinds, [](const Kind& kind) { return kind.read != nullptr; })>
        kinds{};
    std::size_t count = 0;
    for (const Kind& kind : kKinds)
        if (kind.read)
            kinds[count++] = &kind;
    return kinds;
}();

constexpr auto kRecordedWords = [] {
    std::array<std::string_view, kRecordedKinds.size()> words;
    std::ranges::transform(kRecordedKinds, words.begin(), &Kind::word);
    return words;
}();

const Kind& KindOf(const Event& event) {
    return kKinds[event.index()];
}

}  // namespace

EventText TextOf(const Event& event) {
    const Kind& kind = KindOf(event);
    return {kind.word, kind.write(event)};
}

std::string EventLine(const Event& event) {
    const EventText text = TextOf(event);
    return std::string(text.kind) + (text.details.empty() ? "" : " ") + text.details;
}

std::string RequestLine(const DriverCalled& call) {
    return "driver " + WriteDriverRequest(call);
}

bool IsTraced(const Event& event) {
    return KindOf(event).traced;
}

bool IsRecorded(const Event& event) {
    return KindOf(event).read != nullptr;
}

Event ReadEvent(WordReader words) {
    Event event = kRecordedKinds[words.OneOf(kRecordedWords)]->read(words);
    words.Finish();
    return event;
}

std::string TraceTime(microseconds time) {
    return Format("%10.3f", static_cast<double>(time.count()) / 1e6);
}

std::string TraceRecord(const TimedEvent& timed) {
    constexpr std::size_t kKindWidth = 10;
    const EventText text = TextOf(timed.event);
    std::string record = TraceTime(timed.time) + "  " + std::string(text.kind);
    if (!text.details.empty()) {
        const std::size_t padding = kKindWidth - std::min(text.kind.size(), kKindWidth);
        record += std::string(padding + 1, ' ') + text.details;
    }
    return record;
}

std::string TimeText(microseconds time) {
    constexpr long long kMicroseconds = 1'000'000;
    return Format("%lld.%06lld", static_cast<long long>(time.count()) / kMicroseconds,
                  static_cast<long long>(time.count()) % kMicroseconds);
}

microseconds ReadTime(WordReader& words) {
    constexpr char kAllowed[] = "a time in seconds with six decimals, such as 21.704512";
    constexpr std::int64_t kMaxSeconds = 1'000'000'000;
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
        seconds > kMaxSeconds)
        before.Refuse(kAllowed);
    return std::chrono::seconds(seconds) + microseconds(parts);
}

std::string SupplyText(const platform::PowerSupply& supply) {
    return Format("line %d battery %d percent %d", supply.ac_line_status, supply.battery_flag,
                  supply.battery_life_percent);
}

platform::PowerSupply ReadSupply(WordReader& words) {
    const auto read_byte = [&words](std::string_view word) {
        words.Expect(word);
        return static_cast<BYTE>(words.Number(0, kMaxByte));
    };
    platform::PowerSupply supply;
    supply.ac_line_status = read_byte("line");
    supply.battery_flag = read_byte("battery");
    supply.battery_life_percent = read_byte("percent");
    return supply;
}

}  // namespace unit
