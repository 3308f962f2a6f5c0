// The DVR's reports, on the receive thread, and the unit's power status.
#include <iterator>

#include "dvrlink/Commands.h"
#include "dvrlink/DvrFrame.h"
#include "wizard/DvrReports.h"
#include "wizard/MainFrm.h"

namespace {

constexpr char kRunningState[] = "CMainFrame::DVR_RunningState";
constexpr char kStorageCard[] = "CMainFrame::StorageCardStatus";

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
    Send(DvrCommand::FW_Upgrade_Version | kQueryBit);
    Send(DvrCommand::StorageCardStatus | kQueryBit);

    if (state >= std::size(kRunningStateNames)) {
        NKDbgPrintfW(L"%s\t%S, %d, default!!!\r\n", kLogPrefix, kRunningState, state);
        return 0;
    }
    m_byRunningState = state;
    if (state == DVR_RUNNING_STATE_NORMAL) {
        const int step = m_nStep;
        NKDbgPrintfW(L"%s\t%S, %d, %d, %S\r\n", kLogPrefix, kRunningState, state, step,
                     kRunningStateNames[state]);
        OnDvrNormal(step);
    } else {
        NKDbgPrintfW(L"%s\t%S, %d, %S\r\n", kLogPrefix, kRunningState, state,
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
            ArmTimer(kRunningState, TIMER_WAIT_CARD_IN, 100);
            break;
        case STEP_REMOVE_CARD:
            ShowResult();
            break;
        default:
            break;
    }
}

// The returning AC line may restart the wizard at the same time; the restart must stand.
void CMainFrame::ShowResult() {
    SetVisible(m_pBtnNext, FALSE);
    SetVisible(m_pBtnUpdate, FALSE);
    int step = STEP_REMOVE_CARD;
    if (m_nStep.compare_exchange_strong(step, STEP_RESULT)) {
        if (!ArmTimer(kRunningState, TIMER_REPAINT, 2000))
            ::InvalidateRect(m_hWnd, nullptr, TRUE);
    } else if (step == STEP_POWER_ON) {
        SetVisible(m_pBtnNext, TRUE);
        ::InvalidateRect(m_hWnd, nullptr, TRUE);
    }
}

int CMainFrame::StorageCardStatus(BYTE status, BYTE percent) {
    Send(DvrCommand::FW_Upgrade_Version | kQueryBit);
    if (m_byACLineStatus == AC_LINE_OFFLINE)
        return 0;
    m_bCardStatusReceived = TRUE;

    if (status >= std::size(kStorageCardNames)) {
        NKDbgPrintfW(L"%s\t%S, Percent:%d, default!!!\r\n", kLogPrefix, kStorageCard, percent);
        return 0;
    }
    if (status == DVR_STORAGE_CARD_PLUG_OUT || status == DVR_STORAGE_CARD_PLUG_IN)
        m_byCardStatus = status;
    NKDbgPrintfW(L"%s\t%S, Percent:%d, %S\r\n", kLogPrefix, kStorageCard, percent,
                 kStorageCardNames[status]);
    if (status == DVR_STORAGE_CARD_PLUG_OUT)
        OnCardOut();
    else if (status == DVR_STORAGE_CARD_PLUG_IN)
        OnCardIn();
    return 0;
}

// At step -1 the window's thread waits for a card report: no report may wait for that thread then.
void CMainFrame::OnCardOut() {
    switch (m_nStep) {
        case STEP_CHECK_CARD:
        case STEP_WAIT:
            SetVisible(m_pBtnNext, TRUE);
            break;
        case STEP_INSERT_CARD:
            SetVisible(m_pBtnNext, FALSE);
            break;
        case STEP_REOPEN:
            ArmTimer(kStorageCard, TIMER_COMPOSITE_VIDEO, 100);
            return;
        default:
            return;
    }
    HideSuspendAndUpdate();
    Repaint();
}

void CMainFrame::OnCardIn() {
    switch (m_nStep) {
        case STEP_CHECK_CARD:
            SetVisible(m_pBtnUpdate, FALSE);
            SetVisible(m_pBtnNext, FALSE);
            Repaint();
            ArmTimer(kStorageCard, TIMER_WAIT_CARD_OUT, 100);
            break;
        case STEP_INSERT_CARD:
            SetVisible(m_pBtnNext, FALSE);
            SetVisible(m_pBtnUpdate, TRUE);
            SetVisible(m_pBtnSuspend, FALSE);
            Repaint();
            break;
        case STEP_REOPEN:
            ArmTimer(kStorageCard, TIMER_COMPOSITE_VIDEO, 100);
            break;
        default:
            break;
    }
}

// The frame outlives the report: its destruction waits for the receive thread.
BOOL DvrReport_RunningState(BYTE state) {
    CMainFrame* const frame = g_pMainFrame;
    if (frame == nullptr)
        return FALSE;
    frame->DVR_RunningState(state);
    return TRUE;
}

BOOL DvrReport_StorageCard(BYTE status, BYTE percent) {
    CMainFrame* const frame = g_pMainFrame;
    if (frame == nullptr)
        return FALSE;
    frame->StorageCardStatus(status, percent);
    return TRUE;
}

BOOL DvrReport_UpdatePercent(BYTE percent) {
    CMainFrame* const frame = g_pMainFrame;
    if (frame == nullptr)
        return FALSE;
    frame->m_byUpdatePercent = percent;
    InvalidateRect(frame->m_hWnd, nullptr, TRUE);
    return TRUE;
}

BOOL DvrReport_ImageVersion(BYTE character) {
    CMainFrame* const frame = g_pMainFrame;
    if (frame == nullptr)
        return FALSE;
    frame->m_byBinVersion = character;
    return TRUE;
}

BOOL DvrReport_Version(const char* characters) {
    CMainFrame* const frame = g_pMainFrame;
    if (frame == nullptr)
        return FALSE;
    frame->m_szDvrVersion.Store(characters);
    InvalidateRect(frame->m_hWnd, nullptr, TRUE);
    return TRUE;
}

BOOL DvrReport_HasMainFrame() {
    return g_pMainFrame != nullptr;
}

LRESULT CMainFrame::OnPowerStatus(UINT, WPARAM wParam, LPARAM lParam, BOOL& bHandled) {
    constexpr char kFunction[] = "CMainFrame::OnPowerStatus";
    // Without a registered message this handles 0, which is WM_NULL.
    if (MSG_POWER_STATUS == WM_NULL) {
        bHandled = FALSE;
        return 0;
    }
    if (!IsAlive())
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
    SetVisible(m_pBtnNext, TRUE);
    SetVisible(m_pBtnClose, FALSE);
    SetVisible(m_pBtnUpdate, FALSE);
    Repaint();
}
