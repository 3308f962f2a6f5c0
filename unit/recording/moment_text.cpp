#include "unit/recording/moment_text.h"

#include <algorithm>
#include <cstdio>

#include "control/words.h"
#include "platform/kernel/text.h"

namespace unit {
namespace {

using control::QuoteWord;
using platform::kernel::ToUtf8;

template <class... Arguments>
std::string Format(const char* format, Arguments... arguments) {
    char text[96];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

std::string SupplyText(const platform::PowerSupply& supply) {
    return Format("line %d battery %d percent %d", supply.ac_line_status, supply.battery_flag,
                  supply.battery_life_percent);
}

// One word of one line: texts of screens may hold line ends.
std::string OneLineWord(std::string text) {
    for (char& character : text)
        if (static_cast<unsigned char>(character) < ' ')
            character = ' ';
    return QuoteWord(text);
}

struct Writer {
    std::string operator()(const LineBurst& burst) const {
        return std::string("line ") +
               (burst.direction == Direction::kToUnit ? "to-unit " : "to-dvr ") + BurstText(burst);
    }
    std::string operator()(const FingerMoved& finger) const {
        using platform::window::Touch;
        const char* const word = finger.touch == Touch::kDown ? "down"
                                 : finger.touch == Touch::kUp ? "up"
                                                              : "move";
        return Format("finger %s %d %d", word, finger.x, finger.y);
    }
    std::string operator()(const SupplyChanged& change) const {
        return "supply " + SupplyText(change.supply);
    }
    std::string operator()(const CardMoved& card) const {
        return card.in ? "card in " + OneLineWord(card.folder) : "card out";
    }
    std::string operator()(const DvrReset&) const { return "dvr reset"; }
    std::string operator()(const PowerRequested& request) const {
        return "request " + OneLineWord(ToUtf8(request.event_name));
    }
    std::string operator()(const DriverCalled& call) const {
        const std::string text = RequestText(call);
        return call.call == DriverCalled::Call::kClose ? text : text + Format(" -> %u", call.error);
    }
    std::string operator()(const SuspendChanged& change) const {
        return change.suspended ? "suspend" : "wake";
    }
    std::string operator()(const BroadcastPosted& broadcast) const {
        const std::string message = broadcast.name.empty() ? Format("0x%04X", broadcast.message)
                                                           : OneLineWord(ToUtf8(broadcast.name));
        return "broadcast " + message +
               Format(" 0x%X 0x%X", static_cast<DWORD>(broadcast.wparam),
                      static_cast<DWORD>(broadcast.lparam));
    }
    std::string operator()(const SettledScreen& screen) const {
        std::string text = "screen " + DigestText(screen.digest);
        for (const std::string& line : screen.texts)
            text += " " + OneLineWord(line);
        return text;
    }
    std::string operator()(const ScreenUnseen& unseen) const {
        return "unseen since " + TimeText(unseen.since);
    }
    std::string operator()(const BoardFaultSwitched& fault) const {
        if (fault.fault == BoardFaultSwitched::Fault::kHalRefuses)
            return fault.on ? "hal refuses" : "hal works";
        return fault.on ? "battery-driver fails" : "battery-driver works";
    }
    std::string operator()(const ClockJumped& jump) const {
        return "clock forward " + TimeText(jump.forward);
    }
    std::string operator()(const FaultApplied& fault) const {
        return "line-fault " + OneLineWord(fault.text);
    }
    std::string operator()(const CallFailed& failed) const {
        return "failed-call " + failed.call + " " + std::to_string(failed.number) +
               Format(" -> %u", failed.error);
    }
    std::string operator()(const ClosingBegan&) const { return "close"; }
    std::string operator()(const EventsLost& lost) const {
        return "lost " + std::to_string(lost.count);
    }
    std::string operator()(const RecordingEnded&) const { return "end"; }
};

}  // namespace

std::string MomentText(const Moment& moment) {
    return std::visit(Writer{}, moment);
}

std::string RequestText(const DriverCalled& call) {
    std::string text = "driver " + OneLineWord(ToUtf8(call.driver));
    if (call.call != DriverCalled::Call::kControl)
        return text + (call.call == DriverCalled::Call::kOpen ? " open" : " close");
    text += Format(" control 0x%04X", call.code);
    for (const std::byte byte : call.input)
        text += Format(" %02X", std::to_integer<unsigned>(byte));
    return text;
}

std::string TimeText(std::chrono::microseconds time) {
    constexpr long long kMicroseconds = 1'000'000;
    return Format("%lld.%06lld", static_cast<long long>(time.count()) / kMicroseconds,
                  static_cast<long long>(time.count()) % kMicroseconds);
}

std::string DigestText(std::uint64_t digest) {
    return Format("%016llx", static_cast<unsigned long long>(digest));
}

std::string HeaderText(const RecordingHeader& header) {
    std::string text = "tolvane recording " + std::to_string(kRecordingVersion) + "\n";
    text += "program " + QuoteWord(header.program) + "\n";
    if (header.Simulated())
        text += std::string("mode simulated") + (header.kernel.preempt ? " preempt" : "") +
                (header.kernel.waiting_repaints ? " waiting-repaints" : "") + "\n";
    else
        text += Format("mode free speed %g", header.kernel.speed) +
                (header.kernel.waiting_repaints ? " waiting-repaints" : "") + "\n";
    text += "seed " + std::to_string(header.kernel.seed) + "\n";
    text += "start " + TimeText(header.start) + "\n";
    text += "supply " + SupplyText(header.supply) + "\n";
    for (const WORD bitmap : header.missing_bitmaps)
        text += "missing-bitmap " + std::to_string(bitmap) + "\n";
    return text + "begin\n";
}

}  // namespace unit
