#include <gtest/gtest.h>

#include <cstdint>

#include "MStar_C4/MStar_C4_Scaler.h"
#include "MStar_C4/ScalerDevice.h"
#include "platform/device/stream_driver.h"
#include "platform/kernel/scheduler.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/program_log.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
namespace device = platform::device;
namespace kernel = platform::kernel;

using Log = std::vector<std::string>;

struct Request {
    DWORD code;
    std::vector<int> input;
    std::size_t output_bytes;

    bool operator==(const Request&) const = default;
};

void PrintTo(const Request& request, std::ostream* out) {
    *out << std::hex << request.code << ":";
    for (const int byte : request.input)
        *out << " " << byte;
    *out << " -> " << request.output_bytes;
}

// A scaler that writes down what it is asked.
class RecordingScaler final : public device::StreamDriver {
  public:
    class Handle final : public device::Stream {
      public:
        explicit Handle(RecordingScaler& scaler) : scaler_(scaler) { ++scaler_.open_handles; }
        Handle(const Handle&) = delete;
        Handle& operator=(const Handle&) = delete;
        ~Handle() override { --scaler_.open_handles; }

        DWORD IoControl(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                        DWORD&) override {
            Request request{code, {}, output.size()};
            for (const std::byte byte : input)
                request.input.push_back(std::to_integer<int>(byte));
            for (const std::byte byte : output)
                EXPECT_EQ(byte, std::byte{0});
            scaler_.requests.push_back(request);
            return scaler_.answer;
        }

      private:
        RecordingScaler& scaler_;
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
    std::vector<Request> requests;
    int open_handles = 0;
    int most_handles = 0;
};

struct ScalerFixture {
    explicit ScalerFixture(const kernel::Options& options = {}) : platform(options) {
        platform.board.drivers[L"SCA0:"] = scaler;
    }

