#include <gtest/gtest.h>

#include <cstdio>

#include "dvrlink/Dispatch.h"
#include "dvrlink/Handlers.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/program_log.h"

namespace tests {
namespace {

using Log = std::vector<std::string>;

// The command 0x0010 and those after it.
const char* const kCommands[] = {
    "DVR_RunningState",
    "DVR_Mode",
    "Video_Resolution",
    "Video_TimeStamp",
    "Video_CycleTime",
    "Video_SoundRecording",
    "Photo_Resolution",
    "Play_DeleteFile",
    "Play_Thumbnail",
    "Play_Volume",
    "Language",
    "Automatic_ShutDown",
    "System_Reboot",
    "Factory_DefaultSetting",
    "Frequency",
    "Time",
    "Key",
    "Play_File",
    "Video_Record",
    "Photo_Capture",
    "AC_LineStatus",
    "BatteryStatus",
    "StorageCardStatus",
    "QueryInformation",
    "QueryFileName",
    "G_Sensor",
    "Normal_REC_Overwrite",
    "Event_REC_Overwrite",
    "Lock_UnLock_File",
    "EventTrigger",
    "FW_Upgrade_Version",
};

// Commands that one or both of their handlers decode; the others only log that they came.
bool IsDecoded(const std::string& command, bool indication) {
    return command == "DVR_RunningState" || command == "DVR_Mode" || command == "Time" ||
           command == "StorageCardStatus" || command == "FW_Upgrade_Version" ||
           (command == "Video_Record" && indication);
}

DvrFrame Frame(BYTE type, WORD command) {
    DvrFrame frame{};
    frame.sync = kFrameSync;
    frame.type = type;
    frame.command = command;
    return frame;
}

TEST(Dispatch, EveryCodeReachesTheHandlerOfItsCommandAndType) {
    Platform platform;
    int plain = 0;
    WORD number = 0x0010;
    for (const std::string command : kCommands) {
        for (const WORD query : {WORD{0x0000}, WORD{0x8000}}) {
            for (const BYTE type : {BYTE{0x20}, BYTE{0x80}}) {
                const bool indication = type == 0x80;
                const auto code = static_cast<WORD>(number | query);
                const std::string handler = command + (indication ? "_IND" : "_ACK");
                const DvrFrame frame = Frame(type, code);
                platform.board.ClearOutput();
                Dispatch_Command(&frame);
                const Log log = ProgramLog(platform.board);
                if (IsDecoded(command, indication)) {
                    ASSERT_FALSE(log.empty()) << handler;
                    EXPECT_TRUE(log[0].starts_with("\t" + handler + ", ")) << log[0];
                    continue;
                }
                char code_text[8] = {};
                std::snprintf(code_text, sizeof code_text, "0x%04X", code);
                EXPECT_EQ(log, Log{"\t" + handler + ", (" + code_text + ")" +
                                   (query != 0 ? ", Query" : "")});
                ++plain;
            }
        }
        ++number;
    }
    EXPECT_EQ(number, 0x002F);
    EXPECT_EQ(plain, 2 * 51);
}

TEST(Dispatch, IgnoresOtherTypesAndCodes) {
    constexpr BYTE kOtherTypes[] = {0x00, 0x10, 0x21, 0x40, 0x81, 0xA0, 0xFF};
    constexpr WORD kOtherCodes[] = {0x0000, 0x000F, 0x002F, 0x0110, 0x4010,
                                    0x7FFF, 0x8000, 0x800F, 0x802F, 0xFFFF};
    Platform platform;
    for (const BYTE type : kOtherTypes) {
        const DvrFrame frame = Frame(type, 0x802E);
        Dispatch_Command(&frame);
    }
    for (const WORD code : kOtherCodes) {
        for (const BYTE type : {BYTE{0x20}, BYTE{0x80}}) {
            const DvrFrame frame = Frame(type, code);
            Dispatch_Command(&frame);
        }
    }
    EXPECT_EQ(ProgramLog(platform.board), Log{});
}

TEST(Dispatch, LogsAMissingFrame) {
    Platform platform;
    SetLastError(ERROR_GEN_FAILURE);
    Dispatch_Command(nullptr);
    EXPECT_EQ(ProgramLog(platform.board),
              Log{"\tDispatch_Command, Invalid Arguments!!!, ErrorCode(31), Dispatch.cpp(#)"});
}

TEST(Handlers, RefuseAFrameOfTheOtherType) {
    Platform platform;
    Video_Resolution_ACK(Frame(0x80, 0x8012));
    Video_Resolution_IND(Frame(0x20, 0x0012));
    DVR_Mode_IND(Frame(0x20, 0x0011));
    DVR_RunningState_ACK(Frame(0x10, 0x8010));
    FW_Upgrade_Version_IND(Frame(0x20, 0x802E));
    EXPECT_EQ(ProgramLog(platform.board),
              (Log{"\tVideo_Resolution_ACK, (0x8012), Invalid Arguments!!!",
                   "\tVideo_Resolution_IND, (0x0012), Invalid Arguments!!!",
                   "\tDVR_Mode_IND, (0x0011), Invalid Arguments!!!",
                   "\tDVR_RunningState_ACK, (0x8010), Invalid Arguments!!!",
                   "\tFW_Upgrade_Version_IND, (0x802E), Invalid Arguments!!!"}));
}

}  // namespace
}  // namespace tests
