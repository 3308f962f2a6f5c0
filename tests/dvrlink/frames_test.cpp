#include "dvrlink/Handlers.h"
#include "link_fixture.h"
#include "tests/model/link_model.h"

namespace tests {
namespace {

using model::Frame;

const std::string kRefused = ", Invalid Arguments!!!, ErrorCode(0), UART.cpp(#)";

TEST(ParseData, KeepsAFrameThatHasBegunOverARefusal) {
    LinkFixture link;
    const Bytes frame = Hex(kVolume);
    link.Run([&] {
        LinkFixture::Parse({frame.begin(), frame.begin() + 5});
        SetLastError(ERROR_SUCCESS);
        UART_ParseData(nullptr, 3);
        UART_ParseData(frame.data(), 0);
        LinkFixture::Parse({frame.begin() + 5, frame.end()});
    });
    const std::string refusal =
        "\tUART_ParseData, (!p_byRead || nSize<=0) fail!!!, ErrorCode(0), UART.cpp(#)\n";
    EXPECT_EQ(link.TakeLog(), refusal + refusal + kVolumeLine);
}

// The dispatcher calls no handler like this.
TEST(Handlers, RefuseNoFrameAndAFrameOfTheOtherType) {
    const std::pair<Handler*, std::string> rows[] = {
        {Video_Resolution_ACK, "Video_Resolution_ACK"},
        {StorageCardStatus_ACK, "StorageCardStatus_ACK"},
        {DVR_RunningState_IND, "DVR_RunningState_IND"},
        {FW_Upgrade_Version_IND, "FW_Upgrade_Version_IND"},
    };
    LinkFixture link;
    SetLastError(ERROR_SUCCESS);
    Dispatch_Command(nullptr);
    EXPECT_EQ(link.TakeLog(), "\tDispatch_Command" + kRefused);
    for (const auto& [handler, name] : rows) {
        const BYTE other = name.ends_with("ACK") ? 0x80 : 0x20;
        handler({kFrameSync, other, 0x8026, 0, {}, 0});
        EXPECT_EQ(link.TakeLog(), "\t" + name + ", (0x8026), Invalid Arguments!!!");
    }
}

TEST(SendCommand, SendsWholeFramesAndRefusesInvalidArguments) {
    LinkFixture link;
    const Bytes payload(65, 0xFF);
    // The log and what the DVR received.
    const auto result_of = [&](WORD command, const BYTE* bytes, WORD length) {
        SetLastError(ERROR_SUCCESS);
        UART_SendCommand(command, bytes, length);
        Sleep(100);
        return std::pair(link.TakeLog(), std::exchange(link.received_by_dvr, {}));
    };
    const std::pair refused("\tUART_SendCommand" + kRefused, Bytes());
    link.platform.Run([&] {
        EXPECT_EQ(result_of(0x8010, payload.data(), 1), refused) << "before the locks";
        ASSERT_TRUE(Memory_Init());
        EXPECT_EQ(result_of(0x8010, payload.data(), 1).first,
                  "\tUART_SendCommand, WriteFile() fail!!!, ErrorCode(6), UART.cpp(#)");
        ASSERT_TRUE(COM_Init());
        link.TakeLog();
        EXPECT_EQ(result_of(0x8010, payload.data(), 65), refused);
        EXPECT_EQ(result_of(0x8010, nullptr, 1), refused);
        UART_BuildFrame(0x8010, payload.data(), 0xFFFF);
        EXPECT_EQ(link.TakeLog(), "\tUART_BuildFrame" + kRefused);

        EXPECT_EQ(result_of(0x001C, payload.data(), 1).second, Hex("A55A 10 001C 0001 FF 022B"));
        EXPECT_EQ(result_of(0x0010, nullptr, 0).second, Hex("A55A 10 0010 0000 011F"));
        EXPECT_EQ(result_of(0x8010, payload.data(), 64).second,
                  Hex("A55A 10 8010 0040" + std::string(128, 'F') + "419F"));
        COM_DeInit();
        Memory_DeInit();
        EXPECT_EQ(result_of(0x8010, payload.data(), 1), refused) << "after the locks";
    });
}

TEST(CheckSum, SumsTheRecordOrRefuses) {
    LinkFixture link;
    DvrFrame frame{kFrameSync, 0x80, 0x0010, 64, {}, 0};
    std::fill_n(frame.payload, 64, BYTE{0xFF});
    DWORD sum = 7;
    EXPECT_FALSE(UART_CheckSum(&frame, sizeof frame, &sum)) << "before the locks";
    link.Run([&] {
        EXPECT_FALSE(UART_CheckSum(nullptr, sizeof frame, &sum));
        EXPECT_FALSE(UART_CheckSum(&frame, sizeof frame - 1, &sum));
        EXPECT_EQ(sum, 7U);
        EXPECT_TRUE(UART_CheckSum(&frame, sizeof frame, nullptr));
        EXPECT_TRUE(UART_CheckSum(&frame, sizeof frame, &sum));
        EXPECT_EQ(sum, 0x418FU) << "FF + 80 + 10 + 40 + 64 * FF";
        frame.length = 65;
        EXPECT_FALSE(UART_CheckSum(&frame, sizeof frame, &sum));
    });
}

// The program must handle exactly the frames that the reference model finds in the bytes.
class DamagedStream : public testing::Test {
  protected:
    // In two chunks. The zeros at the end, more than any frame has bytes, end a frame that has
    // begun.
    void Try(Bytes bytes, std::size_t split = 1) {
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
};

TEST_F(DamagedStream, LosesTheSameFramesAsTheReferenceModel) {
    // Payloads that are decoded, contain a frame or a sync pair, or are the longest.
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
                {0x80, 0x001F, std::string(64, '\xA5')}};
    // Its handler logs the first byte of a payload: not that of the frame before it.
    const Bytes empty_frame = Frame(0x80, 0x002E, Bytes());
    link_.Run([&] {
        for (const auto& row : rows) {
            Bytes stream =
                Frame(row.type, row.command, Bytes(row.payload.begin(), row.payload.end()));
            stream.insert(stream.end(), empty_frame.begin(), empty_frame.end());
            TryEverything(stream);
        }
    });
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
