#pragma once

#include <array>
#include <memory>
#include <string>

#include "tests/bench/wizard_bench.h"
#include "tests/model/event.h"

namespace tests::model {

// What the wizard was doing when an event came.
enum class Situation { kIdle, kNotice, kBusy, kCount };

// How often each event came at each step (plus one) and situation.
using Coverage =
    std::array<std::array<std::array<std::uint64_t, static_cast<std::size_t>(Kind::kCount)>,
                          static_cast<std::size_t>(Situation::kCount)>,
               8>;

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
    static Coverage& Covered();

  private:
    void MoveTo(const Event& event);
    void Deliver(const Event& event);
    void DeliverClose(unsigned how);
    void Set(unsigned driver, unsigned error);
    std::string Compare(bool ended);
    std::string TakeLog();
    std::string CompareScreen() const;

    WizardBench bench_;
    WizardModel model_;
    HWND window_ = nullptr;
    std::size_t frames_seen_ = 0;
};

}  // namespace tests::model
