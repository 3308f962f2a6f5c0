#include <msgqueue.h>
#include <pkfuncs.h>
#include <pm.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "platform/kernel/kernel.h"
#include "platform/kernel/scheduler.h"
#include "platform/powermgr/power_notifications.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/run_modes.h"

namespace {

namespace kernel = platform::kernel;
using platform::powermgr::Notify;
using tests::Platform;

// As the program makes it: three messages of up to 216 bytes.
HANDLE MakeQueue() {
    MSGQUEUEOPTIONS options{sizeof options, 0, 3, 216, TRUE};
    return CreateMsgQueue(nullptr, &options);
}

// The notification codes that wait in the queue.
std::vector<DWORD> Heard(HANDLE queue) {
    std::vector<DWORD> codes;
    alignas(POWER_BROADCAST) BYTE buffer[648];
    DWORD size = 0;
    DWORD flags = 0;
    while (ReadMsgQueue(queue, buffer, sizeof buffer, &size, 0, &flags)) {
        EXPECT_GE(size, sizeof(DWORD));
        codes.push_back(reinterpret_cast<const POWER_BROADCAST*>(buffer)->Message);
    }
    return codes;
}

// The hardware tells of these, one after the other.
void NotifyAll(const std::vector<DWORD>& codes) {
    const HANDLE told = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    for (const DWORD code : codes)
        kernel::After({}, [code] { Notify(code); });
    kernel::After({}, [told] { SetEvent(told); });
    WaitForSingleObject(told, INFINITE);
    CloseHandle(told);
}

class PowerNotifications : public tests::InEveryMode {
  protected:
    Platform platform{GetParam().options};
};

TEST_P(PowerNotifications, ReachWhoAskedForThem) {
    using Codes = std::vector<DWORD>;
    platform.Run([&] {
        const HANDLE queues[] = {MakeQueue(), MakeQueue()};
        const HANDLE both = RequestPowerNotifications(queues[0], 6);
        const HANDLE resumes = RequestPowerNotifications(queues[1], PBT_RESUME);
        ASSERT_TRUE(both && resumes);
        NotifyAll({PBT_POWERSTATUSCHANGE, PBT_RESUME, PBT_TRANSITION});
        EXPECT_EQ(Heard(queues[0]), (Codes{PBT_POWERSTATUSCHANGE, PBT_RESUME}));
        EXPECT_EQ(Heard(queues[1]), Codes{PBT_RESUME});

        NotifyAll(Codes(5, PBT_POWERSTATUSCHANGE));
        EXPECT_EQ(Heard(queues[0]).size(), 3U) << "a full queue loses the rest";

        EXPECT_EQ(StopPowerNotifications(both), ERROR_SUCCESS);
        EXPECT_EQ(StopPowerNotifications(both), ERROR_INVALID_HANDLE);
        EXPECT_EQ(StopPowerNotifications(queues[0]), ERROR_INVALID_HANDLE);
        Notify(PBT_RESUME);
        EXPECT_TRUE(Heard(queues[0]).empty());
        EXPECT_EQ(Heard(queues[1]), Codes{PBT_RESUME});
        CloseMsgQueue(queues[1]);
        Notify(PBT_RESUME);
        EXPECT_EQ(StopPowerNotifications(resumes), ERROR_SUCCESS) << "after its queue";
        CloseMsgQueue(queues[0]);
    });
    EXPECT_EQ(kernel::HandleCount(), 0U);
}

TEST_P(PowerNotifications, NeedQueueAndFlagsAndLeftOpenAreClosedAtShutdown) {
    platform.Run([] {
        const HANDLE queue = MakeQueue();
        EXPECT_EQ(RequestPowerNotifications(nullptr, 6), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_EQ(RequestPowerNotifications(queue, 0), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        EXPECT_NE(RequestPowerNotifications(queue, 6), nullptr);
    });
    // The queue, the request, and the request's own end of the queue.
    platform.AllowHandles(3);
}

INSTANTIATE_IN_EVERY_MODE(PowerNotifications);

TEST(PowerRequests, GoToTheBoard) {
    Platform platform;
    platform.Run([&] {
        EXPECT_EQ(SetSystemPowerState(nullptr, POWER_STATE_SUSPEND, POWER_FORCE), ERROR_SUCCESS);
        DWORD returned = 77;
        EXPECT_TRUE(KernelIoControl(0x01012345, nullptr, 0, nullptr, 0, &returned));
        EXPECT_EQ(returned, 0U);
        platform.board.hal_answer = ERROR_NOT_SUPPORTED;
        EXPECT_FALSE(KernelIoControl(0x01016789, nullptr, 0, nullptr, 0, nullptr));
        EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
    });
    EXPECT_EQ(platform.board.power_states, std::vector<DWORD>{POWER_STATE_SUSPEND});
    EXPECT_EQ(platform.board.hal_codes, (std::vector<DWORD>{0x01012345, 0x01016789}));
}

}  // namespace
