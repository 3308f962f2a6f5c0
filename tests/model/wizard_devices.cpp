// The link's reports and the scaler.
#include <iterator>

#include "tests/model/wizard_model.h"

namespace tests::model {

using namespace std::chrono_literals;

namespace {

// clang-format off
constexpr const char* kStates[] = {
    "INITIALIZING", "INIT_OK", "NORMAL", "REBOOTTING", "SHUTDOWNING"};
constexpr const char* kCards[] = {
    "PLUG_OUT", "PLUG_IN", "BROKEN", "FORMATING", "SPACE_FULL_NORMAL_FILE",
    "SPACE_FULL_EVENT_FILE", "SPACE_FULL_BOTH_FILE"};
// clang-format on

}  // namespace

void WizardModel::Send(int command) {
    if (world.has_link)
        output[kFrames] += Text("%04X; ", command);
    else
        Failure("UART_SendCommand", "WriteFile() fail!!!", 6);
}

void WizardModel::Receive(std::span<const std::uint8_t> bytes) {
    if (!world.has_link || closed_)
        return;
    receiving_ = true;
    for (const std::uint8_t byte : bytes)
        if (const auto report = finder_.Add(byte))
            OnReport(*report);
    receiving_ = false;
    reading_since_ = now_;
}

void WizardModel::OnReport(const Report& report) {
    output[kLog] += HandlerLog(report, true);
    const bool ack = report.type == 0x20;
    if (!ack && report.type != 0x80)
        return;
    const std::size_t length = report.payload.size();
    switch (report.command & 0x7FFF) {
        case 0x10:
            if ((report.query() || !ack) && length != 0)
                OnRunningState(report.byte(0));
            break;
        case 0x26:
            if (report.query() || !ack)
                OnCard(report.byte(0), report.byte(length == 2 ? 1 : 2));
            break;
        case 0x2E:
            if (ack) {
                const char* const usual = "0.01.00";
                for (std::size_t at = 0; at < 7; ++at)
                    version_[at] =
                        length < 17 ? usual[at] : static_cast<char>(report.byte(10 + at));
            } else {
                percent_ = report.byte(0);
                if (length >= 2)
                    image_version_ = report.byte(1);
            }
            main_.invalid = true;
            break;
        default:
            break;
    }
}

void WizardModel::OnRunningState(unsigned state) {
    Send(0x802E);
    Send(0x8026);
    const std::string begin = Text("\tCMainFrame::DVR_RunningState, %u, ", state);
    if (state >= std::size(kStates)) {
        Line(begin + "default!!!");
        return;
    }
    SetRunningState(static_cast<int>(state));
    const std::string step = state == 2 ? Text("%d, ", step_) : "";
    Line(begin + step + "DVR_RUNNING_STATE_" + kStates[state]);
    Take(Trigger::kRunningState, state);
}

void WizardModel::OnCard(unsigned status, unsigned percent) {
    Send(0x802E);
    if (ac_line_ == 0)
        return;
    card_report_ = true;
    const std::string begin = Text("\tCMainFrame::StorageCardStatus, Percent:%u, ", percent);
    if (status >= std::size(kCards)) {
        Line(begin + "default!!!");
        return;
    }
    if (status <= 1)
        card_ = static_cast<std::uint8_t>(status);
    Line(begin + "DVR_STORAGE_CARD_" + kCards[status]);
    Take(Trigger::kCard, status);
}

bool WizardModel::OpenScaler() {
    output[kScalerOpens] += 'o';
    scaler_open_ = world.scaler_open == 0;
    return scaler_open_;
}

void WizardModel::CloseScaler() {
    scaler_open_ = false;
    for (const char* line : {"+++Mstar_C4_Scaler_DeInit", "+++Mstar_C4_Scaler_FreeMemory",
                             "---Mstar_C4_Scaler_FreeMemory", "---Mstar_C4_Scaler_DeInit"})
        Line(line);
}

// Phases: 0 opens, 1 waits for the next attempt, 2 pauses after a late success; the tens count the
// attempts.
bool WizardModel::StartVideo(Activation& running) {
    constexpr int kMostAttempts = 121;
    const int phase = running.phase % 10;
    if (phase == 0) {
        Line("+++Mstar_C4_Scaler_Init");
        CloseScaler();
    } else if (now_ < running.wake) {
        return false;
    }
    if (phase != 2) {
        const bool tries = phase == 0 || now_ / 1ms > 12000;
        if (phase == 1 && tries)
            running.phase += 10;
        const bool opened = tries && OpenScaler();
        if (!opened && running.phase / 10 == kMostAttempts) {
            const unsigned error = world.scaler_open;
            Line(Text("\tMstar_C4_Scaler_Init, CreateFile() fail!!!, ErroCode(%u), #", error));
            CloseScaler();
            Line("---Mstar_C4_Scaler_Init");
            Line(Text("\tCMainFrame::OnTimer, Mstar_C4_Scaler_Init() fail!!!, ErroCode(%u), #",
                      error));
            return true;
        }
        if (!opened || phase == 1) {
            running.phase = running.phase - phase + (opened ? 2 : 1);
            running.wake = now_ + 100ms;
            return false;
        }
    }
    Line("---Mstar_C4_Scaler_Init");
    ShowVideo();
    return true;
}

void WizardModel::Scale(const char* function, const char* request, const char* failure) {
    if (!scaler_open_) {
        Line(Text("\t%s, Invalid Arguments!!!, ErroCode(?), #", function));
        return;
    }
    output[kScalerRequests] += std::string(request) + "; ";
    if (world.scaler_request != 0)
        Line(Text("\t%s, %s fail!!!, ErroCode(%u), #", function, failure, world.scaler_request));
}

void WizardModel::ShowVideo() {
    const auto alpha = [this] {
        Scale("Mstar_C4_Scaler_SetAlpha", "80012070 3F 00 00 00 ->4", "OSKA set alpha");
    };
    const auto key = [this] {
        Scale("Mstar_C4_Scaler_ColorKey", "80012078 00 10 00 00 01 00 00 00 ->4",
              "OSKA Scaler set ColorKey");
    };
    Scale("Mstar_C4_Scaler_ChangeDisplayWinddow", "800120B0 00 00 00 00 ->4", "DeviceIoControl()");
    Scale("Mstar_C4_Scaler_SW2GOP", "8001206C 01 00 00 00 ->4", "DeviceIoControl()");
    Scale("Mstar_C4_Scaler_Sw2Scaler", "80012068 01 00 00 00 ->4", "OSKA sw to scaler");
    alpha();
    key();
    Line("+++Mstar_C4_Scaler_SetWindow");
    // 0; source 10, 49, 695, 375; input 720 x 480; display 0, 0, 800, 480; 0, 1; padding
    Scale("Mstar_C4_Scaler_SetWindow",
          "1B001B 00 00 00 00 0A 00 31 00 B7 02 77 01 D0 02 E0 01 00 00 00 00 20 03 E0 01 00 01 "
          "00 00",
          "DeviceIoControl()");
    Line("---Mstar_C4_Scaler_SetWindow");
    alpha();
    key();
}

void WizardModel::Close() {
    closed_ = true;
    if (world.has_link)
        Line("---ThreadProc_COM_Rx");
    Scale("Mstar_C4_Scaler_ChangeDisplayWinddow", "800120B0 01 00 00 00 ->4", "DeviceIoControl()");
    Scale("Mstar_C4_Scaler_SetAlpha", "80012070 3F 00 00 00 ->4", "OSKA set alpha");
    Scale("Mstar_C4_Scaler_ColorKey", "80012078 00 00 00 00 00 00 00 00 ->4",
          "OSKA Scaler set ColorKey");
    CloseScaler();
    for (int times = 0; times < 2; ++times) {
        Line("+++CPowerDetector::DeInit");
        Line("---CPowerDetector::DeInit");
    }
    Line("---CPowerDetector::ThreadProc_PowerCommonCtrl");
}

}  // namespace tests::model
