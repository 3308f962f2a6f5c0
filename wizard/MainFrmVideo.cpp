#include "MStar_C4/MStar_C4_Scaler.h"
#include "app/log/DebugLog.h"
#include "wizard/MainFrm.h"

namespace {

constexpr DWORD kOpaque = 63;

}  // namespace

void CMainFrame::StartCompositeVideo() {
    if (!Mstar_C4_Scaler_Init()) {
        LogFailure(L"%s\t%S, Mstar_C4_Scaler_Init() fail!!!, ErroCode(%d), %S(%d)\r\n",
                   "CMainFrame::OnTimer", GetLastError());
        return;
    }
    Mstar_C4_Scaler_ChangeDisplayWinddow(0);
    Mstar_C4_Scaler_ShowCompositeVideo();
    Mstar_C4_Scaler_SetWindow2(0, 0, kScreenWidth, kScreenHeight);
    Mstar_C4_Scaler_SetAlpha(kOpaque);
    Mstar_C4_Scaler_ColorKey(1, kColorKey);
}

void CMainFrame::StopCompositeVideo() {
    Mstar_C4_Scaler_ChangeDisplayWinddow(1);
    Mstar_C4_Scaler_SetAlpha(kOpaque);
    Mstar_C4_Scaler_ColorKey(0, 0);
    Mstar_C4_Scaler_DeInit();
}
