// The whole wizard behind the frame parser, in simulated time: the bytes of an input are events at
// its edges (bytes of the line, taps, messages, time), and the wizard must do what its model does.
// A difference is told with the events that lead to it.
#include <gtest/gtest.h>

#include <iterator>

#include "fuzz/input.h"
#include "fuzz/promise.h"
#include "tests/model/event.h"
#include "tests/model/link_model.h"
#include "tests/model/lockstep/campaign.h"
#include "tests/model/wizard_tables.h"

namespace {

using namespace tests::model;

constexpr std::size_t kMostEvents = 100;

template <std::size_t kCount>
unsigned OneOf(const unsigned (&values)[kCount], unsigned choice) {
    return values[choice % kCount];
}

// Up to 199 ms by the millisecond, up to 5.6 s by the tenth of a second.
int Delay(unsigned byte) {
    return static_cast<int>(byte < 200 ? byte : (byte - 199) * 100);
}

Bytes PayloadOf(fuzz::Input& input) {
    return input.Bytes(input.Byte() % 65);
}

void Touch(fuzz::Input& input, Event& event) {
    const unsigned place = input.Byte();
    if (place >= kAllControls) {
        event.a = input.Word() % 800;
        event.b = input.Word() % 480;
        return;
    }
    const ControlRow& row = Controls()[place];
    event.a = static_cast<std::uint64_t>((row.left + row.right) / 2) % 800;
    event.b = static_cast<std::uint64_t>((row.top + row.bottom) / 2) % 480;
}

void Fill(fuzz::Input& input, Event& event) {
    constexpr unsigned kMessages[] = {kCommandMessage, kTimerMessage, kMenuMessage};
    constexpr unsigned kParameters[] = {kNextId, kUpdateId, kSuspendId, kOkId, 0,      4711,
                                        257,     258,       259,        260,   0xE100, 261};
    constexpr unsigned kLines[] = {0, 1, 255, 2, 0x101, 0x80000000, 256};
    constexpr unsigned kErrors[] = {0, 2, 5, 31, 55};
    constexpr unsigned kToNotice[] = {kCommandMessage, kTimerMessage, kCloseMessage};
    switch (event.kind) {
        case Kind::kRunning:
            event.bytes = Frame(0x80, 0x0010, Bytes{input.Byte()});
            break;
        case Kind::kCard:
            event.bytes = Frame(0x80, 0x0026, Bytes{input.Byte(), 0});
            break;
        case Kind::kPercent:
            event.bytes = Frame(0x80, 0x002E, Bytes{input.Byte()});
            break;
        case Kind::kImage:
            event.bytes = Frame(0x80, 0x002E, PayloadOf(input));
            break;
        case Kind::kVersion:
            event.bytes = Frame(0x20, 0x802E, PayloadOf(input));
            break;
        case Kind::kReport: {
            const std::uint8_t type = input.Byte();
            const unsigned command = input.Word();
            event.bytes = Frame(type, command, PayloadOf(input));
            break;
        }
        case Kind::kNoise:
            event.bytes = input.Bytes(input.Byte());
            break;
        case Kind::kPress:
        case Kind::kRelease:
            Touch(input, event);
            break;
        case Kind::kPost:
            event.a = OneOf(kMessages, input.Byte());
            event.b = OneOf(kParameters, input.Byte());
            break;
        case Kind::kNotice:
            event.a = OneOf(kToNotice, input.Byte());
            event.b = event.a == kTimerMessage ? 1 : OneOf(kParameters, input.Byte());
            break;
        case Kind::kPower:
        case Kind::kSupply:
            event.a = OneOf(kLines, input.Byte());
            event.b = input.Byte();
            break;
        case Kind::kHold:
            event.a = input.Byte();
            break;
        case Kind::kDriver:
            event.a = input.Byte() % 5;
            event.b = OneOf(kErrors, input.Byte());
            break;
        case Kind::kClose:
            event.a = kCloseMessage;
            break;
        default:
            break;
    }
}

Sequence SequenceIn(fuzz::Input input) {
    Sequence sequence;
    const unsigned world = input.Byte();
    constexpr std::uint8_t kAcLines[] = {1, 0, 255, 1};
    sequence.world.ac_line = kAcLines[world & 3];
    sequence.world.has_link = (world & 4) == 0;
    sequence.start_milliseconds = (world & 8) == 0 ? 20000 : 1000;
    while (!input.AtEnd() && sequence.events.size() < kMostEvents) {
        Event event;
        event.kind = static_cast<Kind>(input.Byte() % static_cast<unsigned>(Kind::kCount));
        event.milliseconds = Delay(input.Byte());
        Fill(input, event);
        sequence.events.push_back(std::move(event));
    }
    return sequence;
}

// The bench says what it finds by way of assertions.
class Finding final : public testing::EmptyTestEventListener {
    void OnTestPartResult(const testing::TestPartResult& result) override {
        fuzz::Promise(!result.failed(), "the bench finds nothing wrong", result.message());
    }
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    testing::InitGoogleTest();
    testing::UnitTest::GetInstance()->listeners().Append(new Finding);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Sequence sequence = SequenceIn({data, size});
    const std::string difference = Replay(sequence);
    fuzz::Promise(difference.empty(), "the wizard does what its model does",
                  difference + "after\n" + ToText(sequence));
    return 0;
}
