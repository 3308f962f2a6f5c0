#include "dvrlink/Handlers.h"
#include "link_fixture.h"

namespace tests {
namespace {

const std::string kRefused = ", Invalid Arguments!!!, ErrorCode(0), ";

TEST(ParseData, KeepsAFrameThatHasBegunOverARefusal) {
    LinkFixture link;
    const Bytes frame = Hex(kVolume);
    link.Run([&] {
        UART_ParseData(frame.data(), 5);
        SetLastError(ERROR_SUCCESS);
        UART_ParseData(nullptr, 3);
        UART_ParseData(frame.data(), 0);
        UART_ParseData(frame.data() + 5, static_cast<DWORD>(frame.size() - 5));
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
    std::string expected = "\tDispatch_Command" + kRefused + "UART.cpp(#)";
    for (const auto& [handler, name] : rows) {
        const BYTE other = name.ends_with("ACK") ? 0x80 : 0x20;
        handler({kFrameSync, other, 0x8026, 0, {}, 0});
        expected += "\n\t" + name + ", (0x8026), Invalid Arguments!!!";
    }
    EXPECT_EQ(link.TakeLog(), expected);
}

void Send(WORD command, const Bytes& payload) {
    // Without a payload the pointer must not be read.
    UART_SendCommand(command, payload.empty() ? nullptr : payload.data(),
                     static_cast<WORD>(payload.size()));
}

TEST(SendCommand, SendsWholeFramesAndRefusesInvalidArguments) {
    const struct {
        WORD command;
        Bytes payload;
        std::string wire;
    } rows[] = {
        {0x001C, {0}, "A55A 10 001C 0001 00 012C"},
        {0x0010, {}, "A55A 10 0010 0000 011F"},
        {0x8010, Bytes(64, 0xFF), "A55A 10 8010 0040" + Repeat(64, "FF") + "419F"},
    };
    const std::string refused = "\tUART_SendCommand" + kRefused + "UART.cpp(#)";
    LinkFixture link;
    const Bytes payload(65, 0x11);
    const auto log_of = [&](auto act) {
        link.TakeLog();
        SetLastError(ERROR_SUCCESS);
        act();
        return link.TakeLog();
    };
    link.platform.Run([&] {
        const auto one_byte = [] { Send(0x8010, {0}); };
        EXPECT_EQ(log_of(one_byte), refused) << "before the locks";
        ASSERT_TRUE(Memory_Init());
        EXPECT_EQ(log_of(one_byte),
                  "\tUART_SendCommand, WriteFile() fail!!!, ErrorCode(6), UART.cpp(#)");
        ASSERT_TRUE(COM_Init());
        EXPECT_EQ(log_of([&] { Send(0x8010, payload); }), refused);
        EXPECT_EQ(log_of([] { UART_SendCommand(0x8010, nullptr, 1); }), refused);
        EXPECT_EQ(log_of([&] { UART_BuildFrame(0x8010, payload.data(), 0xFFFF); }),
                  "\tUART_BuildFrame" + kRefused + "UART.cpp(#)");
        for (const auto& row : rows) {
            Send(row.command, row.payload);
            Sleep(100);
            EXPECT_EQ(std::exchange(link.received_by_dvr, {}), Hex(row.wire));
        }
        COM_DeInit();
        Memory_DeInit();
        EXPECT_EQ(log_of(one_byte), refused) << "after the locks";
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
        EXPECT_TRUE(UART_CheckSum(&frame, sizeof frame, &sum));
        EXPECT_EQ(sum, 0x418FU) << "FF + 80 + 10 + 40 + 64 * FF";
        EXPECT_TRUE(UART_CheckSum(&frame, sizeof frame, nullptr));
        frame.length = 65;
        EXPECT_FALSE(UART_CheckSum(&frame, sizeof frame, &sum));
    });
}

}  // namespace
}  // namespace tests
