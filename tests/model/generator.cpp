#include "tests/model/generator.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace tests::model {
namespace {

// How often each comes, by chance alone.
constexpr unsigned kWeights[] = {8, 12, 5, 3, 4, 4, 4, 6, 6, 10, 8,
                                 3, 3,  3, 4, 4, 1, 1, 1, 1, 6,  0};
static_assert(std::size(kWeights) == static_cast<std::size_t>(Kind::kCount));

// Few, because the platform remembers how the last texts look.
constexpr unsigned kPercents[] = {0, 0, 1, 7, 50, 99, 100, 100, 100, 101, 255};
constexpr const char* kVersions[] = {"14.09.01.V1.02.03", "14.04.25.V0.01.00", "14.04.25.V9", "",
                                     "14.09.01.V2.02.03 beta"};
constexpr unsigned kErrors[] = {0, 0, 0, 2, 5, 55, 31};

}  // namespace

Sequence Generator::Begin() {
    Sequence sequence;
    constexpr int kStarts[] = {20000, 20000, 20000, 1000, 11500};
    sequence.start_milliseconds = Any(kStarts);
    sequence.world.ac_line = static_cast<std::uint8_t>(OneIn(12) ? 0 : OneIn(12) ? 255 : 1);
    sequence.world.has_link = !OneIn(40);
    pending_.clear();
    return sequence;
}

int Generator::Delay() {
    switch (Below(20)) {
        case 0:
        case 1:
        case 2:
            return 0;
        case 3:
        case 4:
        case 5:
            return static_cast<int>(90 + Below(300));
        case 6:
            return static_cast<int>(400 + Below(2700));
        default:
            return static_cast<int>(1 + Below(30));
    }
}

Event Generator::Next(const WizardModel& wizard) {
    if (!pending_.empty()) {
        Event event = pending_.front();
        pending_.erase(pending_.begin());
        return event;
    }
    // Some waits run to their end.
    if (wizard.busy() && OneIn(6))
        return {static_cast<int>(2000 + Below(2500)), Kind::kPass, 0, 0, {}};
    Event event = OneIn(2) ? Further(wizard) : Whatever();
    if (event.milliseconds == 0)
        event.milliseconds = Delay();
    return event;
}

Event Generator::Last() {
    Event event{100, Kind::kClose, Below(3), 0, {}};
    return event;
}

Event Generator::Report(Kind kind, std::uint8_t type, unsigned command, Bytes payload) {
    Event event{0, kind, 0, 0, Frame(type, command, payload)};
    return event;
}

Event Generator::OfKind(Kind kind) {
    Event event;
    event.kind = kind;
    return event;
}

Event Generator::Running(unsigned state) {
    const bool asked = OneIn(2);
    // Now and then the answer to an order, or an empty one, which change nothing.
    const unsigned query = OneIn(8) ? 0 : 0x8000;
    Bytes payload = {static_cast<std::uint8_t>(state)};
    if (OneIn(12))
        payload.clear();
    return Report(Kind::kRunning, asked ? 0x20 : 0x80, asked ? query | 0x10 : 0x10, payload);
}

Event Generator::Card(unsigned status) {
    const bool asked = OneIn(2);
    const unsigned query = OneIn(8) ? 0 : 0x8000;
    Bytes payload = {static_cast<std::uint8_t>(status)};
    for (unsigned more = Below(4); more > 0; --more)
        payload.push_back(static_cast<std::uint8_t>(Below(100)));
    return Report(Kind::kCard, asked ? 0x20 : 0x80, asked ? query | 0x26 : 0x26, payload);
}

Event Generator::Percent(unsigned percent) {
    return Report(Kind::kPercent, 0x80, OneIn(8) ? 0x802E : 0x002E,
                  {static_cast<std::uint8_t>(percent)});
}

Bytes Generator::AnyText(std::size_t most) {
    Bytes text(Below(static_cast<unsigned>(most) + 1));
    for (std::uint8_t& byte : text)
        byte = static_cast<std::uint8_t>(OneIn(20) ? 0 : ' ' + Below('~' - ' ' + 1));
    return text;
}

