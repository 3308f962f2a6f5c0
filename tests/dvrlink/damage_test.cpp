#include "link_fixture.h"
#include "tests/model/link_model.h"

namespace tests {
namespace {

using model::Frame;

// The program must handle exactly the frames that the reference model finds in the bytes.
class DamagedStream : public testing::Test {
  protected:
    // In two chunks. The zeros at the end, more than any frame has bytes, end a frame that has
    // begun.
    void Try(Bytes bytes, std::size_t split = 1) {
        ++trials_;
        bytes.resize(bytes.size() + 80);
        const auto second = bytes.begin() + static_cast<std::ptrdiff_t>(split);
        LinkFixture::Parse({bytes.begin(), second});
        LinkFixture::Parse({second, bytes.end()});
        const std::wstring output = link_.platform.board.debug_output();
        link_.platform.board.ClearOutput();
        ASSERT_EQ(std::string(output.begin(), output.end()), model::HandlerLog(bytes))
            << testing::PrintToString(bytes) << " split at " << split;
    }

    // Every split, and every change, loss and insertion of one byte.
    void TryEverything(const Bytes& stream) {
        for (std::size_t at = 0; at < stream.size() && !HasFailure(); ++at) {
            Try(stream, at + 1);
            Bytes changed = stream;
            const auto place = changed.begin() + static_cast<std::ptrdiff_t>(at);
            for (unsigned value = 0; value < 256; ++value) {
                *place = static_cast<std::uint8_t>(value);
                Try(changed);
                Bytes more = changed;
                more.insert(more.begin() + static_cast<std::ptrdiff_t>(at), stream[at]);
                Try(more);
            }
            changed.erase(place);
            Try(changed);
        }
    }

    LinkFixture link_;
    std::size_t trials_ = 0;
};

TEST_F(DamagedStream, LosesTheSameFramesAsTheReferenceModel) {
    // Every command once as an acknowledgement and once as an indication.
    std::vector<Bytes> frames;
    for (unsigned command = 0x10; command <= 0x2E; ++command) {
        const auto number = static_cast<std::uint8_t>(command);
        frames.push_back(Frame(0x20, 0x8000 | command, Bytes{number}));
        frames.push_back(Frame(0x80, command, Bytes(command % 3, number)));
    }
    // Payloads that are decoded, contain a frame or a sync pair, or are the longest; the last one
    // must not show the payload before it.
    const Bytes inner_frame = Frame(0x20, 0x8013, Bytes{7});
    const struct {
        std::uint8_t type;
        unsigned command;
        std::string payload;
    } rows[] = {{0x20, 0x802E, "14.09.01.V1.02.03"},
                {0x80, 0x002E, "214.09.01.V1.02.03"},
                {0x80, 0x002E, "\6Z"},
                {0x80, 0x0022, "10012345"},
                {0x80, 0x0019, "\xA5\x5A"},
                {0x80, 0x0012, {inner_frame.begin(), inner_frame.end()}},
                {0x80, 0x001F, "2014090112000"},
                {0x80, 0x0017, "\1"},
                {0x80, 0x001F, Repeat(64, "\xA5")},
                {0x20, 0x8019, ""}};
    for (const auto& row : rows)
        frames.push_back(
            Frame(row.type, row.command, Bytes(row.payload.begin(), row.payload.end())));

    link_.Run([&] {
        // Three frames a stream.
        ASSERT_EQ(frames.size() % 3, 0U);
        for (auto frame = frames.begin(); frame != frames.end(); frame += 3) {
            Bytes stream = frame[0];
            for (const Bytes& next : {frame[1], frame[2]})
                stream.insert(stream.end(), next.begin(), next.end());
            TryEverything(stream);
        }
    });
    EXPECT_GT(trials_, 340'000U);
}

TEST_F(DamagedStream, UndamagedLogsWhatEveryHandlerDecodes) {
    std::vector<Bytes> payloads;
    for (const std::size_t length : {12, 13, 16, 17, 64})
        payloads.emplace_back(length, std::uint8_t{'5'});
    for (const char* digits : {"", "00", "01", "02", "03", "FF", "3000 31322D312033",
                               "3100 303132333435", "0107 393978393578"})
        payloads.push_back(Hex(digits));
    link_.Run([&] {
        for (const int type : {0x10, 0x20, 0x80})
            for (const unsigned query : {0x0000, 0x8000})
                for (unsigned command = 0x0F; command <= 0x2F; ++command)
                    for (const Bytes& payload : payloads)
                        Try(Frame(static_cast<std::uint8_t>(type), query | command, payload));
    });
}

}  // namespace
}  // namespace tests
