#include <iterator>

#include "app/log/DebugLog.h"
#include "wizard/MainFrm.h"

namespace {

// Indexed by the value reported.
constexpr const char* kRunningStateNames[] = {
    "DVR_RUNNING_STATE_INITIALIZING", "DVR_RUNNING_STATE_INIT_OK",     "DVR_RUNNING_STATE_NORMAL",
    "DVR_RUNNING_STATE_REBOOTTING",   "DVR_RUNNING_STATE_SHUTDOWNING",
};
static_assert(std::size(kRunningStateNames) == DVR_RUNNING_STATE_SHUTDOWNING + 1);

constexpr const char* kStorageCardNames[] = {
    "DVR_STORAGE_CARD_PLUG_OUT",
    "DVR_STORAGE_CARD_PLUG_IN",
    "DVR_STORAGE_CARD_BROKEN",
    "DVR_STORAGE_CARD_FORMATING",
    "DVR_STORAGE_CARD_SPACE_FULL_NORMAL_FILE",
    "DVR_STORAGE_CARD_SPACE_FULL_EVENT_FILE",
    "DVR_STORAGE_CARD_SPACE_FULL_BOTH_FILE",
};
static_assert(std::size(kStorageCardNames) == DVR_STORAGE_CARD_SPACE_FULL_BOTH_FILE + 1);

}  // namespace

int CMainFrame::DVR_RunningState(BYTE state) {
    constexpr char kFunction[] = "CMainFrame::DVR_RunningState";
    Send(kFirmwareVersionQuery);
    Send(kStorageCardQuery);

    if (state >= std::size(kRunningStateNames)) {
        NKDbgPrintfW(L"%s\t%S, %d, default!!!\r\n", kLogPrefix, kFunction, state);
        return 0;
    }
    m_byRunningState = state;
    if (state == DVR_RUNNING_STATE_NORMAL) {
        const int step = m_nStep;
        NKDbgPrintfW(L"%s\t%S, %d, %d, %S\r\n", kLogPrefix, kFunction, state, step,
                     kRunningStateNames[state]);
        OnDvrNormal(step);
    } else {
        NKDbgPrintfW(L"%s\t%S, %d, %S\r\n", kLogPrefix, kFunction, state,
                     kRunningStateNames[state]);
    }
    return 0;
}

void CMainFrame::OnDvrNormal(int step) {
    switch (step) {
        case STEP_CHECK_CARD:
            Repaint();
            break;
        case STEP_INSERT_CARD:
            ArmTimer(TIMER_WAIT_CARD_IN, 100);
            break;
        case STEP_REMOVE_CARD:
            // The returning AC line may have restarted the wizard just now; that must stand.
            if (!m_nStep.compare_exchange_strong(step, STEP_RESULT))
                break;
            m_pBtnNext->SetVisible(FALSE);
            m_pBtnUpdate->SetVisible(FALSE);
            ArmTimer(TIMER_REPAINT, 2000);
            break;
        default:
            break;
    }
}

int CMainFrame::StorageCardStatus(BYTE status, BYTE percent) {
    constexpr char kFunction[] = "CMainFrame::StorageCardStatus";
    Send(kFirmwareVersionQuery);
    if (m_byACLineStatus == AC_LINE_OFFLINE)
        return 0;
    m_bCardStatusReceived = TRUE;

    if (status >= std::size(kStorageCardNames)) {
        NKDbgPrintfW(L"%s\t%S, Percent:%d, default!!!\r\n", kLogPrefix, kFunction, percent);
        return 0;
    }
    if (status == DVR_STORAGE_CARD_PLUG_OUT || status == DVR_STORAGE_CARD_PLUG_IN)
        m_byCardStatus = status;
    NKDbgPrintfW(L"%s\t%S, Percent:%d, %S\r\n", kLogPrefix, kFunction, percent,
                 kStorageCardNames[status]);
    if (status == DVR_STORAGE_CARD_PLUG_OUT)
        OnCardOut();
    else if (status == DVR_STORAGE_CARD_PLUG_IN)
        OnCardIn();
    return 0;
}

// Neither report may wait for the window's thread at step -1: there that thread waits for the
// report.
void CMainFrame::OnCardOut() {
    switch (m_nStep) {
        case STEP_CHECK_CARD:
        case STEP_WAIT:
            m_pBtnNext->SetVisible(TRUE);
            break;
        case STEP_INSERT_CARD:
            m_pBtnNext->SetVisible(FALSE);
            break;
        case STEP_REOPEN:
            ArmTimer(TIMER_COMPOSITE_VIDEO, 100);
            return;
        default:
            return;
    }
    m_pBtnUpdate->SetVisible(FALSE);
    m_pBtnSuspend->SetVisible(FALSE);
    Repaint();
}

void CMainFrame::OnCardIn() {
    switch (m_nStep) {
        case STEP_CHECK_CARD:
            m_pBtnUpdate->SetVisible(FALSE);
            m_pBtnNext->SetVisible(FALSE);
            Repaint();
            ArmTimer(TIMER_WAIT_CARD_OUT, 100);
            break;
        case STEP_INSERT_CARD:
            m_pBtnNext->SetVisible(FALSE);
            m_pBtnUpdate->SetVisible(TRUE);
            m_pBtnSuspend->SetVisible(FALSE);
            Repaint();
            break;
        case STEP_REOPEN:
            ArmTimer(TIMER_COMPOSITE_VIDEO, 100);
            break;
        default:
            break;
    }
}
