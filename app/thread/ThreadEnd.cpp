#include "app/thread/ThreadEnd.h"

namespace {

constexpr DWORD kPollMilliseconds = 10;

void LetSentMessagesIn() {
    MSG message{};
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
}

}  // namespace

void WaitForThreadEnd(HANDLE thread) {
    for (;;) {
        const DWORD woken = MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_SENDMESSAGE);
        if (woken == WAIT_OBJECT_0)
            return;
        if (woken != WAIT_OBJECT_0 + 1) {
            // The thread may still be alive under a wait that failed; only a bad handle ends this.
            if (WaitForSingleObject(thread, 0) != WAIT_TIMEOUT)
                return;
            Sleep(kPollMilliseconds);
        }
        LetSentMessagesIn();
    }
}
