#pragma once

#include <functional>
#include <vector>

#include "tests/model/event.h"

namespace tests::model {

// Makes events for a wizard in this state: about half of them take it further.
class Generator {
  public:
    // `choose` gives a number below the one that it is given.
    explicit Generator(std::function<unsigned(unsigned limit)> choose)
        : choose_(std::move(choose)) {}

    Sequence Begin();
    Event Next(const WizardModel& wizard);
    // One that closes the window.
    Event Last();

  private:
    unsigned Below(unsigned limit) { return choose_(limit); }
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

    std::function<unsigned(unsigned limit)> choose_;
    std::vector<Event> pending_;  // to follow, the next one last
};

}  // namespace tests::model
