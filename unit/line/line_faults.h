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

// The faults of a serial line: rules that apply in the order in which they were added, each to what
// the ones before it left. Any thread.
class LineFaults {
  public:
    // The number that the rule goes by from now on; never given twice.
    int Add(FaultRule rule);
    // False when there is no such rule.
    bool Remove(int number);
    void Clear();

    struct Entry {
        int number;
        FaultRule rule;
        std::uint64_t matches;  // what the rule is about came so often
        std::uint64_t applied;  // and was faulted so often
    };
    std::vector<Entry> List() const;

    // Hears one line for every fault as it is applied. Called on any thread, without locks of the
    // kernel; it must not call the line. Set before the line is used.
    void OnApplied(std::function<void(const std::string&)> hear) { hear_ = std::move(hear); }

    // For the tap in the line.
    bool Concern(Direction direction) const;
    // Whether a rule needs to know where frames begin and end.
    bool WantFrames(Direction direction) const;
    // What the bytes become: a whole undamaged frame, or bytes of none.
    ByteSlots Apply(Direction direction, std::span<const std::uint8_t> bytes, bool frame);

  private:
    struct Active {
        Entry entry;
        std::mt19937 random;

        bool Fires();
    };

    void ApplyToBytes(Active& active, ByteSlots& slots, std::vector<std::string>& lines) const;
    void Tell(const Entry& entry, const std::string& what, std::vector<std::string>& lines) const;

    mutable std::mutex mutex_;
    std::vector<Active> rules_;
    int last_number_ = 0;
    std::function<void(const std::string&)> hear_;
};

}  // namespace unit
