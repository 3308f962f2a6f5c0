#include <utility>

#include "app/log/DebugLog.h"
#include "wizard/MainFrm.h"

LRESULT CMainFrame::OnPaint(UINT, WPARAM, LPARAM, BOOL&) {
    PAINTSTRUCT ps{};
    const HDC hdc = ::BeginPaint(m_hWnd, &ps);
    CreateBackBuffer(hdc);
    if (m_pControls) {
        CheckProgress();
        const int step = m_nStep;
        FillBackground(step);
        // Without AC power the texts of the offline screen stay.
        if (m_byACLineStatus != AC_LINE_OFFLINE)
            ApplyStep(step);
        m_pControls->DrawAll(m_hMemDC);
    }
    BitBlt(hdc, 0, 0, kScreenWidth, kScreenHeight, m_hMemDC, 0, 0, SRCCOPY);
    ::EndPaint(m_hWnd, &ps);
    return 0;
}

// Painting fills the background itself.
LRESULT CMainFrame::OnEraseBackground(UINT, WPARAM, LPARAM, BOOL&) {
    return 0;
}

void CMainFrame::CreateBackBuffer(HDC hdc) {
    if (m_hMemDC != nullptr || m_hMemBitmap != nullptr || m_hOldBitmap != nullptr)
        return;
    m_hMemDC = CreateCompatibleDC(hdc);
    m_hMemBitmap = CreateCompatibleBitmap(hdc, kScreenWidth, kScreenHeight);
    m_hOldBitmap = SelectObject(m_hMemDC, m_hMemBitmap);
    if (m_hOldBitmap != nullptr)
        return;
    // Half a back buffer would show nothing for ever: the next painting tries again.
    if (m_hMemDC != nullptr)
        DeleteDC(std::exchange(m_hMemDC, nullptr));
    if (m_hMemBitmap != nullptr)
        DeleteObject(std::exchange(m_hMemBitmap, nullptr));
}

void CMainFrame::CheckProgress() {
    const int step = m_nStep;
    if (step == STEP_UPDATING || step == STEP_WAIT || m_byUpdatePercent == 0)
        return;
    ArmTimer(TIMER_COMPOSITE_VIDEO, 100);
    m_pBtnNext->SetText(L"Next", kCentred);
    m_nStep = STEP_UPDATING;
    m_pBtnNext->SetVisible(FALSE);
}

void CMainFrame::FillBackground(int step) {
    const RECT screen{0, 0, kScreenWidth, kScreenHeight};
    const HBRUSH brush = CreateSolidBrush(step == STEP_POWER_ON ? kBlack : kColorKey);
    FillRect(m_hMemDC, &screen, brush);
    if (!DeleteObject(brush))
        LogFailure(L"%s\t%S, DeleteObject() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   "CMainFrame::OnPaint", GetLastError());
}

void CMainFrame::ApplyStep(int step) {
    const CVersionText::Characters version = ShowDvrVersion(step);
    switch (step) {
        case STEP_POWER_ON:
            ApplyScreen(ScreenId::kPowerOn);
            break;
        case STEP_CHECK_CARD:
            ApplyScreen(m_bCardStatusReceived ? ScreenId::kCheckCard : ScreenId::kNoCardReport);
            break;
        case STEP_INSERT_CARD:
            ApplyScreen(ScreenId::kInsertCard);
            break;
        case STEP_UPDATING:
            ApplyUpdating();
            break;
        case STEP_WAIT:
            ApplyScreen(ScreenId::kWait);
            if (m_byUpdatePercent >= 100) {
                ArmTimer(TIMER_NOTIFY, 3000);
                m_byUpdatePercent = 0;
            }
            break;
        case STEP_REMOVE_CARD:
            ApplyScreen(ScreenId::kRemoveCard);
            ArmTimer(TIMER_NOTIFY, 1000);
            break;
        case STEP_RESULT:
            ApplyScreen(IsVersionKnown(version) ? ScreenId::kResultSuccess
                                                : ScreenId::kResultFailure);
            ApplyScreen(ScreenId::kResult);
            break;
        case STEP_REOPEN:
            ApplyScreen(ScreenId::kReopen);
            break;
        default:
            break;
    }
}

// Returns the version that the step goes by.
CVersionText::Characters CMainFrame::ShowDvrVersion(int step) {
    wchar_t text[32] = L"DVR :";
    CVersionText::Characters version{};
    switch (step) {
        case STEP_CHECK_CARD:
        case STEP_INSERT_CARD:
        case STEP_RESULT:
        case STEP_REOPEN:
            version = m_szDvrVersion.Load();
            if (IsVersionKnown(version))
                wsprintfW(text, L"DVR : V%S", version.data());
            else
                wsprintfW(text, L"DVR : 読み込み中");
            break;
        case STEP_REMOVE_CARD:
            break;
        default:
            m_szDvrVersion.Clear();
            break;
    }
    m_pLblDvrVersion->SetText(text, kCentred);
    return version;
}

void CMainFrame::ApplyUpdating() {
    const BYTE percent = m_byUpdatePercent;
    if (percent == 0) {
        ApplyScreen(ScreenId::kImageMissing);
        m_nStep = STEP_INSERT_CARD;
        // Paints the next step at once, inside this painting.
        Repaint();
        // This painting goes on to draw the same screen: over the texts already there their
        // smoothed edges would grow heavier.
        FillBackground(m_nStep);
        return;
    }
    wchar_t progress[64] = {};
    wsprintfW(progress, L"Update Percent : %d%%", percent);
    m_pLblLine2->SetText(progress, kLeft);
    ApplyScreen(ScreenId::kUpdating);
    if (percent >= 100) {
        m_nStep = STEP_WAIT;
        ::InvalidateRect(m_hWnd, nullptr, TRUE);
    }
}
