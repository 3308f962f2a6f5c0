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

using Log = std::vector<std::string>;

class Scaler : public testing::Test {
  protected:
    Scaler() {
        platform_.board.drivers[L"SCA0:"] = scaler_;
        scaler_->on_open = [this](DWORD access, DWORD share_mode) {
            EXPECT_EQ(access, 0xC0000000U);
            EXPECT_EQ(share_mode, 3U);
            EXPECT_EQ(scaler_->open_handles, 0) << "never two at a time";
            opened_at_.push_back(platform::kernel::Now());
        };
    }

    std::shared_ptr<RecordingDriver> scaler_ = std::make_shared<RecordingDriver>();
    std::vector<platform::kernel::Time> opened_at_;
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
        {[] { return Mstar_C4_Scaler_Sw2Scaler(); }, "80012068 01 00 00 00 ->4"},
        {[] { return Mstar_C4_Scaler_SW2GOP(); }, "8001206C 01 00 00 00 ->4"},
        {[] { return Mstar_C4_Scaler_SetAlpha(0x0102033F); }, "80012070 3F 03 02 01 ->4"},
        {[] { return Mstar_C4_Scaler_ColorKey(0xFF00, 0x04030201); },
         "80012078 01 02 03 04 00 00 00 00 ->4"},
        {[] { return Mstar_C4_Scaler_ChangeDisplayWinddow(0x04030201); },
         "800120B0 01 02 03 04 ->4"},
        {SetWindow,
         "1B001B 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13 14 15 16 17 18 00 01 00 "
         "00"},
        // 0; 10, 49, 695, 375; 720, 480; 0, 0, 800, 480; 0, 1; padding.
        {[] { return Mstar_C4_Scaler_SetWindow2(0x10000, 0, 800, 480); },
         "1B001B 00 00 00 00 0A 00 31 00 B7 02 77 01 D0 02 E0 01 00 00 00 00 20 03 E0 01 00 01 00 "
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
                  Log{"\tMstar_C4_Scaler_SetWindow, Invalid Arguments!!!, ErroCode(31), "
                      "MStar_C4_Scaler.cpp(#)"});
        Mstar_C4_Scaler_DeInit();
        EXPECT_EQ(scaler_->open_handles, 0);
    });
}

// While the system starts, nothing is tried again. A driver that comes late is opened when it
// comes, after any error. A driver that opens and still reports itself absent is opened again.
TEST_F(Scaler, IsOpenedAgainUntilItIsPresent) {
    const struct {
        int refusals;
        DWORD refusal;
        bool success_leaves_error;
        int opens;
        bool there;
    } rows[] = {{0, 0, false, 1, true},
                {4, ERROR_DEV_NOT_EXIST, false, 5, true},
                {4, ERROR_FILE_NOT_FOUND, false, 5, true},
                {4, ERROR_DEV_NOT_EXIST, true, 122, false},
                {200, ERROR_FILE_NOT_FOUND, false, 122, false}};
    const auto count = scaler_->on_open;
    for (const auto& row : rows) {
        scaler_->opens = 0;
        scaler_->on_open = [&](DWORD access, DWORD share_mode) {
            count(access, share_mode);
            scaler_->open_answer = scaler_->opens < row.refusals ? row.refusal : ERROR_SUCCESS;
            if (row.success_leaves_error)
                SetLastError(ERROR_DEV_NOT_EXIST);
        };
        platform_.Run([&] { EXPECT_EQ(Mstar_C4_Scaler_Init(), row.there); });
        EXPECT_EQ(scaler_->opens, row.opens);
        EXPECT_EQ(scaler_->open_handles, row.there);
    }
    EXPECT_EQ(opened_at_[1], 5s);
    EXPECT_GT(opened_at_[2], 12s);
    EXPECT_LE(opened_at_[2], 12s + 200ms);
    EXPECT_EQ(opened_at_[3] - opened_at_[2], 100ms);
}

TEST_F(Scaler, HoldsItsEventWhileItIsOpen) {
    platform_.Run([&] {
        EXPECT_EQ(kernel::AddCallFault({.call = "CreateEventW", .error = 1234}), "");
        EXPECT_FALSE(Mstar_C4_Scaler_Init());
        EXPECT_EQ(scaler_->open_handles, 0);
        EXPECT_EQ(ProgramLog(platform_.board)[5],
                  "\tMstar_C4_Scaler_Init, CreateEvent() fail!!!, ErroCode(1234), "
                  "MStar_C4_Scaler.cpp(#)");
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
    const struct {
        DWORD code;
        std::size_t input, output;
    } rows[] = {{0x80012068, 4, 0}, {0x8001206C, 4, 0}, {0x80012070, 4, 0},
                {0x80012078, 8, 0}, {0x800120B0, 4, 0}, {0x001B001B, 28, 4}};
    const auto scaler =
        std::make_shared<unit::Scaler>([] { ADD_FAILURE() << "the picture changes"; });
    const std::vector<std::byte> input(28, std::byte{1});
    std::vector<std::byte> output(4);
    for (const auto& row : rows) {
        DWORD returned = 0;
        EXPECT_EQ(scaler->Request(row.code, std::span(input).first(row.input),
                                  std::span(output).first(row.output), returned),
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
