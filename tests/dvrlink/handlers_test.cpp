#include <sstream>

#include "dvrlink/Handlers.h"
#include "link_fixture.h"
#include "wizard/MainFrm.h"

namespace tests {
namespace {

// The command 0x0010 and those after it. The handlers of those with a star decode their payload,
// which is not seen here; the others only log that they were called.
const char kCommands[] =
    "DVR_RunningState* DVR_Mode* Video_Resolution Video_TimeStamp Video_CycleTime "
    "Video_SoundRecording Photo_Resolution Play_DeleteFile Play_Thumbnail Play_Volume Language "
    "Automatic_ShutDown System_Reboot Factory_DefaultSetting Frequency Time* Key Play_File "
    "Video_Record* Photo_Capture AC_LineStatus BatteryStatus StorageCardStatus* QueryInformation "
    "QueryFileName G_Sensor Normal_REC_Overwrite Event_REC_Overwrite Lock_UnLock_File "
    "EventTrigger FW_Upgrade_Version*";

// The log of a frame's handler. The payload ends with a text.
std::string Dispatched(LinkFixture& link, const std::string& digits, const std::string& text = "") {
    Bytes bytes = Hex(digits);
    bytes.insert(bytes.end(), text.begin(), text.end());
    const DvrFrame frame = Record(bytes);
    Dispatch_Command(&frame);
    return link.TakeLog();
}

TEST(Dispatch, EveryCodeReachesTheHandlerOfItsCommandAndType) {
    LinkFixture link;
    std::istringstream commands(kCommands);
    int number = 0x10;
    for (std::string name; commands >> name; ++number) {
        const bool decodes = name.back() == '*';
        for (const std::string high : {"00", "80"}) {
            for (const std::string type : {"20", "80"}) {
                std::ostringstream code;
                code << high << std::hex << std::uppercase << number;
                const std::string log = Dispatched(link, type + code.str());
                const std::string line = "\t" + name.substr(0, name.size() - decodes) +
                                         (type == "20" ? "_ACK, " : "_IND, ");
                EXPECT_TRUE(log.starts_with(line)) << log;
                const std::string rest = "(0x" + code.str() + ")" + (high == "80" ? ", Query" : "");
                EXPECT_TRUE(decodes || log == line + rest) << log;
            }
        }
    }
    EXPECT_EQ(number, 0x2F);
}

TEST(Dispatch, IgnoresOtherTypesAndCodesAndLogsAMissingFrame) {
    LinkFixture link;
    for (const std::string type : {"00", "10", "21", "40", "81", "A0", "FF"})
        EXPECT_EQ(Dispatched(link, type + "802E"), "") << type;
    for (const std::string code : {"0000", "000F", "002F", "0110", "4010", "7FFF", "800F", "802F"})
        EXPECT_EQ(Dispatched(link, "20" + code) + Dispatched(link, "80" + code), "") << code;
    SetLastError(ERROR_GEN_FAILURE);
    Dispatch_Command(nullptr);
    EXPECT_EQ(link.TakeLog(),
              "\tDispatch_Command, Invalid Arguments!!!, ErrorCode(31), Dispatch.cpp(#)");
}

TEST(Handlers, RefuseAFrameOfTheOtherType) {
    LinkFixture link;
    Video_Resolution_ACK(Record(Hex("80 8012")));
    DVR_Mode_IND(Record(Hex("20 0011")));
    FW_Upgrade_Version_IND(Record(Hex("10 802E")));
    EXPECT_EQ(link.TakeLog(),
              "\tVideo_Resolution_ACK, (0x8012), Invalid Arguments!!!\n"
              "\tDVR_Mode_IND, (0x0011), Invalid Arguments!!!\n"
              "\tFW_Upgrade_Version_IND, (0x802E), Invalid Arguments!!!");
}

struct Row {
    std::string frame, text, expected;
};

TEST(Handlers, LogWhatTheyDecodeWithoutAMainFrame) {
    const std::string record = "\tVideo_Record_IND, VideoRecord: ";
    const std::string version = "\tFW_Upgrade_Version_";
    const Row rows[] = {
        {"20 0010 02", "", "\tDVR_RunningState_ACK, (0x0010)"},
        {"20 8010 02", "", "\tDVR_RunningState_ACK, (0x8010), Query"},
        {"80 0010 02", "",
         "\tDVR_RunningState_IND, (0x0010)\n\tDVR_RunningState_IND, wLen invalid!!!"},
        {"20 8011 00", "", "\tDVR_Mode_ACK, DVR_Mode:0, DVR_MODE_VIDEO"},
        {"20 0011 01", "", "\tDVR_Mode_ACK, DVR_Mode:1, DVR_MODE_PHOTO"},
        {"20 0011 02", "", "\tDVR_Mode_ACK, DVR_Mode:2, DVR_MODE_PLAY"},
        {"20 8011 03", "", "\tDVR_Mode_ACK, DVR_Mode:3, enDVR_Mode!!!"},
        {"80 8011 FF", "",
         "\tDVR_Mode_IND, (0x8011), Query\n\tDVR_Mode_IND, DVR_Mode:255, enDVR_Mode!!!"},
        {"20 8011", "", "\tDVR_Mode_ACK, wLen invalid!!!"},
        {"20 001F", "140901120000", "\tTime_ACK, wLen invalid!!!"},
        {"80 001F", "140901120000", "\tTime_IND, wLen invalid!!!"},
        {"80 001F", "2014090112000",
         "\tTime_IND, 2014090112000\n\tTime_IND, [32 30 31 34 30 39 30 31 31 32 30 30 30 "},
        {"20 001F", Repeat(64, "7"), "\tTime_ACK, " + Repeat(64, "7")},
        {"20 0022 31", "", "\tVideo_Record_ACK, (0x0022)"},
        {"80 0022 3100", "012345", record + "0x1, Recording Time: 01:23:45"},
        {"80 0022 0107", "99x95x", record + "0x1, Recording Time: 99:00:05"},
        {"80 8022 3000", "12-1 3", record + "0x0, Recording Time: 12:00:00"},
        {"80 0022", "", record + "0x0, Recording Time: 00:00:00"},
        {"20 8026 01", "", "\tStorageCardStatus_ACK, (0x8026), Query"},
        {"80 0026 01", "", "\tStorageCardStatus_IND, (0x0026)"},
        {"20 002E", "14.09.01.V1.02.03",
         version + "ACK, (0x002E)\n" + version + "ACK, DVR Firmware : [14.09.01.V1.02.03]"},
        {"80 802E 62", Repeat(63, "b"),
         version + "IND, (0x802E), Query\n" + version + "IND, Percent:98%\n" + version +
             "IND, Bin Version:" + Repeat(63, "b")},
    };
    LinkFixture link;
    for (const Row& row : rows)
        EXPECT_EQ(Dispatched(link, row.frame, row.text), row.expected) << row.frame;
}

// What a main frame has been told, and whether all of its window is to be painted again, which is
// forgotten with the call.
std::string TakeState(const CMainFrame& frame) {
    RECT invalid{};
    RECT client{};
    const BOOL invalidated = GetUpdateRect(frame.m_hWnd, &invalid, FALSE);
    GetClientRect(frame.m_hWnd, &client);
    ValidateRect(frame.m_hWnd, nullptr);
    std::ostringstream state;
    state << int{frame.m_byUpdatePercent} << "% " << int{frame.m_byBinVersion} << " state "
          << int{frame.m_byRunningState} << " [" << frame.m_szDvrVersion.Load().data() << "] "
          << (invalidated && EqualRect(&invalid, &client) ? "repaint" : "still");
    return state.str();
}

TEST(Handlers, TellTheMainFrame) {
    // Each with a part of: the state, and the last line logged.
    const Row rows[] = {
        {"20 0012 01", "", "0% 0 state 0 [] still: \tVideo_Resolution_ACK, (0x0012)"},
        {"80 002E 32", "", "50% 0 state 0 [] repaint: \tFW_Upgrade_Version_IND, Percent:50%"},
        {"80 002E 33", "12", "51% 49 state 0 [] repaint: \tFW_Upgrade_Version_IND, Bin Version:12"},
        {"20 802E", "14.09.01.V1.02.03", " [1.02.03] repaint: "},
        {"20 802E", "14.09.01.V1.02.0",
         " [0.01.00] repaint: \tFW_Upgrade_Version_ACK, DVR Firmware : [14.04.25.V0.01.00]"},
        {"20 002E", Repeat(64, "v"),
         " [vvvvvvv] repaint: \tFW_Upgrade_Version_ACK, DVR Firmware : [" + Repeat(64, "v") + "]"},
        {"20 0010 03", "", " state 0 "},
        {"20 8010 03", "", " state 3 "},
        {"80 0010 04", "", " state 4 "},
        {"20 8010", "", " state 4 [vvvvvvv] still: \tDVR_RunningState_ACK, wLen invalid!!!"},
        {"80 8010", "", " state 4 [vvvvvvv] still: \tDVR_RunningState_IND, wLen invalid!!!"},
        {"80 0026 015A", "", "Percent:90, DVR_STORAGE_CARD_PLUG_IN"},
        {"80 8026 01005A", "", "Percent:90, DVR_STORAGE_CARD_PLUG_IN"},
        {"80 0026 02", "", "Percent:0, DVR_STORAGE_CARD_BROKEN"},
        {"80 0026", "", "Percent:0, DVR_STORAGE_CARD_PLUG_OUT"},
        {"20 8026 0007", "", "Percent:7, DVR_STORAGE_CARD_PLUG_OUT"},
        {"20 8026 03070809", "", "Percent:8, DVR_STORAGE_CARD_FORMATING"},
        {"20 0026 0107", "", ": \tStorageCardStatus_ACK, (0x0026)"},
    };
    LinkFixture link;
    link.platform.Run([&] {
        WNDCLASSW window_class{};
        window_class.lpfnWndProc = DefWindowProcW;
        window_class.lpszClassName = L"Plain";
        RegisterClassW(&window_class);
        CMainFrame frame;
        frame.m_hWnd = CreateWindowExW(0, L"Plain", L"", WS_VISIBLE, 0, 0, 800, 480, nullptr,
                                       nullptr, nullptr, nullptr);
        ASSERT_NE(frame.m_hWnd, nullptr);
        TakeState(frame);
        g_pMainFrame = &frame;
        for (const Row& row : rows) {
            const std::string log = "\n" + Dispatched(link, row.frame, row.text);
            const std::string told = TakeState(frame) + ": " + log.substr(log.rfind('\n') + 1);
            EXPECT_NE(told.find(row.expected), std::string::npos)
                << row.frame << " told: " << told << "\nexpected: " << row.expected;
        }
        g_pMainFrame = nullptr;
        DestroyWindow(frame.m_hWnd);
        frame.m_hWnd = nullptr;
    });
}

}  // namespace
}  // namespace tests
