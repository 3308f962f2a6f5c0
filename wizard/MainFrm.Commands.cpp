// The user's commands and the timers.
#include "wizard/MainFrm.h"
#include "dvrlink/Commands.h"
#include "dvrlink/DvrFrame.h"

namespace {

constexpr char kOnXCommand[] = "CMainFrame::OnXCommand";
constexpr DWORD kPollInterval = 100;

// Waits until the condition holds, for so many polls at most. No message is handled meanwhile.
template <typename Condition>
void PollUntil(Condition condition, int polls) {
    for (int i = 0; i < polls && !condition(); ++i)
        Sleep(kPollInterval);
}

}  // namespace

LRESULT CMainFrame::OnXCommand(UINT, WPARAM id, LPARAM, BOOL&) {
    // While the window waits for its threads to end, it still receives sent messages.
    if (!IsAlive())
        return 0;
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
    if (!ShowNotice(kOnXCommand))
        return;
    m_byUpdatePercent = 0;
    HideButtons();
    m_bCardStatusReceived = FALSE;
    m_szDvrVersion.Clear();
    Reset_DVR();
    ArmTimer(kOnXCommand, TIMER_COMPOSITE_VIDEO, 100);
    PollUntil([this] { return m_bCardStatusReceived != FALSE; }, 40);
    m_nStep = STEP_CHECK_CARD;
    Repaint();
    Send(DvrCommand::FW_Upgrade_Version | kQueryBit);
    Send(DvrCommand::StorageCardStatus | kQueryBit);
}

void CMainFrame::StartInsertCard() {
    m_nStep = STEP_INSERT_CARD;
    HideButtons();
    Repaint();
    Reset_DVR();
    ArmTimer(kOnXCommand, TIMER_COMPOSITE_VIDEO, 100);
}

// The step stays until the restarted DVR reports that it runs normally.
void CMainFrame::StartResult() {
    m_byUpdatePercent = 0;
    m_szDvrVersion.Clear();
    HideButtons();
    Reset_DVR();
    ArmTimer(kOnXCommand, TIMER_COMPOSITE_VIDEO, 100);
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
    NKDbgPrintfW(L"%s\t%S, Reset\r\n", kLogPrefix, kOnXCommand);
    Reset_DVR();
    PollUntil([this] { return m_byUpdatePercent != 0; }, 20);
    // The DVR reported an image but no progress.
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
    Send(DvrCommand::System_Reboot);
    m_byRunningState = DVR_RUNNING_STATE_REBOOTTING;
    m_szDvrVersion.Clear();
    Repaint();
    PollUntil([this] { return m_byRunningState != DVR_RUNNING_STATE_REBOOTTING; }, 99);
    Sleep(1000);
    Send(DvrCommand::FW_Upgrade_Version | kQueryBit);
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

LRESULT CMainFrame::OnTimer(UINT, WPARAM id, LPARAM, BOOL&) {
    // WM_TIMER can be sent too.
    if (!IsAlive())
        return 0;
    switch (id) {
        case TIMER_NOTIFY:
            OnNotifyTimer();
            break;
        case TIMER_WAIT_CARD_OUT:
            OnWaitCardOutTimer();
            break;
        case TIMER_WAIT_CARD_IN:
            OnWaitCardInTimer();
            break;
        case TIMER_COMPOSITE_VIDEO:
            OnCompositeVideoTimer();
            break;
        case TIMER_REPAINT:
            ::KillTimer(m_hWnd, id);
            Repaint();
            break;
        default:
            ::KillTimer(m_hWnd, id);
            break;
    }
    return 0;
}

void CMainFrame::OnNotifyTimer() {
    ::KillTimer(m_hWnd, TIMER_NOTIFY);
    if (m_nStep != STEP_WAIT)
        return;
    if (!ShowNotice("CMainFrame::OnTimer"))
        return;
    m_nStep = STEP_REMOVE_CARD;
    ShowOnly(m_pBtnNext);
    Repaint();
}

void CMainFrame::OnWaitCardOutTimer() {
    if (m_nStep != STEP_CHECK_CARD) {
        ::KillTimer(m_hWnd, TIMER_WAIT_CARD_OUT);
        return;
    }
    if (m_byCardStatus != DVR_STORAGE_CARD_PLUG_OUT)
        return;
    ::KillTimer(m_hWnd, TIMER_WAIT_CARD_OUT);
    ShowOnly(m_pBtnNext);
    Repaint();
}

void CMainFrame::OnWaitCardInTimer() {
    if (m_nStep != STEP_INSERT_CARD) {
        ::KillTimer(m_hWnd, TIMER_WAIT_CARD_IN);
        return;
    }
    if (m_byCardStatus != DVR_STORAGE_CARD_PLUG_IN)
        return;
    ::KillTimer(m_hWnd, TIMER_WAIT_CARD_IN);
    ShowOnly(m_pBtnUpdate);
    Repaint();
}

void CMainFrame::OnCompositeVideoTimer() {
    ::KillTimer(m_hWnd, TIMER_COMPOSITE_VIDEO);
    const int step = m_nStep;
    if (step == STEP_UPDATING || step == STEP_WAIT)
        return;
    if (step == STEP_CHECK_CARD && m_byCardStatus != DVR_STORAGE_CARD_PLUG_OUT)
        return;
    HideButtons();
    Repaint();
    StartCompositeVideo();
}
