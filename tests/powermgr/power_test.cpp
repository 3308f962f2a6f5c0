#include <pkfuncs.h>
#include <pm.h>

#include "platform/powermgr/power_notifications.h"
#include "tests/support/platform_test.h"

namespace tests {
namespace {

using platform::powermgr::Notify;

// As the program creates it: three messages of up to 216 bytes.
HANDLE MakeQueue() {
    MSGQUEUEOPTIONS options{sizeof options, 0, 3, 216, TRUE};
    return CreateMsgQueue(nullptr, &options);
}

void ExpectRead(HANDLE queue, const std::vector<DWORD>& expected) {
    std::vector<DWORD> codes;
    alignas(POWER_BROADCAST) BYTE buffer[648];
    DWORD size = 0;
    DWORD flags = 0;
    while (ReadMsgQueue(queue, buffer, sizeof buffer, &size, 0, &flags)) {
        EXPECT_GE(size, sizeof(DWORD));
        codes.push_back(reinterpret_cast<const POWER_BROADCAST*>(buffer)->Message);
    }
    EXPECT_EQ(codes, expected);
}

// The host thread notifies of these in turn.
void NotifyAll(const std::vector<DWORD>& codes) {
    const HANDLE done = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    kernel::After({}, [&] {
        for (const DWORD code : codes)
            Notify(code);
        SetEvent(done);
    });
    WaitForSingleObject(done, INFINITE);
    CloseHandle(done);
}

EVERY_MODE_SUITE(PowerNotifications);

EVERY_MODE_TEST(PowerNotifications, ReachTheQueuesThatRequestedThem) {
    const HANDLE first = MakeQueue();
    const HANDLE second = MakeQueue();
    ExpectFails(ERROR_INVALID_HANDLE, [] { return RequestPowerNotifications(nullptr, 6); });
    ExpectFails(ERROR_INVALID_PARAMETER, [&] { return RequestPowerNotifications(first, 0); });
    const HANDLE both = RequestPowerNotifications(first, 6);
    const HANDLE resumes = RequestPowerNotifications(second, PBT_RESUME);
    ASSERT_TRUE(both && resumes);
    NotifyAll({PBT_POWERSTATUSCHANGE, PBT_RESUME, PBT_TRANSITION});
    ExpectRead(first, {PBT_POWERSTATUSCHANGE, PBT_RESUME});
    ExpectRead(second, {PBT_RESUME});

    // A full queue loses the rest.
    NotifyAll(std::vector<DWORD>(5, PBT_POWERSTATUSCHANGE));
    ExpectRead(first, std::vector<DWORD>(3, PBT_POWERSTATUSCHANGE));

    EXPECT_EQ(StopPowerNotifications(both), ERROR_SUCCESS);
    EXPECT_EQ(StopPowerNotifications(both), ERROR_INVALID_HANDLE);
    EXPECT_EQ(StopPowerNotifications(first), ERROR_INVALID_HANDLE);
    NotifyAll({PBT_RESUME});
    ExpectRead(first, {});
    ExpectRead(second, {PBT_RESUME});
    CloseMsgQueue(second);
    NotifyAll({PBT_RESUME});
    EXPECT_EQ(StopPowerNotifications(resumes), ERROR_SUCCESS) << "after its queue";
    EXPECT_NE(RequestPowerNotifications(first, 6), nullptr);
    // Closed at shutdown: the queue and the request.
    platform.AllowHandles(2);
}

PLATFORM_TEST(PowerRequests, GoToTheBoard) {
    EXPECT_EQ(SetSystemPowerState(nullptr, POWER_STATE_SUSPEND, POWER_FORCE), ERROR_SUCCESS);
    DWORD returned = 77;
    EXPECT_TRUE(KernelIoControl(0x01012345, nullptr, 0, nullptr, 0, &returned));
    EXPECT_EQ(returned, 0U);
    platform.board.hal_result = ERROR_NOT_SUPPORTED;
    ExpectFails(ERROR_NOT_SUPPORTED,
                [] { return KernelIoControl(0x01016789, nullptr, 0, nullptr, 0, nullptr); });
    EXPECT_EQ(platform.board.power_states, std::vector<DWORD>{POWER_STATE_SUSPEND});
    EXPECT_EQ(platform.board.hal_codes, (std::vector<DWORD>{0x01012345, 0x01016789}));
}

}  // namespace
}  // namespace tests
