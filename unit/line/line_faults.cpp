#include "unit/line/line_faults.h"

#include <algorithm>
#include <utility>

#include "unit/line/fault_text.h"
#include "unit/line/frame_text.h"

namespace unit {
namespace {

// For each input chunk.
constexpr std::size_t kMaxReports = 10'000;

}  // namespace

int LineFaults::Add(FaultRule rule) {
    const std::scoped_lock lock(mutex_);
    std::mt19937 random(rule.seed);
    rules_.push_back({{++last_number_, std::move(rule), 0, 0}, random});
    return last_number_;
}

bool LineFaults::Remove(int number) {
    const std::scoped_lock lock(mutex_);
    return std::erase_if(rules_, [number](const Active& active) {
               return active.entry.number == number;
           }) > 0;
}

void LineFaults::Clear() {
    const std::scoped_lock lock(mutex_);
    rules_.clear();
}

std::vector<LineFaults::Entry> LineFaults::List() const {
    const std::scoped_lock lock(mutex_);
    std::vector<Entry> entries;
    entries.reserve(rules_.size());
    for (const Active& active : rules_)
        entries.push_back(active.entry);
    return entries;
}

bool LineFaults::ApplyTo(Direction direction) const {
    const std::scoped_lock lock(mutex_);
    return std::ranges::any_of(rules_, [direction](const Active& active) {
        return active.entry.rule.AppliesTo(direction);
    });
}

bool LineFaults::NeedFrames(Direction direction) const {
    const std::scoped_lock lock(mutex_);
    return std::ranges::any_of(rules_, [direction](const Active& active) {
        return active.entry.rule.frames && active.entry.rule.AppliesTo(direction);
    });
}

// Counts a match and returns whether the rule applies to it.
bool LineFaults::Active::Fires() {
    const FaultRule& rule = entry.rule;
    const std::uint64_t match = ++entry.matches;
    if (match <= rule.skip || (match - rule.skip) % rule.every != 0)
        return false;
    if (rule.times && entry.applied >= *rule.times)
        return false;
    constexpr double kAllNumbers = 4294967296.0;
    // Not a library distribution: their numbers differ between implementations.
    if (rule.chance_percent < 100 &&
        static_cast<double>(random()) >= kAllNumbers * rule.chance_percent / 100)
        return false;
    ++entry.applied;
    return true;
}

void LineFaults::Report(const Entry& entry, const std::string& what,
                        std::vector<std::string>& lines) const {
    if (report_ && lines.size() < kMaxReports)
        lines.push_back("fault " + std::to_string(entry.number) + " (" + ToText(entry.rule) +
                        "): " + what + ", " + std::to_string(entry.applied) + " so far");
}

void LineFaults::ApplyToBytes(Active& active, ByteSlots& slots,
                              std::vector<std::string>& lines) const {
    ByteSlots result;
    for (const ByteSlot& slot : slots) {
        if (result.size() >= kMaxSlots)
            break;
        if (!active.Fires()) {
            result.push_back(slot);
            continue;
        }
        const std::uint8_t value[] = {slot.value};
        Report(active.entry, "byte " + HexText(value), lines);
        const ByteSlots faulted = FaultByte(active.entry.rule, slot);
        result.insert(result.end(), faulted.begin(), faulted.end());
    }
    slots = std::move(result);
}

ByteSlots LineFaults::Apply(Direction direction, std::span<const std::uint8_t> bytes, bool frame) {
    ByteSlots slots = SlotsOf(bytes, frame);
    std::vector<std::string> lines;
    {
        const std::scoped_lock lock(mutex_);
        for (Active& active : rules_) {
            const FaultRule& rule = active.entry.rule;
            if (!rule.AppliesTo(direction))
                continue;
            if (!rule.frames) {
                ApplyToBytes(active, slots, lines);
                continue;
            }
            if (!frame || !rule.frames->Matches(bytes) || !HasPart(rule, slots, bytes.size()) ||
                !active.Fires())
                continue;
            Report(active.entry, FrameName(bytes), lines);
            FaultFrame(rule, slots, bytes.size());
        }
    }
    for (const std::string& line : lines)
        report_(line);
    return slots;
}

}  // namespace unit
