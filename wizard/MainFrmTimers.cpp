#include "wizard/MainFrm.h"

LRESULT CMainFrame::OnTimer(UINT, WPARAM id, LPARAM, BOOL&) {
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
    if (!ShowNotice())
        return;
    m_nStep = STEP_REMOVE_CARD;
    ShowOnly(*m_pBtnNext);
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
    ShowOnly(*m_pBtnNext);
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
    ShowOnly(*m_pBtnUpdate);
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
