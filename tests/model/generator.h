#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <string_view>
#include <vector>

#include "tests/model/event.h"

namespace tests::model {

inline constexpr std::uint8_t kAck = 0x20, kInd = 0x80;

// Few, because the platform caches the shapes of the latest texts.
inline constexpr unsigned kPercents[] = {0, 0, 1, 7, 50, 99, 100, 100, 100, 101, 255};
// A version counts as known by its second and fifth character after the tenth.
inline constexpr std::string_view kVersions[] = {"14.09.01.V1.02.03",
                                                 "14.04.25.V0.01.00",
                                                 "14.04.25.V9",
                                                 "",
                                                 "14.09.01.V2.02.03 beta",
                                                 {"14.09.01.V9\0\0\0.\0\0", 17},
                                                 {"14.09.01.V9\0\0\0\0.\0", 17}};
inline constexpr unsigned kErrors[] = {0, 0, 0, 2, 5, 55, 31};
inline constexpr unsigned kPowerParameters[] = {0, 1, 1, 1, 255, 2, 0x101, 0x80000000, 0xFFFFFF00};
inline constexpr unsigned kSupplies[] = {0, 1, 1, 1, 255, 256};
inline constexpr std::pair<unsigned, unsigned> kPosts[] = {
    {kCommandMessage, kNextId},     {kCommandMessage, kUpdateId},  {kCommandMessage, kSuspendId},
    {kCommandMessage, kOkId},       {kCommandMessage, 4711},       {kTimerMessage, kNotifyTimer},
    {kTimerMessage, kCardOutTimer}, {kTimerMessage, kCardInTimer}, {kTimerMessage, kVideoTimer},
    {kTimerMessage, kRepaintTimer}, {kTimerMessage, 999},          {kMenuMessage, 0xE100},
    {kMenuMessage, 0xE140},         {kMenuMessage, 4711},
};
inline constexpr std::pair<unsigned, unsigned> kToNotice[] = {
    {kCommandMessage, kOkId}, {kCommandMessage, kNextId}, {kTimerMessage, 1}, {kCloseMessage, 0}};
inline constexpr std::pair<unsigned, unsigned> kClosing[] = {
    {kCloseMessage, 0}, {kMenuMessage, 0xE141}, {kCommandMessage, kCloseId}};

// Generates events for a wizard; about half of them lead to its next step.
class Generator {
  public:
    // `choose` returns a number below its argument.
    explicit Generator(std::function<unsigned(unsigned limit)> choose)
        : choose_(std::move(choose)) {}

    Sequence Begin() {
        constexpr int kStarts[] = {20000, 20000, 20000, 1000, 11500};
        Sequence sequence;
        sequence.start_milliseconds = Any(kStarts);
        sequence.world.ac_line = Byte(OneIn(12) ? 0 : OneIn(12) ? 255 : 1);
        sequence.world.has_link = !OneIn(40);
        return sequence;
    }

    Event Next(const WizardModel& wizard) {
        if (!pending_.empty()) {
            const Event event = pending_.back();
            pending_.pop_back();
            return event;
        }
        // Let some waits run to their end.
        if (wizard.busy() && OneIn(6))
            return {Between(2000, 4499)};
        Event event = OneIn(2) ? NextStep(wizard) : AnyEvent();
        if (event.milliseconds == 0) {
            const unsigned delay = Below(20);
            event.milliseconds = delay < 3    ? 0
                                 : delay < 6  ? Between(90, 389)
                                 : delay == 6 ? Between(400, 3099)
                                              : Between(1, 30);
        }
        return event;
    }

    // An event that closes the window.
    Event Last() {
        Event event = Post(Kind::kPost, Any(kClosing));
        event.milliseconds = 100;
        return event;
    }

  private:
    static Event Post(Kind kind, std::pair<unsigned, unsigned> message) {
        return {0, kind, message.first, message.second};
    }

    static Event Command(unsigned id) { return Post(Kind::kPost, {kCommandMessage, id}); }

    static std::uint8_t Byte(unsigned number) { return static_cast<std::uint8_t>(number); }

    unsigned Below(unsigned limit) { return choose_(limit); }
    int Between(unsigned least, unsigned most) { return int(least + Below(most - least + 1)); }
    bool OneIn(unsigned count) { return Below(count) == 0; }
    template <typename Value, std::size_t kCount>
    Value Any(const Value (&values)[kCount]) {
        return values[Below(kCount)];
    }
    // With a few acknowledgements of orders, and a few queries from the DVR, which no DVR sends.
    Event Report(std::uint8_t type, unsigned number, Bytes payload) {
        const bool query = OneIn(8) != (type == kAck);
        return {0, Kind::kBytes, 0, 0, Frame(type, (query ? 0x8000 : 0) | number, payload)};
    }

    Event Running(unsigned state) {
        return Report(OneIn(2) ? kAck : kInd, 0x10, Bytes(OneIn(12) ? 0 : 1, Byte(state)));
    }

    Event Card(unsigned status) {
        Bytes payload = {Byte(status)};
        for (unsigned more = Below(4); more > 0; --more)
            payload.push_back(Byte(Below(100)));
        return Report(OneIn(2) ? kAck : kInd, 0x26, payload);
    }

    Event Percent() { return Report(kInd, 0x2E, {Byte(Any(kPercents))}); }

    Event Image() {
        Bytes payload = AnyText(8);
        payload.insert(payload.begin(), Byte(Any(kPercents)));
        return Report(kInd, 0x2E, payload);
    }

    Event Version() {
        const std::string_view version = Any(kVersions);
        Bytes payload(version.begin(), version.end());
        if (OneIn(4))
            payload.resize(17);
        return Report(kAck, 0x2E, payload);
    }

