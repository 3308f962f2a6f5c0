#include "ui/CNotify.h"

#include <new>
#include <utility>

#include "app/log/DebugLog.h"
#include "ui/GdiScope.h"
#include "wizard/MainFrm.h"

namespace {

// The fixed line numbers of the failure lines.
constexpr LogSource kLoadImageSource("CNotify.cpp", 45);
constexpr LogSource kMemoryDCSource("CNotify.cpp", 138);
constexpr LogSource kBitmapSource("CNotify.cpp", 140);

constexpr UINT_PTR kCloseTimer = 1;
constexpr UINT kCloseAgain = 100;

constexpr RECT kOkRect = {615, 405, 783, 471};
constexpr RECT kUpperRect = {0, 0, 800, 380};
constexpr RECT kLowerRect = {0, 100, 800, 480};

constexpr wchar_t kUpperCardMayBeIn[] = L"DVR用SDカード挿入口にSDカードが入っている場合、";
constexpr wchar_t kUpperCardIsIn[] = L"DVR用SDカード挿入口から";
constexpr wchar_t kLower[] = L"SDカードを抜いて下さい。";

}  // namespace

CNotify::CNotify(HINSTANCE hInst, CMainFrame* pOwner) : m_hInst(hInst) {
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
                   "CNotify::OnInitDialog", GetLastError(), kLoadImageSource);

    m_pControls.reset(new (std::nothrow) CCtrlList);
    m_pBtnOk.reset(new (std::nothrow) CDrawButton(
        m_hWnd, IDC_BTN_OK, kOkRect.left, kOkRect.top, kOkRect.right - kOkRect.left,
        kOkRect.bottom - kOkRect.top, BTN_MODE_PUSH, TRUE));
    if (m_pControls == nullptr || m_pBtnOk == nullptr) {
        LogNoMemory("CNotify::OnInitDialog");
        DeleteObject(m_hBmpOk);
        ReleaseControls();
        // Nobody could close the notice.
        PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
        return FALSE;
    }
    SetUpOkButton();
    CreateLabel(m_pLblUpper, kUpperRect, kUpperCardMayBeIn);
    CreateLabel(m_pLblLower, kLowerRect, kLower);
    // Nobody could press OK in a window that stayed small.
    RECT client{};
    if (GetClientRect(m_hWnd, &client) &&
        (client.right < kOkRect.right || client.bottom < kOkRect.bottom))
        PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
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

void CNotify::SetUpOkButton() {
    m_pBtnOk->SetImage(m_hBmpOk);
    m_pBtnOk->SetText(L"OK", kCentred);
    m_pBtnOk->SetFont(kFontFace, 10, 24, 500, kFontCharSet);
    m_pBtnOk->SetTextColor(kWhite);
    m_pControls->Add(m_pBtnOk.get());
    m_pBtnOk->SetVisible(TRUE);
}

void CNotify::CreateLabel(std::unique_ptr<CDrawLabel>& label, const RECT& rc, LPCWSTR text) {
    label.reset(new (std::nothrow) CDrawLabel(m_hWnd, 0, &rc, LBL_TEXT, TRUE));
    if (label == nullptr) {
        LogNoMemory("CNotify::OnInitDialog");
        return;
    }
    label->SetText(text, kLeft);
    label->SetFont(kFontFace, 16, 36, 600, kFontCharSet);
    label->SetTextColor(kWhite);
    m_pControls->Add(label.get());
    label->SetVisible(TRUE);
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
    // Nothing else would show the OK button. After a second failure in a row nothing tries again.
    if (!drawn && !m_bDrawsAgain)
        InvalidateRect(m_hWnd, nullptr, FALSE);
    m_bDrawsAgain = !drawn;

    if (memory.Get() == nullptr)
        LogRefusal(L"%s\t%S, Invalid Arguments!!!, %S(%d)\r\n", kFunction, kMemoryDCSource);
    else if (!memory.Delete())
        LogFailure(L"%s\t%S, DeleteDC() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError(), kMemoryDCSource);
    if (bitmap.Get() == nullptr)
        LogRefusal(L"%s\t%S, Invalid Arguments!!!, %S(%d)\r\n", kFunction, kBitmapSource);
    else if (!bitmap.Delete())
        LogFailure(L"%s\t%S, DeleteObject() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError(), kBitmapSource);
    return 0;
}

// A frame that has begun to close is not read; the notice then stays as it is.
void CNotify::ReadStep() {
    if (const CMainFrame* const frame = g_pMainFrame)
        m_nStep = frame->m_nStep;
}

BOOL CNotify::DrawNotice(HDC hdc, HDC memory) {
    if (!m_pControls)
        return TRUE;
    if (m_nStep > 0) {
        const std::pair<CDrawLabel*, LPCWSTR> lines[] = {{m_pLblUpper.get(), kUpperCardIsIn},
                                                         {m_pLblLower.get(), kLower}};
        for (const auto& [label, text] : lines) {
            if (label == nullptr)
                continue;
            label->SetText(text, kCentred);
            label->SetFont(kFontFace, 22, 44, 600, kFontCharSet);
        }
    }
    m_pControls->DrawAll(memory);
    return BitBlt(hdc, 0, 0, kScreenWidth, kScreenHeight, memory, 0, 0, SRCCOPY);
}

LRESULT CNotify::OnBtnDown(UINT, WPARAM, LPARAM lParam, BOOL&) {
    OfferToControls("CNotify::OnBtnDown", &CCtrlList::OnBtnDown, lParam);
    return 0;
}

LRESULT CNotify::OnBtnUp(UINT, WPARAM, LPARAM lParam, BOOL&) {
    OfferToControls("CNotify::OnBtnUp", &CCtrlList::OnBtnUp, lParam);
    return 0;
}

void CNotify::OfferToControls(const char* function, BOOL (CCtrlList::*event)(int, int) const,
                              LPARAM lParam) {
    const int x = LOWORD(lParam);
    const int y = HIWORD(lParam);
    const auto log = [function, x, y] {
        NKDbgPrintfW(L"%s\t%S, (x, y) = (%d, %d)\r\n", kLogPrefix, function, x, y);
    };
    log();
    if (!m_pControls || !(m_pControls.get()->*event)(x, y))
        log();
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
    // Without its controls nobody could close the notice.
    if (!EndDialog(0) && SetTimer(m_hWnd, kCloseTimer, kCloseAgain, nullptr) == 0)
        LogFailure(L"%s\t%S, SetTimer() fail!!!, ErrorCode(%d), %S(%d)\r\n", "CNotify::OnClose",
                   GetLastError());
    return 0;
}