    std::shared_ptr<RecordingScaler> scaler = std::make_shared<RecordingScaler>();
    Platform platform;
};

const Log kClosing = {"+++Mstar_C4_Scaler_DeInit", "+++Mstar_C4_Scaler_FreeMemory",
                      "---Mstar_C4_Scaler_FreeMemory", "---Mstar_C4_Scaler_DeInit"};

Log Join(std::initializer_list<Log> parts) {
    Log joined;
    for (const Log& part : parts)
        joined.insert(joined.end(), part.begin(), part.end());
    return joined;
}

const std::vector<int> kOne = {1, 0, 0, 0};
const Request kToScaler = {0x80012068, kOne, 4};
const Request kToGraphics = {0x8001206C, kOne, 4};
const Request kOpaque = {0x80012070, {63, 0, 0, 0}, 4};
const Request kKeyOn = {0x80012078, {0x00, 0x10, 0x00, 0x00, 0x01, 0, 0, 0}, 4};
// 0; 10, 49, 695, 375; 720, 480; 0, 0, 800, 480; 0, 1; padding.
const Request kFullScreen = {
    0x001B001B,
    {0,    0,    0, 0, 10, 0, 49,   0,    0xB7, 0x02, 0x77, 0x01, 0xD0, 0x02,
     0xE0, 0x01, 0, 0, 0,  0, 0x20, 0x03, 0xE0, 0x01, 0,    1,    0,    0},
    0};

struct Call {
    const char* name;
    const char* function;
    BOOL (*call)();
    std::vector<Request> requests;
    const char* failure;
};

BOOL SetWindowKeepingFlags() {
    MstarScalerWindow window{};
    window.reserved = 0x04030201;
    for (int index = 0; index < 4; ++index)
        window.source_window[index] = static_cast<WORD>(0x0605 + 0x0202 * index);
    window.input_width = 0x0E0D;
    window.input_height = 0x100F;
    window.display_x = 0x1211;
    window.display_y = 0x1413;
    window.display_width = 0x1615;
    window.display_height = 0x1817;
    window.flags[0] = window.flags[1] = window.padding[0] = window.padding[1] = 0x99;
    return Mstar_C4_Scaler_SetWindow(&window);
}

const Call kCalls[] = {
    {"Sw2Scaler",
     "Mstar_C4_Scaler_Sw2Scaler",
     [] { return Mstar_C4_Scaler_Sw2Scaler(); },
     {kToScaler},
     "OSKA sw to scaler fail!!!"},
    {"SW2GOP",
     "Mstar_C4_Scaler_SW2GOP",
     [] { return Mstar_C4_Scaler_SW2GOP(); },
     {kToGraphics},
     "DeviceIoControl() fail!!!"},
    {"SetAlpha",
     "Mstar_C4_Scaler_SetAlpha",
     [] { return Mstar_C4_Scaler_SetAlpha(0x0102033F); },
     {{0x80012070, {0x3F, 3, 2, 1}, 4}},
     "OSKA set alpha fail!!!"},
    {"ColorKeyOn",
     "Mstar_C4_Scaler_ColorKey",
     [] { return Mstar_C4_Scaler_ColorKey(1, 4096); },
     {kKeyOn},
     "OSKA Scaler set ColorKey fail!!!"},
    {"ColorKeyLowByte",
     "Mstar_C4_Scaler_ColorKey",
     [] { return Mstar_C4_Scaler_ColorKey(0xFF00, 0x04030201); },
     {{0x80012078, {1, 2, 3, 4, 0, 0, 0, 0}, 4}},
     "OSKA Scaler set ColorKey fail!!!"},
    {"ChangeDisplayWindow",
     "Mstar_C4_Scaler_ChangeDisplayWinddow",
     [] { return Mstar_C4_Scaler_ChangeDisplayWinddow(0x04030201); },
     {{0x800120B0, {1, 2, 3, 4}, 4}},
     "DeviceIoControl() fail!!!"},
    {"SetWindow",
     "Mstar_C4_Scaler_SetWindow",
     SetWindowKeepingFlags,
     {{0x001B001B,
       {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14,
        15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 0,  1,  0,  0},
       0}},
     "DeviceIoControl() fail!!!"},
    {"SetWindow2",
     "Mstar_C4_Scaler_SetWindow2",
     [] { return Mstar_C4_Scaler_SetWindow2(0x10000, 0, 800, 480); },
     {kFullScreen},
     "DeviceIoControl() fail!!!"},
};

class CallTest : public testing::TestWithParam<Call>, protected ScalerFixture {};

TEST_P(CallTest, SendsItsRequestAndLogsWhatFails) {
    const Call& call = GetParam();
    platform.Run([&] {
        SetLastError(ERROR_GEN_FAILURE);
        EXPECT_FALSE(call.call()) << "without a device";
        EXPECT_EQ(ProgramLog(platform.board),
                  Log{"\t" + std::string(call.function) +
                      ", Invalid Arguments!!!, ErroCode(31), MStar_C4_Scaler.cpp(#)"});
        ASSERT_TRUE(Mstar_C4_Scaler_Init());
        EXPECT_TRUE(call.call());
        EXPECT_EQ(scaler->requests, call.requests);
        scaler->answer = ERROR_NOT_SUPPORTED;
        platform.board.ClearOutput();
        EXPECT_FALSE(call.call());
        Log log = ProgramLog(platform.board);
        std::erase_if(log, [](const std::string& line) { return !line.starts_with('\t'); });
        ASSERT_EQ(log.size(), 1U);
        EXPECT_NE(log[0].find(", " + std::string(call.failure) +
                              ", ErroCode(50), MStar_C4_Scaler.cpp(#)"),
                  std::string::npos)
            << log[0];
        Mstar_C4_Scaler_DeInit();
    });
}

INSTANTIATE_TEST_SUITE_P(Calls, CallTest, testing::ValuesIn(kCalls),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(Scaler, SetWindowRefusesNoWindowWithoutATrace) {
    ScalerFixture fixture;
    fixture.platform.Run([&] {
        ASSERT_TRUE(Mstar_C4_Scaler_Init());
        fixture.platform.board.ClearOutput();
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(Mstar_C4_Scaler_SetWindow(nullptr));
        EXPECT_EQ(ProgramLog(fixture.platform.board),
                  Log{"\tMstar_C4_Scaler_SetWindow, Invalid Arguments!!!, ErroCode(0), "
                      "MStar_C4_Scaler.cpp(#)"});
        Mstar_C4_Scaler_DeInit();
    });
    EXPECT_TRUE(fixture.scaler->requests.empty());
}

TEST(Scaler, CompositeVideoGoesOnWhateverIsRefused) {
    for (const DWORD answer : {ERROR_SUCCESS, ERROR_NOT_SUPPORTED}) {
        ScalerFixture fixture;
        fixture.scaler->answer = answer;
        fixture.platform.Run([&] {
            EXPECT_FALSE(Mstar_C4_Scaler_ShowCompositeVideo());
            ASSERT_TRUE(Mstar_C4_Scaler_Init());
            EXPECT_TRUE(Mstar_C4_Scaler_ShowCompositeVideo());
            Mstar_C4_Scaler_DeInit();
        });
        EXPECT_EQ(fixture.scaler->requests,
                  (std::vector<Request>{kToGraphics, kToScaler, kOpaque, kKeyOn}));
    }
}

TEST(ScalerInit, OpensAPresentDriverWithoutWaiting) {
    ScalerFixture fixture({.start = 5s});
    fixture.platform.Run([&] {
        EXPECT_TRUE(Mstar_C4_Scaler_Init());
        EXPECT_EQ(kernel::Now(), 5s);
        EXPECT_EQ(fixture.scaler->open_handles, 1);
        const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"AtscNotify");
        EXPECT_NE(event, nullptr);
        CloseHandle(event);
        // Again: the first handle goes before the second comes.
        EXPECT_TRUE(Mstar_C4_Scaler_Init());
        EXPECT_EQ(fixture.scaler->most_handles, 1);
        Mstar_C4_Scaler_DeInit();
        EXPECT_EQ(fixture.scaler->open_handles, 0);
        EXPECT_EQ(OpenEventW(EVENT_ALL_ACCESS, FALSE, L"AtscNotify"), nullptr);
    });
    EXPECT_EQ(ProgramLog(fixture.platform.board),
              Join({{"+++Mstar_C4_Scaler_Init"},
                    kClosing,
                    {"---Mstar_C4_Scaler_Init", "+++Mstar_C4_Scaler_Init"},
                    kClosing,
                    {"---Mstar_C4_Scaler_Init"},
                    kClosing}));
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
    EXPECT_EQ(ProgramLog(fixture.platform.board),
              Join({{"+++Mstar_C4_Scaler_Init"},
                    kClosing,
                    {"\tMstar_C4_Scaler_Init, CreateFile() fail!!!, ErroCode(55), "
                     "ScalerDevice.cpp(#)"},
                    kClosing,
                    {"---Mstar_C4_Scaler_Init"}}));
}

// Whatever the refusal, a driver that comes late is taken when it comes.
TEST(ScalerInit, TakesADriverThatComesLate) {
    for (const DWORD refusal : {ERROR_DEV_NOT_EXIST, ERROR_FILE_NOT_FOUND}) {
        ScalerFixture fixture;
        fixture.scaler->refusals = 4;
        fixture.scaler->refusal = refusal;
        fixture.platform.Run([&] {
            EXPECT_TRUE(Mstar_C4_Scaler_Init());
            // Four more attempts, 100 ms apart, and a pause.
            EXPECT_EQ(kernel::Now(), 20s + 500ms);
            Mstar_C4_Scaler_DeInit();
        });
        EXPECT_EQ(fixture.scaler->opened_at.size(), 5U);
        EXPECT_EQ(fixture.scaler->open_handles, 0);
    }
}

// A driver that opens and yet reports itself absent is opened again, never twice at a time.
TEST(ScalerInit, ClosesAHandleBeforeItOpensTheNext) {
    ScalerFixture fixture;
    fixture.scaler->refusals = 1;
    fixture.scaler->success_leaves_error = true;
    fixture.platform.Run([&] { EXPECT_FALSE(Mstar_C4_Scaler_Init()); });
    EXPECT_EQ(fixture.scaler->opened_at.size(), 122U);
    EXPECT_EQ(fixture.scaler->most_handles, 1);
    EXPECT_EQ(fixture.scaler->open_handles, 0);
}

TEST(ScalerInit, ClosesTheDriverWhenItsEventIsMissing) {
    ScalerFixture fixture;
    fixture.platform.Run([&] {
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"AtscNotify");
        EXPECT_FALSE(Mstar_C4_Scaler_Init());
        EXPECT_EQ(fixture.scaler->open_handles, 0);
        CloseHandle(mutex);
    });
    EXPECT_EQ(ProgramLog(fixture.platform.board),
              Join({{"+++Mstar_C4_Scaler_Init"},
                    kClosing,
                    {"\tMstar_C4_Scaler_Init, CreateEvent() fail!!!, ErroCode(6), "
                     "ScalerDevice.cpp(#)"},
                    kClosing,
                    {"---Mstar_C4_Scaler_Init"}}));
}

}  // namespace
}  // namespace tests
