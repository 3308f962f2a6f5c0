#include <pm.h>

#include "platform/powermgr/power_notifications.h"
#include "tests/support/platform_test.h"

namespace tests {
namespace {

// As the program creates it: three messages of up to 216 bytes.
HANDLE MakeQueue() {
    MSGQUEUEOPTIONS options{sizeof options, 0, 3, 216, TRUE};
    return CreateMsgQueue(nullptr, &options);
}

void ExpectRead(HANDLE queue, const std::vector<DWORD>& expected) {
    std::vector<DWORD> messages;
    POWER_BROADCAST record{};
    DWORD size = 0;
    DWORD flags = 0;
    while (ReadMsgQueue(queue, &record, sizeof record, &size, 0, &flags))
        messages.push_back(record.Message);
    EXPECT_EQ(messages, expected);
}

PLATFORM_TEST(PowerNotifications, ReachTheQueuesThatRequestedThem) {
    const HANDLE first = MakeQueue();
    const HANDLE second = MakeQueue();
    ExpectFails(ERROR_INVALID_HANDLE, [] { return RequestPowerNotifications(nullptr, 6); });
    ExpectFails(ERROR_INVALID_PARAMETER, [&] { return RequestPowerNotifications(first, 0); });
    const HANDLE both = RequestPowerNotifications(first, PBT_POWERSTATUSCHANGE | PBT_RESUME);
    const HANDLE resumes = RequestPowerNotifications(second, PBT_RESUME);
    for (const DWORD message : {PBT_POWERSTATUSCHANGE, PBT_RESUME, PBT_TRANSITION})
        platform::powermgr::Notify(message);
    ExpectRead(first, {PBT_POWERSTATUSCHANGE, PBT_RESUME});
    ExpectRead(second, {PBT_RESUME});

    EXPECT_EQ(StopPowerNotifications(both), ERROR_SUCCESS);
    EXPECT_EQ(StopPowerNotifications(both), ERROR_INVALID_HANDLE);
    EXPECT_EQ(StopPowerNotifications(first), ERROR_INVALID_HANDLE);
    platform::powermgr::Notify(PBT_RESUME);
    ExpectRead(first, {});
    ExpectRead(second, {PBT_RESUME});
    CloseMsgQueue(second);
    platform::powermgr::Notify(PBT_RESUME);
    EXPECT_EQ(StopPowerNotifications(resumes), ERROR_SUCCESS) << "after its queue";
    EXPECT_NE(RequestPowerNotifications(first, PBT_RESUME), nullptr);
    // Closed at shutdown: the queue and the request.
    platform.AllowHandles(2);
}

}  // namespace
}  // namespace tests
