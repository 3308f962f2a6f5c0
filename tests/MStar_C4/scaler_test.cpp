#include <gtest/gtest.h>

#include "MStar_C4/MStar_C4_Scaler.h"
#include "platform/kernel/call_faults.h"
#include "platform/kernel/scheduler.h"
#include "tests/support/program_log.h"
#include "tests/support/recording_driver.h"
#include "unit/devices/scaler.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
namespace kernel = platform::kernel;

class Scaler : public testing::Test {
  protected:
    Scaler() { platform_.board.drivers[L"SCA0:"] = scaler_; }

    std::shared_ptr<RecordingDriver> scaler_ = std::make_shared<RecordingDriver>();
    Platform platform_{{.start = 5s}};
};

// Every byte of the record differs; its flags and padding must not be sent.
BOOL SetWindow() {
    MstarScalerWindow window{};
    auto* const bytes = reinterpret_cast<BYTE*>(&window);
    for (std::size_t index = 0; index < sizeof window; ++index)
        bytes[index] = static_cast<BYTE>(index + 1);
    return Mstar_C4_Scaler_SetWindow(&window);
}

// With other values than the wizard sends.
TEST_F(Scaler, SendsRequestsByteByByte) {
    const struct {
        BOOL (*call)();
        std::string request;
    } rows[] = {
        {[] { return Mstar_C4_Scaler_SetAlpha(0x0102033F); }, "80012070 3F 03 02 01 ->4"},
        {[] { return Mstar_C4_Scaler_ColorKey(0xFF00, 0x04030201); },
         "80012078 01 02 03 04 00 00 00 00 ->4"},
        {[] { return Mstar_C4_Scaler_ChangeDisplayWinddow(0x04030201); },
         "800120B0 01 02 03 04 ->4"},
        {SetWindow,
         "1B001B 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13 14 15 16 17 18 00 01 00 "
         "00"},
        // 0; 10, 49, 695, 375; 720, 480; 0, 2, 3, 4; 0, 1; padding.
        {[] { return Mstar_C4_Scaler_SetWindow2(0x10000, 2, 3, 4); },
         "1B001B 00 00 00 00 0A 00 31 00 B7 02 77 01 D0 02 E0 01 00 00 02 00 03 00 04 00 00 01 00 "
         "00"},
    };
    platform_.Run([&] {
        for (const auto& row : rows)
            EXPECT_FALSE(row.call()) << "without a device";
        EXPECT_FALSE(Mstar_C4_Scaler_ShowCompositeVideo());
        ASSERT_TRUE(Mstar_C4_Scaler_Init());
        for (const auto& row : rows) {
            EXPECT_TRUE(row.call());
            EXPECT_EQ(scaler_->requests.back(), row.request);
        }
        platform_.board.ClearOutput();
        SetLastError(ERROR_GEN_FAILURE);
        EXPECT_FALSE(Mstar_C4_Scaler_SetWindow(nullptr));
        EXPECT_EQ(ProgramLog(platform_.board),
                  std::vector<std::string>{"\tMstar_C4_Scaler_SetWindow, Invalid Arguments!!!, "
                                           "ErroCode(31), MStar_C4_Scaler.cpp(#)"});
        Mstar_C4_Scaler_DeInit();
    });
}

// While the system starts, nothing is tried again; the next attempt comes later than at 12 s, and a
// pause follows. A driver that opens and still reports itself absent is opened again.
TEST_F(Scaler, IsOpenedAgainUntilItIsPresent) {
    for (const bool present : {true, false}) {
        scaler_->opens = 0;
        scaler_->on_open = [&](DWORD access, DWORD share_mode) {
            EXPECT_EQ(access, DWORD{GENERIC_READ | GENERIC_WRITE});
            EXPECT_EQ(share_mode, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE});
            EXPECT_EQ(scaler_->open_handles, 0) << "never two at a time";
            scaler_->open_answer = scaler_->opens < 1 ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
            SetLastError(present ? ERROR_SUCCESS : ERROR_DEV_NOT_EXIST);
        };
        platform_.Run([&] { EXPECT_EQ(Mstar_C4_Scaler_Init(), present); });
        EXPECT_EQ(kernel::Now(), present ? 12200ms : 24300ms);
        EXPECT_EQ(scaler_->opens, present ? 2 : 122);
        EXPECT_EQ(scaler_->open_handles, present ? 1 : 0);
    }
}

TEST_F(Scaler, HoldsItsEventWhileItIsOpen) {
    platform_.Run([&] {
        EXPECT_EQ(kernel::AddCallFault({.call = "CreateEventW"}), "");
        EXPECT_FALSE(Mstar_C4_Scaler_Init());
        EXPECT_EQ(scaler_->open_handles, 0);
        // The second round closes the first handle before it opens another one.
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

// The unit's scaler refuses an output of another size than the client's.
TEST(UnitScaler, KeepsItsStateOnARefusedRequest) {
    const auto scaler =
        std::make_shared<unit::Scaler>([] { ADD_FAILURE() << "the picture changes"; });
    const std::vector<std::byte> input(28, std::byte{1});
    std::vector<std::byte> output(4);
    const std::pair<DWORD, std::size_t> requests[] = {{0x80012068, 4}, {0x8001206C, 4},
                                                      {0x80012070, 4}, {0x80012078, 8},
                                                      {0x800120B0, 4}, {0x001B001B, 28}};
    for (const auto& [code, size] : requests) {
        DWORD returned = 0;
        EXPECT_EQ(scaler->Request(code, std::span(input).first(size),
                                  std::span(output).first(size == 28 ? 4 : 0), returned),
                  DWORD{ERROR_INVALID_PARAMETER});
    }
    const unit::ScalerState state = scaler->state(), initial;
    EXPECT_EQ(std::tuple(state.scaler_path, state.alpha, state.key_enabled, state.key_color,
                         state.selector, state.window.x),
              std::tuple(initial.scaler_path, initial.alpha, initial.key_enabled, initial.key_color,
                         initial.selector, initial.window.x));
}

}  // namespace
}  // namespace tests
