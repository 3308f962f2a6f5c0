#pragma once

#include <atomic>
#include <memory>
#include <optional>

#include "platform/kernel/clock.h"

namespace tests::campaign {

// Another application of the unit that sends the program's window a message and waits for the
// answer. Hardware's thread.
class AnswerProbe {
  public:
    // The longest that the window may take: it waits so long for a scaler's driver that is missing.
    static constexpr std::chrono::seconds kLongestWait{14};

    // Sends, unless an answer is being waited for or there is no window.
    void Ask();
    // Whether an answer has been waited for, for longer than that.
    bool Overdue() const;
    bool Waiting() const { return question_ != nullptr && !question_->answered; }

  private:
    struct Question {
        platform::kernel::Time asked;
        std::atomic<bool> answered{false};
    };

    std::shared_ptr<Question> question_;
};

}  // namespace tests::campaign
