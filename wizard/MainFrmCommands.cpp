#include "app/log/DebugLog.h"
#include "wizard/MainFrm.h"

namespace {

constexpr DWORD kPollInterval = 100;

// Waits by polling, handling no message meanwhile, until the condition holds or the polls are used
// up.
template <typename Condition>
void PollUntil(Condition condition, int polls) {
    for (int i = 0; i < polls && !condition(); ++i)
        Sleep(kPollInterval);
}

}  // namespace

LRESULT CMainFrame::OnXCommand(UINT, WPARAM id, LPARAM, BOOL&) {
    switch (id) {
        case IDC_BTN_NEXT:
            OnNext();
            break;
        case IDC_BTN_UPDATE:
            OnUpdate();
            break;
        case IDC_BTN_SUSPEND:
            OnSuspend();
            break;
        case IDC_BTN_CLOSE:
            ::PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
            break;
        default:
            break;
    }
    return 0;
}

void CMainFrame::OnNext() {
    switch (m_nStep) {
        case STEP_POWER_ON:
            StartCheckCard();
            break;
        case STEP_CHECK_CARD:
            m_byUpdatePercent = 0;
            StartInsertCard();
            break;
        case STEP_REMOVE_CARD:
            StartResult();
            break;
        default:
            break;
    }
}

void CMainFrame::StartCheckCard() {
    if (!ShowNotice())
        return;
    m_byUpdatePercent = 0;
    HideButtons();
    m_bCardStatusReceived = FALSE;
    m_szDvrVersion.Clear();
    Reset_DVR();
    ArmTimer(TIMER_COMPOSITE_VIDEO, 100);
    PollUntil([this] { return m_bCardStatusReceived != FALSE; }, 40);
    m_nStep = STEP_CHECK_CARD;
    Repaint();
    Send(kFirmwareVersionQuery);
    Send(kStorageCardQuery);
}

void CMainFrame::StartInsertCard() {
    m_nStep = STEP_INSERT_CARD;
    HideButtons();
    Repaint();
    Reset_DVR();
    ArmTimer(TIMER_COMPOSITE_VIDEO, 100);
}

// The step stays until the restarted DVR reports that it runs normally.
void CMainFrame::StartResult() {
    m_byUpdatePercent = 0;
    m_szDvrVersion.Clear();
    HideButtons();
    Reset_DVR();
    ArmTimer(TIMER_COMPOSITE_VIDEO, 100);
    Repaint();
}

void CMainFrame::OnUpdate() {
    switch (m_nStep) {
        case STEP_CHECK_CARD:
            if (m_byCardStatus == DVR_STORAGE_CARD_PLUG_OUT)
                StartInsertCard();
            break;
        case STEP_INSERT_CARD:
            StartUpdate();
            break;
        case STEP_UPDATING:
        case STEP_WAIT:
        case STEP_REMOVE_CARD:
            break;
        case STEP_RESULT:
            RebootDvr();
            break;
        case STEP_REOPEN:
            HideSuspendAndUpdate();
            Repaint();
            break;
        default:
            HideButtons();
            Repaint();
            break;
    }
}

void CMainFrame::StartUpdate() {
    if (m_byUpdatePercent != 0) {
        HideButtons();
        Repaint();
        return;
    }
    m_nStep = STEP_UPDATING;
    HideButtons();
    NKDbgPrintfW(L"%s\t%S, Reset\r\n", kLogPrefix, "CMainFrame::OnXCommand");
    Reset_DVR();
    PollUntil([this] { return m_byUpdatePercent != 0; }, 20);
    // An image without a percent: the DVR had nothing to update.
    if (m_byUpdatePercent == 0 && m_byBinVersion != 0)
        m_nStep = STEP_RESULT;
    Repaint();
}

void CMainFrame::RebootDvr() {
    HideSuspendAndUpdate();
    if (m_byUpdatePercent != 100) {
        Repaint();
        return;
    }
    m_nStep = STEP_REOPEN;
    Repaint();
    Send(kSystemReboot);
    m_byRunningState = DVR_RUNNING_STATE_REBOOTTING;
    m_szDvrVersion.Clear();
    Repaint();
    PollUntil([this] { return m_byRunningState != DVR_RUNNING_STATE_REBOOTTING; }, 99);
    Sleep(1000);
    Send(kFirmwareVersionQuery);
}

void CMainFrame::OnSuspend() {
    if (m_nStep != STEP_RESULT) {
        HideButtons();
        Repaint();
        return;
    }
    m_szDvrVersion.Clear();
    m_nStep = STEP_REOPEN;
    HideButtons();
    Repaint();
    SuspendSystem();
}