Event Generator::Noise() {
    Bytes bytes;
    switch (Below(4)) {
        case 0:  // garbage, with sync bytes often enough
            for (unsigned count = 1 + Below(30); count > 0; --count)
                bytes.push_back(static_cast<std::uint8_t>(OneIn(4)   ? 0xA5
                                                          : OneIn(4) ? 0x5A
                                                                     : Below(256)));
            break;
        case 1:  // a frame with one wrong byte
            bytes = Frame(0x80, 0x26, Bytes{1, 0});
            bytes[Below(static_cast<unsigned>(bytes.size()))] ^=
                static_cast<std::uint8_t>(1 + Below(255));
            break;
        case 2:  // one of which the rest never comes
            bytes = Frame(0x20, 0x8010, Bytes{2});
            bytes.resize(1 + Below(static_cast<unsigned>(bytes.size()) - 1));
            break;
        default: {  // of a type or with a number that nobody handles, then a good one
            bytes =
                Frame(static_cast<std::uint8_t>(Below(256)), Below(0x10000), Bytes(Below(4), 7));
            const Bytes good = Frame(0x80, 0x10, Bytes{static_cast<std::uint8_t>(Below(6))});
            bytes.insert(bytes.end(), good.begin(), good.end());
        }
    }
    return {0, Kind::kNoise, 0, 0, bytes};
}

// A touch of a few milliseconds.
Event Generator::Tap(int x, int y) {
    const auto at_x = static_cast<std::uint64_t>(x);
    const auto at_y = static_cast<std::uint64_t>(y);
    pending_.push_back({static_cast<int>(1 + Below(20)), Kind::kRelease, at_x, at_y, {}});
    return {0, Kind::kPress, at_x, at_y, {}};
}

Event Generator::Further(const WizardModel& wizard) {
    const Event pass{static_cast<int>(500 + Below(2700)), Kind::kPass, 0, 0, {}};
    const auto tap = [&](Control control) {
        const ControlRow& row = Controls()[control];
        return Tap(static_cast<int>(row.left + row.right) / 2,
                   static_cast<int>(row.top + row.bottom) / 2);
    };
    const auto command = [&](unsigned id) { return Event{0, Kind::kCommand, id, 0, {}}; };
    if (wizard.busy()) {
        switch (Below(8)) {
            case 0:
                return Card(0);
            case 1:
                return Percent(Any(kPercents));
            case 2:
                return Running(Below(5));
            default:
                return pass;
        }
    }
    if (wizard.notice_up())
        return tap(kOk);
    if (wizard.ac_offline() && OneIn(2))
        return {0, Kind::kPower, 1, 0, {}};
    switch (wizard.step()) {
        case kPowerOn:
            return tap(kNext);
        case kCheckCard:
            if (!wizard.visible(kNext))
                return OneIn(4) ? Card(1) : Card(0);
            return OneIn(3) ? command(kUpdateId) : tap(kNext);
        case kInsertCard:
            switch (Below(6)) {
                case 0:
                    return Percent(7);
                case 1:
                    return Running(2);
                case 2:
                    // An image, but no percent after the press.
                    pending_.push_back({20, Kind::kCommand, kUpdateId, 0, {}});
                    pending_.push_back({4500, Kind::kPass, 0, 0, {}});
                    return Report(Kind::kImage, 0x80, 0x2E, {0, '1', '2'});
                default:
                    return wizard.visible(kUpdate) ? tap(kUpdate) : Card(1);
            }
        case kUpdating:
            return Percent(Any(kPercents));
        case kWait:
            return pass;
        case kRemoveCard:
            return OneIn(3) ? tap(kNext) : OneIn(4) ? Card(0) : Running(2);
        case kResult:
            switch (Below(4)) {
                case 0:
                    pending_.push_back({1, Kind::kCommand, kUpdateId, 0, {}});
                    return {0, Kind::kHold, 100, 0, {}};
                case 1:
                    return command(kSuspendId);
                case 2:
                    return Report(Kind::kVersion, 0x20, 0x802E, Bytes(17, '1'));
                default:
                    return command(kUpdateId);
            }
        default:
            switch (Below(6)) {
                case 0:
                    pending_.push_back({50, Kind::kPower, 1, 0, {}});
                    return {0, Kind::kPower, 0, 0, {}};
                case 1:
                    return Percent(50);
                default:
                    return Card(Below(2));
            }
    }
}

