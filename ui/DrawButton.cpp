#include "ui/DrawButton.h"

namespace {

constexpr int kFrameNormal = 0;
constexpr int kFramePressed = 1;
constexpr int kFrameDisabled = 2;

}  // namespace

CDrawButton::CDrawButton(HWND owner, UINT id, int x, int y, int cx, int cy, UINT mode, BOOL visible)
    : CDrawCtrl(owner, id, {x, y, x + cx, y + cy}, visible), m_nMode(mode) {}

CDrawButton::~CDrawButton() {
    if (m_bOwnsImage)
        DeleteObject(m_hImage);
}

void CDrawButton::SetImage(HBITMAP strip) {
    if (strip == nullptr)
        return;
    m_hImage = strip;
    m_bOwnsImage = true;
    BITMAP header{};
    GetObjectW(strip, sizeof(header), &header);
    if (m_cy != 0)
        m_nFrames = header.bmHeight / m_cy;
}

HBITMAP CDrawButton::DetachImage() {
    m_bOwnsImage = false;
    return m_hImage;
}

BOOL CDrawButton::Draw(HDC hdc, int x, int y) {
    if (!m_bVisible)
        return FALSE;
    DrawFrame(hdc, x, y);
    const int right = m_rcText.right == 0 ? m_cx : m_rcText.right;
    const int bottom = m_rcText.bottom == 0 ? m_cy : m_rcText.bottom;
    DrawIn(hdc, {x + m_rcText.left, y + m_rcText.top, x + right, y + bottom}, -1);
    return TRUE;
}

void CDrawButton::DrawFrame(HDC hdc, int x, int y) const {
    if (m_hImage == nullptr) {
        DrawGreyBox(hdc, x, y);
        return;
    }
    const MemoryDC memory(hdc);
    const SelectScope selected(memory.Get(), m_hImage);
    BitBlt(hdc, x, y, m_cx, m_cy, memory.Get(), 0, m_cy * m_nFrame, SRCCOPY);
}

BOOL CDrawButton::Redraw() {
    return RedrawOnOwner();
}

BOOL CDrawButton::OnBtnDown(int x, int y) {
    if (!m_bVisible || !HitTest(x, y))
        return FALSE;
    switch (m_nMode) {
        case BTN_MODE_PUSH:
        case BTN_MODE_LATCH:
            if (m_nFrame != kFrameNormal)
                return FALSE;
            m_nFrame = kFramePressed;
            Redraw();
            if (m_nMode == BTN_MODE_LATCH)
                SendCommand();
            return TRUE;
        case BTN_MODE_CYCLE:
            m_nFrame = m_nFrame + 1 > m_nFrames - 1 ? kFrameNormal : m_nFrame + 1;
            Redraw();
            SendCommand();
            return TRUE;
        case BTN_MODE_TAP:
            if (m_nFrame == kFrameDisabled)
                return FALSE;
            SendCommand();
            return TRUE;
        default:
            return FALSE;
    }
}

BOOL CDrawButton::OnBtnUp(int x, int y) {
    if (m_nMode != BTN_MODE_PUSH || !m_bVisible || m_nFrame != kFramePressed)
        return FALSE;
    m_nFrame = kFrameNormal;
    Redraw();
    if (!HitTest(x, y))
        return FALSE;
    SendCommand();
    return TRUE;
}

BOOL CDrawButton::OnBtnMove(int, int) {
    return FALSE;
}

int CDrawButton::SetText(LPCWSTR text, int format) {
    return StoreText(text, format);
}

BOOL CDrawButton::SetFont(LPCWSTR face, int width, int height, int weight, int charSet) {
    return StoreFont(face, width, height, weight, charSet);
}

COLORREF CDrawButton::SetTextColor(COLORREF color) {
    return StoreColor(color);
}

BOOL CDrawButton::SetTextRect(const RECT* rc) {
    if (rc != nullptr)
        m_rcText = *rc;
    return TRUE;
}
