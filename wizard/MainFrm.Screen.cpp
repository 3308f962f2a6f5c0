// The controls, their settings on each screen, and the painting.
#include <iterator>
#include <new>
#include <optional>
#include <utility>

#include "MStar_C4/MStar_C4_Scaler.h"
#include "ui/DrawButton.h"
#include "ui/DrawLabel.h"
#include "wizard/MainFrm.h"

// The settings of a control. A control keeps what its row leaves out.
struct CMainFrame::ControlRow {
    std::unique_ptr<CDrawCtrl> CMainFrame::*control;
    const wchar_t* text = nullptr;
    int format = 0;
    std::optional<WizardFont> font{};
    std::optional<COLORREF> color{};
    std::optional<BOOL> visible{};
};

struct CMainFrame::LabelPlace {
    RECT place;
    ControlRow row;
};

struct CMainFrame::ButtonPlace {
    WizardCommand command;
    int x, y, width, height;
    GdiObject<HBITMAP> CMainFrame::*image;
    ControlRow row;
};

struct CMainFrame::Screens {
    using F = CMainFrame;

    static constexpr WizardFont kSmall{9, 26, 500};
    static constexpr WizardFont kHeading{10, 36, 600};
    static constexpr WizardFont kButton{10, 24, 500};

    // One row a line, whatever its length.
    // clang-format off

    // The order of the rows, labels first, is the order of drawing and of taking presses.
    static constexpr LabelPlace kLabels[] = {
        {{50, 0, 750, 50}, {&F::m_pLblTitle, L"<< DVR Firmware Update Tool >>", kCentred, {{10, 26, 500}}, kWhite}},
        {{0, 45, 800, 95}, {&F::m_pLblWarning, L"ファームウェアをアップデートしている間は、外部電源を抜かないで下さい。", kCentred, kHeading, kRed}},
        {{0, 85, 400, 135}, {&F::m_pLblToolVersion, L"Update Tool : V%s", kCentred, kHeading, kWhite}},
        {{400, 85, 800, 135}, {&F::m_pLblDvrVersion, L"DVR : 読み込み中", kCentred, kHeading, kWhite}},
        {{50, 150, 750, 200}, {&F::m_pLblLine1, nullptr, 0, kSmall, kWhite}},
        {{50, 210, 750, 260}, {&F::m_pLblLine2, nullptr, 0, kSmall, kWhite}},
        {{50, 270, 750, 320}, {&F::m_pLblLine3, nullptr, 0, kSmall, kWhite}},
        {{50, 330, 750, 380}, {&F::m_pLblLine4, nullptr, 0, kSmall, kWhite}},
        {{50, 120, 750, 170}, {&F::m_pLblNotice, nullptr, 0, kSmall, kBlue}},
    };
    static constexpr ButtonPlace kButtons[] = {
        {IDC_BTN_SUSPEND, 215, 405, 168, 66, &F::m_hBmpButton, {&F::m_pBtnSuspend, L"進入休眠", kCentred, kButton, kWhite, FALSE}},
        {IDC_BTN_NEXT, 415, 405, 168, 66, &F::m_hBmpButton, {&F::m_pBtnNext, L"Next", kCentred, kButton, kWhite, TRUE}},
        {IDC_BTN_UPDATE, 615, 405, 168, 66, &F::m_hBmpButton, {&F::m_pBtnUpdate, L"Update", kCentred, kButton, kWhite, FALSE}},
        {IDC_BTN_CLOSE, 720, 8, 75, 36, &F::m_hBmpClose, {&F::m_pBtnClose, L"", kCentred, kButton, kWhite, FALSE}},
    };