Event Generator::Whatever() {
    std::discrete_distribution<std::size_t> by_weight(std::begin(kWeights), std::end(kWeights));
    const auto kind = static_cast<Kind>(by_weight(random_));
    Event event = OfKind(kind);
    switch (kind) {
        case Kind::kRunning:
            return Running(OneIn(4) ? Below(256) : Below(5));
        case Kind::kCard:
            return Card(OneIn(4) ? Below(256) : OneIn(3) ? Below(7) : Below(2));
        case Kind::kPercent:
            return Percent(Any(kPercents));
        case Kind::kImage: {
            Bytes payload = AnyText(8);
            payload.insert(payload.begin(), static_cast<std::uint8_t>(Any(kPercents)));
            return Report(kind, 0x80, 0x2E, payload);
        }
        case Kind::kVersion: {
            const std::string version = Any(kVersions);
            Bytes payload(version.begin(), version.end());
            if (OneIn(4))
                payload.resize(17);
            return Report(kind, 0x20, OneIn(4) ? 0x2E : 0x802E, payload);
        }
        case Kind::kReport:
            return Report(kind, OneIn(2) ? 0x20 : 0x80,
                          (OneIn(2) ? 0x8000 : 0) | (0x11 + Below(0x2D - 0x11 + 1)), AnyText(16));
        case Kind::kNoise:
            return Noise();
        case Kind::kPress:
        case Kind::kRelease: {
            // On a control or at its edge more often than beside all of them.
            const ControlRow& row =
                Controls()[OneIn(3) ? Below(kAllControls) : kSuspend + Below(kOk - kSuspend + 1)];
            event.a = static_cast<std::uint64_t>(OneIn(3) ? row.right - 1 + long(Below(2))
                                                          : (row.left + row.right) / 2);
            event.b = static_cast<std::uint64_t>(OneIn(3) ? row.top - long(Below(2))
                                                          : (row.top + row.bottom) / 2);
            if (OneIn(8))
                event.a = Below(800);
            event.a = std::min<std::uint64_t>(event.a, 799);
            if (event.b > 479)
                event.b = 0;
            return event;
        }
        case Kind::kCommand: {
            constexpr unsigned kIds[] = {kNextId, kUpdateId, kSuspendId, kOkId, 0, 4711};
            event.a = Any(kIds);
            return event;
        }
        case Kind::kTimer: {
            constexpr unsigned kIds[] = {257, 258, 259, 260, 261, 1, 999};
            event.a = Any(kIds);
            return event;
        }
        case Kind::kPower: {
            constexpr unsigned kLines[] = {0, 1, 1, 1, 255, 2, 0x101, 0x80000000, 0xFFFFFF00};
            event.a = Any(kLines);
            event.b = Below(256);
            return event;
        }
        case Kind::kSupply: {
            constexpr unsigned kLines[] = {0, 1, 1, 1, 255, 256};
            event.a = Any(kLines);
            event.b = Below(256);
            return event;
        }
        case Kind::kHold:
            event.a = Any(kPercents);
            return event;
        case Kind::kDriver:
            event.a = Below(5);
            event.b = Any(kErrors);
            // A scaler that is missing costs 12 seconds.
            if (event.a == 2 && event.b != 0 && !OneIn(4))
                event.b = 0;
            return event;
        case Kind::kNoticeCommand: {
            constexpr unsigned kIds[] = {kOkId, 0, kNextId};
            event.a = Any(kIds);
            return event;
        }
        case Kind::kMenu: {
            constexpr unsigned kIds[] = {0xE100, 0xE140, 1, 4711};
            event.a = Any(kIds);
            return event;
        }
        case Kind::kPass:
            event.milliseconds = static_cast<int>(200 + Below(2000));
            return event;
        default:
            return event;
    }
}

}  // namespace tests::model
