#include "tests/model/generator.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <string_view>

namespace tests::model {
namespace {

constexpr std::uint8_t kAck = 0x20, kInd = 0x80;

// The frequency of each kind in AnyEvent.
constexpr unsigned kWeights[] = {8, 12, 5, 3, 4, 4, 4, 6, 6, 19, 3, 3, 3, 3, 4, 4, 6, 0};
static_assert(std::size(kWeights) == static_cast<std::size_t>(Kind::kCount));

// Few, because the platform caches the shapes of the latest texts.
constexpr unsigned kPercents[] = {0, 0, 1, 7, 50, 99, 100, 100, 100, 101, 255};
// A version counts as known by its second and fifth character after the tenth.
constexpr std::string_view kVersions[] = {"14.09.01.V1.02.03",
                                          "14.04.25.V0.01.00",
                                          "14.04.25.V9",
                                          "",
                                          "14.09.01.V2.02.03 beta",
                                          {"14.09.01.V9\0\0\0.\0\0", 17},
                                          {"14.09.01.V9\0\0\0\0.\0", 17}};
constexpr unsigned kErrors[] = {0, 0, 0, 2, 5, 55, 31};
constexpr unsigned kPowerParameters[] = {0, 1, 1, 1, 255, 2, 0x101, 0x80000000, 0xFFFFFF00};
constexpr unsigned kSupplies[] = {0, 1, 1, 1, 255, 256};
constexpr std::pair<unsigned, unsigned> kPosts[] = {
    {kCommandMessage, kNextId},     {kCommandMessage, kUpdateId},  {kCommandMessage, kSuspendId},
    {kCommandMessage, kOkId},       {kCommandMessage, 4711},       {kTimerMessage, kNotifyTimer},
    {kTimerMessage, kCardOutTimer}, {kTimerMessage, kCardInTimer}, {kTimerMessage, kVideoTimer},
    {kTimerMessage, kRepaintTimer}, {kTimerMessage, 999},          {kMenuMessage, 0xE100},
    {kMenuMessage, 0xE140},         {kMenuMessage, 4711},
};
constexpr std::pair<unsigned, unsigned> kToNotice[] = {
    {kCommandMessage, kOkId}, {kCommandMessage, kNextId}, {kTimerMessage, 1}, {kCloseMessage, 0}};
constexpr std::pair<unsigned, unsigned> kClosing[] = {
    {kCloseMessage, 0}, {kMenuMessage, 0xE141}, {kCommandMessage, kCloseId}};

Event Post(Kind kind, std::pair<unsigned, unsigned> message) {
    return {0, kind, message.first, message.second};
}

Event Command(unsigned id) {
    return Post(Kind::kPost, {kCommandMessage, id});
}

}  // namespace

const char* NameOf(Kind kind) {
    constexpr const char* kNames[] = {"running", "card",  "percent", "image",  "version", "report",
                                      "noise",   "press", "release", "post",   "notice",  "power",
                                      "supply",  "paint", "hold",    "driver", "pass",    "close"};
    static_assert(std::size(kNames) == static_cast<std::size_t>(Kind::kCount));
    return kNames[static_cast<std::size_t>(kind)];
}

std::string ToText(const Sequence& sequence) {
    std::string text = Text("start %d ac %d link %d\n", sequence.start_milliseconds,
                            sequence.world.ac_line, sequence.world.has_link ? 1 : 0);
    for (const Event& event : sequence.events) {
        text += Text("%d %s %llu %llu ", event.milliseconds, NameOf(event.kind),
                     static_cast<unsigned long long>(event.a),
                     static_cast<unsigned long long>(event.b));
        for (const unsigned byte : event.bytes)
            text += Text("%02X", byte);
        text += "\n";
    }
    return text;
}

Sequence Generator::Begin() {
    constexpr int kStarts[] = {20000, 20000, 20000, 1000, 11500};
    Sequence sequence;
    sequence.start_milliseconds = Any(kStarts);
    sequence.world.ac_line = static_cast<std::uint8_t>(OneIn(12) ? 0 : OneIn(12) ? 255 : 1);
    sequence.world.has_link = !OneIn(40);
    return sequence;
}

int Generator::Delay() {
    const unsigned kind = Below(20);
    return kind < 3    ? 0
           : kind < 6  ? Between(90, 389)
           : kind == 6 ? Between(400, 3099)
                       : Between(1, 30);
}

Event Generator::Next(const WizardModel& wizard) {
    if (!pending_.empty()) {
        const Event event = pending_.back();
        pending_.pop_back();
        return event;
    }
    // Let some waits run to their end.
    if (wizard.busy() && OneIn(6))
        return {Between(2000, 4499)};
    Event event = OneIn(2) ? NextStep(wizard) : AnyEvent();
    if (event.milliseconds == 0)
        event.milliseconds = Delay();
    return event;
}

Event Generator::Last() {
    Event event = Post(Kind::kClose, Any(kClosing));
    event.milliseconds = 100;
    return event;
}

// With a few acknowledgements of orders, and a few queries from the DVR, which no DVR sends.
Event Generator::Report(Kind kind, std::uint8_t type, unsigned number, Bytes payload) {
    const bool query = OneIn(8) != (type == kAck);
    return {0, kind, 0, 0, Frame(type, (query ? 0x8000 : 0) | number, payload)};
}

Event Generator::Running(unsigned state) {
    Bytes payload = {static_cast<std::uint8_t>(state)};
    if (OneIn(12))
        payload.clear();
    return Report(Kind::kRunning, OneIn(2) ? kAck : kInd, 0x10, payload);
}

Event Generator::Card(unsigned status) {
    Bytes payload = {static_cast<std::uint8_t>(status)};
    for (unsigned more = Below(4); more > 0; --more)
        payload.push_back(static_cast<std::uint8_t>(Below(100)));
    return Report(Kind::kCard, OneIn(2) ? kAck : kInd, 0x26, payload);
}

Event Generator::Percent() {
    return Report(Kind::kPercent, kInd, 0x2E, {static_cast<std::uint8_t>(Any(kPercents))});
}

Bytes Generator::AnyText(unsigned most) {
    Bytes text(Below(most + 1));
    for (std::uint8_t& byte : text)
        byte = static_cast<std::uint8_t>(OneIn(20) ? Below(256) : ' ' + Below('~' - ' ' + 1));
    return text;
}

// A frame of any type and number, with one byte changed or without, whole or cut, and a good frame.
Bytes Generator::Noise() {
    Bytes bytes = Frame(static_cast<std::uint8_t>(OneIn(2) ? kInd : Below(256)),
                        OneIn(2) ? 0x26 : Below(0x10000), Bytes(Below(4), 1));
    if (OneIn(2))
        bytes[Below(static_cast<unsigned>(bytes.size()))] = static_cast<std::uint8_t>(Below(256));
    if (OneIn(2))
        bytes.resize(1 + Below(static_cast<unsigned>(bytes.size())));
    const Bytes good = Frame(kInd, 0x10, Bytes{static_cast<std::uint8_t>(Below(6))});
    bytes.insert(bytes.end(), good.begin(), good.end());
    return bytes;
}

// A press, and the release a few milliseconds later.
Event Generator::Tap(Control control) {
    const ControlRow& row = Controls()[control];
    Event event{0, Kind::kPress, static_cast<std::uint64_t>((row.left + row.right) / 2),
                static_cast<std::uint64_t>((row.top + row.bottom) / 2)};
    pending_.push_back({Between(1, 20), Kind::kRelease, event.a, event.b});
    return event;
}

// On a control or at its edge more often than elsewhere.
Event Generator::Press(Kind kind) {
    const ControlRow& row =
        Controls()[OneIn(3) ? Below(kAllControls) : kSuspend + Below(kOk - kSuspend + 1)];
    const long x = OneIn(8)   ? Below(800)
                   : OneIn(3) ? row.right - 1 + Below(2)
                              : (row.left + row.right) / 2;
    const long y = OneIn(3) ? row.top - Below(2) : (row.top + row.bottom) / 2;
    return {0, kind, static_cast<std::uint64_t>(std::min(x, 799L)),
            static_cast<std::uint64_t>(std::max(y, 0L))};
}

Event Generator::NextStep(const WizardModel& wizard) {
    const Event pass{Between(500, 3199)};
    const unsigned choice = Below(8);
    if (wizard.busy())
        return OneIn(50)     ? Post(Kind::kClose, Any(kClosing))
               : choice == 0 ? Card(0)
               : choice == 1 ? Percent()
               : choice == 2 ? Running(Below(5))
               : choice < 6  ? AnyEvent()
                             : pass;
    if (wizard.notice_up())
        return Tap(kOk);
    if (wizard.ac_offline() && OneIn(2))
        return {0, Kind::kPower, 1};
    switch (wizard.step()) {
        case kPowerOn:
            return Tap(kNext);
        case kCheckCard:
            if (!wizard.visible(kNext))
                return Card(OneIn(4));
            return OneIn(3) ? Command(kUpdateId) : Tap(kNext);
        case kInsertCard:
            if (choice == 0)
                return Percent();
            if (choice == 1)
                return Running(2);
            if (choice == 2) {
                // An image, but no percent after the press.
                pending_ = {{4500}, Command(kUpdateId)};
                return {0, Kind::kImage, 0, 0, Frame(kInd, 0x2E, Bytes{0, '1', '2'})};
            }
            return wizard.visible(kUpdate) ? Tap(kUpdate) : Card(1);
        case kUpdating:
            return Percent();
        case kWait:
            return pass;
        case kRemoveCard:
            return OneIn(3) ? Tap(kNext) : OneIn(4) ? Card(0) : Running(2);
        case kResult:
            if (choice < 2) {
                pending_ = {Command(kUpdateId)};
                return {0, Kind::kHold, 100};
            }
            return choice < 4   ? Command(kSuspendId)
                   : choice < 6 ? Report(Kind::kVersion, kAck, 0x2E, Bytes(17, '1'))
                                : Command(kUpdateId);
        default:
            if (choice == 0) {
                pending_ = {{50, Kind::kPower, 1}};
                return {0, Kind::kPower, 0};
            }
            return choice == 1 ? Percent() : Card(Below(2));
    }
}

Event Generator::AnyEvent() {
    std::size_t row = 0;
    for (unsigned at = Below(std::accumulate(std::begin(kWeights), std::end(kWeights), 0U));
         at >= kWeights[row]; ++row)
        at -= kWeights[row];
    const auto kind = static_cast<Kind>(row);
    switch (kind) {
        case Kind::kRunning:
            return Running(OneIn(4) ? Below(256) : Below(5));
        case Kind::kCard:
            return Card(OneIn(4) ? Below(256) : OneIn(3) ? Below(7) : Below(2));
        case Kind::kPercent:
            return Percent();
        case Kind::kImage: {
            Bytes payload = AnyText(8);
            payload.insert(payload.begin(), static_cast<std::uint8_t>(Any(kPercents)));
            return Report(kind, kInd, 0x2E, payload);
        }
        case Kind::kVersion: {
            const std::string_view version = Any(kVersions);
            Bytes payload(version.begin(), version.end());
            if (OneIn(4))
                payload.resize(17);
            return Report(kind, kAck, 0x2E, payload);
        }
        case Kind::kReport:
            return Report(kind, OneIn(2) ? kAck : kInd, 0x11 + Below(0x2D - 0x11 + 1),
                          AnyText(OneIn(8) ? 64 : 16));
        case Kind::kNoise:
            return {0, kind, 0, 0, Noise()};
        case Kind::kPress:
        case Kind::kRelease:
            return Press(kind);
        case Kind::kPost:
            return Post(kind, Any(kPosts));
        case Kind::kNotice:
            return Post(kind, Any(kToNotice));
        case Kind::kPower:
            return {0, kind, Any(kPowerParameters), Below(256)};
        case Kind::kSupply:
            return {0, kind, Any(kSupplies), Below(256)};
        case Kind::kHold:
            return {0, kind, Any(kPercents)};
        case Kind::kDriver: {
            const unsigned driver = Below(5);
            // A scaler that is missing costs 12 seconds.
            return {0, kind, driver, driver == 2 && !OneIn(4) ? 0 : Any(kErrors)};
        }
        case Kind::kPass:
            return {Between(200, 2199)};
        default:
            return {0, kind};
    }
}

}  // namespace tests::model