    static constexpr ControlRow kPowerOn[] = {
        {&F::m_pLblDvrVersion, L"DVR : 読み込み中", kCentred},
        {&F::m_pLblLine1, L"1. 本体に外部電源を接続して下さい。", kLeft, kSmall, kWhite},
        {&F::m_pLblLine2, L"2. DVR用SDカード挿入口にSDカードが入っていないことを確認して下さい。", kLeft, kSmall, kRed},
        {&F::m_pLblLine3, L"", kLeft, kSmall},
        {&F::m_pLblLine4, L"\"Power On\" ボタンを押下して下さい。", kLeft, kSmall},
        {&F::m_pBtnNext, L"Power On", kCentred},
    };
    static constexpr ControlRow kNoCardReport[] = {
        {&F::m_pLblLine1, L"", kLeft},
        {&F::m_pLblLine2, L" 異常が発生した為、アップデート出来ません。", kLeft},
        {&F::m_pLblLine3, L" 画面右上の終了ボタンを押下して下さい。", kLeft, {}, kRed},
        {&F::m_pLblLine4, L"", kLeft},
        {&F::m_pBtnNext, nullptr, 0, {}, {}, FALSE},
        {&F::m_pBtnUpdate, nullptr, 0, {}, {}, FALSE},
        {&F::m_pBtnSuspend, nullptr, 0, {}, {}, FALSE},
        {&F::m_pBtnClose, nullptr, 0, {}, {}, TRUE},
    };
    static constexpr ControlRow kCheckCard[] = {
        {&F::m_pLblLine1, L"3.“Next” ボタンを押下して下さい。", kLeft, {{12, 40, 500}}},
        {&F::m_pLblLine2, L" DVR用SDカード挿入口にSDカードが入っている場合、", kLeft, kSmall, kWhite},
        {&F::m_pLblLine3, L" Nextボタンは表示されません。", kLeft, kSmall},
        {&F::m_pLblLine4, L"", kLeft, kSmall},
        {&F::m_pBtnNext, L"Next", kCentred},
    };
    static constexpr ControlRow kInsertCard[] = {
        {&F::m_pLblLine1, L"4. \"gp_card_upgrade.bin\" をSDカードに入れて下さい。", kLeft, kSmall},
        {&F::m_pLblLine2, L"5. DVR用SDカード挿入口にSDカードを入れて下さい。", kLeft, {}, kWhite},
        {&F::m_pLblLine3, L"", kLeft},
        {&F::m_pLblLine4, L"      \"Update\" ボタンを押下して下さい。", kLeft},
    };
    // Line 2 shows the percent.
    static constexpr ControlRow kUpdating[] = {
        {&F::m_pLblLine1, L"ファームウェアをアップデートしている間は、本体の電源を切らないで下さい。", kLeft},
        {&F::m_pLblLine2, nullptr, 0, kSmall, kWhite},
        {&F::m_pLblLine3, L"ファームウェアをアップデートしている間は、本体のRESETボタンを押下しないで下さい。", kLeft},
        {&F::m_pLblLine4, L"ファームウェアをアップデートしている間は、SDカードを抜かないで下さい。", kLeft},
        {&F::m_pLblNotice, L"", kLeft},
    };
    static constexpr ControlRow kImageMissing[] = {
        {&F::m_pLblNotice, L"DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。", kCentred},
    };
    static constexpr ControlRow kWait[] = {
        {&F::m_pLblLine1, L"", kLeft},
        {&F::m_pLblLine2, L"6. しばらくお待ち下さい。", kLeft},
        {&F::m_pLblLine3, L"", kLeft},
        {&F::m_pLblLine4, L"", kLeft},
    };
    static constexpr ControlRow kRemoveCard[] = {
        {&F::m_pLblLine1, L"", kLeft},
        {&F::m_pLblLine2, L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。", kLeft, {{13, 40, 600}}, kRed},
        {&F::m_pLblLine3, L"", kLeft},
        {&F::m_pLblLine4, L"      \"Next\" ボタンを押下して下さい。", kLeft},
    };
    // The text of line 2 is kSuccess or kFailure.
    static constexpr ControlRow kResult[] = {
        {&F::m_pLblLine1, L"", kLeft},
        {&F::m_pLblLine2, nullptr, 0, {{15, 44, 600}}, kWhite},
        {&F::m_pLblLine3, L"画面右上の終了ボタンを押下して下さい。", kLeft},
        {&F::m_pLblLine4, L"", kLeft},
        {&F::m_pBtnClose, nullptr, 0, {}, {}, TRUE},
    };
    static constexpr ControlRow kSuccess[] = {
        {&F::m_pLblLine2, L"ファームウェアのアップデート終了です。", kLeft},
    };
    static constexpr ControlRow kFailure[] = {
        {&F::m_pLblLine2, L"ファームウェアのアップデートに失敗しました。", kLeft},
    };
    static constexpr ControlRow kReopen[] = {
        {&F::m_pLblLine1, L"", kLeft},
        {&F::m_pLblLine2, L"Please make sure DVR Firmware is correct.", kLeft, {{15, 48, 600}}, kWhite},
        {&F::m_pLblLine3, L"画面右上の終了ボタンを押下して下さい。", kLeft},
        {&F::m_pLblLine4, L"To continue to upgrade, please re-open the program.", kLeft},
    };
    static constexpr ControlRow kPowerOffline[] = {
        {&F::m_pLblLine1, L"本体に外部電源を接続して下さい。", kLeft, {{13, 40, 600}}, kRed},
        {&F::m_pLblLine2, L"", kLeft},
        {&F::m_pLblLine3, L"", kLeft},
        {&F::m_pLblLine4, L"", kLeft},
        {&F::m_pLblNotice, L"", kLeft},
    };
    // clang-format on
};

void CMainFrame::Apply(std::span<const ControlRow> rows) {
    for (const ControlRow& row : rows) {
        CDrawCtrl* const control = (this->*row.control).get();
        if (control == nullptr)
            continue;
        control->SetText(row.text, row.format);
        if (row.font)
            control->SetFont(kFontFace, row.font->width, row.font->height, row.font->weight,
                             kFontCharSet);
        if (row.color)
            control->SetTextColor(*row.color);
        if (row.visible)
            control->SetVisible(*row.visible);
    }
}

void CMainFrame::CreateControls() {
    constexpr char kFunction[] = "CMainFrame::OnCreate";
    const auto add = [this](const ControlRow& row, CDrawCtrl* made) {
        (this->*row.control).reset(made);
        Apply({&row, 1});
        if (m_pControls)
            m_pControls->Add(made);
    };
    for (const LabelPlace& label : Screens::kLabels) {
        auto* const made = new (std::nothrow) CDrawLabel(m_hWnd, 0, &label.place, LBL_TEXT, TRUE);
        if (made == nullptr)
            LogNoMemory(kFunction);
        add(label.row, made);
    }
    if (m_pLblToolVersion) {
        wchar_t text[64] = {};
        wsprintfW(text, L"Update Tool : V%s", m_szToolVersion);
        m_pLblToolVersion->SetText(text, kCentred);
    }
    for (const ButtonPlace& button : Screens::kButtons) {
        auto* const made =
            new (std::nothrow) CDrawButton(m_hWnd, button.command, button.x, button.y, button.width,
                                           button.height, BTN_MODE_PUSH, TRUE);
        if (made == nullptr)
            LogNoMemory(kFunction);
        else
            made->SetSharedImage((this->*button.image).Get());
        add(button.row, made);
    }
}

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
    // An incomplete back buffer would stay black; the next painting tries again.
    if (m_hMemDC != nullptr)
        DeleteDC(std::exchange(m_hMemDC, nullptr));
    if (m_hMemBitmap != nullptr)
        DeleteObject(std::exchange(m_hMemBitmap, nullptr));
}

