#include "link_fixture.h"
#include "tests/model/link_model.h"

namespace tests {
namespace {

// A stream of a few frames goes to the program's parser damaged, or in parts, and the program must
// find exactly the frames that are in it by the rule. Nothing is left of one trial for the next:
// more zeros follow than any frame has bytes left.
class Damage : public testing::Test {
  protected:
    static constexpr std::size_t kLongestRest = 80;

    // The program's log of these bytes, and what it must be.
    void Try(Bytes bytes, const char* what, std::size_t at, unsigned value) {
        ++trials_;
        bytes.insert(bytes.end(), kLongestRest, 0);
        const std::string expected = Expected(bytes);
        LinkFixture::Parse(bytes);
        Compare(expected, what, at, value);
    }

    static std::string Expected(const Bytes& bytes) {
        model::FrameFinder finder;
        std::string log;
        for (const std::uint8_t byte : bytes)
            if (const auto report = finder.Add(byte))
                log += model::HandlerLog(*report, false);
        return log;
    }

    void Compare(const std::string& expected, const char* what, std::size_t at, unsigned value) {
        const std::wstring output = link_.platform.board.debug_output();
        link_.platform.board.ClearOutput();
        ASSERT_EQ(std::string(output.begin(), output.end()), expected)
            << what << " at " << at << ", " << value;
    }

    // Every split, and every change, loss and insertion of one byte.
    void TryEverything(const Bytes& stream) {
        const std::string whole = Expected(stream);
        for (std::size_t at = 0; at <= stream.size() && !HasFailure(); ++at) {
            const auto place = static_cast<std::ptrdiff_t>(at);
            if (at > 0 && at < stream.size()) {
                LinkFixture::Parse({stream.begin(), stream.begin() + place});
                LinkFixture::Parse({stream.begin() + place, stream.end()});
                Compare(whole, "split", at, 0);
            }
            for (unsigned value = 0; value < 256; ++value) {
                Bytes more = stream;
                more.insert(more.begin() + place, static_cast<std::uint8_t>(value));
                Try(std::move(more), "insertion", at, value);
            }
            if (at == stream.size())
                break;
            Bytes less = stream;
            less.erase(less.begin() + place);
            Try(std::move(less), "loss", at, stream[at]);
            for (unsigned value = 0; value < 256; ++value) {
                Bytes changed = stream;
                changed[at] = static_cast<std::uint8_t>(value);
                if (changed != stream)
                    Try(std::move(changed), "change", at, value);
            }
        }
    }

    LinkFixture link_;
    std::size_t trials_ = 0;
};

TEST_F(Damage, LosesExactlyTheFramesThatTheRuleLoses) {
    // Every command once as an acknowledgement and once as an indication, three to a stream.
    std::vector<Bytes> frames;
    for (unsigned command = 0x10; command <= 0x2E; ++command) {
        const auto number = static_cast<std::uint8_t>(command);
        frames.push_back(model::Frame(0x20, 0x8000 | command, Bytes{number}));
        frames.push_back(model::Frame(0x80, command, Bytes(command % 3, number)));
    }
    // And payloads that are decoded, or look like frames themselves.
    const std::string version = "14.09.01.V1.02.03";
    const auto with = [](Bytes begin, const std::string& text) {
        begin.insert(begin.end(), text.begin(), text.end());
        return begin;
    };
    frames.push_back(model::Frame(0x20, 0x802E, with({}, version)));
    frames.push_back(model::Frame(0x80, 0x002E, with({50}, version)));
    frames.push_back(model::Frame(0x80, 0x002E, Bytes{6, 'Z'}));  // shows what was left of the last
    frames.push_back(model::Frame(0x80, 0x0022, with({}, "10012345")));
    frames.push_back(model::Frame(0x80, 0x0019, Bytes{0xA5, 0x5A}));
    frames.push_back(model::Frame(0x80, 0x0012, model::Frame(0x20, 0x8013, Bytes{7})));
    frames.push_back(model::Frame(0x80, 0x001F, with({}, "2014090112000")));

    link_.Run([&] {
        for (std::size_t first = 0; first < frames.size(); first += 3) {
            Bytes stream;
            for (std::size_t i = first; i < first + 3; ++i)
                stream.insert(stream.end(), frames[i].begin(), frames[i].end());
            SCOPED_TRACE(first);
            TryEverything(stream);
        }
    });
    EXPECT_EQ(frames.size() % 3, 0U);
    EXPECT_GT(trials_, 300'000U);
}

TEST_F(Damage, OfTheLongestFrameIsNoException) {
    Bytes stream = model::Frame(0x80, 0x0017, Bytes{1});
    for (const auto& frame :
         {model::Frame(0x80, 0x001F, Bytes(64, 0xA5)), model::Frame(0x20, 0x8019, Bytes{})})
        stream.insert(stream.end(), frame.begin(), frame.end());
    link_.Run([&] { TryEverything(stream); });
    EXPECT_GT(trials_, 40'000U);
}

TEST_F(Damage, WhenThereIsNoneEveryHandlerLogsWhatItDecodes) {
    const std::string payloads[] = {"",
                                    "00",
                                    "01",
                                    "02",
                                    "03",
                                    "FF",
                                    "3000 31322D312033",
                                    "3100 303132333435",
                                    "0107 393978393578",
                                    Repeat(12, "31"),
                                    Repeat(13, "31"),
                                    Repeat(16, "35"),
                                    Repeat(17, "35"),
                                    Repeat(64, "37")};
    link_.Run([&] {
        for (const unsigned type : {0x10, 0x20, 0x80})
            for (unsigned command = 0x0F; command <= 0x2F; ++command)
                for (const unsigned query : {0x0000, 0x8000})
                    for (const std::string& payload : payloads)
                        Try(model::Frame(static_cast<std::uint8_t>(type), query | command,
                                         Hex(payload)),
                            "no damage", command, type);
    });
}

}  // namespace
}  // namespace tests
