#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "MStar_C4/MStar_C4_Scaler.h"
#include "MStar_C4/ScalerDevice.h"
#include "platform/device/stream_driver.h"
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
            scaler.requests.push_back(request.str() + ":" + std::to_string(output.size()));
            return scaler.answer;
        }

        RecordingScaler& scaler;
    };

    DWORD Open(DWORD access, DWORD share_mode, std::shared_ptr<device::Stream>& stream) override {
        opened_at.push_back(kernel::Now());
        EXPECT_EQ(access, 0xC0000000U);
        EXPECT_EQ(share_mode, 3U);
        if (opened_at.size() <= refusals)
            return refusal;
        if (success_leaves_error)
            SetLastError(ERROR_DEV_NOT_EXIST);
        stream = std::make_shared<Handle>(*this);
        most_handles = std::max(most_handles, open_handles);
        return ERROR_SUCCESS;
    }

    std::size_t refusals = 0;
    DWORD refusal = ERROR_DEV_NOT_EXIST;
    bool success_leaves_error = false;
    DWORD answer = ERROR_SUCCESS;
    std::vector<kernel::Time> opened_at;
    Log requests;
    int open_handles = 0;
    int most_handles = 0;
};

struct ScalerFixture {
    explicit ScalerFixture(const kernel::Options& options = {}) : platform(options) {
        platform.board.drivers[L"SCA0:"] = scaler;
    }

    // The lines since the last call that tell of a failure.
    Log TakeFailures() {
        Log log = ProgramLog(platform.board);
        platform.board.ClearOutput();
        std::erase_if(log, [](const std::string& line) { return !line.starts_with('\t'); });
        return log;
    }

    std::shared_ptr<RecordingScaler> scaler = std::make_shared<RecordingScaler>();
    Platform platform;
};

const Log kCompositeVideo = {"8001206c:01000000:4", "80012068:01000000:4", "80012070:3f000000:4",
                             "80012078:0010000001000000:4"};

// Every byte of the record another, flags and padding not to be sent.
BOOL SetWindow() {
    MstarScalerWindow window{};
    auto* const bytes = reinterpret_cast<BYTE*>(&window);
    for (std::size_t index = 0; index < sizeof window; ++index)
        bytes[index] = static_cast<BYTE>(index + 1);
    return Mstar_C4_Scaler_SetWindow(&window);
}

TEST(Scaler, EveryCallSendsItsRequestAndLogsWhatFails) {
    const struct {
        std::string function;
        BOOL (*call)();
        std::string request, failure;
    } rows[] = {
        {"Sw2Scaler", [] { return Mstar_C4_Scaler_Sw2Scaler(); }, kCompositeVideo[1],
         "Sw2Scaler, OSKA sw to scaler"},
        {"SW2GOP", [] { return Mstar_C4_Scaler_SW2GOP(); }, kCompositeVideo[0],
         "SW2GOP, DeviceIoControl()"},
        {"SetAlpha", [] { return Mstar_C4_Scaler_SetAlpha(0x0102033F); }, "80012070:3f030201:4",
         "SetAlpha, OSKA set alpha"},
        {"ColorKey", [] { return Mstar_C4_Scaler_ColorKey(0xFF00, 0x04030201); },
         "80012078:0102030400000000:4", "ColorKey, OSKA Scaler set ColorKey"},
        {"ChangeDisplayWinddow", [] { return Mstar_C4_Scaler_ChangeDisplayWinddow(0x04030201); },
         "800120b0:01020304:4", "ChangeDisplayWinddow, DeviceIoControl()"},
        {"SetWindow", SetWindow,
         "1b001b:0102030405060708090a0b0c0d0e0f10111213141516171800010000:0",
         "SetWindow, DeviceIoControl()"},
        // 0; 10, 49, 695, 375; 720, 480; 0, 0, 800, 480; 0, 1; padding.
        {"SetWindow2", [] { return Mstar_C4_Scaler_SetWindow2(0x10000, 0, 800, 480); },
         "1b001b:000000000a003100b7027701d002e001000000002003e00100010000:0",
         "SetWindow, DeviceIoControl()"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.function);
        ScalerFixture fixture;
        fixture.platform.Run([&] {
            SetLastError(ERROR_GEN_FAILURE);
            EXPECT_FALSE(row.call()) << "without a device";
            EXPECT_EQ(fixture.TakeFailures(),
                      Log{"\tMstar_C4_Scaler_" + row.function +
                          ", Invalid Arguments!!!, ErroCode(31), MStar_C4_Scaler.cpp(#)"});
            ASSERT_TRUE(Mstar_C4_Scaler_Init());
            EXPECT_TRUE(row.call());
            EXPECT_EQ(fixture.scaler->requests, Log{row.request});
            EXPECT_EQ(fixture.TakeFailures(), Log{});
            fixture.scaler->answer = ERROR_NOT_SUPPORTED;
            EXPECT_FALSE(row.call());
            EXPECT_EQ(fixture.TakeFailures(),
                      Log{"\tMstar_C4_Scaler_" + row.failure +
                          " fail!!!, ErroCode(50), MStar_C4_Scaler.cpp(#)"});
            Mstar_C4_Scaler_DeInit();
        });
    }
}

