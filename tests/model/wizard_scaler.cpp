#include "tests/model/wizard_model.h"

#include "tests/model/text.h"

namespace tests::model {
namespace {

using namespace std::chrono_literals;

}  // namespace

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

// Stages: 0 opens, 1 waits for the next attempt, 2 pauses after a late one; the attempts are
// counted in tens.
bool WizardModel::StartVideo(Activation& running) {
    constexpr int kMostAttempts = 121;
    const int stage = running.stage % 10;
    if (stage == 0) {
        Line("+++Mstar_C4_Scaler_Init");
        CloseScaler();
    } else if (now_ < running.wake) {
        return false;
    }
    if (stage != 2) {
        const bool tries = stage == 0 || now_ / 1ms > 12000;
        if (stage == 1 && tries)
            running.stage += 10;
        const bool opened = tries && OpenScaler();
        if (!opened && running.stage / 10 == kMostAttempts) {
            const unsigned error = world.scaler_open;
            Line(Text("\tMstar_C4_Scaler_Init, CreateFile() fail!!!, ErroCode(%u), #", error));
            CloseScaler();
            Line("---Mstar_C4_Scaler_Init");
            Line(Text("\tCMainFrame::OnTimer, Mstar_C4_Scaler_Init() fail!!!, ErroCode(%u), #",
                      error));
            return true;
        }
        if (!opened || stage == 1) {
            running.stage = running.stage - stage + (opened ? 2 : 1);
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
