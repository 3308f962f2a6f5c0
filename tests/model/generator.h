#pragma once

#include <random>
#include <vector>

#include "tests/model/event.h"

namespace tests::model {

// Makes events for a wizard in this state: about half of them take it further.
class Generator {
  public:
    explicit Generator(std::uint64_t seed) : random_(seed) {}

    Sequence Begin();
    Event Next(const WizardModel& wizard);
    // One that closes the window.
    Event Last();

  private:
    unsigned Below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    int Between(unsigned least, unsigned most) { return int(least + Below(most - least + 1)); }
    bool OneIn(unsigned count) { return Below(count) == 0; }
    template <typename Value, std::size_t kCount>
    Value Any(const Value (&values)[kCount]) {
        return values[Below(kCount)];
    }
    int Delay();
    Event Further(const WizardModel& wizard);
    Event Whatever();
    Event Tap(Control control);
    Event Press(Kind kind);
    Event Report(Kind kind, std::uint8_t type, unsigned number, Bytes payload);
    Event Running(unsigned state);
    Event Card(unsigned status);
    Event Percent();
    Bytes Noise();
    Bytes AnyText(unsigned most);

    std::mt19937_64 random_;
    std::vector<Event> pending_;  // to follow, the next one last
};

}  // namespace tests::model
