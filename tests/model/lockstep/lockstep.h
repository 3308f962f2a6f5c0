#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <tuple>

#include "tests/harness/wizard_harness.h"
#include "tests/model/event.h"

namespace tests::model {

// What the wizard was doing when an event came.
enum class Situation { kIdle, kNotice, kBusy };

// The program and its model side by side: each event goes to both, and whatever can be seen of one
// must be seen of the other.
class Lockstep {
  public:
    Lockstep(const World& world, int start_milliseconds);
    ~Lockstep();
    Lockstep(const Lockstep&) = delete;
    Lockstep& operator=(const Lockstep&) = delete;

    // The first difference after the event, in words; empty when there is none.
    std::string Apply(const Event& event);
    // To be called once the window has been told to close: lets the program end.
    std::string End();

    const WizardModel& model() const { return model_; }
    // At which step and when which events came, in all runs of the process.
    static std::set<std::tuple<int, Situation, Kind>>& Covered();

  private:
    void MoveTo(const Event& event);
    void Deliver(const Event& event);
    void DeliverSupply(std::uint64_t line, std::uint64_t battery);
    void SetDriver(std::uint64_t driver, unsigned error);
    std::string Compare();
    Account TakeOutput();
    std::string CompareScreen() const;

    WizardHarness harness_;
    WizardModel model_;
    HWND window_ = nullptr;
};

// The program and its model from the sequence's beginning on, with the events that `next` gives.
// When there is none the window is closed. The first difference; empty when there is none.
std::string RunBoth(const Sequence& sequence,
                    const std::function<std::optional<Event>(const WizardModel&)>& next);
// With the sequence's own events.
std::string Replay(const Sequence& sequence);

}  // namespace tests::model
