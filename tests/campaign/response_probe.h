#pragma once

#include <windows.h>

#include <atomic>
#include <memory>
#include <optional>

#include "platform/kernel/thread.h"
#include "platform/window/screen.h"

namespace tests::campaign {

// Another application of the unit that sends the program's window a message and waits for the
// answer. Hardware's thread.
class ResponseProbe {
  public:
    // The longest that the window may take: it waits so long for a scaler's driver that is missing.
    static constexpr std::chrono::seconds kLongestWait{14};

    // Sends, unless an answer is being waited for or there is no window.
    void Ask() {
        const auto window = platform::window::FindOwnWindow(L"Tolvane", std::nullopt);
        if (window == 0 || Waiting())
            return;
        answered_ = std::make_shared<std::atomic<bool>>(false);
        asked_ = platform::kernel::Now();
        platform::kernel::StartThread([answered = answered_, window] {
            SendMessageW(reinterpret_cast<HWND>(window), WM_NULL, 0, 0);
            *answered = true;
            return DWORD{0};
        });
    }
    bool Waiting() const { return answered_ != nullptr && !*answered_; }
    // Whether an answer has been waited for, for longer than that.
    bool Overdue() const { return Waiting() && platform::kernel::Now() - asked_ > kLongestWait; }

  private:
    std::shared_ptr<std::atomic<bool>> answered_;
    platform::kernel::Time asked_{};
};

}  // namespace tests::campaign
