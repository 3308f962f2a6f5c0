#pragma once

#include <functional>
#include <vector>

#include "tests/model/event.h"

namespace tests::model {

// Generates events for a wizard; about half of them lead to its next step.
class Generator {
  public:
    // `choose` returns a number below its argument.
    explicit Generator(std::function<unsigned(unsigned limit)> choose)
        : choose_(std::move(choose)) {}

    Sequence Begin();
    Event Next(const WizardModel& wizard);
    // An event that closes the window.
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
    Event NextStep(const WizardModel& wizard);
    Event AnyEvent();
    Event Tap(Control control);
    Event Press(Kind kind);
    Event Report(Kind kind, std::uint8_t type, unsigned number, Bytes payload);
    Event Running(unsigned state);
    Event Card(unsigned status);
    Event Percent();
    Bytes Noise();
    Bytes AnyText(unsigned most);

    std::function<unsigned(unsigned limit)> choose_;
    std::vector<Event> pending_;  // comes next, the last one first
};

}  // namespace tests::model