    Bytes AnyText(unsigned most) {
        Bytes text(Below(most + 1));
        for (std::uint8_t& byte : text)
            byte = Byte(OneIn(20) ? Below(256) : ' ' + Below('~' - ' ' + 1));
        return text;
    }

    // A frame of any type and number, with one byte changed or without, whole or cut, and a good
    // frame.
    Event Noise() {
        Bytes bytes = Frame(Byte(OneIn(2) ? kInd : Below(256)), OneIn(2) ? 0x26 : Below(0x10000),
                            Bytes(Below(4), 1));
        const auto size = static_cast<unsigned>(bytes.size());
        if (OneIn(2))
            bytes[Below(size)] = Byte(Below(256));
        if (OneIn(2))
            bytes.resize(1 + Below(size));
        std::ranges::copy(Frame(kInd, 0x10, Bytes{Byte(Below(6))}), std::back_inserter(bytes));
        return {0, Kind::kBytes, 0, 0, bytes};
    }

    // A press, and the release a few milliseconds later.
    Event Tap(Control control) {
        const ControlRow& row = Controls()[control];
        const auto x = static_cast<std::uint64_t>((row.left + row.right) / 2);
        const auto y = static_cast<std::uint64_t>((row.top + row.bottom) / 2);
        pending_.push_back({Between(1, 20), Kind::kRelease, x, y});
        return {0, Kind::kPress, x, y};
    }

    // On a control or at its edge more often than elsewhere.
    Event Press(Kind kind) {
        const ControlRow& row =
            Controls()[OneIn(3) ? Below(kAllControls) : kSuspend + Below(kOk - kSuspend + 1)];
        const long x = OneIn(8)   ? Below(800)
                       : OneIn(3) ? row.right - 1 + Below(2)
                                  : (row.left + row.right) / 2;
        const long y = OneIn(3) ? row.top - Below(2) : (row.top + row.bottom) / 2;
        return {0, kind, static_cast<std::uint64_t>(std::min(x, 799L)),
                static_cast<std::uint64_t>(std::max(y, 0L))};
    }

    Event NextStep(const WizardModel& wizard) {
        const unsigned choice = Below(8);
        if (wizard.busy())
            return OneIn(50)     ? Post(Kind::kPost, Any(kClosing))
                   : choice == 0 ? Card(0)
                   : choice == 1 ? Percent()
                   : choice == 2 ? Running(Below(5))
                   : choice < 6  ? AnyEvent()
                                 : Event{Between(500, 3199)};
        if (wizard.notice_up())
            return Tap(kOk);
        if (wizard.ac_offline() && OneIn(2))
            return {0, Kind::kPower, 1};
        switch (wizard.step()) {
            case kPowerOn:
                return Tap(kNext);
            case kCheckCard:
                return !wizard.visible(kNext) ? Card(OneIn(4))
                       : OneIn(3)             ? Command(kUpdateId)
                                              : Tap(kNext);
            case kInsertCard:
                if (choice == 0)
                    return Percent();
                if (choice == 1)
                    return Running(2);
                if (choice > 2)
                    return wizard.visible(kUpdate) ? Tap(kUpdate) : Card(1);
                // An image, but no percent after the press.
                pending_ = {{4500}, Command(kUpdateId)};
                return {0, Kind::kBytes, 0, 0, Frame(kInd, 0x2E, Bytes{0, '1', '2'})};
            case kUpdating:
                return Percent();
            case kWait:
                return {Between(500, 3199)};
            case kRemoveCard:
                return OneIn(3) ? Tap(kNext) : OneIn(4) ? Card(0) : Running(2);
            case kResult:
                if (choice > 1)
                    return choice < 4   ? Command(kSuspendId)
                           : choice < 6 ? Report(kAck, 0x2E, Bytes(17, '1'))
                                        : Command(kUpdateId);
                pending_ = {Command(kUpdateId)};
                return {0, Kind::kHold, 100};
            default:
                if (choice > 0)
                    return choice == 1 ? Percent() : Card(Below(2));
                pending_ = {{50, Kind::kPower, 1}};
                return {0, Kind::kPower, 0};
        }
    }

    Event AnyEvent() {
        // A scaler that is missing costs 12 seconds.
        const unsigned driver = Below(kAnswers);
        const unsigned error = driver == kScalerOpen && !OneIn(4) ? 0 : Any(kErrors);
        const unsigned at = Below(97);
        return at < 8    ? Running(Below(OneIn(4) ? 256 : 5))
               : at < 20 ? Card(Below(OneIn(4)   ? 256
                                      : OneIn(3) ? 7
                                                 : 2))
               : at < 25 ? Percent()
               : at < 28 ? Image()
               : at < 32 ? Version()
               : at < 36 ? Report(OneIn(2) ? kAck : kInd, 0x11 + Below(0x2D - 0x11 + 1),
                                  AnyText(OneIn(8) ? 64 : 16))
               : at < 40 ? Noise()
               : at < 46 ? Press(Kind::kPress)
               : at < 52 ? Press(Kind::kRelease)
               : at < 71 ? Post(Kind::kPost, Any(kPosts))
               : at < 74 ? Post(Kind::kNotice, Any(kToNotice))
               : at < 77 ? Event{0, Kind::kPower, Any(kPowerParameters), Below(256)}
               : at < 80 ? Event{0, Kind::kSupply, Any(kSupplies), Below(256)}
               : at < 83 ? Event{0, Kind::kPaint}
               : at < 87 ? Event{0, Kind::kHold, Any(kPercents)}
               : at < 91 ? Event{0, Kind::kDriver, driver, error}
                         : Event{Between(200, 2199)};
    }

    std::function<unsigned(unsigned limit)> choose_;
    std::vector<Event> pending_;  // comes next, the last one first
};

}  // namespace tests::model
