#include <random>

#include "link_fixture.h"

namespace tests {
namespace {

// Another frame, without a payload.
const std::string kLanguage = "A55A 20 801A 0000 01B9";
const std::string kLanguageLine = "\tLanguage_ACK, (0x801A), Query";

TEST(ParseData, FindsFramesWhereverTheStreamIsSplit) {
    const std::string both = kVolumeLine + "\n" + kLanguageLine;
    const struct {
        const char* name;
        std::string bytes, log;
    } rows[] = {
        {"two frames", kVolume + kLanguage, both},
        {"garbage around", "00FFA5" + kVolume + "5A80" + kLanguage, both},
        {"false sync first", "A5" + kVolume, kVolumeLine},
        {"second sync byte first", "5A" + kVolume, kVolumeLine},
        {"sync pair as data", "A55A 80 0019 0002 A55A 0299" + kLanguage, both},
        {"length just beyond", "A55A 80 0019 0041" + kVolume, kVolumeLine},
        {"length high byte beyond", "A55A 80 0019 0100" + kVolume, kVolumeLine},
        {"length largest", "A55A 80 0019 FFFF" + kVolume, kVolumeLine},
        {"exact fit", "A55A 80 0019 0040" + Repeat(64, "A5") + "2B18" + kLanguage, both},
        {"wrong sum, low byte", "A55A 80 0019 0001 07 01A1" + kLanguage, kLanguageLine},
        {"wrong sum, high byte", "A55A 80 0019 0001 07 00A0" + kLanguage, kLanguageLine},
        {"sync pair as a wrong sum", "A55A 80 0019 0001 07 A55A" + kLanguage, kLanguageLine},
        {"sum ends as a sync pair begins", "A55A 80 0019 0001 0C 01A5 5A" + kLanguage, both},
        // The lost byte is made up from the next frame, which goes with it.
        {"lost byte", "A55A 80 0019 0001 07 01" + kVolume + kLanguage, kLanguageLine},
        // The text shows what an earlier frame left behind.
        {"payload cleared between frames",
         "A55A 80 002E 0004 05414243 027C A55A 80 002E 0002 065A 020F",
         "\tFW_Upgrade_Version_IND, (0x002E)\n\tFW_Upgrade_Version_IND, Percent:5%\n"
         "\tFW_Upgrade_Version_IND, Bin Version:ABC\n"
         "\tFW_Upgrade_Version_IND, (0x002E)\n\tFW_Upgrade_Version_IND, Percent:6%\n"
         "\tFW_Upgrade_Version_IND, Bin Version:Z"},
    };
    LinkFixture link;
    link.Run([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.name);
            const Bytes bytes = Hex(row.bytes);
            for (auto split = bytes.begin() + 1; split != bytes.end(); ++split) {
                LinkFixture::Parse({bytes.begin(), split});
                LinkFixture::Parse({split, bytes.end()});
                EXPECT_EQ(link.TakeLog(), row.log) << "split at " << split - bytes.begin();
            }
            for (const std::uint8_t byte : bytes)
                LinkFixture::Parse({byte});
            EXPECT_EQ(link.TakeLog(), row.log) << "byte by byte";
        }
    });
}

TEST(ParseData, RefusesNothingWithoutLosingItsPlace) {
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
        "\tUART_ParseData, (!p_byRead || nSize<=0) fail!!!, ErrorCode(0), Parser.cpp(#)\n";
    EXPECT_EQ(link.TakeLog(), refusal + refusal + kVolumeLine);
}

TEST(ParseData, RandomBytesLeaveTheNextFrameFound) {
    LinkFixture link;
    std::mt19937 random(20);
    link.Run([&] {
        for (int round = 0; round < 200; ++round) {
            Bytes noise(300);
            for (std::uint8_t& byte : noise) {
                // Sync pairs and short lengths often enough to get past them.
                const auto draw = static_cast<unsigned>(random());
                byte = draw % 4 == 0 ? 0xA5 : draw % 4 == 1 ? 0x5A : (draw >> 8) & 0xFF;
            }
            LinkFixture::Parse(noise);
            LinkFixture::Parse(Bytes(80));  // more than the rest of any frame
            link.TakeLog();
            LinkFixture::Parse(Hex(kVolume));
            ASSERT_EQ(link.TakeLog(), kVolumeLine) << "round " << round;
        }
    });
}

void Send(WORD command, const Bytes& payload) {
    // Without a payload the pointer must not be read.
    UART_SendCommand(command, payload.empty() ? nullptr : payload.data(),
                     static_cast<WORD>(payload.size()));
}

TEST(SendCommand, SendsWholeFramesAndRefusesWhatIsNone) {
    const struct {
        WORD command;
        Bytes payload;
        std::string wire;
    } rows[] = {
        {0x001C, {0}, "A55A 10 001C 0001 00 012C"},
        {0x0010, {}, "A55A 10 0010 0000 011F"},
        {0x8010, Bytes(64, 0xFF), "A55A 10 8010 0040" + Repeat(64, "FF") + "419F"},
    };
    const std::string refused =
        "\tUART_SendCommand, Invalid Arguments!!!, ErrorCode(0), UART.cpp(#)";
    LinkFixture link;
    const Bytes payload(65, 0x11);
    link.platform.Run([&] {
        SetLastError(ERROR_SUCCESS);
        Send(0x8010, {0});
        EXPECT_EQ(link.TakeLog(), refused) << "before the locks";
        ASSERT_TRUE(Memory_Init());
        Send(0x8010, {0});
        EXPECT_EQ(link.TakeLog(),
                  "\tUART_SendCommand, WriteFile() fail!!!, ErrorCode(6), UART.cpp(#)");
        ASSERT_TRUE(COM_Init());
        link.TakeLog();
        SetLastError(ERROR_SUCCESS);
        Send(0x8010, payload);
        UART_SendCommand(0x8010, nullptr, 1);
        UART_BuildFrame(0x8010, payload.data(), 0xFFFF);
        EXPECT_EQ(link.TakeLog(),
                  refused + "\n" + refused +
                      "\n\tUART_BuildFrame, Invalid Arguments!!!, ErrorCode(0), UART.cpp(#)");
        for (const auto& row : rows) {
            Send(row.command, row.payload);
            Sleep(100);
            EXPECT_EQ(std::exchange(link.received_by_dvr, {}), Hex(row.wire));
        }
        COM_DeInit();
        Memory_DeInit();
        SetLastError(ERROR_SUCCESS);
        Send(0x8010, {0});
        EXPECT_EQ(link.TakeLog(), refused) << "after the locks";
    });
}

TEST(CheckSum, SumsTheRecordOrRefuses) {
    LinkFixture link;
    DvrFrame frame = Record(Hex("80 0010" + Repeat(64, "FF")));
    DWORD sum = 7;
    EXPECT_FALSE(UART_CheckSum(&frame, sizeof frame, &sum)) << "before the locks";
    link.Run([&] {
        EXPECT_FALSE(UART_CheckSum(nullptr, sizeof frame, &sum));
        EXPECT_FALSE(UART_CheckSum(&frame, sizeof frame - 1, &sum));
        EXPECT_EQ(sum, 7U);
        EXPECT_TRUE(UART_CheckSum(&frame, sizeof frame, &sum));
        EXPECT_EQ(sum, 0x418FU) << "FF + 80 + 10 + 40 + 64 * FF";
        frame.length = 65;
        EXPECT_FALSE(UART_CheckSum(&frame, sizeof frame, &sum));
    });
}

}  // namespace
}  // namespace tests
