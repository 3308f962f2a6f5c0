// The whole wizard behind the frame parser, in simulated time: the bytes of an input choose events
// at its external interfaces (bytes of the line, taps, messages, time), and the wizard must do what
// its reference model does. A difference is printed with the events that led to it.
#include <gtest/gtest.h>

#include "fuzz/fuzz.h"
#include "tests/model/generator.h"
#include "tests/model/lockstep/lockstep.h"

namespace {

using namespace tests::model;

constexpr std::size_t kMostEvents = 100;

// The harness reports what it finds in assertions.
class Finding final : public testing::EmptyTestEventListener {
    void OnTestPartResult(const testing::TestPartResult& result) override {
        fuzz::Check(!result.failed(), "the harness finds nothing wrong", result.message());
    }
};

}  // namespace

void fuzz::Try(Input input) {
    static bool prepared = false;
    if (!std::exchange(prepared, true)) {
        testing::InitGoogleTest();
        testing::UnitTest::GetInstance()->listeners().Append(new Finding);
    }
    Generator generator(
        [&input](unsigned limit) { return (limit <= 256 ? input.Byte() : input.Word()) % limit; });
    Sequence sequence = generator.Begin();
    const std::string difference =
        RunBoth(sequence, [&](const WizardModel& wizard) -> std::optional<Event> {
            if (input.AtEnd() || sequence.events.size() == kMostEvents)
                return std::nullopt;
            sequence.events.push_back(generator.Next(wizard));
            return sequence.events.back();
        });
    fuzz::Check(difference.empty(), "the wizard does what its model does",
                difference + "after\n" + ToText(sequence));
}
