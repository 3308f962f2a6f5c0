#include "ui/DrawButton.h"

namespace {

constexpr int kFrameNormal = 0;
constexpr int kFramePressed = 1;
constexpr int kFrameDisabled = 2;

}  // namespace

CDrawButton::CDrawButton(HWND owner, UINT id, int x, int y, int cx, int cy, UINT mode, BOOL visible)
    : CTextCtrl(owner, id, {x, y, x + cx, y + cy}, visible), m_nMode(mode) {}

void CDrawButton::SetImage(HBITMAP strip) {
    if (strip == nullptr)
        return;
    SetSharedImage(strip);
    m_hOwnedImage.Release();
    m_hOwnedImage.Reset(strip);
}

void CDrawButton::SetSharedImage(HBITMAP strip) {
    if (strip == nullptr)
        return;
    m_hImage = strip;
    BITMAP header{};
    GetObjectW(strip, sizeof(header), &header);
    if (m_cy != 0)
        m_nFrames = header.bmHeight / m_cy;
}

BOOL CDrawButton::Draw(HDC hdc, int x, int y) {
    if (!m_bVisible)
        return FALSE;
    DrawFrame(hdc, x, y);
    const int right = m_rcText.right == 0 ? m_cx : m_rcText.right;
    const int bottom = m_rcText.bottom == 0 ? m_cy : m_rcText.bottom;
    DrawTextIn(hdc, {x + m_rcText.left, y + m_rcText.top, x + right, y + bottom}, -1);
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

BOOL CDrawButton::SetTextRect(const RECT* rc) {
    if (rc != nullptr)
        m_rcText = *rc;
    return TRUE;
}
