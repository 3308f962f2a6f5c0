#include "tests/campaign/answer_probe.h"

#include <windows.h>

#include "platform/kernel/thread.h"
#include "platform/window/screen.h"

namespace tests::campaign {

void AnswerProbe::Ask() {
    const auto window = platform::window::FindOwnWindow(L"Tolvane", std::nullopt);
    if (window == 0 || Waiting())
        return;
    question_ = std::make_shared<Question>();
    question_->asked = platform::kernel::Now();
    platform::kernel::StartThread([question = question_, window] {
        SendMessageW(reinterpret_cast<HWND>(window), WM_NULL, 0, 0);
        question->answered = true;
        return DWORD{0};
    });
}

bool AnswerProbe::Overdue() const {
    return Waiting() && platform::kernel::Now() - question_->asked > kLongestWait;
}

}  // namespace tests::campaign
