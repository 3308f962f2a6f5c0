#include <gtest/gtest.h>

#include <algorithm>

#include "dvrlink/Dispatch.h"
#include "link_fixture.h"
#include "tests/support/program_log.h"
#include "wizard/MainFrm.h"

namespace tests {
namespace {

using Log = std::vector<std::string>;

Bytes Text(const std::string& text) {
    return {text.begin(), text.end()};
}

void Dispatch(BYTE type, WORD command, const Bytes& payload) {
    DvrFrame frame{};
    frame.sync = kFrameSync;
    frame.type = type;
    frame.command = command;
    frame.length = static_cast<WORD>(payload.size());
    std::copy(payload.begin(), payload.end(), frame.payload);
    Dispatch_Command(&frame);
}

struct Logged {
    const char* name;
    BYTE type;
    WORD command;
    Bytes payload;
    Log lines;
};

// What the handlers log while there is no main frame.
const Logged kLogged[] = {
    {"RunningStateOrder", 0x20, 0x0010, {2}, {"\tDVR_RunningState_ACK, (0x0010)"}},
    {"RunningStateAnswer", 0x20, 0x8010, {2}, {"\tDVR_RunningState_ACK, (0x8010), Query"}},
    {"RunningStateReport",
     0x80,
     0x0010,
     {2},
     {"\tDVR_RunningState_IND, (0x0010)", "\tDVR_RunningState_IND, wLen invalid!!!"}},
    {"ModeVideo", 0x20, 0x8011, {0}, {"\tDVR_Mode_ACK, DVR_Mode:0, DVR_MODE_VIDEO"}},
    {"ModePhoto", 0x20, 0x0011, {1}, {"\tDVR_Mode_ACK, DVR_Mode:1, DVR_MODE_PHOTO"}},
    {"ModePlay",
     0x80,
     0x0011,
     {2},
     {"\tDVR_Mode_IND, (0x0011)", "\tDVR_Mode_IND, DVR_Mode:2, DVR_MODE_PLAY"}},
    {"ModeUnknown", 0x20, 0x8011, {3}, {"\tDVR_Mode_ACK, DVR_Mode:3, enDVR_Mode!!!"}},
    {"ModeLargest",
     0x80,
     0x8011,
     {255},
     {"\tDVR_Mode_IND, (0x8011), Query", "\tDVR_Mode_IND, DVR_Mode:255, enDVR_Mode!!!"}},
    {"ModeMissing", 0x20, 0x8011, {}, {"\tDVR_Mode_ACK, wLen invalid!!!"}},
    {"TimeTooShort", 0x20, 0x001F, Text("140901120000"), {"\tTime_ACK, wLen invalid!!!"}},
    {"TimeText", 0x20, 0x001F, Text("2014090112000"), {"\tTime_ACK, 2014090112000"}},
    {"TimeReportTooShort", 0x80, 0x001F, Text("140901120000"), {"\tTime_IND, wLen invalid!!!"}},
    {"TimeReport",
     0x80,
     0x001F,
     Text("2014090112000"),
     {"\tTime_IND, 2014090112000", "\tTime_IND, [32 30 31 34 30 39 30 31 31 32 30 30 30 "}},
    {"TimeOf64Characters", 0x20, 0x001F, Bytes(64, '7'), {"\tTime_ACK, " + std::string(64, '7')}},
    {"Recording",
     0x80,
     0x0022,
     {0x31, 0x00, 0x30, 0x31, 0x32, 0x33, 0x34, 0x35},
     {"\tVideo_Record_IND, VideoRecord: 0x1, Recording Time: 01:23:45"}},
    {"RecordingByNumber",
     0x80,
     0x0022,
     {0x01, 0x07, '9', '9', 'x', '9', '5', 'x'},
     {"\tVideo_Record_IND, VideoRecord: 0x1, Recording Time: 99:00:05"}},
    {"NotRecordingWithoutPayload",
     0x80,
     0x0022,
     {},
     {"\tVideo_Record_IND, VideoRecord: 0x0, Recording Time: 00:00:00"}},
    {"NotRecording",
     0x80,
     0x8022,
     {0x30, 0x00, '1', '2', '-', '1', ' ', '3'},
     {"\tVideo_Record_IND, VideoRecord: 0x0, Recording Time: 12:00:00"}},
    {"CardAnswer", 0x20, 0x8026, {1}, {"\tStorageCardStatus_ACK, (0x8026), Query"}},
    {"CardReport", 0x80, 0x0026, {1}, {"\tStorageCardStatus_IND, (0x0026)"}},
    {"VersionDefault",
     0x20,
     0x802E,
     Text("14.09.01.V1.02.0"),
     {"\tFW_Upgrade_Version_ACK, (0x802E), Query",
      "\tFW_Upgrade_Version_ACK, DVR Firmware : [14.04.25.V0.01.00]"}},
    {"Version",
     0x20,
     0x002E,
     Text("14.09.01.V1.02.03"),
     {"\tFW_Upgrade_Version_ACK, (0x002E)",
      "\tFW_Upgrade_Version_ACK, DVR Firmware : [14.09.01.V1.02.03]"}},
    {"VersionOf64Characters",
     0x20,
     0x802E,
     Bytes(64, 'v'),
     {"\tFW_Upgrade_Version_ACK, (0x802E), Query",
      "\tFW_Upgrade_Version_ACK, DVR Firmware : [" + std::string(64, 'v') + "]"}},
    {"Percent",
     0x80,
     0x002E,
     {0x32},
     {"\tFW_Upgrade_Version_IND, (0x002E)", "\tFW_Upgrade_Version_IND, Percent:50%"}},
    {"PercentAndImage",
     0x80,
     0x802E,
     {0x32, 0x31, 0x32, 0x2E, 0x30},
     {"\tFW_Upgrade_Version_IND, (0x802E), Query", "\tFW_Upgrade_Version_IND, Percent:50%",
      "\tFW_Upgrade_Version_IND, Bin Version:12.0"}},
    {"ImageOf63Characters",
     0x80,
     0x002E,
     Bytes(64, 'b'),
     {"\tFW_Upgrade_Version_IND, (0x002E)", "\tFW_Upgrade_Version_IND, Percent:98%",
      "\tFW_Upgrade_Version_IND, Bin Version:" + std::string(63, 'b')}},
};

class LoggedTest : public testing::TestWithParam<Logged> {
  protected:
    Platform platform_;
};

TEST_P(LoggedTest, WithoutAMainFrame) {
    const Logged& report = GetParam();
    Dispatch(report.type, report.command, report.payload);
    EXPECT_EQ(ProgramLog(platform_.board), report.lines);
}

INSTANTIATE_TEST_SUITE_P(Reports, LoggedTest, testing::ValuesIn(kLogged),
                         [](const auto& test) { return std::string(test.param.name); });

// A main frame that stands in a plain window, and what a report left of it.
class ReportTest : public testing::Test {
  protected:
    template <typename Body>
    void WithMainFrame(Body body) {
        platform_.Run([&] {
            WNDCLASSW window_class{};
            window_class.lpfnWndProc = DefWindowProcW;
            window_class.lpszClassName = L"Plain";
            RegisterClassW(&window_class);
            CMainFrame frame;
            frame.m_hWnd = CreateWindowExW(0, L"Plain", L"", WS_VISIBLE, 0, 0, 800, 480, nullptr,
                                           nullptr, nullptr, nullptr);
            ASSERT_NE(frame.m_hWnd, nullptr);
            g_pMainFrame = &frame;
            body(frame);
            g_pMainFrame = nullptr;
            DestroyWindow(frame.m_hWnd);
            frame.m_hWnd = nullptr;
        });
    }

