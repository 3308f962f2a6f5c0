#include "app/log/DebugLog.h"
#include "wizard/MainFrm.h"

UINT MSG_POWER_STATUS = 0;

// The first broadcast comes only when the supply changes; until then this is what counts.
void CMainFrame::ReadPowerSupply() {
    SYSTEM_POWER_STATUS_EX2 status{};
    if (GetSystemPowerStatusEx2(&status, sizeof status, TRUE) == 0) {
        LogFailure(L"%s\t%S, GetSystemPowerStatusEx2() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   "CMainFrame::OnCreate", GetLastError());
        return;
    }
    m_byACLineStatus = status.ACLineStatus;
    if (status.ACLineStatus == AC_LINE_OFFLINE)
        ShowPowerOffline();
}

LRESULT CMainFrame::OnPowerStatus(UINT, WPARAM wParam, LPARAM lParam, BOOL&) {
    constexpr char kFunction[] = "CMainFrame::OnPowerStatus";
    if (g_pMainFrame == nullptr)
        return 0;
    const BYTE status = LOBYTE(wParam);
    m_byACLineStatus = status;
    NKDbgPrintfW(L"%s\t''MSG_POWER_STATUS''( %08X, %08X ) Received.\r\n", kLogPrefix,
                 static_cast<UINT>(wParam), static_cast<UINT>(lParam));
    if (status == AC_LINE_ONLINE) {
        NKDbgPrintfW(L"%s\t%S, AC_LINE_ONLINE\r\n", kLogPrefix, kFunction);
        if (m_bACOffline)
            Restart();
    } else if (status == AC_LINE_OFFLINE) {
        NKDbgPrintfW(L"%s\t%S, AC_LINE_OFFLINE\r\n", kLogPrefix, kFunction);
        ShowPowerOffline();
        Repaint();
    }
    return 0;
}

void CMainFrame::Restart() {
    m_nStep = STEP_POWER_ON;
    m_bACOffline = FALSE;
    m_byUpdatePercent = 0;
    m_szDvrVersion.Clear();
    m_pBtnNext->SetVisible(TRUE);
    m_pBtnClose->SetVisible(FALSE);
    m_pBtnUpdate->SetVisible(FALSE);
    Repaint();
}

void CMainFrame::ShowPowerOffline() {
    m_bACOffline = TRUE;
    HideButtons();
    ApplyScreen(ScreenId::kPowerOffline);
}
