#include "ui/CNotify.h"

#include "app/log/DebugLog.h"
#include "ui/GdiScope.h"
#include "wizard/MainFrm.h"

namespace {

// The places that the failure lines name.
constexpr LogSource kAtLoadImage("CNotify.cpp", 45);
constexpr LogSource kAtMemoryDC("CNotify.cpp", 138);
constexpr LogSource kAtBitmap("CNotify.cpp", 140);

constexpr UINT_PTR kCloseTimer = 1;
constexpr UINT kCloseAgain = 100;

constexpr RECT kUpperRect = {0, 0, 800, 380};
constexpr RECT kLowerRect = {0, 100, 800, 480};

constexpr wchar_t kUpperCardMayBeIn[] = L"DVR用SDカード挿入口にSDカードが入っている場合、";
constexpr wchar_t kUpperCardIsIn[] = L"DVR用SDカード挿入口から";
constexpr wchar_t kLower[] = L"SDカードを抜いて下さい。";

}  // namespace

CNotify::CNotify(HINSTANCE hInst, CMainFrame* pOwner) : m_hInst(hInst) {
    // A frame that has begun to close has cleared the pointer for good.
    if (pOwner == nullptr || !pOwner->IsClosing())
        g_pMainFrame = pOwner;
}

CNotify::~CNotify() {
    ReleaseControls();
}

LRESULT CNotify::OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    NKDbgPrintfW(L"%s\t%S\r\n", kLogPrefix, "CNotify::OnInitDialog");
    SetWindowPos(m_hWnd, nullptr, 0, 0, kScreenWidth, kScreenHeight, 0);
    SetFullScreen();

    m_hBmpOk = static_cast<HBITMAP>(
        LoadImageW(m_hInst, MAKEINTRESOURCEW(IDB_BUTTON), IMAGE_BITMAP, 0, 0, 0));
    if (m_hBmpOk == nullptr)
        LogFailure(L"%s\t%S, LoadImage() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   "CNotify::OnInitDialog", GetLastError(), kAtLoadImage);

    m_pControls = std::make_unique<CCtrlList>();
    CreateOkButton();
    m_pLblUpper = CreateLabel(kUpperRect, kUpperCardMayBeIn);
    m_pLblLower = CreateLabel(kLowerRect, kLower);
    return FALSE;
}