    // Whether the whole client area is invalid, which it is no more afterwards.
    static bool TakeInvalidation(HWND window) {
        RECT invalid{};
        const bool invalidated = GetUpdateRect(window, &invalid, FALSE) != FALSE;
        RECT client{};
        GetClientRect(window, &client);
        ValidateRect(window, nullptr);
        return invalidated && EqualRect(&invalid, &client);
    }

    bool Logged(const std::string& part) const {
        const Log log = ProgramLog(platform_.board);
        return std::any_of(log.begin(), log.end(), [&part](const std::string& line) {
            return line.find(part) != std::string::npos;
        });
    }

    Platform platform_;
};

TEST_F(ReportTest, ProgressOfAnUpdate) {
    WithMainFrame([&](CMainFrame& frame) {
        TakeInvalidation(frame.m_hWnd);
        Dispatch(0x80, 0x002E, {0x32});
        EXPECT_EQ(frame.m_byUpdatePercent, 50);
        EXPECT_EQ(frame.m_byBinVersion, 0);
        EXPECT_TRUE(TakeInvalidation(frame.m_hWnd));
        Dispatch(0x80, 0x002E, {0x33, 0x31, 0x32});
        EXPECT_EQ(frame.m_byUpdatePercent, 51);
        EXPECT_EQ(frame.m_byBinVersion, 0x31);
        EXPECT_TRUE(TakeInvalidation(frame.m_hWnd));
        Dispatch(0x20, 0x0012, {1});
        EXPECT_FALSE(TakeInvalidation(frame.m_hWnd)) << "a plain handler repainted";
    });
}

TEST_F(ReportTest, FirmwareVersion) {
    WithMainFrame([&](CMainFrame& frame) {
        TakeInvalidation(frame.m_hWnd);
        Dispatch(0x20, 0x802E, Text("14.09.01.V1.02.03"));
        EXPECT_STREQ(frame.m_szDvrVersion.Load().data(), "1.02.03");
        EXPECT_TRUE(TakeInvalidation(frame.m_hWnd));
        Dispatch(0x20, 0x802E, {});
        EXPECT_STREQ(frame.m_szDvrVersion.Load().data(), "0.01.00");
        Dispatch(0x20, 0x002E, Bytes(64, 'v'));
        EXPECT_STREQ(frame.m_szDvrVersion.Load().data(), "vvvvvvv");
    });
}

TEST_F(ReportTest, RunningState) {
    WithMainFrame([&](CMainFrame& frame) {
        Dispatch(0x20, 0x0010, {3});
        EXPECT_EQ(frame.m_byRunningState, 0) << "the answer to an order";
        Dispatch(0x20, 0x8010, {3});
        EXPECT_EQ(frame.m_byRunningState, 3);
        Dispatch(0x80, 0x0010, {4});
        EXPECT_EQ(frame.m_byRunningState, 4);
        EXPECT_FALSE(Logged("wLen invalid!!!"));
        Dispatch(0x20, 0x8010, {});
        EXPECT_TRUE(Logged("\tDVR_RunningState_ACK, wLen invalid!!!"));
        Dispatch(0x80, 0x8010, {});
        EXPECT_TRUE(Logged("\tDVR_RunningState_IND, wLen invalid!!!"));
        EXPECT_EQ(frame.m_byRunningState, 4);
    });
}

struct CardReport {
    BYTE type;
    WORD command;
    Bytes payload;
    const char* passed_on;  // null when nothing is
};

TEST_F(ReportTest, StorageCard) {
    const CardReport reports[] = {
        {0x80, 0x0026, {1, 0x5A}, "Percent:90, DVR_STORAGE_CARD_PLUG_IN"},
        {0x80, 0x8026, {1, 0, 0x5A}, "Percent:90, DVR_STORAGE_CARD_PLUG_IN"},
        {0x80, 0x0026, {2}, "Percent:0, DVR_STORAGE_CARD_BROKEN"},
        {0x80, 0x0026, {}, "Percent:0, DVR_STORAGE_CARD_PLUG_OUT"},
        {0x20, 0x8026, {0, 7}, "Percent:7, DVR_STORAGE_CARD_PLUG_OUT"},
        {0x20, 0x8026, {3, 7, 8, 9}, "Percent:8, DVR_STORAGE_CARD_FORMATING"},
        {0x20, 0x0026, {1, 7}, nullptr},
    };
    WithMainFrame([&](CMainFrame&) {
        for (const CardReport& report : reports) {
            platform_.board.ClearOutput();
            Dispatch(report.type, report.command, report.payload);
            if (report.passed_on == nullptr) {
                EXPECT_FALSE(Logged("Percent:"));
            } else {
                EXPECT_TRUE(Logged(report.passed_on)) << report.passed_on;
            }
        }
    });
}

}  // namespace
}  // namespace tests
