#include <iterator>
#include <utility>

#include "wizard/MainFrm.h"

struct CMainFrame::LabelRow {
    std::unique_ptr<CDrawLabel> CMainFrame::*label;
    RECT place;
    const wchar_t* text;  // NULL: none yet, and the label's own format
    int format;
    WizardFont font;
    COLORREF color;
};

struct CMainFrame::ButtonRow {
    std::unique_ptr<CDrawButton> CMainFrame::*button;
    WizardCommand command;
    int x, y, width, height;
    HBITMAP CMainFrame::*image;
    bool owns_image;
    const wchar_t* text;
    BOOL visible;
};

// The order of the rows, labels first, is the order of drawing and of taking presses. One row a
// line, whatever its length.
// clang-format off
constexpr CMainFrame::LabelRow CMainFrame::kLabelRows[] = {
    {&CMainFrame::m_pLblTitle, {50, 0, 750, 50}, L"<< DVR Firmware Update Tool >>", kCentred, {10, 26, 500}, kWhite},
    {&CMainFrame::m_pLblWarning, {0, 45, 800, 95}, L"ファームウェアをアップデートしている間は、外部電源を抜かないで下さい。", kCentred, {10, 36, 600}, kRed},
    {&CMainFrame::m_pLblToolVersion, {0, 85, 400, 135}, nullptr, kCentred, {10, 36, 600}, kWhite},
    {&CMainFrame::m_pLblDvrVersion, {400, 85, 800, 135}, L"DVR : 読み込み中", kCentred, {10, 36, 600}, kWhite},
    {&CMainFrame::m_pLblLine1, {50, 150, 750, 200}, nullptr, 0, {9, 26, 500}, kWhite},
    {&CMainFrame::m_pLblLine2, {50, 210, 750, 260}, nullptr, 0, {9, 26, 500}, kWhite},
    {&CMainFrame::m_pLblLine3, {50, 270, 750, 320}, nullptr, 0, {9, 26, 500}, kWhite},
    {&CMainFrame::m_pLblLine4, {50, 330, 750, 380}, nullptr, 0, {9, 26, 500}, kWhite},
    {&CMainFrame::m_pLblNotice, {50, 120, 750, 170}, nullptr, 0, {9, 26, 500}, kBlue},
};

constexpr CMainFrame::ButtonRow CMainFrame::kButtonRows[] = {
    {&CMainFrame::m_pBtnSuspend, IDC_BTN_SUSPEND, 215, 405, 168, 66, &CMainFrame::m_hBmpButton, true, L"進入休眠", FALSE},
    {&CMainFrame::m_pBtnNext, IDC_BTN_NEXT, 415, 405, 168, 66, &CMainFrame::m_hBmpButton, false, L"Next", TRUE},
    {&CMainFrame::m_pBtnUpdate, IDC_BTN_UPDATE, 615, 405, 168, 66, &CMainFrame::m_hBmpButton, false, L"Update", FALSE},
    {&CMainFrame::m_pBtnClose, IDC_BTN_CLOSE, 720, 8, 75, 36, &CMainFrame::m_hBmpClose, true, L"", FALSE},
};
// clang-format on

void CMainFrame::CreateLabels() {
    static_assert(std::size(kLabelRows) == 9);
    wchar_t tool_version[64] = {};
    wsprintfW(tool_version, L"Update Tool : V%s", m_szToolVersion);
    for (const LabelRow& row : kLabelRows) {
        const bool names_tool = row.label == &CMainFrame::m_pLblToolVersion;
        auto label = std::make_unique<CDrawLabel>(m_hWnd, 0, &row.place, LBL_TEXT, TRUE);
        label->SetText(names_tool ? tool_version : row.text, row.format);
        label->SetFont(kFontFace, row.font.width, row.font.height, row.font.weight, kFontCharSet);
        label->SetTextColor(row.color);
        m_pControls->Add(label.get());
        this->*row.label = std::move(label);
    }
}

void CMainFrame::CreateButtons() {
    static_assert(std::size(kButtonRows) == 4);
    constexpr WizardFont kFont{10, 24, 500};
    for (const ButtonRow& row : kButtonRows) {
        auto button = std::make_unique<CDrawButton>(m_hWnd, row.command, row.x, row.y, row.width,
                                                    row.height, BTN_MODE_PUSH, TRUE);
        button->SetImage(this->*row.image);
        if (!row.owns_image)
            button->DetachImage();
        button->SetText(row.text, kCentred);
        button->SetFont(kFontFace, kFont.width, kFont.height, kFont.weight, kFontCharSet);
        button->SetTextColor(kWhite);
        m_pControls->Add(button.get());
        button->SetVisible(row.visible);
        this->*row.button = std::move(button);
    }
}

// The strip's owner, the first of the buttons that share it, goes last.
void CMainFrame::ReleaseControls() {
    for (auto row = std::rbegin(kButtonRows); row != std::rend(kButtonRows); ++row)
        (this->*row->button).reset();
    for (const LabelRow& row : kLabelRows)
        (this->*row.label).reset();
    m_pControls.reset();
}