BOOL CNotify::SetFullScreen() {
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    SetWindowPos(m_hWnd, HWND_TOPMOST, 0, 0, width != 0 ? width : kScreenWidth,
                 height != 0 ? height : kScreenHeight, 0);
    const HWND task_bar = FindWindowW(L"HHTaskBar", nullptr);
    if (task_bar != nullptr)
        SetWindowPos(task_bar, HWND_NOTOPMOST, 0, 0, 0, 0,
                     SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
    return TRUE;
}

void CNotify::CreateOkButton() {
    m_pBtnOk =
        std::make_unique<CDrawButton>(m_hWnd, IDC_BTN_OK, 615, 405, 168, 66, BTN_MODE_PUSH, TRUE);
    m_pBtnOk->SetImage(m_hBmpOk);
    m_pBtnOk->SetText(L"OK", kCentred);
    m_pBtnOk->SetFont(kFontFace, 10, 24, 500, kFontCharSet);
    m_pBtnOk->SetTextColor(kWhite);
    m_pControls->Add(m_pBtnOk.get());
    m_pBtnOk->SetVisible(TRUE);
}

std::unique_ptr<CDrawLabel> CNotify::CreateLabel(const RECT& rc, LPCWSTR text) {
    auto label = std::make_unique<CDrawLabel>(m_hWnd, 0, &rc, LBL_TEXT, TRUE);
    label->SetText(text, kLeft);
    label->SetFont(kFontFace, 16, 36, 600, kFontCharSet);
    label->SetTextColor(kWhite);
    m_pControls->Add(label.get());
    label->SetVisible(TRUE);
    return label;
}

void CNotify::ReleaseControls() {
    m_pLblUpper.reset();
    m_pBtnOk.reset();
    m_hBmpOk = nullptr;
    m_pLblLower.reset();
    m_pControls.reset();
}

LRESULT CNotify::OnEraseBackground(UINT, WPARAM, LPARAM, BOOL&) {
    return 1;
}

LRESULT CNotify::OnPaint(UINT, WPARAM, LPARAM, BOOL&) {
    constexpr char kFunction[] = "CNotify::OnPaint";
    ReadStep();
    NKDbgPrintfW(L"%s\t%S, nStep:%d \r\n", kLogPrefix, kFunction, m_nStep);

    const PaintDC paint(m_hWnd);
    MemoryDC memory(paint.Get());
    GdiObject<HBITMAP> bitmap(CreateCompatibleBitmap(paint.Get(), kScreenWidth, kScreenHeight));
    BOOL drawn = FALSE;
    {
        const SelectScope selected(memory.Get(), bitmap.Get());
        drawn = DrawNotice(paint.Get(), memory.Get()) && selected.IsSelected();
    }
    // Nothing else would show the OK button; a second failure is left at that.
    if (!drawn && !m_bDrawsAgain)
        InvalidateRect(m_hWnd, nullptr, FALSE);
    m_bDrawsAgain = !drawn;

    if (memory.Get() == nullptr)
        LogRefusal(L"%s\t%S, Invalid Arguments!!!, %S(%d)\r\n", kFunction, kAtMemoryDC);
    else if (!memory.Delete())
        LogFailure(L"%s\t%S, DeleteDC() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError(), kAtMemoryDC);
    if (bitmap.Get() == nullptr)
        LogRefusal(L"%s\t%S, Invalid Arguments!!!, %S(%d)\r\n", kFunction, kAtBitmap);
    else if (!bitmap.Delete())
        LogFailure(L"%s\t%S, DeleteObject() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError(), kAtBitmap);
    return 0;
}

// A frame that has begun to close is no longer looked at; the notice then keeps its last form.
void CNotify::ReadStep() {
    if (const CMainFrame* const frame = g_pMainFrame)
        m_nStep = frame->m_nStep;
}

BOOL CNotify::DrawNotice(HDC hdc, HDC memory) {
    if (!m_pControls)
        return TRUE;
    if (m_nStep > 0) {
        m_pLblUpper->SetText(kUpperCardIsIn, kCentred);
        m_pLblLower->SetText(kLower, kCentred);
        m_pLblUpper->SetFont(kFontFace, 22, 44, 600, kFontCharSet);
        m_pLblLower->SetFont(kFontFace, 22, 44, 600, kFontCharSet);
    }
    m_pControls->DrawAll(memory);
    return BitBlt(hdc, 0, 0, kScreenWidth, kScreenHeight, memory, 0, 0, SRCCOPY);
}

LRESULT CNotify::OnBtnDown(UINT, WPARAM, LPARAM lParam, BOOL&) {
    const int x = LOWORD(lParam);
    const int y = HIWORD(lParam);
    const auto log = [x, y] {
        NKDbgPrintfW(L"%s\t%S, (x, y) = (%d, %d)\r\n", kLogPrefix, "CNotify::OnBtnDown", x, y);
    };
    log();
    if (!m_pControls || !m_pControls->OnBtnDown(x, y))
        log();
    return 0;
}

LRESULT CNotify::OnBtnUp(UINT, WPARAM, LPARAM lParam, BOOL&) {
    const int x = LOWORD(lParam);
    const int y = HIWORD(lParam);
    const auto log = [x, y] {
        NKDbgPrintfW(L"%s\t%S, (x, y) = (%d, %d)\r\n", kLogPrefix, "CNotify::OnBtnUp", x, y);
    };
    log();
    if (!m_pControls || !m_pControls->OnBtnUp(x, y))
        log();
    return 0;
}

LRESULT CNotify::OnKillFocus(UINT, WPARAM, LPARAM, BOOL&) {
    return 0;
}

LRESULT CNotify::OnXCommand(UINT, WPARAM wParam, LPARAM, BOOL&) {
    NKDbgPrintfW(L"%s\t%S, wParam:%d\r\n", kLogPrefix, "CNotify::OnXCommand",
                 static_cast<UINT>(wParam));
    if (wParam == IDC_BTN_OK) {
        NKDbgPrintfW(L"%s\t%S, IDC_BTN_OK\r\n", kLogPrefix, "CNotify::OnXCommand");
        PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
    }
    return 0;
}

LRESULT CNotify::OnTimer(UINT, WPARAM, LPARAM, BOOL&) {
    NKDbgPrintfW(L"%s\t%S\r\n", kLogPrefix, "CNotify::OnTimer");
    KillTimer(m_hWnd, kCloseTimer);
    PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
    return 0;
}

LRESULT CNotify::OnClose(UINT, WPARAM, LPARAM, BOOL&) {
    NKDbgPrintfW(L"%s\t%S\r\n", kLogPrefix, "CNotify::OnClose");
    ReleaseControls();
    // Without its controls the notice could not be closed by hand any more.
    if (!EndDialog(0))
        SetTimer(m_hWnd, kCloseTimer, kCloseAgain, nullptr);
    return 0;
}