void CMainFrame::CheckProgress() {
    const int step = m_nStep;
    if (step == STEP_UPDATING || step == STEP_WAIT || m_byUpdatePercent == 0)
        return;
    ArmTimer("CMainFrame::OnPaint", TIMER_COMPOSITE_VIDEO, 100);
    if (m_pBtnNext)
        m_pBtnNext->SetText(L"Next", kCentred);
    m_nStep = STEP_UPDATING;
    SetVisible(m_pBtnNext, FALSE);
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
            Apply(Screens::kPowerOn);
            break;
        case STEP_CHECK_CARD:
            if (m_bCardStatusReceived)
                Apply(Screens::kCheckCard);
            else
                Apply(Screens::kNoCardReport);
            break;
        case STEP_INSERT_CARD:
            Apply(Screens::kInsertCard);
            break;
        case STEP_UPDATING:
            ApplyUpdating();
            break;
        case STEP_WAIT:
            ApplyWait();
            break;
        case STEP_REMOVE_CARD:
            Apply(Screens::kRemoveCard);
            ArmTimer("CMainFrame::OnPaint", TIMER_NOTIFY, 1000);
            break;
        case STEP_RESULT:
            Apply(Screens::kResult);
            if (IsVersionKnown(version))
                Apply(Screens::kSuccess);
            else
                Apply(Screens::kFailure);
            break;
        case STEP_REOPEN:
            Apply(Screens::kReopen);
            break;
        default:
            break;
    }
}

// Returns the version by which the step decides.
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
    if (m_pLblDvrVersion)
        m_pLblDvrVersion->SetText(text, kCentred);
    return version;
}

void CMainFrame::ApplyUpdating() {
    const BYTE percent = m_byUpdatePercent;
    if (percent == 0) {
        Apply(Screens::kImageMissing);
        m_nStep = STEP_INSERT_CARD;
        // Paints the next step at once, inside this painting.
        Repaint();
        // This painting then draws the same screen again: over the texts already there their
        // smoothed edges would become heavier.
        FillBackground(m_nStep);
        return;
    }
    wchar_t progress[64] = {};
    wsprintfW(progress, L"Update Percent : %d%%", percent);
    if (m_pLblLine2)
        m_pLblLine2->SetText(progress, kLeft);
    Apply(Screens::kUpdating);
    if (percent >= 100) {
        m_nStep = STEP_WAIT;
        ::InvalidateRect(m_hWnd, nullptr, TRUE);
    }
}

void CMainFrame::ApplyWait() {
    constexpr DWORD kRetryMilliseconds = 100;
    Apply(Screens::kWait);
    if (m_byUpdatePercent < 100)
        return;
    if (ArmTimer("CMainFrame::OnPaint", TIMER_NOTIFY, 3000)) {
        m_byUpdatePercent = 0;
        return;
    }
    // Only this timer ends the step: the next painting, after a pause, arms it again.
    Sleep(kRetryMilliseconds);
    ::InvalidateRect(m_hWnd, nullptr, TRUE);
}

void CMainFrame::ShowPowerOffline() {
    m_bACOffline = TRUE;
    HideButtons();
    Apply(Screens::kPowerOffline);
}