TEST(Scaler, CompositeVideoGoesOnWhateverIsRefusedButNoWindowIsNoRequest) {
    for (const DWORD answer : {ERROR_SUCCESS, ERROR_NOT_SUPPORTED}) {
        ScalerFixture fixture;
        fixture.scaler->answer = answer;
        fixture.platform.Run([&] {
            EXPECT_FALSE(Mstar_C4_Scaler_ShowCompositeVideo());
            ASSERT_TRUE(Mstar_C4_Scaler_Init());
            EXPECT_TRUE(Mstar_C4_Scaler_ShowCompositeVideo());
            fixture.TakeFailures();
            SetLastError(ERROR_SUCCESS);
            EXPECT_FALSE(Mstar_C4_Scaler_SetWindow(nullptr));
            EXPECT_EQ(fixture.TakeFailures(),
                      Log{"\tMstar_C4_Scaler_SetWindow, Invalid Arguments!!!, ErroCode(0), "
                          "MStar_C4_Scaler.cpp(#)"});
            Mstar_C4_Scaler_DeInit();
        });
        EXPECT_EQ(fixture.scaler->requests, kCompositeVideo);
    }
}

TEST(ScalerInit, OpensAPresentDriverWithoutWaiting) {
    ScalerFixture fixture({.start = 5s});
    fixture.platform.Run([&] {
        // The second time the first handle goes before the second comes.
        for (int round = 0; round < 2; ++round) {
            EXPECT_TRUE(Mstar_C4_Scaler_Init());
            EXPECT_EQ(kernel::Now(), 5s);
            EXPECT_EQ(fixture.scaler->most_handles, 1);
        }
        const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"AtscNotify");
        EXPECT_NE(event, nullptr);
        CloseHandle(event);
        fixture.platform.board.ClearOutput();
        Mstar_C4_Scaler_DeInit();
        EXPECT_EQ(fixture.scaler->open_handles, 0);
        EXPECT_EQ(OpenEventW(EVENT_ALL_ACCESS, FALSE, L"AtscNotify"), nullptr);
    });
    EXPECT_EQ(ProgramLog(fixture.platform.board),
              (Log{"+++Mstar_C4_Scaler_DeInit", "+++Mstar_C4_Scaler_FreeMemory",
                   "---Mstar_C4_Scaler_FreeMemory", "---Mstar_C4_Scaler_DeInit"}));
}

TEST(ScalerInit, GivesUpOnADriverThatStaysAbsent) {
    ScalerFixture fixture({.start = 5s});
    fixture.scaler->refusals = 1000;
    fixture.platform.Run([&] { EXPECT_FALSE(Mstar_C4_Scaler_Init()); });
    const std::vector<kernel::Time>& opened = fixture.scaler->opened_at;
    ASSERT_EQ(opened.size(), 122U);
    EXPECT_EQ(opened[0], 5s);
    EXPECT_GT(opened[1], 12s);
    EXPECT_LE(opened[1], 12s + 200ms);
    for (std::size_t attempt = 2; attempt < opened.size(); ++attempt)
        EXPECT_EQ(opened[attempt] - opened[attempt - 1], 100ms);
    EXPECT_EQ(g_hScalerDevice, nullptr);
    EXPECT_EQ(
        fixture.TakeFailures(),
        Log{"\tMstar_C4_Scaler_Init, CreateFile() fail!!!, ErroCode(55), ScalerDevice.cpp(#)"});
}

// Whatever the refusal, a driver that comes late is taken when it comes. One that opens and yet
// reports itself absent is opened again, never twice at a time.
TEST(ScalerInit, TakesADriverThatComesLate) {
    const struct {
        DWORD refusal;
        bool success_leaves_error;
        std::size_t attempts;
    } rows[] = {{ERROR_DEV_NOT_EXIST, false, 5},
                {ERROR_FILE_NOT_FOUND, false, 5},
                {ERROR_DEV_NOT_EXIST, true, 122}};
    for (const auto& row : rows) {
        ScalerFixture fixture({.start = 20s});
        fixture.scaler->refusals = 4;
        fixture.scaler->refusal = row.refusal;
        fixture.scaler->success_leaves_error = row.success_leaves_error;
        fixture.platform.Run([&] {
            EXPECT_EQ(Mstar_C4_Scaler_Init(), row.attempts == 5);
            if (row.attempts == 5) {
                EXPECT_EQ(kernel::Now(), 20s + 500ms) << "four pauses between and one after";
            }
            Mstar_C4_Scaler_DeInit();
        });
        EXPECT_EQ(fixture.scaler->opened_at.size(), row.attempts);
        EXPECT_EQ(fixture.scaler->most_handles, 1);
        EXPECT_EQ(fixture.scaler->open_handles, 0);
    }
}

TEST(ScalerInit, ClosesTheDriverWhenItsEventIsMissing) {
    ScalerFixture fixture;
    fixture.platform.Run([&] {
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"AtscNotify");
        EXPECT_FALSE(Mstar_C4_Scaler_Init());
        EXPECT_EQ(fixture.scaler->open_handles, 0);
        CloseHandle(mutex);
    });
    EXPECT_EQ(
        fixture.TakeFailures(),
        Log{"\tMstar_C4_Scaler_Init, CreateEvent() fail!!!, ErroCode(6), ScalerDevice.cpp(#)"});
}

}  // namespace
}  // namespace tests
