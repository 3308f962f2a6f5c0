#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "unit/line/byte_slots.h"
#include "unit/line/fault_rule.h"

namespace unit {

// The faults of a serial line. Rules apply in the order in which they were added, each to the
// output of the one before. Any thread.
class LineFaults {
  public:
    // Returns the rule's number, which is never used again.
    int Add(FaultRule rule);
    // False when there is no such rule.
    bool Remove(int number);
    void Clear();

    struct Entry {
        int number;
        FaultRule rule;
        std::uint64_t matches;
        std::uint64_t applied;  // of the matches
    };
    std::vector<Entry> List() const;

    // `report` is given one line for each fault that is applied, on any thread, without the
    // kernel's lock; it must not call the line. Set before the line is used.
    void OnApplied(std::function<void(const std::string&)> report) { report_ = std::move(report); }

    // For the tap. True when a rule applies to this direction.
    bool ApplyTo(Direction direction) const;
    // True when a rule applies to frames of this direction.
    bool NeedFrames(Direction direction) const;
    // Applies the rules to a complete undamaged frame, or to bytes outside frames.
    ByteSlots Apply(Direction direction, std::span<const std::uint8_t> bytes, bool frame);

  private:
    struct Active {
        Entry entry;
        std::mt19937 random;

        bool Fires();
    };

    void ApplyToBytes(Active& active, ByteSlots& slots, std::vector<std::string>& lines) const;
    void Report(const Entry& entry, const std::string& what, std::vector<std::string>& lines) const;

    mutable std::mutex mutex_;
    std::vector<Active> rules_;
    int last_number_ = 0;
    std::function<void(const std::string&)> report_;
};

}  // namespace unit
