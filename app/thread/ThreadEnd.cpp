#include "app/thread/ThreadEnd.h"

namespace {

constexpr DWORD kPollMilliseconds = 10;

void DispatchSentMessages() {
    MSG message{};
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
}

}  // namespace

BOOL WaitForThreadEnd(HANDLE thread, DWORD milliseconds) {
    const DWORD start = GetTickCount();
    for (DWORD passed = 0; passed < milliseconds; passed = GetTickCount() - start) {
        const DWORD woken =
            MsgWaitForMultipleObjects(1, &thread, FALSE, milliseconds - passed, QS_SENDMESSAGE);
        if (woken == WAIT_OBJECT_0)
            return TRUE;
        DispatchSentMessages();
        if (woken == WAIT_OBJECT_0 + 1)
            continue;
        // A wait that failed says nothing about the thread.
        if (WaitForSingleObject(thread, 0) == WAIT_OBJECT_0)
            return TRUE;
        Sleep(kPollMilliseconds);
    }
    return FALSE;
}
