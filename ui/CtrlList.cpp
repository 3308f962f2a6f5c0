#include "ui/CtrlList.h"

#include <algorithm>

void CCtrlList::Add(CDrawCtrl* ctrl) {
    if (ctrl == nullptr || m_nCount >= kMaxCtrls)
        return;
    m_aCtrls[m_nCount] = ctrl;
    ++m_nCount;
}

BOOL CCtrlList::DrawAll(HDC hdc) const {
    std::for_each_n(m_aCtrls, m_nCount, [hdc](CDrawCtrl* ctrl) {
        RECT rc{};
        ctrl->GetRect(&rc);
        ctrl->Draw(hdc, rc.left, rc.top);
    });
    return TRUE;
}

BOOL CCtrlList::OnBtnDown(int x, int y) const {
    return std::any_of(m_aCtrls, m_aCtrls + m_nCount,
                       [x, y](CDrawCtrl* ctrl) { return ctrl->OnBtnDown(x, y) != FALSE; });
}

BOOL CCtrlList::OnBtnUp(int x, int y) const {
    return std::any_of(m_aCtrls, m_aCtrls + m_nCount,
                       [x, y](CDrawCtrl* ctrl) { return ctrl->OnBtnUp(x, y) != FALSE; });
}
