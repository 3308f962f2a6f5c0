// The handlers that pass what the DVR reports to the main frame. The frame goes only after the
// receive thread has ended, so a pointer loaded here stays good for the handler.
#include <algorithm>
#include <string_view>

#include "app/log/DebugLog.h"
#include "dvrlink/HandlerSupport.h"
#include "dvrlink/Handlers.h"
#include "wizard/MainFrm.h"

namespace {

constexpr std::string_view kDefaultVersion = "14.04.25.V0.01.00";
constexpr std::size_t kShownVersionOffset = 10;

bool IsQuery(const DvrFrame& frame) {
    return (frame.command & kQueryBit) != 0;
}

void ReportStorageCard(const DvrFrame& frame) {
    CMainFrame* const main_frame = g_pMainFrame;
    if (main_frame == nullptr)
        return;
    const BYTE percent = frame.length == 2 ? frame.payload[1] : frame.payload[2];
    main_frame->StorageCardStatus(frame.payload[0], percent);
}

}  // namespace

void DVR_RunningState_ACK(DvrFrame frame) {
    if (!AcceptFrame(frame, kFrameAcknowledgement, __func__) || !IsQuery(frame))
        return;
    CMainFrame* const main_frame = g_pMainFrame;
    if (main_frame == nullptr)
        return;
    if (frame.length == 0)
        LogInvalidLength(__func__);
    else
        main_frame->DVR_RunningState(frame.payload[0]);
}

void DVR_RunningState_IND(DvrFrame frame) {
    if (!AcceptFrame(frame, kFrameIndication, __func__))
        return;
    CMainFrame* const main_frame = g_pMainFrame;
    if (frame.length == 0 || main_frame == nullptr)
        LogInvalidLength(__func__);
    else
        main_frame->DVR_RunningState(frame.payload[0]);
}

void StorageCardStatus_ACK(DvrFrame frame) {
    if (AcceptFrame(frame, kFrameAcknowledgement, __func__) && IsQuery(frame))
        ReportStorageCard(frame);
}

void StorageCardStatus_IND(DvrFrame frame) {
    if (AcceptFrame(frame, kFrameIndication, __func__))
        ReportStorageCard(frame);
}

void FW_Upgrade_Version_ACK(DvrFrame frame) {
    if (!AcceptFrame(frame, kFrameAcknowledgement, __func__))
        return;
    PayloadText version = TextAt(frame, 0);
    if (frame.length < kDefaultVersion.size()) {
        version = {};
        std::copy(kDefaultVersion.begin(), kDefaultVersion.end(), version.begin());
    }
    CMainFrame* const main_frame = g_pMainFrame;
    if (main_frame != nullptr) {
        main_frame->SetDvrVersion(version.data() + kShownVersionOffset);
        InvalidateRect(main_frame->m_hWnd, nullptr, TRUE);
    }
    NKDbgPrintfW(L"%s\t%S, DVR Firmware : [%S]\r\n", kLogPrefix, __func__, version.data());
}

void FW_Upgrade_Version_IND(DvrFrame frame) {
    if (!AcceptFrame(frame, kFrameIndication, __func__))
        return;
    const BYTE percent = frame.payload[0];
    NKDbgPrintfW(L"%s\t%S, Percent:%d%%\r\n", kLogPrefix, __func__, percent);
    CMainFrame* const main_frame = g_pMainFrame;
    if (main_frame != nullptr) {
        main_frame->m_byUpdatePercent = percent;
        InvalidateRect(main_frame->m_hWnd, nullptr, TRUE);
    }
    if (frame.length < 2)
        return;
    NKDbgPrintfW(L"%s\t%S, Bin Version:%S\r\n", kLogPrefix, __func__, TextAt(frame, 1).data());
    if (main_frame != nullptr)
        main_frame->m_byBinVersion = frame.payload[1];
}
