#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tests/harness/wizard_harness.h"
#include "tests/model/event.h"

namespace tests::model {

// The program and the reference model side by side: each event goes to both, and both must show the
// same afterwards.
class Lockstep {
  public:
    Lockstep(const World& world, int start_milliseconds);
    ~Lockstep();
    Lockstep(const Lockstep&) = delete;
    Lockstep& operator=(const Lockstep&) = delete;

    // Returns the first difference after the event, as text; empty when there is none.
    std::string Apply(const Event& event);
    // Lets the program end, after the event that closes the window.
    std::string End();

    const WizardModel& model() const { return model_; }

  private:
    void MoveTo(const Event& event);
    void Deliver(const Event& event);
    void DeliverSupply(std::uint64_t line, std::uint64_t battery);
    void SetDriver(std::uint64_t driver, unsigned error);
    std::string Compare();
    Output TakeOutput();
    std::string CompareScreen() const;

    WizardHarness harness_;
    WizardModel model_;
    HWND window_ = nullptr;
};

// Runs both from the sequence's start with the events that `next` gives; without an event the
// window is closed. Returns the first difference; empty when there is none.
std::string RunBoth(const Sequence& sequence,
                    const std::function<std::optional<Event>(const WizardModel&)>& next);
// The same with the sequence's own events.
std::string Replay(const Sequence& sequence);

}  // namespace tests::model
