#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "MStar_C4/MStar_C4_Scaler.h"
#include "platform/device/stream_driver.h"
#include "platform/kernel/call_faults.h"
#include "platform/kernel/scheduler.h"
#include "tests/support/program_log.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
namespace device = platform::device;
namespace kernel = platform::kernel;

using Log = std::vector<std::string>;

// A scaler that writes down what it is asked: the code, the input, and the size of the output.
struct RecordingScaler final : device::StreamDriver {
    struct Handle final : device::Stream {
        explicit Handle(RecordingScaler& opened) : scaler(opened) { ++scaler.open_handles; }
        ~Handle() override { --scaler.open_handles; }

        DWORD IoControl(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                        DWORD&) override {
            std::ostringstream request;
            request << std::hex << code << ":" << std::setfill('0');
            for (const std::byte byte : input)
                request << std::setw(2) << std::to_integer<int>(byte);
            for (const std::byte byte : output)
                EXPECT_EQ(byte, std::byte{0});
            scaler.request = request.str() + ":" + std::to_string(output.size());
            return ERROR_SUCCESS;
        }

        RecordingScaler& scaler;
    };

    DWORD Open(DWORD access, DWORD share_mode, std::shared_ptr<device::Stream>& stream) override {
        EXPECT_EQ(access, 0xC0000000U);
        EXPECT_EQ(share_mode, 3U);
        EXPECT_EQ(open_handles, 0) << "never two at a time";
        opened_at.push_back(kernel::Now());
        if (refusals-- > 0)
            return refusal;
        if (success_leaves_error)
            SetLastError(ERROR_DEV_NOT_EXIST);
        stream = std::make_shared<Handle>(*this);
        return ERROR_SUCCESS;
    }

    int refusals = 0;
    DWORD refusal = ERROR_DEV_NOT_EXIST;
    bool success_leaves_error = false;
    std::vector<kernel::Time> opened_at;
    int open_handles = 0;
    std::string request;
};

class Scaler : public testing::Test {
  protected:
    Scaler() { platform_.board.drivers[L"SCA0:"] = scaler_; }

    std::shared_ptr<RecordingScaler> scaler_ = std::make_shared<RecordingScaler>();
    Platform platform_{{.start = 5s}};
};

// Every byte of the record another, flags and padding not to be sent.
BOOL SetWindow() {
    MstarScalerWindow window{};
    auto* const bytes = reinterpret_cast<BYTE*>(&window);
    for (std::size_t index = 0; index < sizeof window; ++index)
        bytes[index] = static_cast<BYTE>(index + 1);
    return Mstar_C4_Scaler_SetWindow(&window);
}

// The values of which the wizard sends others, or none.
TEST_F(Scaler, SendsRequestsByteByByte) {
    const struct {
        BOOL (*call)();
        std::string request;
    } rows[] = {
        {[] { return Mstar_C4_Scaler_Sw2Scaler(); }, "80012068:01000000:4"},
        {[] { return Mstar_C4_Scaler_SW2GOP(); }, "8001206c:01000000:4"},
        {[] { return Mstar_C4_Scaler_SetAlpha(0x0102033F); }, "80012070:3f030201:4"},
        {[] { return Mstar_C4_Scaler_ColorKey(0xFF00, 0x04030201); },
         "80012078:0102030400000000:4"},
        {[] { return Mstar_C4_Scaler_ChangeDisplayWinddow(0x04030201); }, "800120b0:01020304:4"},
        {SetWindow, "1b001b:0102030405060708090a0b0c0d0e0f10111213141516171800010000:0"},
        // 0; 10, 49, 695, 375; 720, 480; 0, 0, 800, 480; 0, 1; padding.
        {[] { return Mstar_C4_Scaler_SetWindow2(0x10000, 0, 800, 480); },
         "1b001b:000000000a003100b7027701d002e001000000002003e00100010000:0"},
    };
    platform_.Run([&] {
        for (const auto& row : rows)
            EXPECT_FALSE(row.call()) << "without a device";
        EXPECT_FALSE(Mstar_C4_Scaler_ShowCompositeVideo());
        ASSERT_TRUE(Mstar_C4_Scaler_Init());
        for (const auto& row : rows) {
            EXPECT_TRUE(row.call());
            EXPECT_EQ(scaler_->request, row.request);
        }
        platform_.board.ClearOutput();
        SetLastError(ERROR_GEN_FAILURE);
        EXPECT_FALSE(Mstar_C4_Scaler_SetWindow(nullptr));
        EXPECT_EQ(ProgramLog(platform_.board),
                  Log{"\tMstar_C4_Scaler_SetWindow, Invalid Arguments!!!, ErroCode(31), "
                      "MStar_C4_Scaler.cpp(#)"});
        Mstar_C4_Scaler_DeInit();
        EXPECT_EQ(scaler_->open_handles, 0);
    });
}

// While the system starts nothing is tried again. Whatever the refusal, a driver that comes late is
// taken when it comes. One that opens and yet reports itself absent is opened again.
TEST_F(Scaler, IsOpenedUntilItIsThere) {
    const struct {
        int refusals;
        DWORD refusal;
        bool success_leaves_error;
        std::size_t opens;
        bool there;
    } rows[] = {{0, 0, false, 1, true},
                {4, ERROR_DEV_NOT_EXIST, false, 5, true},
                {4, ERROR_FILE_NOT_FOUND, false, 5, true},
                {4, ERROR_DEV_NOT_EXIST, true, 122, false},
                {200, ERROR_FILE_NOT_FOUND, false, 122, false}};
    std::vector<kernel::Time>& times = scaler_->opened_at;
    platform_.Run([&] {
        std::size_t before = 0;
        for (const auto& row : rows) {
            scaler_->refusals = row.refusals;
            scaler_->refusal = row.refusal;
            scaler_->success_leaves_error = row.success_leaves_error;
            EXPECT_EQ(Mstar_C4_Scaler_Init(), row.there);
            EXPECT_EQ(times.size() - before, row.opens);
            EXPECT_EQ(scaler_->open_handles, row.there);
            before = times.size();
        }
    });
    EXPECT_EQ(times[1], 5s);
    EXPECT_GT(times[2], 12s);
    EXPECT_LE(times[2], 12s + 200ms);
    EXPECT_EQ(times[3] - times[2], 100ms);
}

TEST_F(Scaler, HoldsItsEventWhileItIsOpen) {
    platform_.Run([&] {
        EXPECT_EQ(kernel::AddCallFault({.call = "CreateEventW", .error = 1234}), "");
        EXPECT_FALSE(Mstar_C4_Scaler_Init());
        EXPECT_EQ(scaler_->open_handles, 0);
        EXPECT_EQ(ProgramLog(platform_.board)[5],
                  "\tMstar_C4_Scaler_Init, CreateEvent() fail!!!, ErroCode(1234), "
                  "ScalerDevice.cpp(#)");
        // The second time the first handle goes before the second comes.
        for (int round = 0; round < 2; ++round) {
            EXPECT_TRUE(Mstar_C4_Scaler_Init());
            const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"AtscNotify");
            EXPECT_NE(event, nullptr);
            CloseHandle(event);
        }
        Mstar_C4_Scaler_DeInit();
        EXPECT_EQ(OpenEventW(EVENT_ALL_ACCESS, FALSE, L"AtscNotify"), nullptr);
    });
}

}  // namespace
}  // namespace tests
